#include "text/attribute_sink.h"

#include <charconv>
#include <cmath>

#include "text/database_text.h"

namespace Tarvane::Plexura::PXROM::writing {

namespace {

// The longest are doubles such as -2.2250738585072014e-308.
constexpr std::size_t kLongestNumber = 24;

template <class Number>
void AppendNumber(std::string& text, Number value) {
  char digits[kLongestNumber];
  const auto result = std::to_chars(std::begin(digits), std::end(digits), value);
  text.append(digits, static_cast<std::size_t>(result.ptr - digits));
}

/// Appends doubles with separators between them. Half of a large triangular matrix are zeros.
class DoubleList {
 public:
  explicit DoubleList(std::string& text) : text_(text) {}
  ~DoubleList() { Flush(); }
  DoubleList(const DoubleList&) = delete;
  DoubleList& operator=(const DoubleList&) = delete;

  void Add(double value) {
    if (static_cast<std::size_t>(buffer_ + sizeof buffer_ - end_) < 1 + kLongestNumber) Flush();
    if (!isFirst_) *end_++ = separator_;
    isFirst_ = false;
    if (value == 0.0 && !std::signbit(value)) {
      *end_++ = '0';
    } else {
      end_ = std::to_chars(end_, buffer_ + sizeof buffer_, value).ptr;
    }
  }

 private:
  void Flush() {
    text_.append(buffer_, static_cast<std::size_t>(end_ - buffer_));
    end_ = buffer_;
  }

  std::string& text_;
  char buffer_[1024];
  char* end_ = buffer_;
  const char separator_ = Labels::strSep()[0];
  bool isFirst_ = true;
};

}  // namespace

void AttributeSink::Append(const std::string&, int value) { AppendNumber(text_, value); }

void AttributeSink::Append(const std::string& key, double value) {
  RequireFinite(key, value);
  AppendNumber(text_, value);
}

void AttributeSink::RequireFinite(const std::string& key, double value) {
  if (!std::isfinite(value)) Refuse(NameOf(key) + " holds a number that is not finite");
}

void AttributeSink::Put(const std::string& key, int value) {
  text_ += key;
  Append(key, value);
  text_ += Labels::strEOL();
}

void AttributeSink::Put(const std::string& key, double value) {
  text_ += key;
  Append(key, value);
  text_ += Labels::strEOL();
}

void AttributeSink::Put(const std::string& key, const std::vector<int>& list) {
  PutJoined(key, list, [&](int value) { Append(key, value); });
}

void AttributeSink::Put(const std::string& key, const std::vector<double>& list) {
  PutRows(key, &list, 1);
}

void AttributeSink::Put(const std::string& key, const std::vector<std::string>& list) {
  PutJoined(key, list, [&](const std::string& value) { Append(key, value); });
}

void AttributeSink::PutMatrix(const std::string& key,
                              const std::vector<std::vector<double>>& matrix, int rows,
                              int columns) {
  const auto isRow = [columns](const std::vector<double>& row) {
    return row.size() == static_cast<std::size_t>(columns);
  };
  if (rows < 0 || columns < 0 || matrix.size() != static_cast<std::size_t>(rows) ||
      !std::all_of(matrix.begin(), matrix.end(), isRow)) {
    return Refuse(NameOf(key) + " is not a matrix of " + std::to_string(rows) + " rows and " +
                  std::to_string(columns) + " columns, as the counts beside it say");
  }
  PutRows(key, matrix.data(), matrix.size());
  if (columns == 0) emptyRows_ = std::max(emptyRows_, matrix.size());
  work_ += reading::WorkOfMatrix(matrix.size(), static_cast<std::size_t>(columns));
}

void AttributeSink::PutRows(const std::string& key, const std::vector<double>* rows,
                            std::size_t count) {
  text_ += key;
  const std::size_t start = text_.size();
  {
    DoubleList list(text_);
    for (std::size_t i = 0; i < count; ++i) {
      for (const double value : rows[i]) {
        RequireFinite(key, value);
        list.Add(value);
      }
    }
  }
  work_ += text_.size() - start;
  text_ += Labels::strEOL();
}

std::size_t AttributeSink::Open(const std::string& word, int id) {
  text_ += id < 0 ? reading::OpeningTag(word) : reading::OpeningTag(word, id);
  const std::size_t body = text_.size();
  text_ += Labels::strEOL();
  return body;
}

void AttributeSink::Close(const std::string& word, std::size_t body) {
  // The range of a group has the "<" of the closing tag as its last character.
  const std::size_t range = text_.size() - body + 1;
  work_ += reading::WorkOfGroup(range);
  if (emptyRows_ > range) {
    Refuse(std::to_string(emptyRows_) + " samples without any input are too many");
  }
  text_ += reading::ClosingTag(word);
  text_ += Labels::strEOL();
}

std::string NameOf(const std::string& key) { return key.substr(0, key.size() - 1); }

std::string Quoted(std::string word) {
  constexpr unsigned char kFirstPrintable = ' ';
  for (char& c : word) {
    if (static_cast<unsigned char>(c) < kFirstPrintable) c = '?';
  }
  return "\"" + word + "\"";
}

bool IsUnset(double value) { return value == 0.0 && !std::signbit(value); }

std::string ReasonAgainst(std::string_view word) {
  const auto holds = [word](std::string_view piece) {
    return word.find(piece) != std::string_view::npos;
  };
  for (const std::string* const separator :
       {&Labels::strSep(), &Labels::strSubSep(), &Labels::strGrpStart(), &Labels::strGrpEnd()}) {
    if (holds(*separator)) return "holds " + Quoted(*separator) + ", which separates values";
  }
  // The reader drops a carriage return before a line end, and keeps it in other places.
  if (holds(Labels::strEOL()) || holds("\r")) return "holds a line end";
  // The reader searches the whole text, so it would take a tag in a name for the group.
  for (const std::string* const tag :
       {&Labels::tagParameterRegistry(), &Labels::tagDiscreteSets(), &Labels::tagFMU()}) {
    for (const std::string& whole : {reading::OpeningTag(*tag), reading::ClosingTag(*tag)}) {
      if (holds(whole)) return "holds the tag " + Quoted(whole);
    }
  }
  const std::string numbered = "<" + Labels::tagPlexuraData() + " " + Labels::attID();
  return holds(numbered) ? "holds the tag " + Quoted(numbered) : "";
}

}  // namespace Tarvane::Plexura::PXROM::writing
