// In a file of its own, so that a test program can replace it.

#include "kernels/loops/loop_table.h"

namespace Tarvane::Plexura::PXROM::kernels {

const LoopTable* LoopsForRows() noexcept {
  static const LoopTable* const loops =
      BestInstructionSet() != simd::InstructionSet::Portable && AreHostFunctionsKnown()
          ? FindLoops(BestInstructionSet())
          : nullptr;
  return loops;
}

}  // namespace Tarvane::Plexura::PXROM::kernels
