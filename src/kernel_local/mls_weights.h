#pragma once

#include <algorithm>
#include <cmath>

#include "pxrom/moving_least_squares.h"

namespace Tarvane::Plexura::PXROM {

/// Calls `use(weight)`, where weight(r) is the weight of `function` at distance r, with the
/// reference distance `rho` and `d` inputs. The versions differ in two formulas; an unknown
/// function weighs 0.
template <class Use>
void WithWeight(E_CMLSDataVersion version, E_WeightFunction function, double rho, double d,
                const Use& use) {
  const bool isOld = version == MLSDataVersion162;
  switch (function) {
    case WeightConstant:
      return use([](double) { return 1.0; });
    case WeightGaussian: {
      const double sharpness = isOld ? -20.0 : -1.0;
      return use([=](double r) {
        const double z = r / rho;
        return std::exp(sharpness * z * z);
      });
    }
    case WeightCompact: {
      const double reach = std::sqrt(d) * 2.0 * rho;
      return use([=](double r) {
        const double t = std::min(1.0, r / reach);
        return std::pow(1.0 - t, 4.0) * (4.0 * t + 1.0);
      });
    }
    case WeightRational:
      if (isOld) return use([](double r) { return 1.0 / ((r * 0.5) * (r * 0.5) + 1.0); });
      return use([=](double r) {
        const double z = r / rho;
        return 1.0 / (z * z + 1.0);
      });
    case WeightInverse:
      return use([=](double r) { return 1.0 / std::fabs(r / rho + 0.01); });
  }
  use([](double) { return 0.0; });
}

}  // namespace Tarvane::Plexura::PXROM
