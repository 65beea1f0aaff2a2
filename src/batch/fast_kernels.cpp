// The fast forms of kernels, and how far from the exact ones they may lead.

#include <algorithm>
#include <cmath>

#include "batch/kernel_surface.h"

namespace Tarvane::Plexura::PXROM::batch {

namespace {

constexpr double kUnit = 0x1p-53;  // what one rounding may do, relative
constexpr double kRoot5 = 0x1.1e3779b97f4a8p+1;
constexpr double kLog2OfE = 0x1.71547652b82fep+0;

bool AreModest(const std::vector<double>& values) {
  return std::all_of(values.begin(), values.end(),
                     [](double value) { return std::fabs(value) <= kLargestFast; });
}

bool HasFastForm(const KernelModel& model) {
  const auto isNegative = [](double v) { return !(v >= 0.0); };
  const auto isNotPositive = [](double v) { return !(v > 0.0); };
  switch (model.kernel) {
    case Kernel::Exponential:
    case Kernel::Gaussian:
    case Kernel::BesselJ0:
    case Kernel::Sinc:
      return std::none_of(model.kernels.begin(), model.kernels.end(), isNegative);
    case Kernel::Matern52:
      // A product takes the place of a sum of logarithms; it must not run out of range.
      return model.inputs <= 256 &&
             std::none_of(model.kernels.begin(), model.kernels.end(), isNegative);
    case Kernel::DotSigmoid:
      return true;
    case Kernel::RadialGaussian:
    case Kernel::RadialCompact:
    case Kernel::RadialSinc:
    case Kernel::RadialTanh:
      return std::none_of(model.widths.begin(), model.widths.end(), isNotPositive);
    default:
      return false;  // arithmetic alone, which is as fast in its exact form
  }
}

/// The factor of one input with the kernel k.
double FactorOf(Kernel kernel, double k) {
  switch (kernel) {
    case Kernel::Exponential:
      return k * kLog2OfE;
    case Kernel::Gaussian:
      return std::sqrt(k * kLog2OfE);
    case Kernel::Matern52:
      return kRoot5 * k;
    case Kernel::BesselJ0:
    case Kernel::Sinc:
      return k;
    default:
      return 1.0;
  }
}

/// The factor of the distance, or of its square, with the width h.
double WidthOf(const KernelModel& model, double h) {
  switch (model.kernel) {
    case Kernel::RadialGaussian:
      return kLog2OfE / (h * h);
    case Kernel::RadialCompact:
      return 0.5 / h;
    case Kernel::RadialSinc:
      return 4.0 / (h * h);
    default:
      return model.perInput / h;
  }
}

/// How far one kernel may be from the exact one, in units of kUnit. `norm1` and `norm2` are the
/// largest norms of a multiplied centre: a rounding there does not shrink with the difference of
/// point and centre. The factors bound what a function's slope times its argument comes to.
double KernelDeviation(Kernel kernel, double d, double norm1, double norm2) {
  switch (kernel) {
    case Kernel::Exponential:
      return 3.0 * norm1 + 2.0 * d + 20.0;
    case Kernel::Gaussian:
      return 3.0 * norm2 + d + 20.0;
    case Kernel::Matern52:
      return 2.0 * norm1 + 12.0 * d + 20.0;
    case Kernel::BesselJ0:
    case Kernel::Sinc:
      return 2.0 * norm1 + 50.0 * d;
    case Kernel::RadialGaussian:
    case Kernel::RadialTanh:
      return d + 20.0;
    case Kernel::RadialCompact:
    case Kernel::RadialSinc:
      return 2.0 * d + 40.0;
    default:
      return 20.0;
  }
}

}  // namespace

FastKernels FindFastKernels(const KernelModel& model) {
  const std::size_t d = model.inputs;
  if (d == 0 || model.centreCount == 0 || !HasFastForm(model)) return {};

  FastKernels fast;
  for (const double k : model.kernels) fast.factors.push_back(FactorOf(model.kernel, k));
  for (const double h : model.widths) fast.widths.push_back(WidthOf(model, h));
  fast.centres = model.centres;
  double norm1 = 0.0;
  double norm2 = 0.0;
  for (std::size_t j = 0; j < model.centreCount; ++j) {
    double sum = 0.0;
    double squares = 0.0;
    for (std::size_t i = 0; i < d; ++i) {
      double& value = fast.centres[j * d + i];
      value *= fast.factors[i];
      sum += std::fabs(value);
      squares += value * value;
    }
    norm1 = std::max(norm1, sum);
    norm2 = std::max(norm2, std::sqrt(squares));
  }
  if (!AreModest(fast.factors) || !AreModest(fast.centres) || !AreModest(fast.widths)) return {};

  double weight = 0.0;
  for (const double w : model.weights) weight += std::fabs(w);
  const double perKernel = KernelDeviation(model.kernel, static_cast<double>(d), norm1, norm2);
  // Rounding errors of a long sum grow with the root of its length, in all likelihood: eight times
  // that leaves no more than one in 10^13 sums beyond.
  const double perSum = 8.0 * std::sqrt(static_cast<double>(model.centreCount));
  fast.deviation = (perKernel + perSum) * weight * kUnit;
  if (!std::isfinite(fast.deviation)) return {};
  return fast;
}

}  // namespace Tarvane::Plexura::PXROM::batch
