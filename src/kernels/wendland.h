#pragma once

#include <algorithm>

#include "kernels/shapes.h"
#include "kernels/weights.h"

namespace Tarvane::Plexura::PXROM::kernels {

/// (1 - t)^4 (4 t + 1) for t up to 1, a function of compact support. Wendland, Piecewise
/// polynomial, positive definite and compactly supported radial functions of minimal degree,
/// Advances in Computational Mathematics 4 (1995): phi 3, 1.
template <class N>
PXROM_INLINE auto WendlandOf(N t) {
  return Power4(1.0 - t) * (4.0 * t + 1.0);
}

/// Of the distance, t = r / 2 h, 0 beyond 1.
struct RadialCompact : Radial {
  static constexpr const char* kName = "radial compact";
  static constexpr Operations kOperations = {3.0, 5.0 + kElementary};
  template <class N>
  PXROM_INLINE static auto Value(const Constants&, N r2, N h) {
    const N t = Sqrt(r2) / (2.0 * h);
    return If(
        t <= 1.0, [&] { return WendlandOf(t); }, 0.0);
  }
  static double Slope(const Constants&, double r2, double h) {
    const double t = std::sqrt(r2) / (2.0 * h);
    return t <= 1.0 ? -5.0 / (h * h) * std::pow(1.0 - t, 3.0) : 0.0;
  }

  struct Fast : FastSquaredDistance {
    static double CentreFactor(const Constants&, double h) { return 0.5 / h; }
    template <class N>
    PXROM_INLINE static N Value(const Constants&, N r2, N factor) {
      const N t = Smaller(Sqrt(r2) * factor, N(1.0));
      const N u = 1.0 - t;
      const N square = u * u;
      return square * square * Fma(N(4.0), t, N(1.0));
    }
    static double Deviation(double d, double /*norm1*/, double /*norm2*/) { return 2.0 * d + 40.0; }
  };
};

/// t = min(1, r / (2 sqrt(d) rho)) in d inputs; a NaN counts as 1.
struct CompactWeight {
  explicit CompactWeight(const WeightSetting& setting)
      : rho(setting.rho), reach(std::sqrt(setting.inputs) * 2.0 * setting.rho) {}
  double At(double r) const { return WendlandOf(std::min(1.0, r / reach)); }
  WeightSlopes SlopesAt(double r) const {
    const double t = std::min(1.0, r / reach);
    const double rest = 1.0 - t;
    // The derivative by t is -20 t (1 - t)^3. The power is a product here, which is faster:
    // gradients are not defined to the last bit.
    const double cube = rest * rest * rest;
    return {cube * rest * (4.0 * t + 1.0), -20.0 * cube / (reach * reach),
            20.0 * t * t * cube / rho};
  }

  double rho;
  double reach;
};

}  // namespace Tarvane::Plexura::PXROM::kernels
