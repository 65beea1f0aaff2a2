// In a file of its own, so that a test program can replace it.

#include "kernels/loops/loop_table.h"

namespace Tarvane::Plexura::PXROM::kernels {

const LoopTable* LoopsForRows() noexcept {
  const simd::InstructionSet best = BestInstructionSet();
  return best != simd::InstructionSet::Portable ? ExactLoops(best) : nullptr;
}

}  // namespace Tarvane::Plexura::PXROM::kernels
