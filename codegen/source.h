#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "codegen/lowering.h"
#include "pxrom/codegen.h"

namespace pxrom_codegen {

/// What is known of an input or output, as the model has it.
struct Variable {
  std::string id;
  std::string name;   ///< in upper case, an identifier
  std::string words;  ///< caption, unit and range, for a comment
  std::string caption;
  std::string unit;
};

struct InputWords : Variable {
  double lower = 0.0;
  double upper = 0.0;
  /// Whether the range is the model's, not that of the samples.
  bool isBounded = false;
  /// The middle of the samples, in the range.
  double middle = 0.0;
  /// The range that the samples of all outputs and combinations have in common; the range above
  /// where the model holds no samples.
  double lowest = 0.0;
  double highest = 0.0;
};

struct OutputWords : Variable {
  /// Whether an error is in the unit of the output.
  bool hasUnitOfError = true;
};

/// A point with the library's answers.
struct TestPoint {
  std::size_t combination = 0;
  std::vector<double> inputs;
  std::vector<double> values;
  std::vector<int> statuses;
  std::vector<double> errors;
  std::vector<int> errorStatuses;
  std::vector<double> gradients;
  std::vector<int> gradientStatuses;
};

/// All that the texts say besides the tables.
struct Interface {
  std::string name;
  std::string upper;
  std::vector<InputWords> inputs;
  std::vector<OutputWords> outputs;
  /// All combinations; of one the code takes no discrete values.
  std::vector<Variable> discrete;
  std::vector<std::vector<int>> keys;
  /// The chosen combination in words; empty for a model without discrete inputs.
  std::string chosen;
  bool errors = false;
  bool gradients = false;
  std::vector<TestPoint> tests;
  double tolerance = 0.0;
  double largestDifference = 0.0;
  std::uint64_t operations = 0;
  std::uint64_t stackBytes = 0;
  std::uint64_t tableBytes = 0;
  std::uint64_t codeBytes = 0;

  bool TakesDiscrete() const { return !discrete.empty(); }
};

/// What GenerateCode does, with what the texts were made of. Throws Refused.
Code GenerateOrThrow(const Tarvane::Plexura::PXROM::CDiscreteCombinations& model,
                     const Options& options, Interface& interface);

/// The pieces that others need.
void AddNeededPieces(Pieces& pieces);

/// The source file without the comment at its start. Sets the bytes of its tables and code.
template <class Real>
std::string SourceText(const Lowered<Real>& model, Interface& interface);

std::string HeaderText(const Interface& interface, bool isFloat);

}  // namespace pxrom_codegen
