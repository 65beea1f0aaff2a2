#include "families/kriging/kriging_fields.h"

namespace Tarvane::Plexura::PXROM {

namespace {

using namespace costing;

/// The operations of a correlation function for one input, the scaling of the sample included.
double PerInput(E_KringingCorrelationFunctionType type) {
  switch (type) {
    case CorrMatern52:
      return 10.0 + kElementary;
    case CorrBesselJ0:
    case CorrSinc:
      return 8.0 + kElementary;
    case CorrSpline:
    case CorrSpherical:
    case CorrCubic:
      return 12.0;
    default:
      return 7.0;
  }
}

}  // namespace

SurfaceCost FamilyOf<CKrigingData>::CostOf(const CRSData& base, double) {
  const auto& record = static_cast<const CKrigingData&>(base);
  const double n = Counted(record.NumberOfSamples, record.InputSamples.size());
  const double d = InputsOf(record);
  const double p = record.PolynomialType == PolyNone
                       ? 0.0
                       : static_cast<double>(record.PolynomialCoefficients.size());
  SurfaceCost cost = CostOfKernelSum(n, d, PerInput(record.CorrelationFunctionType), kElementary);
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
