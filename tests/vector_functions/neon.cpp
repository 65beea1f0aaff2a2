// Compiled for this instruction set (tests/CMakeLists.txt); elsewhere there is nothing to check.

#include "vector_functions/check_sets.h"

#if defined(__aarch64__)

#define PXROM_SIMD PXROM_SIMD_NEON

#include "vector_functions/check.h"

namespace Tarvane::Plexura::PXROM::simd {

bool IsNeonExact(long count) { return AreAllExact(count); }

}  // namespace Tarvane::Plexura::PXROM::simd

#else

namespace Tarvane::Plexura::PXROM::simd {

bool IsNeonExact(long) { return true; }

}  // namespace Tarvane::Plexura::PXROM::simd

#endif
