#pragma once

#include "kernels/shapes.h"

namespace Tarvane::Plexura::PXROM::kernels {

/// tanh(e / d x . y - e) in d inputs, e = exp(1): the sigmoid kernel. Schoelkopf and Smola,
/// Learning with Kernels (2002), section 2.3.
struct DotSigmoid : Dot {
  static constexpr const char* kName = "dot sigmoid";
  static constexpr Operations kOperations = {6.0, kElementary};
  static Constants ConstantsFor(double inputs) {
    const double e = std::exp(1.0);
    return {e, e / inputs, 1.0, simd::FormOfTanh()};
  }
  template <class N>
  PXROM_INLINE static auto Value(const Constants& constants, N dot, N) {
    return Tanh(constants.perInput * dot - constants.shift, constants.hostForm);
  }
  static double Slope(const Constants& constants, double dot) {
    const double hyperbolic = std::cosh(constants.perInput * dot - constants.shift);
    return constants.perInput / (hyperbolic * hyperbolic);
  }

  struct Fast : FastSum {
    // Summed as in the exact form, since nothing bounds the cancellation.
    template <class N>
    PXROM_INLINE static N Step(N sum, N x, N y) {
      return sum + x * y;
    }
    template <class N>
    PXROM_INLINE static N Value(const Constants& constants, N sum, N) {
      return HyperbolicTangent(constants.perInput * sum - constants.shift);
    }
    static double Deviation(double /*d*/, double /*norm1*/, double /*norm2*/) { return 20.0; }
  };
};

/// tanh(r / d / h) in d inputs, which grows with the distance. The hidden unit of a neural network,
/// applied to the distance: Haykin, Neural Networks (1999), section 1.3.
struct RadialTanh : Radial {
  static constexpr const char* kName = "radial tanh";
  static constexpr Operations kOperations = {3.0, 5.0 + kElementary};
  static Constants ConstantsFor(double inputs) {
    return {0.0, 1.0 / inputs, 1.0, simd::FormOfTanh()};
  }
  template <class N>
  PXROM_INLINE static auto Value(const Constants& constants, N r2, N h) {
    return Tanh(Sqrt(r2) * constants.perInput / h, constants.hostForm);
  }
  static double Slope(const Constants& constants, double r2, double h) {
    const double r = std::sqrt(r2);
    if (r == 0.0) return 0.0;
    const double hyperbolic = std::cosh(r * constants.perInput / h);
    return constants.perInput / h / (hyperbolic * hyperbolic) / r;
  }

  struct Fast : FastSquaredDistance {
    static double CentreFactor(const Constants& constants, double h) {
      return constants.perInput / h;
    }
    template <class N>
    PXROM_INLINE static N Value(const Constants&, N r2, N factor) {
      return HyperbolicTangent(Sqrt(r2) * factor);
    }
    static double Deviation(double d, double /*norm1*/, double /*norm2*/) { return d + 20.0; }
  };
};

}  // namespace Tarvane::Plexura::PXROM::kernels
