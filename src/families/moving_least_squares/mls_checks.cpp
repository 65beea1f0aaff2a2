#include "families/moving_least_squares/mls_checks.h"

#include "pxrom/database_labels.h"
#include "pxrom/moving_least_squares.h"

namespace Tarvane::Plexura::PXROM::inspection {

void CheckMovingLeastSquares(SurfaceText& surface) {
  using Labels = CPXROMDatabaseLabels;
  const GroupText& in = surface.in;
  const Shape& shape = surface.shape;
  const std::optional<int> type = in.Int(Labels::attMLSPolynomialType());
  const std::string& weight = Labels::attMLSWeightFunction();
  if (type == PolyLinear && in.Int(weight) == WeightConstant) {
    in.Report(SeverityError, FindingSurfaceWithoutValue, weight, "0", "1 to 4",
              "a linear basis with the constant weight is refused by every evaluation");
  }
  const std::string& functions = Labels::attMLSNumberOfBasisFunctions();
  std::int64_t p = in.Int(functions).value_or(0);
  const std::int64_t size = BasisSize(type, shape.inputs).value_or(p);
  if (in.Int(functions) && p != size) {
    in.Report(
        SeverityError, FindingCountMismatch, functions, std::to_string(p), std::to_string(size),
        Quoted(functions) + " is " + std::to_string(p) + ", a basis of type " +
            std::to_string(*type) + " in " + InputsOf(shape) + " has " + std::to_string(size));
    p = size;
  }
  const std::string& points = Labels::attMLSNumberOfUsedPoints();
  const std::optional<int> used = in.Int(points);
  if (!used) return;
  if (shape.samples && *used > *shape.samples) {
    in.Report(
        SeverityError, FindingCountMismatch, points, std::to_string(*used),
        std::to_string(*shape.samples) + " or less",
        Quoted(points) + " is " + std::to_string(*used) + ", there are only " + SamplesOf(shape));
  } else if (*used < p) {
    in.Report(SeverityError, FindingCountMismatch, points, std::to_string(*used),
              std::to_string(p) + " or more",
              Quoted(points) + " is " + std::to_string(*used) + ", too few for " +
                  std::to_string(p) + " basis functions");
  }
}

}  // namespace Tarvane::Plexura::PXROM::inspection
