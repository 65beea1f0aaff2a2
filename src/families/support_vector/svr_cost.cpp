#include "families/support_vector/multipliers.h"
#include "families/support_vector/svr_fields.h"

namespace Tarvane::Plexura::PXROM {

using namespace costing;

SurfaceCost FamilyOf<CSVRData>::CostOf(const CRSData& base, double) {
  const auto& record = static_cast<const CSVRData&>(base);
  const auto centres =
      static_cast<double>(std::min(Multipliers(record).size(), record.InputSamples.size()));
  return CostOfKernelSum(centres, InputsOf(record),
                         OperationsOf(kernels::FindKernel(record.SVRKernType)));
}

}  // namespace Tarvane::Plexura::PXROM
