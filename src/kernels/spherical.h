#pragma once

#include "kernels/shapes.h"

namespace Tarvane::Plexura::PXROM::kernels {

/// Product of 1 - 1.5 s + 0.5 s^3, s = min(k |x - y|, 1). Matheron, Principles of geostatistics,
/// Economic Geology 58 (1963), applied to each input.
struct Spherical : Product {
  static constexpr const char* kName = "spherical";
  static constexpr Operations kOperations = {12.0, 0.0};
  template <class N>
  PXROM_INLINE static N Factor(N distance, N scale) {
    const N s = UpTo1(scale * distance);
    return 1.0 - 1.5 * s + 0.5 * s * s * s;
  }
  static double Slope(double distance, double scale) {
    const double z = scale * distance;
    return z > 1.0 ? 0.0 : 1.5 * scale * (z * z - 1.0);
  }
};

}  // namespace Tarvane::Plexura::PXROM::kernels
