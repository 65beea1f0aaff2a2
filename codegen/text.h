#pragma once

#include <set>
#include <stdexcept>
#include <string>
#include <vector>

namespace pxrom_codegen {

/// Why a model cannot be written, in one sentence.
struct Refused : std::runtime_error {
  using std::runtime_error::runtime_error;
};

using Pieces = std::set<std::string>;

/// The parts of the C text that `pieces` name, with the numbers and functions of float or double.
std::string SelectPieces(const std::string& text, const Pieces& pieces, bool isFloat);

/// A number as a constant of C: the fewest digits that read back as the same number.
std::string Literal(double value);
std::string Literal(float value);

/// Text from a model as a part of a comment: printable, on one line, without the end of a comment.
std::string InComment(const std::string& text);

/// `text` in upper case as a part of an identifier: A-Z, 0-9 and _.
std::string UpperName(const std::string& text);

/// Names for `ids` that are identifiers in upper case and differ from each other.
std::vector<std::string> UpperNames(const std::vector<std::string>& ids);

bool IsName(const std::string& text);

/// The pieces of C, in their order.
const std::vector<std::string>& RuntimeTexts();
/// The functions of FMI: what both versions share, 2.0, 3.0.
const std::vector<std::string>& FmiTexts();

}  // namespace pxrom_codegen
