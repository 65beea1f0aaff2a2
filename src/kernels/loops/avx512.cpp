// Compiled for this instruction set if the compiler knows it (src/CMakeLists.txt), else empty.

#include "kernels/loops/loop_table.h"

#if defined(__AVX512F__)

#define PXROM_SIMD PXROM_SIMD_AVX512

#include "kernels/loops/all_loops.h"

namespace Tarvane::Plexura::PXROM::kernels {

const LoopTable* Avx512Loops() noexcept { return &kTable; }

}  // namespace Tarvane::Plexura::PXROM::kernels

#else

namespace Tarvane::Plexura::PXROM::kernels {

const LoopTable* Avx512Loops() noexcept { return nullptr; }

}  // namespace Tarvane::Plexura::PXROM::kernels

#endif
