#pragma once

// The gradients of weighted kernels with respect to the scaled point, from the derivatives in
// closed form.

#include "kernels/loops/loop_table.h"

namespace Tarvane::Plexura::PXROM::kernels {

template <class K>
void AddGradientOfExpOfSum(const WeightedKernels& call, std::size_t centre, const double* u,
                           double* gradient) {
  const double* const y = call.centres + centre * call.inputs;
  double sum = K::kStart;
  for (std::size_t i = 0; i < call.inputs; ++i) {
    sum = Step<K>(call.constants, sum, u[i], y[i], call.scales[i]);
  }
  const double factor = -call.weights[centre] * K::Value(call.constants, sum, 1.0);
  for (std::size_t i = 0; i < call.inputs; ++i) {
    gradient[i] += factor * K::Descent(u[i] - y[i], call.scales[i]);
  }
}

/// One factor of a product, and its derivative by the distance.
struct FactorSlope {
  double value = 0.0;
  double slope = 0.0;
};

template <class K>
FactorSlope FactorSlopeOf(const Constants& constants, double distance, double scale) {
  if constexpr (K::kAsksPerInput) {
    const double z = K::Distance(distance, scale);
    if (!K::IsInside(z)) return {};
    return {K::Factor(constants, z, [&] { return K::Inner(K::Argument(z)); }),
            K::Slope(constants, z, scale)};
  } else {
    if constexpr (K::kHasEnd) {
      if (!K::IsInside(distance, scale)) return {};
    }
    return {K::Factor(distance, scale), K::Slope(distance, scale)};
  }
}

template <class K>
void AddGradientOfProduct(const WeightedKernels& call, std::size_t centre, const double* u,
                          double* work, double* gradient) {
  // The products of the factors before and after each factor. Dividing the whole product by a
  // factor would fail for a factor of 0.
  const std::size_t d = call.inputs;
  const double* const y = call.centres + centre * d;
  double* const before = work;
  double* const values = work + d;
  double* const slopes = work + 2 * d;
  double product = call.weights[centre];
  for (std::size_t i = 0; i < d; ++i) {
    const double difference = u[i] - y[i];
    const FactorSlope factor =
        FactorSlopeOf<K>(call.constants, std::fabs(difference), call.scales[i]);
    before[i] = product;
    values[i] = factor.value;
    slopes[i] = difference == 0.0 ? 0.0 : factor.slope * SignOf(difference);
    product *= factor.value;
  }
  double after = 1.0;
  for (std::size_t i = d; i-- > 0;) {
    gradient[i] += before[i] * slopes[i] * after;
    after *= values[i];
  }
}

template <class K>
void AddGradientOfDot(const WeightedKernels& call, std::size_t centre, const double* u,
                      double* gradient) {
  const double* const y = call.centres + centre * call.inputs;
  double dot = 0.0;
  for (std::size_t i = 0; i < call.inputs; ++i) dot += u[i] * y[i];
  const double factor = call.weights[centre] * K::Slope(call.constants, dot);
  for (std::size_t i = 0; i < call.inputs; ++i) gradient[i] += factor * y[i];
}

/// K::Slope is the derivative with respect to half the squared distance. It has a kink at the
/// centre only if the function itself has one.
template <class K>
void AddGradientOfRadial(const WeightedKernels& call, std::size_t centre, const double* u,
                         double* gradient) {
  const double* const y = call.centres + centre * call.inputs;
  double r2 = 0.0;
  for (std::size_t i = 0; i < call.inputs; ++i) r2 += (u[i] - y[i]) * (u[i] - y[i]);
  const double scale = call.centreScales != nullptr ? call.centreScales[centre] : 1.0;
  const double factor = call.weights[centre] * K::Slope(call.constants, r2, scale);
  for (std::size_t i = 0; i < call.inputs; ++i) gradient[i] += factor * (u[i] - y[i]);
}

/// K::Slope is the derivative by half the squared scaled distance, as of a radial kernel.
template <class K>
void AddGradientOfDistance(const WeightedKernels& call, std::size_t centre, const double* u,
                           double* gradient) {
  const double* const y = call.centres + centre * call.inputs;
  double r2 = 0.0;
  for (std::size_t i = 0; i < call.inputs; ++i) {
    r2 = Step<K>(call.constants, r2, u[i], y[i], call.scales[i]);
  }
  const double factor = call.weights[centre] * K::Slope(call.constants, r2);
  for (std::size_t i = 0; i < call.inputs; ++i) {
    gradient[i] += factor * ((u[i] - y[i]) * call.scales[i]) * call.scales[i];
  }
}

template <class K>
void AddGradients(const WeightedKernels& call, const double* u, [[maybe_unused]] double* work,
                  double* gradient) {
  for (std::size_t j = 0; j < call.centreCount; ++j) {
    if constexpr (K::kShape == Shape::ExpOfSum) {
      AddGradientOfExpOfSum<K>(call, j, u, gradient);
    } else if constexpr (K::kShape == Shape::Product) {
      AddGradientOfProduct<K>(call, j, u, work, gradient);
    } else if constexpr (K::kShape == Shape::Dot) {
      AddGradientOfDot<K>(call, j, u, gradient);
    } else if constexpr (K::kShape == Shape::Distance) {
      AddGradientOfDistance<K>(call, j, u, gradient);
    } else {
      AddGradientOfRadial<K>(call, j, u, gradient);
    }
  }
}

}  // namespace Tarvane::Plexura::PXROM::kernels
