#pragma once

namespace Tarvane::Plexura::PXROM {

/// The Bessel functions of the first kind of order 0 and 1 (Abramowitz and Stegun, section 9.1), as
/// the host's C library computes them.
double BesselJ0(double x) noexcept;
double BesselJ1(double x) noexcept;

}  // namespace Tarvane::Plexura::PXROM
