#pragma once

#include "kernels/shapes.h"

namespace Tarvane::Plexura::PXROM::kernels {

/// exp(-sum of k |x - y|), the exponential or Laplacian kernel. Rasmussen and Williams, Gaussian
/// Processes for Machine Learning (2006), equation 4.18, with a rate per input.
struct Exponential : ExpOfSum {
  static constexpr const char* kName = "exponential";
  static constexpr Operations kOperations = {7.0, kElementary};
  template <class N>
  PXROM_INLINE static N Term(N difference, N scale) {
    return scale * Abs(difference);
  }
  static double Descent(double difference, double scale) { return scale * SignOf(difference); }

  struct Fast : FastSum {
    static double InputFactor(double scale) { return scale * kLog2OfE; }
    template <class N>
    PXROM_INLINE static N Step(N sum, N x, N y) {
      return sum + Abs(x - y);
    }
    template <class N>
    PXROM_INLINE static N Value(const Constants&, N sum, N) {
      return Exp2OfMinus(sum);
    }
    static double Deviation(double d, double norm1, double /*norm2*/) {
      return 3.0 * norm1 + 2.0 * d + 20.0;
    }
  };
};

/// exp(-r), the same of the distance: the Matern kernel for nu = 1 / 2, equation 4.18.
struct ExponentialOfDistance : Distance {
  static constexpr const char* kName = "exponential of distance";
  static constexpr Operations kOperations = {4.0, 6.0 + kElementary};
  template <class N>
  PXROM_INLINE static auto Value(const Constants&, N r2, N) {
    return ExpOfMinus(Sqrt(r2));
  }
  static double Slope(const Constants&, double r2) {
    const double r = std::sqrt(r2);
    return r2 == 0.0 ? 0.0 : -std::exp(-r) / r;
  }

  struct Fast : FastSquaredDistance {
    static double InputFactor(double scale) { return scale * kLog2OfE; }
    template <class N>
    PXROM_INLINE static N Value(const Constants&, N r2, N) {
      return Exp2OfMinus(Sqrt(r2));
    }
    static double Deviation(double d, double /*norm1*/, double norm2) {
      return 3.0 * norm2 + d + 30.0;
    }
  };
};

/// exp(-r^a). Rasmussen and Williams (2006), equation 4.18, the gamma-exponential.
struct PowerExponential : Distance {
  static constexpr const char* kName = "power exponential";
  static constexpr Operations kOperations = {4.0, 4.0 + 2.0 * kElementary};
  template <class N>
  PXROM_INLINE static auto Value(const Constants& constants, N r2, N) {
    return ExpOfMinus(Power(r2, 0.5 * constants.parameter));
  }
  static double Slope(const Constants& constants, double r2) {
    if (r2 == 0.0) return 0.0;
    const double power = std::pow(r2, 0.5 * constants.parameter);
    return -constants.parameter * power / r2 * std::exp(-power);
  }
};

}  // namespace Tarvane::Plexura::PXROM::kernels
