// Replaces the library's choice, which is the machine's best vectors.

#include "kernels/loops/loop_table.h"

namespace Tarvane::Plexura::PXROM::kernels {

const LoopTable* LoopsForRows() noexcept { return nullptr; }

}  // namespace Tarvane::Plexura::PXROM::kernels
