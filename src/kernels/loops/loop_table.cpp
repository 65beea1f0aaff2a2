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
    case InstructionSet::Portable:
      break;
  }
  return PortableLoops();
}

InstructionSet BestInstructionSet() noexcept {
  if (FindLoops(InstructionSet::Avx512) != nullptr) return InstructionSet::Avx512;
  if (FindLoops(InstructionSet::Avx2) != nullptr) return InstructionSet::Avx2;
  return InstructionSet::Portable;
}

}  // namespace Tarvane::Plexura::PXROM::kernels
