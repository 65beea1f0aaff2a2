#pragma once

#include <optional>
#include <string>

namespace pxrom_command {

// Numbers of the command line and of the tables, with a decimal point whatever the locale.

/// The whole of `text` as a finite number; a leading plus is taken.
std::optional<double> ParseReal(const std::string& text);
/// The whole of `text` as an integer; a leading plus is taken.
std::optional<int> ParseInteger(const std::string& text);

/// At most `digits` significant digits, without trailing zeros.
std::string Shown(double value, int digits = 6);

/// The fewest digits that read back as the same number.
void AppendShortest(double value, std::string& text);

}  // namespace pxrom_command
