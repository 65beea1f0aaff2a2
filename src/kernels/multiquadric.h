#pragma once

#include "kernels/shapes.h"

namespace Tarvane::Plexura::PXROM::kernels {

/// Product of sqrt(k^2 + |x - y|). After Hardy, Multiquadric equations of topography and other
/// irregular surfaces, Journal of Geophysical Research 76 (1971).
///
/// Deliberate (kriging-multiquadric): the plain distance is under the root, not its square. Models
/// are fitted with this form.
struct Multiquadric : Product {
  static constexpr const char* kName = "multiquadric";
  static constexpr Operations kOperations = {7.0, 0.0};
  template <class N>
  PXROM_INLINE static N Factor(N distance, N scale) {
    return Sqrt(scale * scale + distance);
  }
  static double Slope(double distance, double scale) {
    return 0.5 / std::sqrt(scale * scale + distance);
  }
};

/// -sqrt(1 + r^2), Hardy's own, with the sign that makes it conditionally positive definite.
struct MultiquadricOfDistance : Distance {
  static constexpr const char* kName = "multiquadric of distance";
  static constexpr Operations kOperations = {4.0, 8.0};
  template <class N>
  PXROM_INLINE static N Value(const Constants&, N r2, N) {
    return 0.0 - Sqrt(1.0 + r2);
  }
  static double Slope(const Constants&, double r2) { return -1.0 / std::sqrt(1.0 + r2); }
};

/// 1 / sqrt(1 + r^2).
struct InverseMultiquadric : Distance {
  static constexpr const char* kName = "inverse multiquadric";
  static constexpr Operations kOperations = {4.0, 9.0};
  template <class N>
  PXROM_INLINE static N Value(const Constants&, N r2, N) {
    return 1.0 / Sqrt(1.0 + r2);
  }
  static double Slope(const Constants&, double r2) {
    const double square = 1.0 + r2;
    return -1.0 / (square * std::sqrt(square));
  }
};

}  // namespace Tarvane::Plexura::PXROM::kernels
