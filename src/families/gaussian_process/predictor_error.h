#pragma once

#include <cstddef>
#include <vector>

#include "pxrom/gaussian_process.h"

namespace Tarvane::Plexura::PXROM::gaussian_process {

/// The standard deviation of a record in scaled space: CGaussianProcessData has the formula. It
/// refers to the record, which must outlive it.
class PredictorError {
 public:
  /// `functions` is the number of trend functions.
  PredictorError(const CGaussianProcessData& record, std::size_t functions);

  /// Whether the record holds the data of an error, in their sizes.
  bool IsAvailable() const;

  // Only if it is available.

  /// Values that Variance works with, and leaves for GradientWeights.
  std::size_t WorkSize() const { return samples_ + 2 * functions_; }
  /// The variance of the function at a point, from its covariances with the samples, the trend
  /// functions there and its covariance with itself.
  double Variance(const double* covariances, const double* f, double atDistance0,
                  double* work) const;
  /// The standard deviation, with the noise if the record says so.
  double Of(double variance) const;
  /// The gradient of the standard deviation is that of the sum of kernelWeights[j] k(u, u_j) and
  /// trendWeights[k] f_k(u). All are 0 where the variance is no more than rounding leaves of it:
  /// there the standard deviation has its kink, and the mean of all sides is 0.
  void GradientWeights(double variance, double atDistance0, double* work, double* kernelWeights,
                       double* trendWeights) const;

 private:
  const CGaussianProcessData& record_;
  std::size_t samples_;
  std::size_t functions_;  ///< 0 for a trend that is known
};

}  // namespace Tarvane::Plexura::PXROM::gaussian_process
