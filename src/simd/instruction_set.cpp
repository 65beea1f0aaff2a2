#include "simd/instruction_set.h"

namespace Tarvane::Plexura::PXROM::simd {

bool CanRun(InstructionSet set) noexcept {
#if defined(__GNUC__) && (defined(__x86_64__) || defined(__i386__))
  switch (set) {
    case InstructionSet::Avx512:
      return __builtin_cpu_supports("avx512f");
    case InstructionSet::Avx2:
      return __builtin_cpu_supports("avx2") && __builtin_cpu_supports("fma");
    case InstructionSet::Neon:
    case InstructionSet::Portable:
      break;
  }
#elif defined(__aarch64__)
  // Every machine of this kind has it.
  if (set == InstructionSet::Neon) return true;
#endif
  return set == InstructionSet::Portable;
}

}  // namespace Tarvane::Plexura::PXROM::simd
