#include "families/plain/plain_fields.h"

namespace Tarvane::Plexura::PXROM {

namespace {

constexpr Family Describe() {
  Family family = StartFamily<CRSData, CRSEvaluator>();
  // The base's attributes can be read into a record of any family.
  family.resume = &reading::ResumeRSData;
  family.hasValue = false;
  return family;
}

}  // namespace

const Family FamilyOf<CRSData>::family = Describe();

}  // namespace Tarvane::Plexura::PXROM
