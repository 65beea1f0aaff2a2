#include "text/inspection/group_text.h"

#include <algorithm>
#include <charconv>

#include "pxrom/database_labels.h"
#include "text/inspection/suggestion.h"
#include "text/number_text.h"
#include "text/tokens.h"

namespace Tarvane::Plexura::PXROM::inspection {

namespace {

constexpr std::size_t kNowhere = std::string_view::npos;
constexpr std::size_t kLongestKey = 64;
const char kSeparator = ',';

using fields::Form;
using fields::Key;
using fields::Need;

bool IsScalar(Form form) {
  return form == Form::Int || form == Form::Double || form == Form::Bool || form == Form::Flag;
}

bool IsList(Form form) { return !IsScalar(form) && form != Form::Line && form != Form::Unread; }

// Reads one element of a list. Most are digits up to the separator, for which there is a fast path.
template <class Number>
Defect CheckElement(std::string_view list, std::size_t& length, Number& value) {
  const char* const end = list.data() + list.size();
  const char first = list.size() > 1 && list[0] == '-' ? list[1] : list.empty() ? '\0' : list[0];
  if (first >= '0' && first <= '9') {
    const auto result = std::from_chars(list.data(), end, value);
    if (result.ec == std::errc() && (result.ptr == end || *result.ptr == kSeparator)) {
      length = static_cast<std::size_t>(result.ptr - list.data());
      return Defect::None;
    }
  }
  length = std::min(list.find(kSeparator), list.size());
  return CheckNumber(list.substr(0, length), value);
}

}  // namespace

GroupText::GroupText(std::string_view text, const Outline& outline, const Group& group,
                     std::vector<const KeyTable*> tables, const Vocabulary& vocabulary,
                     Findings& findings)
    : text_(text),
      outline_(outline),
      group_(group),
      path_(outline.PathOf(group)),
      tables_(std::move(tables)),
      vocabulary_(vocabulary),
      findings_(findings) {
  ScanLines();
  ScanCaught();
  for (Entry& entry : entries_) CheckForm(entry);
}

void GroupText::ScanLines() {
  auto child = group_.children.begin();
  std::size_t at = group_.lower;
  while (at < group_.upper) {
    if (child != group_.children.end() && at >= outline_.At(*child).tag) {
      at = std::max(at, outline_.At(*child).end);
      ++child;
      continue;
    }
    const std::size_t limit =
        child == group_.children.end() ? group_.upper : outline_.At(*child).tag;
    const std::size_t lineEnd = std::min(text_.find('\n', at), limit);
    ScanLine(at, lineEnd);
    at = lineEnd == limit ? limit : lineEnd + 1;
  }
}

void GroupText::ScanLine(std::size_t lower, std::size_t upper) {
  while (lower < upper && (text_[lower] == ' ' || text_[lower] == '\t')) ++lower;
  const std::string_view line = View(lower, upper - lower);
  if (WithoutBlanks(line).empty() || line.front() == '<' || line.front() == '>') return;
  const std::size_t equals = line.substr(0, kLongestKey).find('=');
  if (equals == kNowhere) {
    ReportAt(lower, SeverityWarning, FindingStrayText, "", Shortened(WithoutBlanks(line)), "",
             Quoted(WithoutBlanks(line)) + " is neither a tag nor a key with its value");
    return;
  }
  const std::string_view label = line.substr(0, equals + 1);
  for (const KeyTable* table : tables_) {
    for (const Key& fact : *table) {
      if (fact.label() != label) continue;
      Entry entry;
      entry.fact = &fact;
      entry.key = lower;
      entry.value = lower + label.size();
      entry.length = upper - entry.value;
      const Entry* const first = Find(fact.label());
      if (first == nullptr) {
        entries_.push_back(entry);
      } else if (fact.form != Form::Line) {
        const bool isSame = View(first->value, first->length) == View(entry.value, entry.length);
        ReportAt(lower, isSame ? SeverityWarning : SeverityError, FindingKeyTwice, fact.label(),
                 Shortened(View(entry.value, entry.length)),
                 Shortened(View(first->value, first->length)),
                 Quoted(fact.label()) + " is given a second time" +
                     (isSame ? "" : " with another value") + "; the first is used");
      }
      return;
    }
  }
  for (const Key& fact : vocabulary_.unread) {
    if (fact.label() == label) return;
  }
  unknown_.push_back({lower, label.size()});
}

// The reader searches the letters of a key anywhere in the group's range, including the groups
// inside it, and takes the first place.
void GroupText::ScanCaught() {
  std::vector<const Key*> open;
  for (const KeyTable* table : tables_) {
    for (const Key& fact : *table) {
      if (fact.form != Form::Unread) open.push_back(&fact);
    }
  }
  const std::string_view range = text_.substr(group_.lower, group_.upper - group_.lower);
  for (std::size_t at = range.find('='); at != kNowhere && !open.empty();
       at = range.find('=', at + 1)) {
    const std::size_t behind = at + 1;
    const char before = at > 0 ? range[at - 1] : '=';
    if (before == '=') continue;
    const auto isHere = [&](const Key* fact) {
      const std::string& label = fact->label();
      return label[label.size() - 2] == before && behind >= label.size() &&
             range.compare(behind - label.size(), label.size(), label) == 0;
    };
    for (auto fact = open.begin(); fact != open.end();) {
      if (!isHere(*fact)) {
        ++fact;
        continue;
      }
      const std::string& label = (*fact)->label();
      const std::size_t offset = group_.lower + behind - label.size();
      const Entry* const entry = Find(label);
      if (entry == nullptr || entry->key != offset) {
        caught_.push_back(&label);
        const std::size_t lineStart = text_.rfind('\n', offset) + 1;
        const std::size_t lineEnd = std::min(text_.find('\n', offset), text_.size());
        const std::string_view line = View(lineStart, lineEnd - lineStart);
        ReportAt(offset, SeverityError, FindingKeyCaught, label, Shortened(line), "",
                 Quoted(label) + " is read from here, inside of " + Quoted(line) +
                     (entry == nullptr ? "; the group has no line of its own for it"
                                       : ", and not from its own line"));
      }
      fact = open.erase(fact);
    }
  }
}

void GroupText::CheckForm(Entry& entry) {
  switch (entry.fact->form) {
    case Form::Int:
    case Form::Double:
    case Form::Bool:
    case Form::Flag:
      return CheckScalar(entry);
    case Form::Ints:
      return CheckList<int>(entry);
    case Form::Doubles:
    case Form::Matrix:
      return CheckList<double>(entry);
    case Form::IntPairs:
    case Form::DoublePairs:
    case Form::StringPairs:
      return CheckPairs(entry);
    case Form::Strings: {
      const std::string_view value = View(entry.value, entry.length);
      entry.count = reading::CountTokens(reading::EmptyIfBlank(value), kSeparator);
      // The range that the reader takes ends with the "<" of the tag.
      if (entry.value + entry.length == group_.upper) {
        entry.isSound = false;
        ReportAt(group_.upper, SeverityError, FindingValueTrailingText, entry.fact->label(), "",
                 "a line end",
                 Quoted(entry.fact->label()) +
                     " needs a line end before the closing tag, whose first "
                     "character is read with the last value");
      }
      return;
    }
    case Form::Line:
    case Form::Unread:
      return;
  }
}

void GroupText::CheckScalar(Entry& entry) {
  const std::string_view value = View(entry.value, entry.length);
  Defect defect = Defect::None;
  if (entry.fact->form == Form::Double) {
    defect = CheckNumber(value, entry.number);
  } else {
    int number = 0;
    defect = CheckNumber(value, number);
    entry.number = number;
    if (defect == Defect::None) CheckRange(entry, number);
  }
  entry.count = defect == Defect::Missing ? 0 : 1;
  // Whether a blank is a defect depends on whether the key is needed: see Require.
  if (defect == Defect::Missing) entry.isSound = false;
  if (defect != Defect::None && defect != Defect::Missing) {
    ReportDefect(entry, defect, entry.value, value);
  }
}

void GroupText::CheckRange(const Entry& entry, int value) const {
  const Key& fact = *entry.fact;
  if (value < fact.range.least || value > fact.range.most) {
    const bool isCount = fact.range.least == 0 && fact.range.most == fields::Range().most;
    const std::string expected =
        isCount ? "0 or more"
                : std::to_string(fact.range.least) + " to " + std::to_string(fact.range.most);
    ReportAt(entry.value, SeverityError, FindingValueOutOfRange, fact.label(),
             std::to_string(value), expected,
             Quoted(fact.label()) + " is " + std::to_string(value) + ", it has to be " + expected);
  }
  const auto& known = fact.versions;
  if (known[0] != 0 && value != known[0] && value != known[1]) {
    const std::string expected =
        std::to_string(known[0]) + (known[0] == known[1] ? "" : " or " + std::to_string(known[1]));
    ReportAt(entry.value, fact.refusesVersions ? SeverityError : SeverityWarning,
             FindingVersionUnknown, fact.label(), std::to_string(value), expected,
             Quoted(fact.label()) + " is " + std::to_string(value) + ", known is " + expected);
  }
}

template <class Number>
void GroupText::CheckList(Entry& entry) {
  std::string_view list = reading::EmptyIfBlank(View(entry.value, entry.length));
  std::size_t offset = entry.value;
  while (!list.empty()) {
    Number value = 0;
    std::size_t length = 0;
    const Defect defect = CheckElement(list, length, value);
    if (defect != Defect::None) ReportDefect(entry, defect, offset, list.substr(0, length));
    if (value == 0 && defect == Defect::None && !entry.firstZero) entry.firstZero = entry.count;
    ++entry.count;
    const std::size_t step = std::min(length + 1, list.size());
    list.remove_prefix(step);
    offset += step;
  }
}

void GroupText::CheckPairs(Entry& entry) {
  const std::string_view value = reading::EmptyIfBlank(View(entry.value, entry.length));
  std::size_t offset = entry.value;
  reading::ForEachToken(value, kSeparator, [&](std::string_view token) {
    const PairText pair = SplitPair(token);
    if (!pair.isSound) {
      entry.isSound = false;
      ReportAt(offset, SeverityError, FindingPairMalformed, entry.fact->label(), Shortened(token),
               "{key;value}", Quoted(token) + " is no pair of the form {key;value}");
    } else if (entry.fact->form != Form::StringPairs) {
      double real = 0.0;
      int integer = 0;
      const Defect defect = entry.fact->form == Form::DoublePairs
                                ? CheckNumber(pair.value, real)
                                : CheckNumber(pair.value, integer);
      if (defect != Defect::None) ReportDefect(entry, defect, offset, pair.value);
    }
    ++entry.count;
    offset += token.size() + 1;
  });
}

void GroupText::ReportDefect(Entry& entry, Defect defect, std::size_t offset,
                             std::string_view token) {
  static constexpr E_FindingCode kCodes[] = {
      FindingValueMissing,      FindingValueMissing,  FindingValueNotANumber,
      FindingValueTrailingText, FindingValueOverflow, FindingValueOverflow,
  };
  const E_FindingCode code = kCodes[static_cast<std::size_t>(defect)];
  entry.isSound = false;
  const std::string& label = entry.fact->label();
  const E_FindingSeverity severity = defect == Defect::Underflow ? SeverityWarning : SeverityError;
  // The place and the words are not needed if the finding is only counted.
  if (findings_.IsFull(code)) return findings_.Count(severity, code, path_);
  token = WithoutBlanks(token);
  ReportAt(offset, severity, code, label, Shortened(token), "a number",
           (IsList(entry.fact->form) ? "value " + std::to_string(entry.count + 1) + " of " : "") +
               Quoted(label) + (token.empty() ? " " : ", " + Quoted(token) + ", ") +
               WordsOf(defect));
}

const GroupText::Entry* GroupText::Find(const std::string& label) const {
  const auto entry = std::find_if(entries_.begin(), entries_.end(),
                                  [&](const Entry& e) { return e.fact->label() == label; });
  return entry == entries_.end() ? nullptr : &*entry;
}

std::size_t GroupText::OffsetOf(const std::string& label) const {
  const Entry* const entry = Find(label);
  return entry == nullptr ? group_.tag : entry->value;
}

std::string_view GroupText::TextOf(const std::string& label) const {
  const Entry* const entry = Find(label);
  return entry == nullptr ? std::string_view() : View(entry->value, entry->length);
}

std::optional<int> GroupText::Int(const std::string& label) const {
  const Entry* const entry = Find(label);
  if (entry == nullptr || !entry->isSound) return std::nullopt;
  return static_cast<int>(entry->number);
}

std::optional<double> GroupText::Double(const std::string& label) const {
  const Entry* const entry = Find(label);
  if (entry == nullptr || !entry->isSound) return std::nullopt;
  return entry->number;
}

bool GroupText::Bool(const std::string& label) const {
  const Entry* const entry = Find(label);
  return entry != nullptr && entry->number != 0.0;
}

std::optional<std::size_t> GroupText::Length(const std::string& label) const {
  const Entry* const entry = Find(label);
  if (entry == nullptr) return std::nullopt;
  return entry->count;
}

std::optional<std::size_t> GroupText::FirstZero(const std::string& label) const {
  const Entry* const entry = Find(label);
  return entry == nullptr ? std::nullopt : entry->firstZero;
}

std::vector<int> GroupText::Ints(const std::string& label) const {
  std::vector<int> values;
  reading::Tokenize(reading::EmptyIfBlank(TextOf(label)), kSeparator, values);
  return values;
}

std::vector<double> GroupText::Doubles(const std::string& label) const {
  std::vector<double> values;
  reading::Tokenize(reading::EmptyIfBlank(TextOf(label)), kSeparator, values);
  return values;
}

std::vector<std::string> GroupText::Strings(const std::string& label) const {
  std::vector<std::string> values;
  reading::Tokenize(reading::EmptyIfBlank(TextOf(label)), kSeparator, values);
  return values;
}

std::vector<Pair> GroupText::Pairs(const std::string& label) const {
  std::vector<Pair> pairs;
  std::size_t offset = OffsetOf(label);
  reading::ForEachToken(
      reading::EmptyIfBlank(TextOf(label)), kSeparator, [&](std::string_view token) {
        const PairText text = SplitPair(token);
        if (text.isSound) {
          Pair pair{std::string(text.key), std::string(text.value), 0.0, 0, offset};
          reading::Extract(text.value, pair.number);
          reading::Extract(text.value, pair.integer);
          pairs.push_back(std::move(pair));
        }
        offset += token.size() + 1;
      });
  return pairs;
}

std::size_t GroupText::OffsetOfElement(const std::string& label, std::size_t index) const {
  const std::string_view list = TextOf(label);
  std::size_t at = 0;
  for (; index > 0; --index) {
    const std::size_t next = list.find(kSeparator, at);
    if (next == kNowhere) break;
    at = next + 1;
  }
  return OffsetOf(label) + at;
}

std::size_t GroupText::CountKeysOf(const KeyTable& table) const {
  return static_cast<std::size_t>(std::count_if(
      table.begin(), table.end(), [&](const Key& fact) { return Has(fact.label()); }));
}

void GroupText::Require(const KeyTable& table) {
  for (const Key& fact : table) {
    if (fact.need == Need::Required) Require(fact.label());
  }
}

void GroupText::Require(const std::string& label) { required_.push_back(&label); }

const char* GroupText::PlaceOfUnknownKeys() const {
  for (const Line& line : unknown_) {
    const char* const place = vocabulary_.placeOf(View(line.offset, line.length));
    if (place != nullptr) return place;
  }
  return nullptr;
}

void GroupText::ForgetMisplacedKeys() {
  const auto isMisplaced = [this](const Line& line) {
    return vocabulary_.placeOf(View(line.offset, line.length)) != nullptr;
  };
  unknown_.erase(std::remove_if(unknown_.begin(), unknown_.end(), isMisplaced), unknown_.end());
}

void GroupText::Finish() {
  std::vector<const std::string*> missing;
  for (const std::string* label : required_) {
    const Entry* const entry = Find(*label);
    if (entry != nullptr && entry->count == 0 && IsScalar(entry->fact->form)) {
      Report(SeverityError, FindingValueMissing, *label, "", "a number",
             Quoted(*label) + " has no value");
    }
    if (entry == nullptr && std::find(caught_.begin(), caught_.end(), label) == caught_.end()) {
      missing.push_back(label);
    }
  }
  for (const Line& line : unknown_) ReportUnknown(line, missing);
  for (const std::string* label : missing) {
    if (findings_.IsFull(FindingKeyMissing)) {
      findings_.Count(SeverityError, FindingKeyMissing, path_);
      continue;
    }
    Report(SeverityError, FindingKeyMissing, *label, "", *label,
           Quoted(*label) + " is missing in " + path_);
  }
}

void GroupText::ReportUnknown(const Line& line, std::vector<const std::string*>& missing) const {
  // The search for a suggestion is not needed if the finding is only counted.
  for (const E_FindingCode code : {FindingKeyUnknown, FindingKeyMisplaced}) {
    if (findings_.IsFull(code)) return findings_.Count(SeverityWarning, code, path_);
  }
  const std::string_view typed = View(line.offset, line.length);
  const char* const place = vocabulary_.placeOf(typed);
  const std::string* meant = Nearest(typed, missing);
  // A key of the format counts as a misspelling only of a key that it is a part of.
  if (place != nullptr && meant != nullptr && !IsPartOf(typed, *meant)) meant = nullptr;
  if (meant != nullptr) {
    ReportAt(line.offset, SeverityError, FindingKeyUnknown, Shortened(typed), Shortened(typed),
             *meant,
             Quoted(typed) + " is no key of this group; did you mean " + Quoted(*meant) +
                 ", which is missing?");
    missing.erase(std::find(missing.begin(), missing.end(), meant));
    return;
  }
  if (place != nullptr) {
    ReportAt(line.offset, SeverityWarning, FindingKeyMisplaced, std::string(typed),
             Shortened(typed), "",
             Quoted(typed) + " is not read in this group, it belongs to " + place);
    return;
  }
  std::vector<const std::string*> labels;
  for (const KeyTable* table : tables_) {
    for (const Key& fact : *table) labels.push_back(&fact.label());
  }
  meant = Nearest(typed, labels);
  ReportAt(
      line.offset, SeverityWarning, FindingKeyUnknown, Shortened(typed), Shortened(typed),
      meant == nullptr ? "" : *meant,
      Quoted(typed) + " is no key of this group" +
          (meant == nullptr ? ", nothing reads it" : "; did you mean " + Quoted(*meant) + "?"));
}

void GroupText::Report(E_FindingSeverity severity, E_FindingCode code, const std::string& label,
                       std::string found, std::string expected, std::string sentence) const {
  ReportAt(OffsetOf(label), severity, code, label, std::move(found), std::move(expected),
           std::move(sentence));
}

void GroupText::ReportAt(std::size_t offset, E_FindingSeverity severity, E_FindingCode code,
                         const std::string& label, std::string found, std::string expected,
                         std::string sentence) const {
  findings_.Add(severity, code, {offset, path_, label, std::move(found), std::move(expected)},
                std::move(sentence));
}

bool GroupText::ExpectLength(const std::string& label, std::int64_t expected,
                             const std::string& why) const {
  const std::optional<std::size_t> length = Length(label);
  if (!length || (expected >= 0 && *length == static_cast<std::uint64_t>(expected))) return true;
  const std::string count = std::to_string(expected);
  Report(SeverityError, FindingCountMismatch, label, Counted(*length, "value"), count,
         Quoted(label) + " has " + Counted(*length, "value") + ", " + why + " need " + count);
  return false;
}

}  // namespace Tarvane::Plexura::PXROM::inspection
