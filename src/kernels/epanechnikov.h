#pragma once

#include "kernels/shapes.h"

namespace Tarvane::Plexura::PXROM::kernels {

/// 0.75 (1 - u^2) for u below 1, then 0. Epanechnikov, Non-parametric estimation of a multivariate
/// probability density, Theory of Probability and its Applications 14 (1969).
///
/// Deliberate (svr-epanechnikov): u is the squared distance, which is squared once more. Models are
/// fitted with this form.
struct Epanechnikov : Radial {
  static constexpr const char* kName = "epanechnikov";
  static constexpr Operations kOperations = {6.0, 4.0};
  template <class N>
  PXROM_INLINE static N Value(const Constants&, N r2, N) {
    return Select(1.0 <= r2, N(0.0), 0.75 * (1.0 - r2 * r2));
  }
  static double Slope(const Constants&, double r2, double /*h*/) {
    return r2 >= 1.0 ? 0.0 : -3.0 * r2;
  }
};

}  // namespace Tarvane::Plexura::PXROM::kernels
