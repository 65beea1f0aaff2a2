#include "families/families.h"

namespace Tarvane::Plexura::PXROM {

const FamilyList kAllFamilies = FamiliesOf(AllRecords());

}  // namespace Tarvane::Plexura::PXROM
