#include "families/linear_basis/lbf_fields.h"

namespace Tarvane::Plexura::PXROM {

using namespace costing;

SurfaceCost FamilyOf<CLBFData>::CostOf(const CRSData& base, double) {
  const auto& record = static_cast<const CLBFData&>(base);
  // The value of a single sample is its output.
  if (record.NumberOfSamples == 1) return {};
  const auto centres =
      static_cast<double>(std::min(record.KernelCoefficients.size(), record.InputSamples.size()));
  SurfaceCost cost = CostOfKernelSum(centres, InputsOf(record),
                                     OperationsOf(kernels::FindKernel(record.BasisFunctionType)));
  AddTrend(static_cast<double>(record.PolynomialCoefficients.size()), cost);
  return cost;
}

}  // namespace Tarvane::Plexura::PXROM
