#pragma once

#include <cstddef>
#include <vector>

#include "kernels/kernels.h"
#include "pxrom/kriging.h"

namespace Tarvane::Plexura::PXROM::kriging {

/// Samples that are scaled while they are read: slope x + intercept for each input.
struct ScaledRows {
  const std::vector<double>* rows;
  std::size_t count;
  const double* slopes;
  const double* intercepts;
};

/// The correlation function of a record.
class Correlation {
 public:
  /// Empty when the record's type is not a function, when it has neither one kernel scale nor at
  /// least one per input, or when it has no input. The record must outlive it.
  explicit Correlation(const CKrigingData& record);

  explicit operator bool() const { return call_.kernel != nullptr; }
  /// The correlation of two points in scaled space, of as many values as the record has inputs.
  double OfPair(const double* x, const double* y) const;
  /// The correlations of a point with each of the rows, exactly as OfPair gives them on rows scaled
  /// one by one; returns their sum in the rows' order, each times its weight, or 0 if `weights` is
  /// null. Each row has at least as many values as the point; `r` holds one value per row. Uses the
  /// vectors of `loops` for functions that have them; with null it uses plain numbers.
  double OfRows(const double* x, const ScaledRows& samples, const double* weights, double* r,
                const kernels::LoopTable* loops = kernels::LoopsForRows()) const;

 private:
  kernels::RowKernels call_;
};

}  // namespace Tarvane::Plexura::PXROM::kriging
