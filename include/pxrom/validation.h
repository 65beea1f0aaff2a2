#pragma once

#include <array>
#include <cstddef>
#include <limits>

#include "pxrom/export.h"

namespace Tarvane::Plexura::PXROM {

/// How well predictions of one output agree with measurements, over the pairs that were compared.
/// A difference is the predicted value minus the measured one. All numbers but r2 are in the unit
/// of the output, and NaN without a pair.
struct CPredictionScores {
  /// The number of pairs that were compared.
  std::size_t count = 0;
  /// Rows without a measured value, and rows with one that have no prediction.
  std::size_t missing = 0;
  std::size_t failed = 0;

  /// The coefficient of determination: 1 - sum of squared differences / sum of squared deviations
  /// of the measured values from their mean. NaN, since it is undefined, when all measured values
  /// are equal; a single pair is such a case.
  double r2 = std::numeric_limits<double>::quiet_NaN();
  /// The root of the mean squared difference.
  double rmse = std::numeric_limits<double>::quiet_NaN();
  double meanAbsoluteError = std::numeric_limits<double>::quiet_NaN();
  double largestAbsoluteError = std::numeric_limits<double>::quiet_NaN();
  /// The mean difference: positive if the predictions are too large.
  double bias = std::numeric_limits<double>::quiet_NaN();

  /// The pairs that have a predicted error, and how many of these differ by at most one, two and
  /// three predicted errors.
  std::size_t withError = 0;
  std::array<std::size_t, 3> within{};
};

/// Compares predictions of one output with measurements, pair by pair, in constant memory. The
/// scores depend on the order of the pairs by rounding only.
///
/// The deviations of the measured values are summed by Welford's method (B. P. Welford, Note on a
/// method for calculating corrected sums of squares and products, Technometrics 4, 1962), so a
/// large mean takes no digits from r2.
///
/// Threads: no shared state.
class PXROM_API CPredictionComparison {
 public:
  /// Adds a pair. A `measured` that is not finite counts as missing, otherwise a `predicted` that
  /// is not finite as failed. `error` is in the unit of the output, NaN for a missing error; its
  /// sign does not matter.
  void Add(double measured, double predicted,
           double error = std::numeric_limits<double>::quiet_NaN());
  CPredictionScores Scores() const;

 private:
  CPredictionScores counts_;
  double first_ = 0.0;
  double mean_ = 0.0;  ///< of the differences from the first
  double squaredDeviations_ = 0.0;
  double squaredDifferences_ = 0.0;
  double absoluteDifferences_ = 0.0;
  double differences_ = 0.0;
  double largest_ = 0.0;
};

}  // namespace Tarvane::Plexura::PXROM
