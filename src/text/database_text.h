#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

#include "pxrom/database_labels.h"
#include "text/number_text.h"
#include "text/tag_index.h"
#include "text/tokens.h"

namespace Tarvane::Plexura::PXROM::reading {

/// Short for the table of words.
using Labels = CPXROMDatabaseLabels;

/// A piece of a text: `lower` its first character; `upper` its last character, which for the body
/// of a group is the "<" of the closing tag.
struct Bounds {
  std::size_t lower = 0;
  std::size_t upper = 0;
};

/// The opening tags "<word>" and "<word ID=n>".
std::string OpeningTag(const std::string& word);
std::string OpeningTag(const std::string& word, int id);
std::string ClosingTag(const std::string& word);

/// The view of `text` from `lower` to `upper` inclusive; npos means to the end. Throws
/// std::out_of_range when `lower` is after the text's end.
std::string_view ViewOf(std::string_view text, std::size_t lower, std::size_t upper);

/// The line that begins at `position`, without its end.
std::string_view RestOfLine(std::string_view text, std::size_t position);

/// The number of lines of `range` that hold `key`.
std::size_t CountLinesWith(std::string_view range, const std::string& key);

/// Work is counted in bytes, see DatabaseText::Charge: how much a text of `length` characters may
/// need, how much a group of `characters` counts, how much each use of a group, and how much a
/// matrix in addition to the text of its values.
std::size_t WorkAllowedFor(std::size_t length);
std::size_t WorkOfGroup(std::size_t characters);
std::size_t WorkOfList();
std::size_t WorkOfMatrix(std::size_t rows, std::size_t columns);

/// The places of the characters that searches stop at, in ascending order.
struct Marks {
  /// Every key ends in one.
  std::vector<std::size_t> equalSigns;
  /// What begins every tag.
  std::vector<std::size_t> brackets;
};

/// The marks of `text` from `lower` to the one before `end`, as places in the whole text.
Marks FindMarks(std::string_view text, std::size_t lower, std::size_t end);

/// The text of one database while it is read: a view, an index of its tags and keys, and a count of
/// the work so far. It exists for one Resume call and is not shared.
class DatabaseText {
 public:
  /// `text` must outlive the object and not change.
  explicit DatabaseText(std::string_view text);

  std::string_view View() const { return text_; }

  /// Lists the places of all tags and keys in one pass, so that later searches need not walk
  /// through the text. The results of a search are the same without it.
  void Index();
  /// The marks of the whole text; null before Index.
  const Marks* AllMarks() const { return indexed_ ? &marks_ : nullptr; }
  /// Where the last range began among the equal signs of the whole text: the next one is near.
  std::size_t& LastEqualSign() { return lastEqualSign_; }

  /// The body of the first group that opens at or after `from`. 1 when the body is empty or ends
  /// before it starts, else 0.
  ///
  /// Deliberate (group-search-untested): there is no test that either tag was found, and positions
  /// wrap as unsigned sums do. This decides what a damaged text means, so the arithmetic stays.
  int SearchBounds(const std::string& opening, const std::string& closing, std::size_t from,
                   Bounds& bounds) const;
  /// The body of group `id` inside `outer`, with the search of SearchBounds. False when it begins
  /// outside `outer`: then nothing was found. A body whose closing tag is missing or lies after
  /// `outer` still counts.
  bool FindGroupInside(const std::string& word, int id, const Bounds& outer, Bounds& bounds) const;

  /// Adds `bytes` to the work: text that was searched or memory that was taken. False once the sum
  /// is above the limit for a text of this length (CReaderPXROMDatabase). Damaged groups can
  /// overlap, so the length of the text alone doesn't bound the work.
  bool Charge(std::size_t bytes);
  bool IsExhausted() const { return charged_ > limit_; }

 private:
  std::size_t Find(std::string_view tag, std::size_t from) const;

  std::string_view text_;
  std::size_t charged_ = 0;
  std::size_t limit_ = 0;
  bool indexed_ = false;
  Marks marks_;
  TagIndex tags_;
  std::size_t lastEqualSign_ = 0;
};

/// The attributes of one group: finds a key's first place in the range and converts its value. It
/// works on views, copies nothing, and searches the text once for all keys.
///
/// Scalars do not change when the key is missing or its value is blank; lists are always replaced.
/// Once the text is exhausted nothing is found any more. A loop over groups tests
/// DatabaseText::IsExhausted and gives up with status 1.
class AttributeRange {
 public:
  AttributeRange(DatabaseText& text, Bounds bounds) : text_(text), bounds_(bounds) {}
  AttributeRange(const AttributeRange&) = delete;
  AttributeRange& operator=(const AttributeRange&) = delete;

  DatabaseText& Text() { return text_; }
  const Bounds& Range() const { return bounds_; }

  /// The value after the first `key`, to the end of its line or of the range.
  ///
  /// Deliberate (first-match-wins): the first place counts, also inside a longer key. A text has to
  /// hold its keys in the order of the format.
  bool Find(const std::string& key, std::string_view& value);

  void Catch(const std::string& key, int& target) { CatchScalar(key, target); }
  void Catch(const std::string& key, double& target) { CatchScalar(key, target); }
  void Catch(const std::string& key, bool& target) { CatchScalar(key, target); }

  /// A list of double, int or std::string.
  template <class Value>
  void Catch(const std::string& key, std::vector<Value>& target) {
    if constexpr (std::is_same_v<Value, double>) {
      Tokenize(ListValue(key), Labels::strSep()[0], target, EndOfText());
    } else {
      Tokenize(ListValue(key), Labels::strSep()[0], target);
    }
  }

  /// A list of pairs from std::string to double, int or std::string.
  template <class Value>
  void Catch(const std::string& key, std::vector<std::pair<std::string, Value>>& target) {
    TokenizePairs(ListValue(key), Labels::strSep()[0], Labels::strSubSep()[0], target);
  }

  /// The int attribute `key` as an enumeration, without a check; 0 when the key is missing.
  template <class Enum>
  Enum CatchEnum(const std::string& key) {
    int number = 0;
    Catch(key, number);
    return static_cast<Enum>(number);
  }

  /// A matrix, stored flat by rows. 1 with `target` untouched when a count is negative, when the
  /// list holds fewer than rows * columns values, or when rows of no columns outnumber the
  /// characters of the range. Values beyond are ignored.
  [[nodiscard]] int CatchMatrix(const std::string& key, int rows, int columns,
                                std::vector<std::vector<double>>& target);

 private:
  template <class Scalar>
  void CatchScalar(const std::string& key, Scalar& target) {
    std::string_view value;
    if (Find(key, value)) Extract(value, target);
  }
  std::string_view ListValue(const std::string& key);
  const char* EndOfText() const { return text_.View().data() + text_.View().size(); }
  void LookThrough();
  /// The end of the line, or of the range, at or after `from`.
  std::size_t LineEnd(std::size_t from);

  /// Some of the marks, from the first to the one before the last.
  struct Places {
    const std::size_t* first = nullptr;
    const std::size_t* last = nullptr;
  };
  Places EqualSignsInside() const;

  DatabaseText& text_;
  Bounds bounds_;
  bool lookedThrough_ = false;
  // The range as places in the text: its first character and the place after its last one.
  std::size_t begin_ = 0;
  std::size_t end_ = 0;
  const Marks* marks_ = nullptr;
  Marks ownMarks_;
  // The equal signs of the range.
  Places equalSigns_;
  // The piece of a line that the last search found.
  std::size_t lineFrom_ = 1;
  std::size_t lineEnd_ = 0;
};

}  // namespace Tarvane::Plexura::PXROM::reading
