#include "families/support_vector/multipliers.h"
#include "families/support_vector/svr_fields.h"

namespace Tarvane::Plexura::PXROM {

namespace {

using namespace costing;

/// The operations of a kernel in addition to its sum over the inputs.
double PerCentre(E_SVRKernType type) {
  switch (type) {
    case SVRKernLinear:
    case SVRKernQuadratic:
    case SVRKernEpanechnikov:
      return 4.0;
    default:
      return kElementary;
  }
}

}  // namespace

SurfaceCost FamilyOf<CSVRData>::CostOf(const CRSData& base, double) {
  const auto& record = static_cast<const CSVRData&>(base);
  const auto centres =
      static_cast<double>(std::min(Multipliers(record).size(), record.InputSamples.size()));
  constexpr double kPerInput = 6.0;
  return CostOfKernelSum(centres, InputsOf(record), kPerInput, PerCentre(record.SVRKernType));
}

}  // namespace Tarvane::Plexura::PXROM
