#pragma once

#include "kernels/shapes.h"

namespace Tarvane::Plexura::PXROM::kernels {

/// Product of 1 - z^2 for z = k |x - y| below 1, then 0. Epanechnikov, Non-parametric estimation of
/// a multivariate probability density, Theory of Probability and its Applications 14 (1969), scaled
/// to 1 at 0.
struct Parabolic : ProductWithin1 {
  static constexpr const char* kName = "parabolic";
  static constexpr Operations kOperations = {7.0, 0.0};
  template <class N>
  PXROM_INLINE static N Factor(N distance, N scale) {
    const N z = scale * distance;
    return 1.0 - z * z;
  }
  static double Slope(double distance, double scale) { return -2.0 * scale * (scale * distance); }
};

}  // namespace Tarvane::Plexura::PXROM::kernels
