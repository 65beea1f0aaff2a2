#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace Tarvane::Plexura::PXROM::reading {

// Decimal numbers as nearly all lists hold them: up to 19 digits with or without a point, and no
// exponent. The digits are read eight at a time into an integer, which is divided by its power of
// ten and rounded to the nearest double, ties to even: Lemire, Number parsing at a gigabyte per
// second, Software: Practice and Experience 51 (2021). A number whose rounding this leaves open is
// left to std::from_chars.

#if defined(__SIZEOF_INT128__) && defined(__BYTE_ORDER__) && \
    __BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__

namespace short_decimal {

__extension__ using Wide = unsigned __int128;

constexpr std::size_t kWord = 8;
constexpr std::size_t kMostDigits = 19;  // these always fit in 64 bits
/// This many characters must be readable: a sign, digits on both sides of a point, one after them.
constexpr std::size_t kLongest = 2 + 4 * kWord + 1;

/// All of them are exact doubles.
constexpr double kPowers[] = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,  1e8,  1e9,
                              1e10, 1e11, 1e12, 1e13, 1e14, 1e15, 1e16, 1e17, 1e18, 1e19};
constexpr std::uint64_t kWhole[] = {1, 10, 100, 1000, 10000, 100000, 1000000, 10000000, 100000000};

/// 10^-k = bits 2^-exponent, truncated after 64 bits.
struct Reciprocal {
  std::uint64_t bits;
  int exponent;
};
constexpr Reciprocal kReciprocals[] = {
    {0x8000000000000000, 63},  {0xcccccccccccccccc, 67},  {0xa3d70a3d70a3d70a, 70},
    {0x83126e978d4fdf3b, 73},  {0xd1b71758e219652b, 77},  {0xa7c5ac471b478423, 80},
    {0x8637bd05af6c69b5, 83},  {0xd6bf94d5e57a42bc, 87},  {0xabcc77118461cefc, 90},
    {0x89705f4136b4a597, 93},  {0xdbe6fecebdedd5be, 97},  {0xafebff0bcb24aafe, 100},
    {0x8cbccc096f5088cb, 103}, {0xe12e13424bb40e13, 107}, {0xb424dc35095cd80f, 110},
    {0x901d7cf73ab0acd9, 113}, {0xe69594bec44de15b, 117}, {0xb877aa3236a4b449, 120},
    {0x9392ee8e921d5d07, 123}, {0xec1e4a7db69561a5, 127}};

/// How many digits, up to eight, a text begins with; `value` becomes their number.
inline std::size_t TakeDigits(const char* text, std::uint64_t& value) {
  std::uint64_t word = 0;
  std::memcpy(&word, text, kWord);
  word ^= 0x3030303030303030U;  // digits are now 0 to 9, the first one in the lowest byte
  const std::uint64_t others =
      (word | ((word & 0x7f7f7f7f7f7f7f7fU) + 0x7676767676767676U)) & 0x8080808080808080U;
  std::size_t count = kWord;
  if (others != 0) {
    count = static_cast<std::size_t>(__builtin_ctzll(others)) / 8;
    if (count == 0) {
      value = 0;
      return 0;
    }
    word <<= 64 - 8 * count;  // zeros in front
  }
  // Pairs, then fours, then all eight.
  constexpr std::uint64_t kEven = 0x000000ff000000ffU;
  word = word * 10 + (word >> 8);
  value =
      (((word & kEven) * 0x000f424000000064U + ((word >> 16) & kEven) * 0x0000271000000001U) >> 32);
  return count;
}

/// number / 10^places, for a number above 2^53; false if the product does not show which of two
/// doubles is nearer.
inline bool Divide(std::uint64_t number, std::size_t places, double& value) {
  const int zeros = __builtin_clzll(number);
  const Reciprocal& reciprocal = kReciprocals[places];
  const Wide product = static_cast<Wide>(number << zeros) * reciprocal.bits;
  // The highest 64 bits. The exact value is larger by at most 2 and a rest below them.
  std::uint64_t high = static_cast<std::uint64_t>(product >> 64);
  int exponent = 64 + 11 - zeros - reciprocal.exponent;
  if ((high >> 63) == 0) {
    high = static_cast<std::uint64_t>(product >> 63);
    --exponent;
  }
  constexpr std::uint64_t kHalf = std::uint64_t{1} << 10;
  const std::uint64_t rest = high % (2 * kHalf);
  if ((rest >= kHalf - 3 && rest <= kHalf) || rest >= 2 * kHalf - 3) return false;
  const std::uint64_t mantissa = (high >> 11) + (rest > kHalf ? 1 : 0);
  const std::uint64_t powerBits = static_cast<std::uint64_t>(1023 + exponent) << 52;
  double power = 0.0;
  std::memcpy(&power, &powerBits, sizeof power);
  value = static_cast<double>(mantissa) * power;
  return true;
}

}  // namespace short_decimal

/// Reads the number at the front of `text`, which is readable up to `end`, and returns the place
/// after it; null for a number of another form.
inline const char* ReadShortDecimal(const char* text, const char* end, double& value) {
  using namespace short_decimal;
  if (end - text < static_cast<std::ptrdiff_t>(kLongest)) return nullptr;
  const bool isNegative = *text == '-';
  if (isNegative) ++text;
  std::uint64_t number = 0;
  const std::size_t whole = TakeDigits(text, number);
  if (whole == 0 || whole == kWord) return nullptr;
  text += whole;
  std::size_t places = 0;
  if (*text == '.') {
    ++text;
    std::size_t count = 0;
    do {
      std::uint64_t part = 0;
      count = TakeDigits(text, part);
      text += count;
      places += count;
      number = number * kWhole[count] + part;
    } while (count == kWord && places <= 2 * kWord);
    // More digits have made `number` wrap. They are counted, so such a number is refused here.
    if (places == 0 || places >= kMostDigits || whole + places > kMostDigits) return nullptr;
  }
  if (*text == 'e' || *text == 'E' || *text == '.') return nullptr;
  double magnitude = 0.0;
  if (number <= std::uint64_t{1} << 53) {
    // Both are exact doubles, so the quotient is correctly rounded.
    magnitude = static_cast<double>(number) / kPowers[places];
  } else if (!Divide(number, places, magnitude)) {
    return nullptr;
  }
  value = isNegative ? -magnitude : magnitude;
  return text;
}

#else

inline const char* ReadShortDecimal(const char*, const char*, double&) { return nullptr; }

#endif

}  // namespace Tarvane::Plexura::PXROM::reading
