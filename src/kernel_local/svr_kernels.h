#pragma once

#include <cmath>
#include <cstddef>

#include "pxrom/support_vector.h"

namespace Tarvane::Plexura::PXROM {

// A kernel is a function of a sum over the inputs: Term is the summand for the values x and y of
// one input with its width, Value the kernel for the whole sum.

struct LinearKernel {
  static double Term(double x, double y, double) { return x * y; }
  double Value(double sum) const { return 1.0 + sum; }
};

struct QuadraticKernel {
  static double Term(double x, double y, double) { return x * y; }
  double Value(double sum) const { return (1.0 + sum) * (1.0 + sum); }
};

struct GaussianKernel {
  static double Term(double x, double y, double width) { return width * (x - y) * (x - y); }
  double Value(double sum) const { return std::exp(-sum); }
};

struct SigmoidKernel {
  explicit SigmoidKernel(std::size_t inputs) : slope(offset / static_cast<double>(inputs)) {}
  static double Term(double x, double y, double) { return x * y; }
  double Value(double sum) const { return std::tanh(slope * sum - offset); }
  double offset = std::exp(1.0);
  double slope;
};

struct ExponentialKernel {
  static double Term(double x, double y, double width) { return width * std::fabs(x - y); }
  double Value(double sum) const { return std::exp(-sum); }
};

struct EpanechnikovKernel {
  static double Term(double x, double y, double) { return (x - y) * (x - y); }
  // The argument is the squared distance, which is squared once more on purpose.
  double Value(double sum) const { return sum >= 1.0 ? 0.0 : 0.75 * (1.0 - sum * sum); }
};

/// Calls `use(kernel)` with the kernel of `type` in `inputs` inputs; false for an unknown type.
template <class Use>
bool WithKernel(E_SVRKernType type, std::size_t inputs, const Use& use) {
  switch (type) {
    case SVRKernLinear:
      use(LinearKernel());
      return true;
    case SVRKernQuadratic:
      use(QuadraticKernel());
      return true;
    case SVRKernGaussian:
      use(GaussianKernel());
      return true;
    case SVRKernSigmoid:
      use(SigmoidKernel(inputs));
      return true;
    case SVRKernExponential:
      use(ExponentialKernel());
      return true;
    case SVRKernEpanechnikov:
      use(EpanechnikovKernel());
      return true;
  }
  return false;
}

}  // namespace Tarvane::Plexura::PXROM
