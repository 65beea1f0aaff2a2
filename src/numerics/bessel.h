#pragma once

namespace Tarvane::Plexura::PXROM {

/// The Bessel function of the first kind of order 0, as the host's library has it.
double BesselJ0(double x) noexcept;

}  // namespace Tarvane::Plexura::PXROM
