// Compiled for this instruction set (tests/CMakeLists.txt).

#define PXROM_SIMD PXROM_SIMD_AVX512

#include "vector_functions/check.h"

namespace Tarvane::Plexura::PXROM::simd {

bool IsAvx512Exact(long count) { return AreAllExact(count); }

}  // namespace Tarvane::Plexura::PXROM::simd
