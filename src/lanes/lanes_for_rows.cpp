// On its own, so that a test program can choose otherwise.

#include "lanes/lanes.h"

namespace Tarvane::Plexura::PXROM::lanes {

const Lanes* LanesForRows() noexcept {
  static const Lanes* const lanes =
      BestInstructionSet() != InstructionSet::Portable && AreHostFunctionsKnown()
          ? FindLanes(BestInstructionSet())
          : nullptr;
  return lanes;
}

}  // namespace Tarvane::Plexura::PXROM::lanes
