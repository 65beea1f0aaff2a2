#pragma once

#include "kernels/shapes.h"

namespace Tarvane::Plexura::PXROM::kernels {

/// Product of (1 + t + t^2 / 3) exp(-t), t = sqrt(5) k |x - y|, computed as exp(-sum) with the
/// terms t - log(1 + t + t^2 / 3). The Matern kernel with nu = 5 / 2 of each input. Rasmussen and
/// Williams, Gaussian Processes for Machine Learning (2006), equation 4.17.
struct Matern52 : ExpOfSum {
  static constexpr const char* kName = "matern 5/2";
  static constexpr Operations kOperations = {10.0 + kElementary, kElementary};
  static constexpr bool kAsksPerInput = true;
  static constexpr double kRoot5 = 0x1.1e3779b97f4a8p+1;
  template <class N>
  PXROM_INLINE static N Distance(N distance, N scale) {
    return kRoot5 * (scale * distance);
  }
  template <class N>
  PXROM_INLINE static N Argument(N t) {
    return 1.0 + t + Third(t * t);
  }
  template <class N>
  PXROM_INLINE static auto Inner(N argument) {
    return Log(argument);
  }
  template <class N, class Log>
  PXROM_INLINE static N Term(N t, const Log& log) {
    return t - log();
  }
  static double Descent(double difference, double scale) {
    const double t = kRoot5 * (scale * std::fabs(difference));
    return kRoot5 * scale * SignOf(difference) * (t + t * t) / (3.0 + 3.0 * t + t * t);
  }

  /// Without logarithms: a product beside the sum.
  struct Fast : AnyFast {
    // The product grows more slowly than exp of the sum, so where it overflows the kernel is 0.
    // With too many inputs it could overflow earlier.
    static constexpr std::size_t kMostInputs = 256;
    template <class N>
    struct State {
      N sum;
      N product;
    };
    static double InputFactor(double scale) { return kRoot5 * scale; }
    template <class N>
    PXROM_INLINE static State<N> Start() {
      return {0.0, 1.0};
    }
    template <class N>
    PXROM_INLINE static State<N> Step(State<N> state, N x, N y) {
      const N t = Abs(x - y);
      const N factor = Fma(t, Fma(t, N(1.0 / 3.0), N(1.0)), N(1.0));
      return {state.sum + t, state.product * factor};
    }
    template <class N>
    PXROM_INLINE static N Value(const Constants&, State<N> state, N) {
      const N kernelValue = Exp2OfMinus(state.sum * kLog2OfE) * state.product;
      return Select(state.sum < 690.0, kernelValue, N(0.0));
    }
    static double Deviation(double d, double norm1, double /*norm2*/) {
      return 2.0 * norm1 + 12.0 * d + 20.0;
    }
  };
};

/// (1 + t + t^2 / 3) exp(-t), t = sqrt(5) r, of the distance.
struct Matern52OfDistance : Distance {
  static constexpr const char* kName = "matern 5/2 of distance";
  static constexpr Operations kOperations = {4.0, 12.0 + kElementary};
  template <class N>
  PXROM_INLINE static auto Value(const Constants&, N r2, N) {
    const N t = Matern52::kRoot5 * Sqrt(r2);
    return ExpTimes(t, 1.0 + t + Third(t * t));
  }
  static double Slope(const Constants&, double r2) {
    const double t = Matern52::kRoot5 * std::sqrt(r2);
    return ExpTimes(t, -5.0 / 3.0 * (1.0 + t));
  }

  struct Fast : FastSquaredDistance {
    static double InputFactor(double scale) { return Matern52::kRoot5 * kLog2OfE * scale; }
    /// q = t log2(e), so that exp(-t) is a power of 2.
    template <class N>
    PXROM_INLINE static N Value(const Constants&, N r2, N) {
      const N q = Sqrt(r2);
      return Exp2OfMinus(q) *
             Fma(q, Fma(q, N(1.0 / (3.0 * kLog2OfE * kLog2OfE)), N(1.0 / kLog2OfE)), N(1.0));
    }
    static double Deviation(double d, double /*norm1*/, double norm2) {
      return 2.0 * norm2 + d + 40.0;
    }
  };
};

}  // namespace Tarvane::Plexura::PXROM::kernels
