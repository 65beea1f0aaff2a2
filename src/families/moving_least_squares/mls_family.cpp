#include "families/moving_least_squares/mls_checks.h"
#include "families/moving_least_squares/mls_fields.h"
#include "families/moving_least_squares/mls_preparation.h"

namespace Tarvane::Plexura::PXROM {

namespace {

// Each value comes from a fit to the outputs.
bool NeedsOutputs(int) { return true; }

const char* CauseOfRefusal(const CRSData&) { return ": its equations have no solution there"; }

constexpr Family Describe() {
  Family family = StartFamily<CMLSData, CMLSEvaluator>();
  family.check = &inspection::CheckMovingLeastSquares;
  family.prepare = &batch::PrepareMovingLeastSquares;
  family.valueDependsOnPoint = true;
  family.needsOutputs = &NeedsOutputs;
  family.cost = &FamilyOf<CMLSData>::CostOf;
  family.causeOfRefusal = &CauseOfRefusal;
  return family;
}

}  // namespace

const Family FamilyOf<CMLSData>::family = Describe();

}  // namespace Tarvane::Plexura::PXROM
