#pragma once

#include "kernels/shapes.h"

namespace Tarvane::Plexura::PXROM::kernels {

// The inhomogeneous polynomial kernels (1 + x . y)^p. Schoelkopf and Smola, Learning with Kernels
// (2002), section 2.3.

/// p = 1.
struct DotLinear : Dot {
  static constexpr const char* kName = "dot linear";
  static constexpr Operations kOperations = {6.0, 4.0};
  template <class N>
  PXROM_INLINE static N Value(const Constants&, N dot, N) {
    return 1.0 + dot;
  }
  static double Slope(const Constants&, double /*dot*/) { return 1.0; }
};

/// p = 2.
struct DotQuadratic : Dot {
  static constexpr const char* kName = "dot quadratic";
  static constexpr Operations kOperations = {6.0, 4.0};
  template <class N>
  PXROM_INLINE static N Value(const Constants&, N dot, N) {
    return (1.0 + dot) * (1.0 + dot);
  }
  static double Slope(const Constants&, double dot) { return 2.0 * (1.0 + dot); }
};

}  // namespace Tarvane::Plexura::PXROM::kernels
