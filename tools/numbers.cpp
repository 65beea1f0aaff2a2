#include "numbers.h"

#include <array>
#include <charconv>
#include <cmath>
#include <string_view>
#include <system_error>

namespace pxrom_command {

namespace {

template <typename Number>
std::optional<Number> ParseWhole(std::string_view text) {
  if (text.size() > 1 && text[0] == '+' && text[1] != '-') text.remove_prefix(1);
  Number value{};
  const char* const end = text.data() + text.size();
  const auto [behind, error] = std::from_chars(text.data(), end, value);
  if (error != std::errc() || behind != end) return std::nullopt;
  return value;
}

}  // namespace

std::optional<double> ParseReal(const std::string& text) {
  const std::optional<double> value = ParseWhole<double>(text);
  return value.has_value() && std::isfinite(*value) ? value : std::nullopt;
}

std::optional<int> ParseInteger(const std::string& text) { return ParseWhole<int>(text); }

std::string Shown(double value, int digits) {
  std::array<char, 64> buffer{};
  const auto [end, error] = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value,
                                          std::chars_format::general, digits);
  return error == std::errc() ? std::string(buffer.data(), end) : std::string("?");
}

void AppendShortest(double value, std::string& text) {
  std::array<char, 32> buffer{};
  text.append(buffer.data(),
              std::to_chars(buffer.data(), buffer.data() + buffer.size(), value).ptr);
}

}  // namespace pxrom_command
