// Compiled with the instruction set switched on where the compiler has it (src/CMakeLists.txt), and
// empty elsewhere.

#include "batch/lanes.h"

#if defined(__AVX2__) && defined(__FMA__)

#define PXROM_LANES PXROM_LANES_AVX2

#include "batch/lanes_table.h"

namespace Tarvane::Plexura::PXROM::batch {

const Lanes* Avx2Lanes() noexcept { return &kTable; }

}  // namespace Tarvane::Plexura::PXROM::batch

#else

namespace Tarvane::Plexura::PXROM::batch {

const Lanes* Avx2Lanes() noexcept { return nullptr; }

}  // namespace Tarvane::Plexura::PXROM::batch

#endif
