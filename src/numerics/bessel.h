#pragma once

namespace Tarvane::Plexura::PXROM {

/// The Bessel functions of the first kind of order 0 and 1, as the host's library has them.
double BesselJ0(double x) noexcept;
double BesselJ1(double x) noexcept;

}  // namespace Tarvane::Plexura::PXROM
