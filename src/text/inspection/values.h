#pragma once

#include <cstddef>
#include <string_view>

namespace Tarvane::Plexura::PXROM::inspection {

/// What is wrong with the text of a number.
enum class Defect {
  None,
  Missing,       ///< blank
  NotANumber,    ///< does not begin with one
  TrailingText,  ///< a number, and then something else
  Overflow,      ///< beyond the type
  Underflow,     ///< not zero, but too small to be anything else
};

/// Reads `text` as the reader does, with 0 for a text without a number, and returns its defect.
/// Blanks before the number, and blanks and a carriage return after it, are not defects.
Defect CheckNumber(std::string_view text, int& value);
Defect CheckNumber(std::string_view text, double& value);

/// The defect in words: "is no number".
const char* WordsOf(Defect defect);

/// A pair as the text has it: the parts between the braces, before and after the semicolon.
struct PairText {
  std::string_view key;
  std::string_view value;
  bool isSound = false;
};

PairText SplitPair(std::string_view token);

/// `text` without blanks and carriage returns at both ends.
std::string_view WithoutBlanks(std::string_view text);

}  // namespace Tarvane::Plexura::PXROM::inspection
