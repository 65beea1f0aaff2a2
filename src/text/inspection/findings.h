#pragma once

#include <cstddef>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "pxrom/findings.h"

namespace Tarvane::Plexura::PXROM::inspection {

/// Lines and columns of a text, both from 1. It keeps one place in a few hundred characters instead
/// of every line, since a text may consist of blank lines.
class LineTable {
 public:
  /// `text` must outlive the table.
  explicit LineTable(std::string_view text);

  std::size_t Count() const { return count_; }
  void Locate(std::size_t offset, std::size_t& line, std::size_t& column) const;

 private:
  struct Place {
    std::size_t line;
    /// Where that line starts.
    std::size_t start;
  };

  std::string_view text_;
  /// The line of the first character of each block.
  std::vector<Place> blocks_;
  std::size_t count_ = 1;
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

  /// Whether no more findings of `code` will be listed. Then a check need not compute their
  /// details.
  bool IsFull(E_FindingCode code) const;
  void Add(E_FindingSeverity severity, E_FindingCode code, Subject subject, std::string sentence);
  /// Counts a finding of a code that is full.
  void Count(E_FindingSeverity severity, E_FindingCode code, const std::string& group) {
    Add(severity, code, {0, group, "", "", ""}, "");
  }
  /// Whether there is an error in `group` or in a group inside it; for "" anywhere.
  bool HasErrorIn(const std::string& group) const;

  /// How many findings of a severity were added, including those that the list leaves out.
  std::size_t NumberOf(E_FindingSeverity severity) const { return bySeverity_[severity]; }
  /// Returns the list in the order of places. The last call.
  std::vector<CFinding> Deliver();

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
  /// The group of the last error, since errors come group by group.
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
