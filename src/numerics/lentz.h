#pragma once

#include <cmath>

/// What the two continued fractions, both evaluated by the modified Lentz method, have in common.
namespace lentz {

inline constexpr int kMostRounds = 100;
inline constexpr double kTiny = 1e-30;  ///< takes the place of a denominator that vanishes

inline double AwayFromZero(double denominator) {
  return std::fabs(denominator) < kTiny ? kTiny : denominator;
}

/// Whether the factor of a round still changes the product. False for a factor that is no number.
inline bool HasConverged(double factor) { return std::fabs(factor - 1.0) < 3e-07; }

}  // namespace lentz
