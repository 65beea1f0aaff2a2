#include "families/plain/plain_fields.h"

namespace Tarvane::Plexura::PXROM {

namespace {

constexpr Family Describe() {
  Family family = StartFamily<CRSData, CRSEvaluator>();
  family.hasValue = false;
  return family;
}

}  // namespace

const Family FamilyOf<CRSData>::family = Describe();

}  // namespace Tarvane::Plexura::PXROM
