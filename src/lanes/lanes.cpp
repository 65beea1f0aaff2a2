#include "lanes/lanes.h"

namespace Tarvane::Plexura::PXROM::lanes {

namespace {

bool CanRun(InstructionSet set) {
#if defined(__GNUC__) && (defined(__x86_64__) || defined(__i386__))
  switch (set) {
    case InstructionSet::Avx512:
      return __builtin_cpu_supports("avx512f");
    case InstructionSet::Avx2:
      return __builtin_cpu_supports("avx2") && __builtin_cpu_supports("fma");
    case InstructionSet::Portable:
      break;
  }
#endif
  return set == InstructionSet::Portable;
}

}  // namespace

const Lanes* FindLanes(InstructionSet set) noexcept {
  if (!CanRun(set)) return nullptr;
  switch (set) {
    case InstructionSet::Avx512:
      return Avx512Lanes();
    case InstructionSet::Avx2:
      return Avx2Lanes();
    case InstructionSet::Portable:
      break;
  }
  return PortableLanes();
}

InstructionSet BestInstructionSet() noexcept {
  if (FindLanes(InstructionSet::Avx512) != nullptr) return InstructionSet::Avx512;
  if (FindLanes(InstructionSet::Avx2) != nullptr) return InstructionSet::Avx2;
  return InstructionSet::Portable;
}

bool HasRowKernels(Kernel kernel) noexcept {
  switch (kernel) {
    case Kernel::Matern52:
    case Kernel::BesselJ0:
    case Kernel::Sinc:
    case Kernel::DotSigmoid:
    case Kernel::RadialSinc:
    case Kernel::RadialTanh:
      return false;
    default:
      return true;
  }
}

}  // namespace Tarvane::Plexura::PXROM::lanes
