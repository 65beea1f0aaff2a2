#pragma once

#include "kernels/weights.h"

namespace Tarvane::Plexura::PXROM::kernels {

/// 1: the weights of an ordinary least squares fit.
struct ConstantWeight {
  explicit ConstantWeight(const WeightSetting&) {}
  static double At(double /*r*/) { return 1.0; }
  static WeightSlopes SlopesAt(double /*r*/) { return {1.0, 0.0, 0.0}; }
};

}  // namespace Tarvane::Plexura::PXROM::kernels
