#include <algorithm>

#include "families/polynomial/expansion.h"
#include "families/polynomial/polynomial_fields.h"

namespace Tarvane::Plexura::PXROM {

using namespace costing;

SurfaceCost FamilyOf<CPolynomialData>::CostOf(const CRSData& base, double) {
  const auto& record = static_cast<const CPolynomialData&>(base);
  const auto degrees = static_cast<double>(record.Degrees.size());
  SurfaceCost cost;
  cost.value = degrees;
  polynomial::Expansion expansion;
  // What can't be laid out is refused before anything is computed.
  if (!expansion.LayOut(record, record.InputScaleSlopes.size())) return cost;

  // A recurrence of orthonormal polynomials divides and takes roots.
  constexpr double kStep = 40.0;
  constexpr double kBytesPerFactor = 8.0;
  constexpr double kBytesPerVariable = 120.0;
  double table = 0.0;
  for (const polynomial::Variable& variable : expansion.Variables()) {
    table += 4.0 + (variable.basis.HasSteps() ? kStep : 1.0) * variable.highest;
    if (variable.forward->TransformationType() != TransformNone) table += kElementary;
  }
  const bool isBack = record.OutputTransformType != TransformNone;
  const auto terms = static_cast<double>(expansion.Terms());
  const auto factors = static_cast<double>(expansion.FactorCount());
  const auto size = static_cast<double>(expansion.TableSize());
  cost.value = 2.0 * degrees + table + factors + 2.0 * terms + (isBack ? 2.0 * kElementary : 0.0);
  cost.gradient = 2.0 * cost.value + table + 4.0 * factors;
  const double order = expansion.HasCovariance() ? terms : 0.0;
  if (order > 0.0) cost.error = 3.0 * order * order + factors + 3.0 * kElementary;
  // The products of two factors need no row of their own.
  const double rows = size + std::max(factors - 2.0 * terms, 0.0);
  cost.perPoint = kBytesPerNumber * (rows + order + 8.0);
  cost.held = kBytesPerNumber * (2.0 * order * order + 4.0 * terms + size) +
              kBytesPerFactor * factors + 4.0 * degrees +
              kBytesPerVariable * static_cast<double>(expansion.Variables().size());
  return cost;
}

}  // namespace Tarvane::Plexura::PXROM
