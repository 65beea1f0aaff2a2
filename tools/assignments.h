#pragma once

#include <string>
#include <utility>
#include <vector>

#include "model_file.h"
#include "parameters.h"

namespace pxrom_command {

/// The point of one evaluation, every input once, by registration rank.
struct Point {
  std::vector<std::pair<std::string, int>> discrete;
  std::vector<std::pair<std::string, double>> continuous;

  /// The key of the point's combination: its discrete values by rank.
  std::vector<int> Combination() const;
  /// "Material=1, Holes=2"; empty without discrete inputs.
  std::string CombinationText() const;
};

/// The point that assignments such as "L=1.5" name, in any order. Refusal at what is no assignment,
/// an unknown name, one that is no input or stands twice, a value of the wrong kind, a missing
/// input and a combination that was not fitted.
Point PointOf(const Model& model, const std::vector<std::string>& assignments);

/// The inputs whose value lies outside its bounds, where the surfaces extrapolate.
std::vector<Input> OutsideBounds(const Model& model, const Point& point);

}  // namespace pxrom_command
