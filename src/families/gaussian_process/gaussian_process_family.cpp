#include "families/gaussian_process/gaussian_process_checks.h"
#include "families/gaussian_process/gaussian_process_fields.h"
#include "families/gaussian_process/gaussian_process_preparation.h"

namespace Tarvane::Plexura::PXROM {

namespace {

constexpr Family Describe() {
  Family family = StartFamily<CGaussianProcessData, CGaussianProcessEvaluator>();
  family.hasErrorForm = true;
  family.derivative = Derivative::OfValue;
  family.scalesInput = true;
  family.scalesOutput = true;
  family.cost = &FamilyOf<CGaussianProcessData>::CostOf;
  family.check = &inspection::CheckGaussianProcess;
  family.prepare = &batch::PrepareGaussianProcess;
  return family;
}

}  // namespace

const Family FamilyOf<CGaussianProcessData>::family = Describe();

}  // namespace Tarvane::Plexura::PXROM
