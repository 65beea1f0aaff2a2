#include "text/database_text.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <stdexcept>

namespace Tarvane::Plexura::PXROM::reading {

namespace {

constexpr std::size_t kNone = std::string_view::npos;
// A list takes up to four times its text in memory, so a reader takes at most four times these
// limits.
constexpr std::size_t kWorkForAnyText = std::size_t{16} << 20;
constexpr std::size_t kWorkPerCharacter = 16;
// The size of a group's object without its lists.
constexpr std::size_t kGroupOverhead = 512;
// A quarter of the size of a list of candidates that shares its content, with all that owns and
// finds it. The shortest use of a group in a line has six characters, so a text may use one as
// often as its length allows.
constexpr std::size_t kListOverhead = 80;
// The size of a row of a matrix without its values.
constexpr std::size_t kRowOverhead = sizeof(std::vector<double>) + 16;

}  // namespace

std::string OpeningTag(const std::string& word) { return "<" + word + ">"; }

std::string OpeningTag(const std::string& word, int id) {
  return "<" + word + " " + Labels::attID() + std::to_string(id) + ">";
}

std::string ClosingTag(const std::string& word) { return "</" + word + ">"; }

std::string_view ViewOf(std::string_view text, std::size_t lower, std::size_t upper) {
  if (lower > text.size()) throw std::out_of_range("PXROM: a range begins after the text's end");
  // Not `upper - lower + 1` alone: that wraps to nothing for npos and 0.
  return text.substr(lower, upper == kNone ? kNone : upper - lower + 1);
}

std::string_view RestOfLine(std::string_view text, std::size_t position) {
  const std::string_view rest = text.substr(position);
  return rest.substr(0, rest.find(Labels::strEOL()[0]));
}

std::size_t CountLinesWith(std::string_view range, const std::string& key) {
  std::size_t count = 0;
  std::size_t position = range.find(key);
  while (position != kNone) {
    ++count;
    const std::size_t lineEnd = range.find(Labels::strEOL(), position);
    // At least one character on, so that a key that begins with a line end can't be found twice at
    // one place.
    position = lineEnd == kNone ? kNone : range.find(key, std::max(lineEnd, position + 1));
  }
  return count;
}

std::size_t WorkAllowedFor(std::size_t length) {
  return kWorkForAnyText + kWorkPerCharacter * length;
}

std::size_t WorkOfGroup(std::size_t characters) { return characters + kGroupOverhead; }

std::size_t WorkOfList() { return kListOverhead; }

std::size_t WorkOfMatrix(std::size_t rows, std::size_t columns) {
  return rows * (columns * sizeof(double) + kRowOverhead);
}

namespace {

// '<' and '=' differ in the lowest bit only.
bool IsMark(char c) { return (c | 1) == '='; }

/// Whether a mark is among `kCount` characters. Without branches and with a fixed size, so that
/// compilers can vectorise it.
template <std::size_t kCount>
bool HasMark(const char* text) {
  unsigned char any = 0;
  for (std::size_t i = 0; i < kCount; ++i) {
    any = static_cast<unsigned char>(any | (IsMark(text[i]) ? 1 : 0));
  }
  return any != 0;
}

void NoteMark(char c, std::size_t place, Marks& marks) {
  (c == '=' ? marks.equalSigns : marks.brackets).push_back(place);
}

void NoteMarks(std::string_view text, std::size_t first, std::size_t end, Marks& marks) {
  for (std::size_t at = first; at < end; ++at) {
    if (IsMark(text[at])) NoteMark(text[at], at, marks);
  }
}

constexpr std::size_t kCharsOfWord = 8;

#if defined(__BYTE_ORDER__) && __BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__

// Eight characters at once: a byte of `marked` is 0x80 where one of them is a mark.
void NoteMarksOfWord(std::string_view text, std::size_t first, Marks& marks) {
  constexpr std::uint64_t kLow = 0x7f7f7f7f7f7f7f7fU;
  std::uint64_t word = 0;
  std::memcpy(&word, &text[first], kCharsOfWord);
  word = (word | 0x0101010101010101U) ^ 0x3d3d3d3d3d3d3d3dU;
  std::uint64_t marked = ~(((word & kLow) + kLow) | word | kLow);
  for (; marked != 0; marked &= marked - 1) {
    const std::size_t at = first + static_cast<std::size_t>(__builtin_ctzll(marked)) / 8;
    NoteMark(text[at], at, marks);
  }
}

#else

void NoteMarksOfWord(std::string_view text, std::size_t first, Marks& marks) {
  NoteMarks(text, first, first + kCharsOfWord, marks);
}

#endif

}  // namespace

Marks FindMarks(std::string_view text, std::size_t lower, std::size_t end) {
  // Most of a text is long lists of numbers, which hold neither mark.
  constexpr std::size_t kBlock = 64;
  Marks marks;
  if (lower < end) marks.equalSigns.reserve((end - lower) / kBlock);
  std::size_t at = lower;
  for (; at < end && end - at >= kBlock; at += kBlock) {
    if (!HasMark<kBlock>(&text[at])) continue;
    for (std::size_t word = at; word < at + kBlock; word += kCharsOfWord) {
      NoteMarksOfWord(text, word, marks);
    }
  }
  NoteMarks(text, at, end, marks);
  return marks;
}

DatabaseText::DatabaseText(std::string_view text)
    : text_(text), limit_(WorkAllowedFor(text.size())) {}

void DatabaseText::Index() {
  indexed_ = true;
  marks_ = FindMarks(text_, 0, text_.size());
  tags_.Fill(text_, marks_.brackets);
}

std::size_t DatabaseText::Find(std::string_view tag, std::size_t from) const {
  return indexed_ && TagIndex::Covers(tag) ? tags_.Find(tag, from) : text_.find(tag, from);
}

int DatabaseText::SearchBounds(const std::string& opening, const std::string& closing,
                               std::size_t from, Bounds& bounds) const {
  bounds.lower = Find(opening, from) + opening.size();
  bounds.upper = Find(closing, bounds.lower);
  return bounds.upper > bounds.lower ? 0 : 1;
}

bool DatabaseText::FindGroupInside(const std::string& word, int id, const Bounds& outer,
                                   Bounds& bounds) const {
  SearchBounds(OpeningTag(word, id), ClosingTag(word), outer.lower, bounds);
  return bounds.lower >= outer.lower && bounds.lower <= outer.upper;
}

bool DatabaseText::Charge(std::size_t bytes) {
  // The sum stops at one above the limit, so it cannot wrap.
  charged_ = bytes > limit_ - std::min(charged_, limit_) ? limit_ + 1 : charged_ + bytes;
  return !IsExhausted();
}

namespace {

// Most values are a digit or two, for which a call would cost more than the search.
std::size_t FindLineEnd(std::string_view text, std::size_t from) {
  constexpr std::size_t kNear = 8;
  const char lineEnd = Labels::strEOL()[0];
  const std::size_t near = std::min(text.size(), from + kNear);
  for (; from < near; ++from) {
    if (text[from] == lineEnd) return from;
  }
  return text.find(lineEnd, from);
}

}  // namespace

AttributeRange::Places AttributeRange::EqualSignsInside() const {
  const std::vector<std::size_t>& all = marks_->equalSigns;
  std::size_t& near = text_.LastEqualSign();
  const std::size_t first = CountBelow(all.data(), all.size(), begin_, near);
  const std::size_t last = CountBelow(all.data(), all.size(), end_, first);
  if (marks_ == text_.AllMarks()) near = first;
  return {all.data() + first, all.data() + last};
}

void AttributeRange::LookThrough() {
  lookedThrough_ = true;
  const std::string_view view = ViewOf(text_.View(), bounds_.lower, bounds_.upper);
  begin_ = bounds_.lower;
  end_ = begin_ + view.size();
  marks_ = text_.AllMarks();
  // The work of one pass through the range, which each search of a key may need.
  if (!text_.Charge(WorkOfGroup(view.size()))) return;
  if (marks_ == nullptr) {
    ownMarks_ = FindMarks(text_.View(), begin_, end_);
    marks_ = &ownMarks_;
  }
  equalSigns_ = EqualSignsInside();
}

bool AttributeRange::Find(const std::string& key, std::string_view& value) {
  if (!lookedThrough_) LookThrough();
  if (text_.IsExhausted()) return false;
  const std::string_view text = text_.View();
  for (const std::size_t* place = equalSigns_.first; place != equalSigns_.last; ++place) {
    const std::size_t behind = *place + 1;
    if (behind - begin_ < key.size()) continue;
    // Most keys differ in their first character.
    const char* const front = text.data() + (behind - key.size());
    if (!key.empty() && (*front != key[0] || std::memcmp(front, key.data(), key.size()) != 0)) {
      continue;
    }
    value = text.substr(behind, LineEnd(behind) - behind);
    return true;
  }
  return false;
}

// Line ends are not among the marks, since a text of blank lines consists of them. All keys of one
// long line search for its end only once.
std::size_t AttributeRange::LineEnd(std::size_t from) {
  if (from < lineFrom_ || from > lineEnd_) {
    lineFrom_ = from;
    lineEnd_ = std::min(FindLineEnd(text_.View(), from), end_);
  }
  return lineEnd_;
}

std::string_view AttributeRange::ListValue(const std::string& key) {
  std::string_view value;
  if (!Find(key, value) || !text_.Charge(value.size())) return {};
  return EmptyIfBlank(value);
}

int AttributeRange::CatchMatrix(const std::string& key, int rows, int columns,
                                std::vector<std::vector<double>>& target) {
  if (rows < 0 || columns < 0) return 1;
  const auto rowCount = static_cast<std::size_t>(rows);
  const auto columnCount = static_cast<std::size_t>(columns);
  const char separator = Labels::strSep()[0];
  std::string_view list = ListValue(key);
  // Both counts are below 2^31, so their product fits in 64 bits.
  if (std::uint64_t{rowCount} * columnCount > CountTokens(list, separator)) return 1;
  if (columnCount == 0 && rowCount > end_ - begin_) return 1;
  if (!text_.Charge(WorkOfMatrix(rowCount, columnCount))) return 1;
  std::vector<std::vector<double>> matrix(rowCount);
  for (std::vector<double>& row : matrix) {
    row.resize(columnCount);
    ExtractTokens(list, separator, row.data(), columnCount, EndOfText());
  }
  target = std::move(matrix);
  return 0;
}

}  // namespace Tarvane::Plexura::PXROM::reading
