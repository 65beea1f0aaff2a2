#include <algorithm>

#include "families/kriging/kriging_fields.h"

namespace Tarvane::Plexura::PXROM {

using namespace costing;

namespace {

double NumbersBeforeZeros(const std::vector<std::vector<double>>& matrix) {
  double count = 0.0;
  for (const std::vector<double>& row : matrix) {
    const auto last = std::find_if(row.rbegin(), row.rend(), [](double v) { return v != 0.0; });
    count += static_cast<double>(row.rend() - last);
  }
  return count;
}

}  // namespace

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
  AddErrorNorms(NumbersBeforeZeros(record.InvC), n, p, d, cost);
  return cost;
}

}  // namespace Tarvane::Plexura::PXROM
