// Compiled with the instruction set switched on where the compiler has it (src/CMakeLists.txt), and
// empty elsewhere.

#include "lanes/lanes.h"

#if defined(__AVX2__) && defined(__FMA__)

#define PXROM_LANES PXROM_LANES_AVX2

#include "lanes/table.h"

namespace Tarvane::Plexura::PXROM::lanes {

const Lanes* Avx2Lanes() noexcept { return &kTable; }

}  // namespace Tarvane::Plexura::PXROM::lanes

#else

namespace Tarvane::Plexura::PXROM::lanes {

const Lanes* Avx2Lanes() noexcept { return nullptr; }

}  // namespace Tarvane::Plexura::PXROM::lanes

#endif
