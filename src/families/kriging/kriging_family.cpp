#include "families/kernel_sum/kernel_surface.h"
#include "families/kriging/kriging_checks.h"
#include "families/kriging/kriging_fields.h"
#include "families/kriging/predictor_error.h"

namespace Tarvane::Plexura::PXROM {

namespace {

constexpr Family Describe() {
  Family family = StartFamily<CKrigingData, CKrigingEvaluator>();
  family.hasErrorForm = true;
  family.changesRecordForError = &kriging::ChangesRecordForError;
  family.derivative = Derivative::Silent;
  family.scalesInput = true;
  family.scalesOutput = true;
  family.cost = &FamilyOf<CKrigingData>::CostOf;
  family.check = &inspection::CheckKriging;
  family.prepare = &batch::PrepareKriging;
  return family;
}

}  // namespace

const Family FamilyOf<CKrigingData>::family = Describe();

}  // namespace Tarvane::Plexura::PXROM
