#include <cmath>

#include "families/regression/record_parts.h"
#include "families/regression/regression_fields.h"
#include "families/regression/transformers.h"

namespace Tarvane::Plexura::PXROM {

namespace {

using namespace costing;

// A hole of the surface is a back-transformed sum of -9e99. Sums well below that have none.
constexpr double kLargestWithoutHole = 1e80;
// The quantile of Student's t, by bisection and a continued fraction.
constexpr double kQuantile = 10000.0;

/// The sizes of a record's terms.
struct TermSizes {
  double count = 0.0;
  double active = 0.0;
  double variables = 0.0;
  /// How many products a gradient of the terms with more than two variables needs.
  double longProducts = 0.0;
  /// The largest magnitude of the sum, if no variable is larger than the one of AddTerms.
  double reach = 0.0;
};

void AddTerm(const RegTerm& term, double largest, TermSizes& sizes) {
  int variables = 0;
  double coefficient = 0.0;
  int parameters = 0;
  sizes.count += 1.0;
  if (term.QryIsActive() != 1) return;
  sizes.active += 1.0;
  term.GetNumUsedInpVar(variables);
  const double v = std::max(variables, 0);
  sizes.variables += v;
  if (v > 2.0) sizes.longProducts += v * (v - 1.0) / 2.0;
  if (term.GetNumParam(parameters) != 0 || parameters != 1) return;
  if (term.GetParamVal(&coefficient) != 0) return;
  sizes.reach += std::fabs(coefficient) * std::pow(largest, v);
}

/// The largest scaled and transformed coordinate, if no coordinate is larger than `reach`.
double LargestVariable(const CQRSData& record, double reach) {
  const CTransformer* const transformer = FindTransformer(record.InputTransformType);
  double largest = 1.0;
  for (std::size_t i = 0; i < record.InputScaleSlopes.size(); ++i) {
    const double intercept =
        i < record.InputScaleIntercepts.size() ? record.InputScaleIntercepts[i] : 0.0;
    const double size = std::fabs(record.InputScaleSlopes[i]) * reach + std::fabs(intercept);
    largest = std::fmax(largest, size);
    const bool isTransformed = transformer != nullptr && i < record.InputTransformValues.size() &&
                               i < record.InputLambdas.size();
    if (!isTransformed) continue;
    for (double x : {size, -size, 0.0}) {
      transformer->TransformAndOverwrite(x, record.InputTransformValues[i], record.InputLambdas[i]);
      largest = std::fmax(largest, std::fabs(x));
    }
  }
  return largest;
}

/// Whether an ordinary point may meet a hole, over which the surface is interpolated.
bool MayHaveHoles(const CQRSData& record, const TermSizes& sizes) {
  // Only this back-transformation turns a moderate number into a large negative one.
  const bool isLogarithm =
      record.OutputTransformType == TransformLogA && std::log(record.OutputTransformValue) < -1.0;
  return isLogarithm || !(sizes.reach < kLargestWithoutHole);
}

}  // namespace

SurfaceCost FamilyOf<CQRSData>::CostOf(const CRSData& base, double reach) {
  const auto& record = static_cast<const CQRSData&>(base);
  const double d = InputsOf(record);
  const double largest = LargestVariable(record, reach);
  TermSizes sizes;
  for (int k = 0; k < record.NumberOfRegTerms; ++k) {
    const RegTerm* const term = TermOf(record, k);
    if (term != nullptr) AddTerm(*term, largest, sizes);
  }

  SurfaceCost cost;
  const double transforms = record.InputTransformType == TransformNone ? 0.0 : d * kElementary;
  const double back = record.OutputTransformType == TransformNone ? 0.0 : 2.0 * kElementary;
  const double k = Counted(static_cast<int>(sizes.active), record.InvXtX.size());
  cost.value = 2.0 * d + transforms + 8.0 * sizes.count + sizes.variables + back;
  cost.gradient = 2.0 * (2.0 * d + transforms + back) + 8.0 * sizes.count + 3.0 * sizes.variables +
                  3.0 * sizes.longProducts;
  // A quadratic form of the terms, and a quantile.
  if (k > 0.0) cost.error = 3.0 * k * k + 2.0 * sizes.variables + 4.0 * k + kQuantile;
  cost.perPoint = kBytesPerNumber * (2.0 * d + sizes.active + 8.0);
  const auto rows = static_cast<double>(record.InputSamples.size());
  constexpr double kBytesPerTerm = 200.0;
  cost.held = kBytesPerTerm * sizes.count + 8.0 * sizes.variables +
              kBytesPerNumber * (2.0 * k * k + 8.0 * d) +
              rows * (kBytesPerNumber * (d + 1.0) + kBytesPerRow);

  if (!MayHaveHoles(record, sizes)) return cost;
  const InterpolationSize most = MostOfInterpolation(record);
  // The extents of the samples, and the corners of all boxes.
  cost.value += 4.0 * rows * d + most.corners * (cost.value + 4.0 * d);
  cost.once += most.bytes;
  return cost;
}

}  // namespace Tarvane::Plexura::PXROM
