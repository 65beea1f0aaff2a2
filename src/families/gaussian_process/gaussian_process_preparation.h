#pragma once

#include <memory>

#include "records/prepared_surface.h"

namespace Tarvane::Plexura::PXROM::batch {

std::unique_ptr<PreparedSurface> PrepareGaussianProcess(const CRSData& record, std::size_t inputs);

}  // namespace Tarvane::Plexura::PXROM::batch
