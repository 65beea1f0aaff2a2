#pragma once

#include <cstddef>
#include <vector>

#include "pxrom/gaussian_process.h"
#include "records/prepared_surface.h"

namespace Tarvane::Plexura::PXROM::gaussian_process {

/// The data of an error, laid out for the points of a block.
class PreparedError {
 public:
  /// The record has the data of an error (PredictorError::IsAvailable).
  explicit PreparedError(const CGaussianProcessData& record);

  std::size_t FunctionCount() const { return functions_; }
  std::size_t WorkSize() const { return (samples_ + 2 * functions_) * batch::kBlock; }
  /// As PredictorError::Variance at each point, but open where that is infinite or no number.
  /// `covariances` and `f` have a block for each sample and for each trend function.
  void Variances(const batch::LoopTable& loops, std::size_t points, const double* covariances,
                 const double* f, double atDistance0, double* work, double* variances) const;

 private:
  std::size_t samples_;
  std::size_t functions_;  ///< 0 for a trend that is known
  /// Square, with zeros above the diagonal, and how many columns of each row are not among these.
  std::vector<double> inverse_;
  std::vector<double> trendInverse_;
  std::vector<std::size_t> lengths_;
  /// Row by row, with the sign turned.
  std::vector<double> trendAtSamples_;
};

}  // namespace Tarvane::Plexura::PXROM::gaussian_process
