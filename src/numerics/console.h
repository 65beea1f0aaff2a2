#pragma once

#include <array>
#include <charconv>
#include <cstdio>

/// Writing to the standard output, for the few operations that promise a message.
namespace console {

inline void Print(const char* text) { std::fputs(text, stdout); }

/// `before`, then `value` as "%<width>.<precision>f" writes it in the classic locale, whatever the
/// host's locale is, then `after`. `precision` is at most 9.
inline void PrintFixed(const char* before, double value, int width, int precision,
                       const char* after) {
  std::array<char, 336> digits{};  // the longest double has 309 digits before the point
  const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), value,
                                 std::chars_format::fixed, precision)
                       .ptr;
  std::printf("%s%*.*s%s", before, width, static_cast<int>(end - digits.data()), digits.data(),
              after);
}

}  // namespace console
