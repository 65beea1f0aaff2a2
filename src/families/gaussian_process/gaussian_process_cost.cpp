#include "families/gaussian_process/gaussian_process_fields.h"

namespace Tarvane::Plexura::PXROM {

using namespace costing;

SurfaceCost FamilyOf<CGaussianProcessData>::CostOf(const CRSData& base, double) {
  const auto& record = static_cast<const CGaussianProcessData&>(base);
  const double n = Counted(record.NumberOfSamples, record.InputSamples.size());
  const double d = InputsOf(record);
  const auto p = static_cast<double>(record.PolynomialCoefficients.size());
  const auto factors = static_cast<double>(record.FactorFunctions.size());
  const auto terms = static_cast<double>(record.TermAmplitudes.size());
  kernels::Operations each = {0.0, terms};
  for (const int function : record.FactorFunctions) {
    const kernels::Operations added =
        OperationsOf(kernels::FindKernel(static_cast<E_CovarianceFunctionType>(function)));
    each.perInput += added.perInput;
    each.once += added.once;
  }
  SurfaceCost cost = CostOfKernelSum(n, d, each);
  AddTrend(p, cost);
  // A power takes two operations for each bit of its exponent.
  const auto exponents = static_cast<double>(record.Monomials.size());
  cost.value += 8.0 * exponents;
  cost.gradient += 16.0 * exponents * d;
  // A prepared surface keeps the record, and its centres once more for each factor.
  cost.held += n * (kBytesPerNumber * (1.0 + factors) * d + kBytesPerRow) +
               kBytesPerNumber * (terms * (n + 4.0) + 3.0 * factors * d + exponents);
  cost.perPoint += kBytesPerNumber * 3.0 * std::min(n, 32.0);
  cost.once = kBytesPerNumber * (2.0 * d + p + 32.0 * (3.0 + factors));
  if (!record.SavePredictorError) return cost;
  // v = inv(L) k, w = f - H v, inv(G) w: see PredictorError.
  const double functions = record.TrendInverseFactor.empty() ? 0.0 : p;
  cost.error = n * n + 2.0 * functions * n + functions * functions + 4.0 * n;
  AddErrorNorms(0.5 * n * (n + 1.0), n, functions, d, cost);
  return cost;
}

}  // namespace Tarvane::Plexura::PXROM
