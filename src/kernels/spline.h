#pragma once

#include "kernels/shapes.h"

namespace Tarvane::Plexura::PXROM::kernels {

/// Product of 1 - 15 z^2 + 30 z^3 up to z = 0.2, 1.25 (1 - z)^3 up to 1, then 0, z = k |x - y|.
/// Lophaven, Nielsen and Sondergaard, DACE, a Matlab Kriging Toolbox, IMM-TR-2002-12 (2002), table
/// of correlation functions: "spline".
struct Spline : ProductWithin1 {
  static constexpr const char* kName = "spline";
  static constexpr Operations kOperations = {12.0, 0.0};
  template <class N>
  PXROM_INLINE static N Factor(N distance, N scale) {
    const N z = scale * distance;
    const N rest = 1.0 - z;
    return Select(z <= 0.2, 1.0 - 15.0 * z * z + 30.0 * z * z * z, 1.25 * rest * rest * rest);
  }
  static double Slope(double distance, double scale) {
    const double z = scale * distance;
    if (z <= 0.2) return scale * z * (90.0 * z - 30.0);
    const double rest = 1.0 - z;
    return -3.75 * scale * rest * rest;
  }
};

}  // namespace Tarvane::Plexura::PXROM::kernels
