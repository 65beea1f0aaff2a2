#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "model_file.h"

namespace pxrom_command {

/// An input that an evaluation needs: enabled, and neither derived nor an output.
struct Input {
  std::string id;
  bool discrete = false;
  std::string unit;
  double lower = 0.0;
  double upper = 0.0;
  /// The values that the fitted combinations have; for a discrete input.
  std::vector<int> values;

  /// Without bounds both are 0.
  bool HasBounds() const { return lower < upper; }
  /// "L (1 to 2 m)" or "Material (1 or 2)".
  std::string Described() const;
  /// "1 to 2 m", or empty without bounds.
  std::string Bounds() const;
};

/// The inputs by registration rank.
std::vector<Input> InputsOf(const Model& model);

/// "disabled input", "derived input", "discrete input", "continuous input", "output" ...
std::string KindOf(const Model& model, const std::string& id);
/// Empty if the database has none.
std::string CaptionOf(const Model& model, const std::string& id);
std::string UnitOf(const Model& model, const std::string& id);

/// "Material=1, Holes=2; Material=1, Holes=4": the first of the fitted combinations, in the order
/// of their values, and how many more there are.
std::string FittedCombinations(const Model& model);
/// A combination in words is cut after so many bytes.
constexpr std::size_t kLongestCombination = 1000;

}  // namespace pxrom_command
