#pragma once

#include "kernels/shapes.h"

namespace Tarvane::Plexura::PXROM::kernels {

/// (1 + t) exp(-t), t = sqrt(3) r, the Matern kernel for nu = 3 / 2 of the distance. Rasmussen and
/// Williams, Gaussian Processes for Machine Learning (2006), equation 4.17.
struct Matern32OfDistance : Distance {
  static constexpr const char* kName = "matern 3/2 of distance";
  static constexpr Operations kOperations = {4.0, 9.0 + kElementary};
  static constexpr double kRoot3 = 0x1.bb67ae8584caap+0;
  template <class N>
  PXROM_INLINE static auto Value(const Constants&, N r2, N) {
    const N t = kRoot3 * Sqrt(r2);
    return ExpTimes(t, 1.0 + t);
  }
  static double Slope(const Constants&, double r2) {
    return -3.0 * std::exp(-(kRoot3 * std::sqrt(r2)));
  }

  struct Fast : FastSquaredDistance {
    static double InputFactor(double scale) { return kRoot3 * kLog2OfE * scale; }
    /// q = t log2(e), so that exp(-t) is a power of 2.
    template <class N>
    PXROM_INLINE static N Value(const Constants&, N r2, N) {
      const N q = Sqrt(r2);
      return Exp2OfMinus(q) * Fma(q, N(1.0 / kLog2OfE), N(1.0));
    }
    static double Deviation(double d, double /*norm1*/, double norm2) {
      return 2.0 * norm2 + d + 40.0;
    }
  };
};

}  // namespace Tarvane::Plexura::PXROM::kernels
