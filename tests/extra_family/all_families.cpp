// Replaces the library's list: its families and one more.

#include "extra_family/plane.h"
#include "families/families.h"

namespace Tarvane::Plexura::PXROM {

namespace {

template <class... Records>
constexpr FamilyList WithPlane(RecordList<Records...>) noexcept {
  return FamiliesOf(RecordList<Records..., CPlaneData>());
}

}  // namespace

const FamilyList kAllFamilies = WithPlane(AllRecords());

}  // namespace Tarvane::Plexura::PXROM
