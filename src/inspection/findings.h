#pragma once

#include <cstddef>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "pxrom/inspection.h"

namespace Tarvane::Plexura::PXROM::inspection {

/// Lines and columns of a text, both from 1.
class LineTable {
 public:
  explicit LineTable(std::string_view text);

  std::size_t Count() const { return starts_.size(); }
  void Locate(std::size_t offset, std::size_t& line, std::size_t& column) const;

 private:
  std::vector<std::size_t> starts_;
};

/// What a finding is about, besides its code.
struct Subject {
  std::size_t offset = 0;
  std::string group;
  std::string key;
  std::string found;
  std::string expected;
};

/// Collects the findings of one inspection, a limited number per code.
class Findings {
 public:
  explicit Findings(const LineTable& lines) : lines_(lines) {}

  /// Whether no more of `code` will be listed: who has work with a finding may then spare it.
  bool IsFull(E_FindingCode code) const;
  void Add(E_FindingSeverity severity, E_FindingCode code, Subject subject, std::string sentence);
  /// Adds one of a code that is full: it only counts.
  void Count(E_FindingSeverity severity, E_FindingCode code, const std::string& group) {
    Add(severity, code, {0, group, "", "", ""}, "");
  }
  /// Whether there is an error in `group` or in a group inside it; for "" anywhere.
  bool HasErrorIn(const std::string& group) const;

  /// Moves everything into `report`, in order.
  void Deliver(CInspectionReport& report);

 private:
  struct Tally {
    std::size_t listed = 0;
    std::size_t leftOut = 0;
  };

  const LineTable& lines_;
  std::vector<CFinding> list_;
  std::map<E_FindingCode, Tally> tallies_;
  std::size_t bySeverity_[3] = {};
  std::set<std::string> groupsWithErrors_;
  /// The group of the last error: they come group by group.
  std::string lastGroup_;
};

/// `text` for a sentence: in quotation marks, unprintable characters replaced, shortened.
std::string Quoted(std::string_view text);
/// Shortened and with unprintable characters replaced.
std::string Shortened(std::string_view text);
/// "1 value", "3 values".
std::string Counted(std::size_t count, const std::string& one);
/// The shortest text that reads back as `value`.
std::string NumberText(double value);

}  // namespace Tarvane::Plexura::PXROM::inspection
