#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "text/inspection/findings.h"
#include "text/inspection/outline.h"
#include "text/inspection/values.h"
#include "text/key_facts.h"

namespace Tarvane::Plexura::PXROM::inspection {

using fields::KeyTable;

/// The keys of the format outside the group.
struct Vocabulary {
  /// Keys that are allowed anywhere and that nothing reads.
  const KeyTable& unread;
  /// The kind of group that a key belongs to, in words, or null when the format has no such key.
  const char* (*placeOf)(std::string_view key);
};

/// One pair of a list of pairs.
struct Pair {
  std::string key;
  std::string text;
  /// The value as a real number, and as an integer, which ends at the point or exponent.
  double number = 0.0;
  int integer = 0;
  std::size_t offset = 0;
};

/// The attributes of one group: finds its keys, checks the form of their values, and hands the
/// values to the checks that know their meaning. It reports defects of form itself and does not
/// hand out such values, so that no finding reports what only follows from them.
class GroupText {
 public:
  /// Looks through `group` for the keys of `tables`.
  GroupText(std::string_view text, const Outline& outline, const Group& group,
            std::vector<const KeyTable*> tables, const Vocabulary& vocabulary, Findings& findings);
  /// The text of a group inside this one.
  GroupText Inner(const Group& group, std::vector<const KeyTable*> tables) const {
    return {text_, outline_, group, std::move(tables), vocabulary_, findings_};
  }

  const std::string& Path() const { return path_; }
  const Outline& Groups() const { return outline_; }
  const Group& Self() const { return group_; }
  Findings& Reports() const { return findings_; }

  bool Has(const std::string& label) const { return Find(label) != nullptr; }
  /// Where the key's value begins, or the group's tag when the key is missing.
  std::size_t OffsetOf(const std::string& label) const;
  std::string_view TextOf(const std::string& label) const;

  std::optional<int> Int(const std::string& label) const;
  std::optional<double> Double(const std::string& label) const;
  /// The value as the reader reads it; false when missing.
  bool Bool(const std::string& label) const;
  /// The number of values of a list; none when the key is missing.
  std::optional<std::size_t> Length(const std::string& label) const;
  /// The first value of a list that is zero.
  std::optional<std::size_t> FirstZero(const std::string& label) const;
  std::vector<int> Ints(const std::string& label) const;
  std::vector<double> Doubles(const std::string& label) const;
  std::vector<std::string> Strings(const std::string& label) const;
  /// Malformed pairs are left out.
  std::vector<Pair> Pairs(const std::string& label) const;
  /// The offset of element `index` of a list.
  std::size_t OffsetOfElement(const std::string& label, std::size_t index) const;
  /// How many keys of `table` the group has.
  std::size_t CountKeysOf(const KeyTable& table) const;

  /// Where the first key belongs that the format has but not in this group; null without such a
  /// key.
  const char* PlaceOfUnknownKeys() const;
  /// Drops the keys of other groups, so that Finish does not report them.
  void ForgetMisplacedKeys();

  /// The required ones of these keys have to be there.
  void Require(const KeyTable& table);
  void Require(const std::string& label);
  /// Reports what is missing, unknown or out of place. After all calls of Require.
  void Finish();

  void Report(E_FindingSeverity severity, E_FindingCode code, const std::string& label,
              std::string found, std::string expected, std::string sentence) const;
  void ReportAt(std::size_t offset, E_FindingSeverity severity, E_FindingCode code,
                const std::string& label, std::string found, std::string expected,
                std::string sentence) const;
  /// Reports an error unless the list is missing or has `expected` values; `why` says where that
  /// number comes from. False in case of an error.
  bool ExpectLength(const std::string& label, std::int64_t expected, const std::string& why) const;

 private:
  struct Entry {
    const fields::Key* fact = nullptr;
    std::size_t key = 0;
    std::size_t value = 0;
    std::size_t length = 0;
    bool isSound = true;
    double number = 0.0;
    std::size_t count = 0;
    std::optional<std::size_t> firstZero;
  };
  struct Line {
    std::size_t offset;
    std::size_t length;
  };

  const Entry* Find(const std::string& label) const;
  void ScanLines();
  void ScanLine(std::size_t lower, std::size_t upper);
  void ScanCaught();
  void CheckForm(Entry& entry);
  void CheckScalar(Entry& entry);
  template <class Number>
  void CheckList(Entry& entry);
  void CheckPairs(Entry& entry);
  void CheckRange(const Entry& entry, int value) const;
  void ReportDefect(Entry& entry, Defect defect, std::size_t offset, std::string_view token);
  void ReportUnknown(const Line& line, std::vector<const std::string*>& missing) const;
  std::string_view View(std::size_t offset, std::size_t length) const {
    return text_.substr(offset, length);
  }

  std::string_view text_;
  const Outline& outline_;
  const Group& group_;
  std::string path_;
  std::vector<const KeyTable*> tables_;
  const Vocabulary& vocabulary_;
  Findings& findings_;
  std::vector<Entry> entries_;
  std::vector<Line> unknown_;
  std::vector<const std::string*> required_;
  /// Keys that the reader finds at a place that was not meant for them.
  std::vector<const std::string*> caught_;
};

}  // namespace Tarvane::Plexura::PXROM::inspection
