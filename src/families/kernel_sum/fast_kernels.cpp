// Prepares models for the fast forms of their kernels, and bounds the deviation from the exact
// forms.

#include <algorithm>
#include <cmath>

#include "families/kernel_sum/kernel_surface.h"

namespace Tarvane::Plexura::PXROM::batch {

namespace {

constexpr double kUnit = 0x1p-53;  // the relative error of one rounding

bool AreModest(const std::vector<double>& values) {
  return std::all_of(values.begin(), values.end(),
                     [](double value) { return std::fabs(value) <= kLargestFast; });
}

bool HasFastForm(const KernelModel& model) {
  const auto isNegative = [](double v) { return !(v >= 0.0); };
  const auto isNotPositive = [](double v) { return !(v > 0.0); };
  if (model.kernel->fast == nullptr || model.inputs > model.kernel->fast->mostInputs) return false;
  switch (model.kernel->shape) {
    case kernels::Shape::ExpOfSum:
    case kernels::Shape::Product:
    case kernels::Shape::Distance:
      return std::none_of(model.scales.begin(), model.scales.end(), isNegative);
    case kernels::Shape::Radial:
      return std::none_of(model.centreScales.begin(), model.centreScales.end(), isNotPositive);
    case kernels::Shape::Dot:
      break;
  }
  return true;
}

}  // namespace

FastKernels FindFastKernels(const KernelModel& model) {
  const std::size_t d = model.inputs;
  if (d == 0 || model.centreCount == 0 || !HasFastForm(model)) return {};

  const kernels::FastForm& form = *model.kernel->fast;
  FastKernels fast;
  for (const double scale : model.scales) fast.inputFactors.push_back(form.inputFactor(scale));
  for (const double scale : model.centreScales) {
    fast.centreFactors.push_back(form.centreFactor(model.constants, scale));
  }
  fast.centres = model.centres;
  double norm1 = 0.0;
  double norm2 = 0.0;
  for (std::size_t j = 0; j < model.centreCount; ++j) {
    double sum = 0.0;
    double squares = 0.0;
    for (std::size_t i = 0; i < d; ++i) {
      double& value = fast.centres[j * d + i];
      value *= fast.inputFactors[i];
      sum += std::fabs(value);
      squares += value * value;
    }
    norm1 = std::max(norm1, sum);
    norm2 = std::max(norm2, std::sqrt(squares));
  }
  if (!AreModest(fast.inputFactors) || !AreModest(fast.centres) || !AreModest(fast.centreFactors)) {
    return {};
  }

  double weight = 0.0;
  for (const double w : model.weights) weight += std::fabs(w);
  const double perKernel = form.deviation(static_cast<double>(d), norm1, norm2);
  // The rounding errors of a long sum very probably grow with the root of its length (Higham,
  // Accuracy and Stability of Numerical Algorithms, 2002, section 2.8). With the factor 8, about
  // one sum in 10^13 exceeds the bound.
  const double perSum = 8.0 * std::sqrt(static_cast<double>(model.centreCount));
  fast.deviation = (perKernel + perSum) * weight * kUnit;
  if (!std::isfinite(fast.deviation)) return {};
  return fast;
}

}  // namespace Tarvane::Plexura::PXROM::batch
