// Compiled for this instruction set (tests/CMakeLists.txt); elsewhere there is nothing to check.

#include "vector_functions/check_sets.h"

#if defined(__AVX2__) && defined(__FMA__)

#define PXROM_SIMD PXROM_SIMD_AVX2

#include "vector_functions/check.h"

namespace Tarvane::Plexura::PXROM::simd {

bool IsAvx2Exact(long count) { return AreAllExact(count); }

}  // namespace Tarvane::Plexura::PXROM::simd

#else

namespace Tarvane::Plexura::PXROM::simd {

bool IsAvx2Exact(long) { return true; }

}  // namespace Tarvane::Plexura::PXROM::simd

#endif
