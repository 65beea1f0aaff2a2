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
  template <class N>
  PXROM_INLINE static N Factor(N distance, N scale) {
    return Sqrt(scale * scale + distance);
  }
  static double Slope(double distance, double scale) {
    return 0.5 / std::sqrt(scale * scale + distance);
  }
};

}  // namespace Tarvane::Plexura::PXROM::kernels
