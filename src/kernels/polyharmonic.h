#pragma once

#include "kernels/shapes.h"

namespace Tarvane::Plexura::PXROM::kernels {

// Polyharmonic splines of the distance, with the signs that make them conditionally positive
// definite. Duchon, Splines minimizing rotation-invariant semi-norms in Sobolev spaces, Lecture
// Notes in Mathematics 571 (1977).

/// r^2 log(r), 0 at 0: the thin plate spline.
struct ThinPlateSpline : Distance {
  static constexpr const char* kName = "thin plate spline";
  static constexpr Operations kOperations = {4.0, 3.0 + kElementary};
  template <class N>
  PXROM_INLINE static auto Value(const Constants&, N r2, N) {
    return If(
        !(r2 <= 0.0), [&] { return Log(r2) * (0.5 * r2); }, 0.0);
  }
  static double Slope(const Constants&, double r2) { return r2 == 0.0 ? 0.0 : std::log(r2) + 1.0; }
};

/// -r.
struct LinearSpline : Distance {
  static constexpr const char* kName = "linear spline";
  static constexpr Operations kOperations = {4.0, 7.0};
  template <class N>
  PXROM_INLINE static N Value(const Constants&, N r2, N) {
    return 0.0 - Sqrt(r2);
  }
  static double Slope(const Constants&, double r2) {
    return r2 == 0.0 ? 0.0 : -1.0 / std::sqrt(r2);
  }
};

/// r^3.
struct CubicSpline : Distance {
  static constexpr const char* kName = "cubic spline";
  static constexpr Operations kOperations = {4.0, 7.0};
  template <class N>
  PXROM_INLINE static N Value(const Constants&, N r2, N) {
    return r2 * Sqrt(r2);
  }
  static double Slope(const Constants&, double r2) { return 3.0 * std::sqrt(r2); }
};

/// -r^5.
struct QuinticSpline : Distance {
  static constexpr const char* kName = "quintic spline";
  static constexpr Operations kOperations = {4.0, 9.0};
  template <class N>
  PXROM_INLINE static N Value(const Constants&, N r2, N) {
    return 0.0 - r2 * r2 * Sqrt(r2);
  }
  static double Slope(const Constants&, double r2) { return -5.0 * (r2 * std::sqrt(r2)); }
};

}  // namespace Tarvane::Plexura::PXROM::kernels
