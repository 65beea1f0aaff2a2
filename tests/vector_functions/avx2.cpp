// Compiled for this instruction set (tests/CMakeLists.txt).

#define PXROM_SIMD PXROM_SIMD_AVX2

#include "vector_functions/check.h"

namespace Tarvane::Plexura::PXROM::simd {

bool IsAvx2Exact(long count) { return AreAllExact(count); }

}  // namespace Tarvane::Plexura::PXROM::simd
