#include "families/kernel_sum/kernel_surface.h"
#include "families/linear_basis/lbf_checks.h"
#include "families/linear_basis/lbf_fields.h"

namespace Tarvane::Plexura::PXROM {

namespace {

// The value of a single sample is its output.
bool NeedsOutputs(int samples) { return samples == 1; }

constexpr Family Describe() {
  Family family = StartFamily<CLBFData, CLBFEvaluator>();
  family.scalesInput = true;
  family.scalesOutput = true;
  family.check = &inspection::CheckLinearBasis;
  family.needsOutputs = &NeedsOutputs;
  family.cost = &FamilyOf<CLBFData>::CostOf;
  family.prepare = &batch::PrepareLinearBasis;
  return family;
}

}  // namespace

const Family FamilyOf<CLBFData>::family = Describe();

}  // namespace Tarvane::Plexura::PXROM
