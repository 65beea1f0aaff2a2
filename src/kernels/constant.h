#pragma once

#include "kernels/shapes.h"
#include "kernels/weights.h"

namespace Tarvane::Plexura::PXROM::kernels {

/// 1: the weights of an ordinary least squares fit.
struct ConstantWeight {
  explicit ConstantWeight(const WeightSetting&) {}
  static double At(double /*r*/) { return 1.0; }
  static WeightSlopes SlopesAt(double /*r*/) { return {1.0, 0.0, 0.0}; }
};

/// 1 at any distance.
struct ConstantOfDistance : Distance {
  static constexpr const char* kName = "constant";
  static constexpr Operations kOperations = {4.0, 1.0};
  template <class N>
  PXROM_INLINE static N Value(const Constants&, N, N) {
    return 1.0;
  }
  static double Slope(const Constants&, double /*r2*/) { return 0.0; }
};

}  // namespace Tarvane::Plexura::PXROM::kernels
