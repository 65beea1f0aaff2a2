#pragma once

#include <cmath>

/// What the two continued fractions share. Both use the modified Lentz method: Press et al.,
/// Numerical Recipes in C (1992), section 5.2.
namespace lentz {

inline constexpr int kMostRounds = 100;
inline constexpr double kTiny = 1e-30;  ///< takes the place of a denominator that vanishes

inline double AwayFromZero(double denominator) {
  return std::fabs(denominator) < kTiny ? kTiny : denominator;
}

/// Whether the factor of a round no longer changes the product. False for a NaN.
inline bool HasConverged(double factor) { return std::fabs(factor - 1.0) < 3e-07; }

}  // namespace lentz
