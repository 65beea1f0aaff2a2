#pragma once

#include "records/prepared_surface.h"

namespace Tarvane::Plexura::PXROM::batch {

/// Prepares `record` for points of `inputs` values and keeps no reference to it.
std::unique_ptr<PreparedSurface> PrepareSurface(const CRSData& record, std::size_t inputs);

}  // namespace Tarvane::Plexura::PXROM::batch
