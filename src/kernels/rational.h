#pragma once

#include "kernels/shapes.h"
#include "kernels/weights.h"

namespace Tarvane::Plexura::PXROM::kernels {

/// 1 / (z^2 + 1), the inverse quadratic: the rational quadratic kernel for alpha = 1. Rasmussen and
/// Williams, Gaussian Processes for Machine Learning (2006), equation 4.19.
template <class N>
PXROM_INLINE N RationalOf(N square) {
  return 1.0 / (square + 1.0);
}

/// Of z = r / h.
struct RadialRational : Radial {
  static constexpr const char* kName = "radial rational";
  static constexpr Operations kOperations = {3.0, 10.0};
  template <class N>
  PXROM_INLINE static N Value(const Constants&, N r2, N h) {
    return RationalOf(r2 / (h * h));
  }
  static double Slope(const Constants& constants, double r2, double h) {
    const double value = Value(constants, r2, h);
    return -2.0 / (h * h) * value * value;
  }
};

/// Of the scaled distance.
struct InverseQuadratic : Distance {
  static constexpr const char* kName = "inverse quadratic";
  static constexpr Operations kOperations = {4.0, 3.0};
  template <class N>
  PXROM_INLINE static N Value(const Constants&, N r2, N) {
    return RationalOf(r2);
  }
  static double Slope(const Constants&, double r2) {
    const double value = RationalOf(r2);
    return -2.0 * value * value;
  }
};

/// (1 + r^2 / 2 a)^-a, as an exponential: the power would magnify the rounding of its base by a.
struct RationalQuadratic : Distance {
  static constexpr const char* kName = "rational quadratic";
  static constexpr Operations kOperations = {4.0, 5.0 + 2.0 * kElementary};
  static Constants ConstantsFor(double /*inputs*/) { return {0.0, 0.0, 1.0, simd::FormOfLog1p()}; }
  template <class N>
  PXROM_INLINE static auto Value(const Constants& constants, N r2, N) {
    const double a = constants.parameter;
    return ExpOfMinus(Log1p(r2 / (2.0 * a), constants.hostForm) * a);
  }
  static double Slope(const Constants& constants, double r2) {
    const double a = constants.parameter;
    return -std::exp(-((a + 1.0) * std::log1p(r2 / (2.0 * a))));
  }

  struct Fast : FastSquaredDistance {
    static double InputFactor(double scale) { return scale; }
    template <class N>
    PXROM_INLINE static N Value(const Constants& constants, N r2, N) {
      const double a = constants.parameter;
      return Exp2OfMinus(a * Log2OfOnePlus(r2 * (0.5 / a)));
    }
    static double Deviation(double d, double /*norm1*/, double norm2) {
      return 3.0 * norm2 + 2.0 * d + 40.0;
    }
  };
};

/// Of z = r / rho; in the old version of z = r / 2, without rho.
struct RationalWeight {
  explicit RationalWeight(const WeightSetting& setting)
      : dependsOnReference(!setting.isOld), scale(setting.isOld ? 2.0 : setting.rho) {}
  double At(double r) const {
    const double z = r / scale;
    return RationalOf(z * z);
  }
  WeightSlopes SlopesAt(double r) const {
    const double z = r / scale;
    const double value = At(r);
    const double slope = -2.0 * value * value;
    return {value, slope / (scale * scale), dependsOnReference ? -slope * z * z / scale : 0.0};
  }

  bool dependsOnReference;
  double scale;
};

}  // namespace Tarvane::Plexura::PXROM::kernels
