#define PXROM_SIMD PXROM_SIMD_PORTABLE

#include "kernels/loops/all_loops.h"

namespace Tarvane::Plexura::PXROM::kernels {

const LoopTable* PortableLoops() noexcept { return &kTable; }

}  // namespace Tarvane::Plexura::PXROM::kernels
