#define PXROM_LANES PXROM_LANES_PORTABLE

#include "lanes/table.h"

namespace Tarvane::Plexura::PXROM::lanes {

const Lanes* PortableLanes() noexcept { return &kTable; }

}  // namespace Tarvane::Plexura::PXROM::lanes
