#include "families/regression/transformed_errors.h"

#include <cmath>
#include <limits>
#include <utility>

#include "families/regression/transformation_slopes.h"

namespace Tarvane::Plexura::PXROM::batch {

namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();

/// How far the image of `sum` is from `y`.
double DistanceToImage(const OutputWay& way, double sum, double y) {
  if (way.back->BacktransformAndOverwrite(sum, way.value, way.lambda) != 0) return kInfinity;
  const double distance = std::fabs((sum - way.intercept) / way.slope - y);
  return std::isnan(distance) ? kInfinity : distance;
}

}  // namespace

void FillTransformedError(const OutputWay& way, double sum, double deviation, std::size_t point,
                          const Results& results) {
  const auto slopeAt = [&](double at) {
    return BacktransformationSlope(*way.back, at, way.value, way.lambda);
  };
  const double slope = slopeAt(sum);
  const double error = std::fabs(slope) * deviation / std::fabs(way.slope);
  double& below = results.inUnit.below[point];
  double& above = results.inUnit.above[point];
  results.inUnit.errors[point] = below = above = error;
  if (way.back->TransformationType() == TransformNone) return;
  const double y = results.values[point];
  double first = DistanceToImage(way, sum - deviation, y);
  double last = DistanceToImage(way, sum + deviation, y);
  // Where an end is refused, the formula has no slope there.
  const bool isTurning = std::isfinite(first) && std::isfinite(last) &&
                         slopeAt(sum - deviation) * slopeAt(sum + deviation) < 0.0;
  if (isTurning) return;
  if (slope / way.slope < 0.0) std::swap(first, last);
  below = first;
  above = last;
}

}  // namespace Tarvane::Plexura::PXROM::batch
