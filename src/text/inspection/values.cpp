#include "text/inspection/values.h"

#include <charconv>
#include <system_error>

#include "text/database_text.h"
#include "text/number_text.h"

namespace Tarvane::Plexura::PXROM::inspection {

namespace {

using reading::Labels;

bool IsBlank(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

// Whether `text` begins with digits. std::from_chars also accepts names such as "inf".
bool BeginsWithDigits(std::string_view text) {
  if (!text.empty() && text[0] == '-') text.remove_prefix(1);
  if (!text.empty() && text[0] == '.') text.remove_prefix(1);
  return !text.empty() && IsDigit(text[0]);
}

template <class Number>
Defect Check(std::string_view text, Number& value) {
  value = 0;
  text = WithoutBlanks(text);
  if (text.empty()) return Defect::Missing;
  reading::Extract(text, value);
  if (text[0] == '+' && text.size() > 1 && text[1] != '-') text.remove_prefix(1);
  if (!BeginsWithDigits(text)) return Defect::NotANumber;
  Number parsed = 0;
  const char* const end = text.data() + text.size();
  const auto result = std::from_chars(text.data(), end, parsed);
  if (result.ec == std::errc::invalid_argument) return Defect::NotANumber;
  if (result.ptr != end) {
    // The reader refuses "1e" and "1e+" as a whole and reads 0.
    const char next = *result.ptr;
    const bool isExponent = next == 'e' || next == 'E';
    return !std::is_same_v<Number, int> && isExponent && value == 0 && parsed != 0
               ? Defect::NotANumber
               : Defect::TrailingText;
  }
  if (result.ec == std::errc::result_out_of_range) {
    return value == 0 ? Defect::Underflow : Defect::Overflow;
  }
  return Defect::None;
}

}  // namespace

std::string_view WithoutBlanks(std::string_view text) {
  while (!text.empty() && IsBlank(text.front())) text.remove_prefix(1);
  while (!text.empty() && IsBlank(text.back())) text.remove_suffix(1);
  return text;
}

Defect CheckNumber(std::string_view text, int& value) { return Check(text, value); }

Defect CheckNumber(std::string_view text, double& value) { return Check(text, value); }

const char* WordsOf(Defect defect) {
  switch (defect) {
    case Defect::None:
      return "is sound";
    case Defect::Missing:
      return "is blank";
    case Defect::NotANumber:
      return "is no number";
    case Defect::TrailingText:
      return "has text after the number";
    case Defect::Overflow:
      return "is too large";
    case Defect::Underflow:
      return "is too small and becomes 0";
  }
  return "";
}

PairText SplitPair(std::string_view token) {
  while (!token.empty() && token.back() == '\r') token.remove_suffix(1);
  PairText pair;
  const std::size_t semicolon = token.find(Labels::strSubSep()[0]);
  if (token.size() < 3 || token.front() != Labels::strGrpStart()[0] ||
      token.back() != Labels::strGrpEnd()[0] || semicolon == std::string_view::npos) {
    return pair;
  }
  pair.key = token.substr(1, semicolon - 1);
  pair.value = token.substr(semicolon + 1, token.size() - semicolon - 2);
  pair.isSound = pair.key.find_first_of("{}") == std::string_view::npos &&
                 pair.value.find_first_of("{}") == std::string_view::npos;
  return pair;
}

}  // namespace Tarvane::Plexura::PXROM::inspection
