#pragma once

#include "records/prepared_surface.h"

namespace Tarvane::Plexura::PXROM::batch {

/// Prepares a polynomial record for points of `inputs` values.
std::unique_ptr<PreparedSurface> PreparePolynomial(const CRSData& record, std::size_t inputs);

}  // namespace Tarvane::Plexura::PXROM::batch
