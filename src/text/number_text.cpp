#include "text/number_text.h"

#include <charconv>
#include <cstdint>
#include <limits>
#include <system_error>

#include "text/short_decimal.h"

namespace Tarvane::Plexura::PXROM::reading {

namespace {

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

// As std::isspace in the classic locale.
bool IsBlank(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }

std::string_view WithoutLeadingBlanks(std::string_view text) {
  std::size_t i = 0;
  while (i < text.size() && IsBlank(text[i])) ++i;
  return text.substr(i);
}

bool IsInNumbers(char c) {
  return IsDigit(c) || c == '.' || c == 'e' || c == 'E' || c == '+' || c == '-';
}

// An integer as a stream takes it: sign, digits, the limits of int64 on overflow.
struct Integer {
  bool found = false;
  bool overflow = false;
  std::int64_t value = 0;
};

Integer ReadInteger(std::string_view text) {
  constexpr std::int64_t kMin = std::numeric_limits<std::int64_t>::min();
  constexpr std::int64_t kMax = std::numeric_limits<std::int64_t>::max();
  Integer number;
  std::size_t i = 0;
  const bool negative = !text.empty() && text[0] == '-';
  if (!text.empty() && (text[0] == '-' || text[0] == '+')) ++i;
  for (; i < text.size() && IsDigit(text[i]); ++i) {
    number.found = true;
    if (number.overflow) continue;
    const std::int64_t digit = text[i] - '0';
    // Accumulated as a negative number, whose range is larger by one.
    if (number.value < (kMin + digit) / 10) {
      number.overflow = true;
    } else {
      number.value = number.value * 10 - digit;
    }
  }
  if (!negative && number.value == kMin) number.overflow = true;
  if (number.overflow) {
    number.value = negative ? kMin : kMax;
  } else if (!negative) {
    number.value = -number.value;
  }
  return number;
}

// The characters that a stream would collect for a double: sign, digits with at most one point, and
// after the first digit an exponent letter with its own sign. `complete` says whether they form a
// number; "1e" and "." are collected and then refused as a whole.
struct Collected {
  std::size_t length = 0;
  bool complete = false;
};

Collected Collect(std::string_view text) {
  std::size_t i = 0;
  const auto at = [&](std::size_t k) { return k < text.size() ? text[k] : '\0'; };
  if (at(i) == '-' || at(i) == '+') ++i;
  bool mantissa = false;
  bool point = false;
  for (; IsDigit(at(i)) || (at(i) == '.' && !point); ++i) {
    if (at(i) == '.') {
      point = true;
    } else {
      mantissa = true;
    }
  }
  if (!mantissa) return {i, false};
  if (at(i) != 'e' && at(i) != 'E') return {i, true};
  ++i;
  if (at(i) == '-' || at(i) == '+') ++i;
  const std::size_t exponent = i;
  while (IsDigit(at(i))) ++i;
  return {i, i > exponent};
}

// Whether a number that no double can hold is too large (true) or too small. The decimal exponent
// of its first digit that is not zero decides. `text` is a complete number without a sign.
bool IsTooLarge(std::string_view text) {
  constexpr std::int64_t kFar = std::numeric_limits<std::int64_t>::max() / 4;
  std::int64_t exponent = 0;
  const std::size_t letter = text.find_first_of("eE");
  if (letter != std::string_view::npos) {
    exponent = ReadInteger(text.substr(letter + 1)).value;
    if (exponent > kFar) exponent = kFar;
    if (exponent < -kFar) exponent = -kFar;
    text = text.substr(0, letter);
  }
  const std::size_t point = text.find('.');
  const std::size_t whole = point == std::string_view::npos ? text.size() : point;
  const std::size_t first = text.find_first_not_of("0.");
  if (first == std::string_view::npos) return false;
  const auto place = first < whole ? static_cast<std::int64_t>(whole - first)
                                   : -static_cast<std::int64_t>(first - whole) + 1;
  return place + exponent > 0;
}

double ReadDouble(std::string_view text) {
  const Collected collected = Collect(text);
  if (!collected.complete) return 0.0;
  const bool negative = text[0] == '-';
  if (negative || text[0] == '+') {
    text = text.substr(1, collected.length - 1);
  } else {
    text = text.substr(0, collected.length);
  }
  double value = 0.0;
  const auto result = std::from_chars(text.data(), text.data() + text.size(), value);
  if (result.ec == std::errc::result_out_of_range) {
    value = IsTooLarge(text) ? std::numeric_limits<double>::max() : 0.0;
  }
  return negative ? -value : value;
}

}  // namespace

std::string_view EmptyIfBlank(std::string_view text) noexcept {
  return WithoutLeadingBlanks(text).empty() ? std::string_view() : text;
}

void Extract(std::string_view text, int& target) noexcept {
  text = WithoutLeadingBlanks(text);
  if (text.empty()) return;
  const std::int64_t value = ReadInteger(text).value;
  constexpr int kMin = std::numeric_limits<int>::min();
  constexpr int kMax = std::numeric_limits<int>::max();
  target = value < kMin ? kMin : value > kMax ? kMax : static_cast<int>(value);
}

void Extract(std::string_view text, double& target) noexcept {
  text = WithoutLeadingBlanks(text);
  if (!text.empty()) target = ReadDouble(text);
}

void Extract(std::string_view text, bool& target) noexcept {
  text = WithoutLeadingBlanks(text);
  if (text.empty()) return;
  const Integer number = ReadInteger(text);
  target = number.found && number.value != 0;
}

namespace {

// The double at the front of `text` up to the next `delimiter`, and the number of characters of
// that token. Nearly all tokens that ReadShortDecimal refuses are digits that end at the delimiter.
// std::from_chars reads them in one pass, exactly as a stream would. All other tokens, and those
// with a delimiter that could be part of a number, follow the rules of a stream.
std::size_t ExtractToken(std::string_view text, char delimiter, double& target) noexcept {
  if (!text.empty() && !IsInNumbers(delimiter) &&
      (IsDigit(text[0]) || (text[0] == '-' && text.size() > 1 && IsDigit(text[1])))) {
    const char* const end = text.data() + text.size();
    double value = 0.0;
    const auto result = std::from_chars(text.data(), end, value);
    if (result.ec == std::errc() && (result.ptr == end || *result.ptr == delimiter)) {
      target = value;
      return static_cast<std::size_t>(result.ptr - text.data());
    }
  }
  const std::string_view token = text.substr(0, text.find(delimiter));
  target = 0.0;
  Extract(token, target);
  return token.size();
}

}  // namespace

void ExtractTokens(std::string_view& text, char delimiter, double* values, std::size_t count,
                   const char* readable) noexcept {
  const bool isUsual = !IsInNumbers(delimiter);
  const char* at = text.data();
  const char* const end = at + text.size();
  for (std::size_t i = 0; i < count; ++i) {
    const char* behind = isUsual ? ReadShortDecimal(at, readable, values[i]) : nullptr;
    // A number that goes on after the end was not read as a whole.
    if (behind == nullptr || behind > end || (behind < end && *behind != delimiter)) {
      const std::string_view rest(at, static_cast<std::size_t>(end - at));
      behind = at + ExtractToken(rest, delimiter, values[i]);
    }
    at = behind < end ? behind + 1 : end;
  }
  text.remove_prefix(static_cast<std::size_t>(at - text.data()));
}

}  // namespace Tarvane::Plexura::PXROM::reading
