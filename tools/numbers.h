#pragma once

#include <optional>
#include <string>

namespace pxrom_command {

// Numbers of the command line and of the tables, with a decimal point in any locale.

/// All of `text` as a finite number; a leading plus is accepted.
std::optional<double> ParseReal(const std::string& text);
/// All of `text` as an integer; a leading plus is accepted.
std::optional<int> ParseInteger(const std::string& text);

/// At most `digits` significant digits, without trailing zeros.
std::string Shown(double value, int digits = 6);

/// The fewest digits that read back as the same number.
void AppendShortest(double value, std::string& text);

}  // namespace pxrom_command
