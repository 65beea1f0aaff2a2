#pragma once

#include "kernels/shapes.h"
#include "numerics/bessel.h"

namespace Tarvane::Plexura::PXROM::kernels {

/// Product of (J0(z) - c) / (1 - c), c = J0(e), for z = k |x - y| up to e = 3.8317, then 0: the
/// J-Bessel model, shifted so that it ends at 0 in its first minimum. Chiles and Delfiner,
/// Geostatistics (2012), section 2.5; the minimum is in Abramowitz and Stegun, table 9.5.
struct ShiftedBesselJ0 : ProductOfAsked {
  static constexpr const char* kName = "bessel j0";
  static constexpr Operations kOperations = {8.0 + kElementary, 0.0};
  static constexpr double kEnd = 3.8317;
  static Constants ConstantsFor(double /*inputs*/) { return {J0(kEnd), 0.0}; }
  template <class N>
  PXROM_INLINE static auto IsInside(N z) {
    return z <= kEnd;
  }
  template <class N>
  PXROM_INLINE static auto Asks(N z) {
    return IsInside(z);
  }
  template <class N>
  PXROM_INLINE static auto Inner(N z) {
    return J0(z);
  }
  template <class N, class Inner>
  PXROM_INLINE static N Factor(const Constants& constants, N /*z*/, const Inner& j0) {
    return (j0() - constants.shift) / (1.0 - constants.shift);
  }
  static double Slope(const Constants& constants, double z, double scale) {
    return -scale * BesselJ1(z) / (1.0 - constants.shift);
  }

  struct Fast : FastProduct {
    static double InputFactor(double scale) { return scale; }
    template <class N>
    PXROM_INLINE static N Step(N product, N x, N y) {
      constexpr double kShift = -0.4027593956953751;  // J0(kEnd)
      const N a = x - y;
      const N w = a * a;
      const N factor = (BesselJ0OfSquare(w) - kShift) * (1.0 / (1.0 - kShift));
      return Select(w <= kEnd * kEnd, product * factor, N(0.0));
    }
    static double Deviation(double d, double norm1, double /*norm2*/) {
      return 2.0 * norm1 + 50.0 * d;
    }
  };
};

}  // namespace Tarvane::Plexura::PXROM::kernels
