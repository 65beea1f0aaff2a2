#pragma once

#include <cmath>

#include "kernels/weights.h"

namespace Tarvane::Plexura::PXROM::kernels {

/// 1 / |z + 0.01|, z = r / rho, inverse distances that stay finite. Shepard, A two-dimensional
/// interpolation function for irregularly-spaced data, Proceedings of the 23rd ACM National
/// Conference (1968).
struct InverseWeight {
  explicit InverseWeight(const WeightSetting& setting) : rho(setting.rho) {}
  double At(double r) const { return 1.0 / std::fabs(r / rho + 0.01); }
  WeightSlopes SlopesAt(double r) const {
    const double z = r / rho;
    const double value = At(r);
    const double slope = -value / (z + 0.01);
    return {value, r == 0.0 ? 0.0 : slope / (rho * r), -slope * z / rho};
  }

  double rho;
};

}  // namespace Tarvane::Plexura::PXROM::kernels
