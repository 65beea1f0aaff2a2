#pragma once

#include "records/prepared_surface.h"

namespace Tarvane::Plexura::PXROM::batch {

/// Prepares `record`, which may go afterwards, for points of `inputs` values.
std::unique_ptr<const PreparedSurface> PrepareSurface(const CRSData& record, std::size_t inputs);

}  // namespace Tarvane::Plexura::PXROM::batch
