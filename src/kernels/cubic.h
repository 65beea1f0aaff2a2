#pragma once

#include "kernels/shapes.h"

namespace Tarvane::Plexura::PXROM::kernels {

/// 1 - 3 t^2 + 2 t^3, the cubic that is 1 with slope 0 at 0 and 0 with slope 0 at 1. Lophaven,
/// Nielsen and Sondergaard, DACE, a Matlab Kriging Toolbox, IMM-TR-2002-12 (2002), table of
/// correlation functions: "cubic".
template <class N>
PXROM_INLINE N CubicOf(N t) {
  return 1.0 - 3.0 * t * t + 2.0 * t * t * t;
}

/// Its product over the inputs, t = min(k |x - y|, 1).
struct Cubic : Product {
  static constexpr const char* kName = "cubic";
  static constexpr Operations kOperations = {12.0, 0.0};
  template <class N>
  PXROM_INLINE static N Factor(N distance, N scale) {
    return CubicOf(UpTo1(scale * distance));
  }
  static double Slope(double distance, double scale) {
    const double z = scale * distance;
    return z > 1.0 ? 0.0 : 6.0 * scale * z * (z - 1.0);
  }
};

/// Of the distance, t = r / 2 h up to 1, then 0.
struct RadialCubic : Radial {
  static constexpr const char* kName = "radial cubic";
  static constexpr Operations kOperations = {3.0, 10.0};
  template <class N>
  PXROM_INLINE static N Value(const Constants&, N r2, N h) {
    const N t = Sqrt(r2) / (2.0 * h);
    return If(
        Abs(t) <= 1.0, [&] { return CubicOf(t); }, 0.0);
  }
  static double Slope(const Constants&, double r2, double h) {
    const double t = std::sqrt(r2) / (2.0 * h);
    return std::fabs(t) <= 1.0 ? 1.5 / (h * h) * (t - 1.0) : 0.0;
  }
};

}  // namespace Tarvane::Plexura::PXROM::kernels
