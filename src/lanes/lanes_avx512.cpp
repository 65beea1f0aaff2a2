// Compiled with the instruction set switched on where the compiler has it (src/CMakeLists.txt), and
// empty elsewhere.

#include "lanes/lanes.h"

#if defined(__AVX512F__)

#define PXROM_LANES PXROM_LANES_AVX512

#include "lanes/table.h"

namespace Tarvane::Plexura::PXROM::lanes {

const Lanes* Avx512Lanes() noexcept { return &kTable; }

}  // namespace Tarvane::Plexura::PXROM::lanes

#else

namespace Tarvane::Plexura::PXROM::lanes {

const Lanes* Avx512Lanes() noexcept { return nullptr; }

}  // namespace Tarvane::Plexura::PXROM::lanes

#endif
