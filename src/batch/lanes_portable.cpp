#define PXROM_LANES PXROM_LANES_PORTABLE

#include "batch/lanes_table.h"

namespace Tarvane::Plexura::PXROM::batch {

const Lanes* PortableLanes() noexcept { return &kTable; }

}  // namespace Tarvane::Plexura::PXROM::batch
