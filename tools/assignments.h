#pragma once

#include <map>
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

/// The point that assignments such as "L=1.5" name, in any order. Refusal for a text that is not an
/// assignment, a name that is unknown, not an input or repeated, a value of the wrong kind, a
/// missing input and a combination that was not fitted.
Point PointOf(const Model& model, const std::vector<std::string>& assignments);

/// The values of assignments such as "L=1.5", by name and as they were typed. Refusal for a text
/// that is not an assignment, and for a name that is unknown, not one of `inputs` or repeated.
std::map<std::string, std::string> TextsByName(const Model& model, const std::vector<Input>& inputs,
                                               const std::vector<std::string>& assignments);
/// Adds the value of `input` to `point`. Refusal when `text` is of the wrong kind.
void Assign(Point& point, const Input& input, const std::string& text);

/// Orders a point that has each input once as the library does: by rank, and where a damaged
/// database repeats a rank by value.
void SortByRank(const Model& model, Point& point);

/// Refusal when the combination of `point`, which is by rank, was not fitted.
void RequireCombination(const Model& model, const Point& point);
bool IsFitted(const Model& model, const Point& point);

/// The inputs whose value lies outside its bounds, where the surfaces extrapolate.
std::vector<Input> OutsideBounds(const Model& model, const Point& point);

}  // namespace pxrom_command
