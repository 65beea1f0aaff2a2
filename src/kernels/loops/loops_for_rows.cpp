// In a file of its own, so that a test program can replace it.

#include "kernels/loops/loop_table.h"

namespace Tarvane::Plexura::PXROM::kernels {

const LoopTable* LoopsForRows() noexcept {
  return BestInstructionSet() != simd::InstructionSet::Portable ? ExactLoops() : nullptr;
}

}  // namespace Tarvane::Plexura::PXROM::kernels
