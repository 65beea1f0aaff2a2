#include "families/kriging/kriging_fields.h"

namespace Tarvane::Plexura::PXROM {

using namespace costing;

SurfaceCost FamilyOf<CKrigingData>::CostOf(const CRSData& base, double) {
  const auto& record = static_cast<const CKrigingData&>(base);
  const double n = Counted(record.NumberOfSamples, record.InputSamples.size());
  const double d = InputsOf(record);
  const double p = record.PolynomialType == PolyNone
                       ? 0.0
                       : static_cast<double>(record.PolynomialCoefficients.size());
  SurfaceCost cost =
      CostOfKernelSum(n, d, OperationsOf(kernels::FindKernel(record.CorrelationFunctionType)));
  AddTrend(p, cost);
  if (!record.SavePredictorError || static_cast<double>(record.InvC.size()) < n) {
    // Without error data the form with errors scales the samples of the record.
    cost.error = 2.0 * n * d;
    return cost;
  }
  // v = InvC r, w = Ft v - f, InvG w: see PredictorError.
  cost.error = 2.0 * n * n + 2.0 * p * n + 2.0 * p * p + 6.0 * n;
  cost.held += kBytesPerNumber * (n * (n + 1.0) + p * n + p * p);
  cost.perPoint += kBytesPerNumber * (2.0 * n + 3.0 * p);
  return cost;
}

}  // namespace Tarvane::Plexura::PXROM
