#include "text/attribute_sink.h"

#include <charconv>
#include <cmath>

#include "text/database_text.h"

namespace Tarvane::Plexura::PXROM::writing {

namespace {

template <class Number>
void AppendNumber(std::string& text, Number value) {
  // The longest are doubles such as -2.2250738585072014e-308.
  char digits[32];
  const auto result = std::to_chars(std::begin(digits), std::end(digits), value);
  text.append(digits, static_cast<std::size_t>(result.ptr - digits));
}

}  // namespace

void AttributeSink::Append(const std::string&, int value) { AppendNumber(text_, value); }

void AttributeSink::Append(const std::string& key, double value) {
  if (!std::isfinite(value)) Refuse(NameOf(key) + " holds a number that is not finite");
  AppendNumber(text_, value);
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
  PutJoined(key, list, [&](double value) { Append(key, value); });
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
  text_ += key;
  const std::size_t start = text_.size();
  for (const std::vector<double>& row : matrix) {
    for (const double value : row) {
      if (text_.size() != start) text_ += Labels::strSep();
      Append(key, value);
    }
  }
  if (columns == 0) emptyRows_ = std::max(emptyRows_, matrix.size());
  work_ += text_.size() - start;
  work_ += reading::WorkOfMatrix(matrix.size(), static_cast<std::size_t>(columns));
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
