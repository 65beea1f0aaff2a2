#pragma once

#include "kernels/shapes.h"

namespace Tarvane::Plexura::PXROM::kernels {

/// exp(-sum of k |x - y|), the exponential or Laplacian kernel. Rasmussen and Williams, Gaussian
/// Processes for Machine Learning (2006), equation 4.18, with a rate per input.
struct Exponential : ExpOfSum {
  static constexpr const char* kName = "exponential";
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

}  // namespace Tarvane::Plexura::PXROM::kernels
