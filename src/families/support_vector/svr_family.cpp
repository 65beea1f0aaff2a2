#include "families/kernel_sum/kernel_surface.h"
#include "families/support_vector/svr_checks.h"
#include "families/support_vector/svr_fields.h"

namespace Tarvane::Plexura::PXROM {

namespace {

constexpr Family Describe() {
  Family family = StartFamily<CSVRData, CSVREvaluator>();
  family.scalesInput = true;
  family.scalesOutput = true;
  family.cost = &FamilyOf<CSVRData>::CostOf;
  family.check = &inspection::CheckSupportVector;
  family.prepare = &batch::PrepareSupportVector;
  return family;
}

}  // namespace

const Family FamilyOf<CSVRData>::family = Describe();

}  // namespace Tarvane::Plexura::PXROM
