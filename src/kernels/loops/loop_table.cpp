#include "kernels/loops/loop_table.h"

namespace Tarvane::Plexura::PXROM::kernels {

using simd::InstructionSet;

const LoopTable* FindLoops(InstructionSet set) noexcept {
  if (!simd::CanRun(set)) return nullptr;
  switch (set) {
    case InstructionSet::Avx512:
      return Avx512Loops();
    case InstructionSet::Avx2:
      return Avx2Loops();
    case InstructionSet::Neon:
      return NeonLoops();
    case InstructionSet::Portable:
      break;
  }
  return PortableLoops();
}

InstructionSet BestInstructionSet() noexcept {
  InstructionSet best = InstructionSet::Portable;
  for (const InstructionSet set : simd::kInstructionSets) {
    if (FindLoops(set) != nullptr) best = set;
  }
  return best;
}

}  // namespace Tarvane::Plexura::PXROM::kernels
