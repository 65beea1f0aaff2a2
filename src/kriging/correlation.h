#pragma once

#include <cstddef>
#include <vector>

#include "lanes/lanes.h"
#include "pxrom/kriging.h"

namespace Tarvane::Plexura::PXROM::kriging {

/// Samples that are scaled while they are read: slope x + intercept for each input.
struct ScaledRows {
  const std::vector<double>* rows;
  std::size_t count;
  const double* slopes;
  const double* intercepts;
};

/// The kernels of a record: one for all inputs if `count` is 1, else one per input.
struct Kernels {
  const double* values;
  std::size_t count;
};

/// The loops of one correlation function. `d` is the number of inputs, and not 0.
struct Correlation {
  /// The correlation of two points in scaled space.
  double (*ofPair)(const Kernels& kernels, const double* x, const double* y, std::size_t d);
  /// The correlations of a point with each of the rows, exactly as `ofPair` gives them on rows
  /// scaled one by one; and their sum in the rows' order, each times its weight, or 0 if `weights`
  /// is null. Each row has at least `d` values; `r` has room for all.
  double (*ofRows)(const Kernels& kernels, const double* x, const ScaledRows& samples,
                   std::size_t d, const double* weights, double* r);
  /// The same function on vectors.
  lanes::Kernel kernel;
};

/// Correlation::ofRows, on the vectors of `lanes` where these serve the function; null is without.
double CorrelateRows(const Correlation& correlation, const Kernels& kernels, const double* x,
                     const ScaledRows& samples, std::size_t d, const double* weights, double* r,
                     const lanes::Lanes* lanes = lanes::LanesForRows());

/// The function of the record, or null when its type is none, its kernels do not serve its inputs
/// (neither one nor at least d), or it has no input.
const Correlation* FindCorrelation(const CKrigingData& record) noexcept;

}  // namespace Tarvane::Plexura::PXROM::kriging
