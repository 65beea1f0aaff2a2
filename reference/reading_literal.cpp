#include "reference/reading_literal.h"

#include <locale>
#include <sstream>

namespace literal {

namespace {

template <class Target>
void ExtractFromStream(const std::string& text, Target& target) {
  std::stringstream stream;
  stream.imbue(std::locale::classic());
  stream << text;
  stream >> target;
}

template <class Visit>
void ForEachLine(const std::string& text, char delimiter, Visit visit) {
  std::stringstream stream(text);
  std::string token;
  while (std::getline(stream, token, delimiter)) visit(token);
}

void SplitPair(const std::string& inner, char delimiter, std::string& key, std::string& value) {
  const std::size_t at = inner.find(delimiter);
  key = inner.substr(0, at);
  value = inner.substr(at + 1);
}

template <class Value>
std::vector<std::pair<std::string, Value>> TokenizePairs(const std::string& text,
                                                         char pairDelimiter, char innerDelimiter) {
  std::vector<std::pair<std::string, Value>> pairs;
  ForEachLine(text, pairDelimiter, [&](const std::string& token) {
    std::string key;
    std::string valueText;
    SplitPair(token.substr(1, token.size() - 2), innerDelimiter, key, valueText);
    Value value{};
    ExtractFromStream(valueText, value);
    pairs.emplace_back(key, value);
  });
  return pairs;
}

std::string Range(const std::string& text, std::size_t lower, std::size_t upper) {
  return text.substr(lower, upper == std::string::npos ? upper : upper - lower + 1);
}

}  // namespace

void Extract(const std::string& text, int& target) { ExtractFromStream(text, target); }
void Extract(const std::string& text, double& target) { ExtractFromStream(text, target); }
void Extract(const std::string& text, bool& target) { ExtractFromStream(text, target); }

std::vector<double> TokenizeDouble(const std::string& text, char delimiter) {
  std::vector<double> values;
  ForEachLine(text, delimiter, [&](const std::string& token) {
    double value = 0.0;
    ExtractFromStream(token, value);
    values.push_back(value);
  });
  return values;
}

std::vector<int> TokenizeInt(const std::string& text, char delimiter) {
  std::vector<int> values;
  int value = 0;
  ForEachLine(text, delimiter, [&](const std::string& token) {
    ExtractFromStream(token, value);
    values.push_back(value);
  });
  return values;
}

std::vector<std::string> TokenizeString(const std::string& text, char delimiter) {
  std::vector<std::string> values;
  ForEachLine(text, delimiter, [&](const std::string& token) { values.push_back(token); });
  if (values.empty()) return values;
  for (const char* lineEnd : {"\n", "\r"}) {
    const std::size_t at = values.back().find(lineEnd);
    if (at != std::string::npos) values.back().erase(at, 1);
  }
  return values;
}

std::vector<std::pair<std::string, double>> TokenizePairStringDouble(const std::string& text,
                                                                     char pairDelimiter,
                                                                     char innerDelimiter) {
  return TokenizePairs<double>(text, pairDelimiter, innerDelimiter);
}

std::vector<std::pair<std::string, int>> TokenizePairStringInt(const std::string& text,
                                                               char pairDelimiter,
                                                               char innerDelimiter) {
  return TokenizePairs<int>(text, pairDelimiter, innerDelimiter);
}

std::vector<std::pair<std::string, std::string>> TokenizePairStringString(const std::string& text,
                                                                          char pairDelimiter,
                                                                          char innerDelimiter) {
  std::vector<std::pair<std::string, std::string>> pairs;
  ForEachLine(text, pairDelimiter, [&](const std::string& token) {
    const std::size_t open = token.find('{');
    const std::size_t close = token.find('}');
    std::string key;
    std::string value;
    SplitPair(token.substr(open + 1, close - open - 1), innerDelimiter, key, value);
    pairs.emplace_back(key, value);
  });
  return pairs;
}

int SearchBounds(const std::string& text, const std::string& opening, const std::string& closing,
                 std::size_t from, std::size_t& start, std::size_t& end) {
  start = text.find(opening, from) + opening.size();
  end = text.find(closing, start);
  return end <= start ? 1 : 0;
}

int SearchBounds(const std::string& text, const std::string& opening, const std::string& closing,
                 std::size_t from, std::size_t upper, std::size_t& start, std::size_t& end) {
  const int status = SearchBounds(text, opening, closing, from, start, end);
  return status != 0 || end > upper ? 1 : 0;
}

bool CatchKeyValue(const std::string& text, const std::string& key, std::string& value,
                   std::size_t lower, std::size_t upper) {
  const std::string range = Range(text, lower, upper);
  std::size_t at = range.find(key);
  if (at == std::string::npos) return false;
  at += key.size();
  const std::size_t lineEnd = range.find("\n", at);
  value = range.substr(at, lineEnd == std::string::npos ? lineEnd : lineEnd - at);
  return true;
}

std::size_t CountAttribute(const std::string& text, const std::string& key, std::size_t lower,
                           std::size_t upper) {
  const std::string range = Range(text, lower, upper);
  std::size_t count = 0;
  std::size_t position = 0;
  while ((position = range.find(key, position)) != std::string::npos) {
    ++count;
    position = range.find("\n", position);
    if (position == std::string::npos) break;
  }
  return count;
}

}  // namespace literal
