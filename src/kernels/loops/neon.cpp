// For ARM64, where no option is needed; else empty.

#include "kernels/loops/loop_table.h"

#if defined(__aarch64__) && defined(__GNUC__)

#define PXROM_SIMD PXROM_SIMD_NEON

#include "kernels/loops/all_loops.h"

namespace Tarvane::Plexura::PXROM::kernels {

const LoopTable* NeonLoops() noexcept { return &kTable; }

}  // namespace Tarvane::Plexura::PXROM::kernels

#else

namespace Tarvane::Plexura::PXROM::kernels {

const LoopTable* NeonLoops() noexcept { return nullptr; }

}  // namespace Tarvane::Plexura::PXROM::kernels

#endif
