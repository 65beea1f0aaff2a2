#include "families/moving_least_squares/mls_fields.h"
#include "numerics/polynomial_basis.h"

namespace Tarvane::Plexura::PXROM {

using namespace costing;

SurfaceCost FamilyOf<CMLSData>::CostOf(const CRSData& base, double) {
  const auto& record = static_cast<const CMLSData&>(base);
  const double n = Counted(record.NumberOfSamples, record.InputSamples.size());
  const double used = Counted(record.NumberOfUsedPoints, record.InputSamples.size());
  const double d = InputsOf(record);
  SurfaceCost cost;
  cost.held = n * (kBytesPerNumber * (d + 1.0) + kBytesPerRow);
  // Distances to all samples, a selection by rank, and weights of the used samples.
  cost.value = n * (3.0 * d + 10.0) + used * (kElementary + 5.0);
  cost.once = kBytesPerNumber * (6.0 * n + d);

  // With fewer samples than basis functions there is no value.
  const std::int64_t count = PolynomialCount(record.PolynomialType, record.NumberOfInputVariables);
  const auto p = static_cast<double>(count);
  if (count <= 0 || count != record.NumberOfBasisFunctions || p > used) {
    cost.gradient = cost.value;
    return cost;
  }
  // Each sample is added to half of a symmetric matrix. Then come the Cholesky factor and two
  // triangular systems. The form with an error is refused.
  const double equations = used * (p * p + 6.0 * p) + p * p * p / 3.0 + 5.0 * p * p;
  cost.value += equations;
  // A gradient first computes the value, then solves the equations again with loops that take twice
  // as long.
  cost.gradient = 3.0 * cost.value + used * (8.0 * p + 4.0 * d);
  cost.once += kBytesPerNumber * (p * p + 8.0 * p);
  return cost;
}

}  // namespace Tarvane::Plexura::PXROM
