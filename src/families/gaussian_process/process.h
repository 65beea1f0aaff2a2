#pragma once

#include <cstddef>
#include <vector>

#include "families/gaussian_process/covariance.h"
#include "families/gaussian_process/predictor_error.h"
#include "families/gaussian_process/trend.h"

namespace Tarvane::Plexura::PXROM::gaussian_process {

/// A record and what its evaluations are made of. The record must outlive it.
class Process {
 public:
  explicit Process(const CGaussianProcessData& record);

  /// Whether everything that the value needs is there and of one size; the scaling is not looked
  /// at.
  bool Fits() const;

  // Only if it fits.

  std::size_t SampleCount() const { return samples_; }
  const Covariance& Kernel() const { return covariance_; }
  const Trend& TrendPart() const { return trend_; }
  const PredictorError& ErrorPart() const { return error_; }

  /// Adds the gradient at the scaled point `u` of the weighted covariances with the scaled centres
  /// and of the weighted trend functions to `gradient`. `work` has room for GradientWorkSize
  /// values.
  void AddGradient(const double* u, const double* centres, const double* kernelWeights,
                   const double* trendWeights, double* work, double* gradient) const;
  std::size_t GradientWorkSize() const { return covariance_.GradientWorkSize(); }

  /// The scaled samples, row by row. The record has a scaling of as many inputs.
  std::vector<double> Centres() const;

 private:
  const CGaussianProcessData& record_;
  std::size_t samples_;
  Trend trend_;
  Covariance covariance_;
  PredictorError error_;
};

}  // namespace Tarvane::Plexura::PXROM::gaussian_process
