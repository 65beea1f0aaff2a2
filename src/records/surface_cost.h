#pragma once

#include <algorithm>
#include <cstddef>

#include "kernels/kernels.h"
#include "pxrom/rs_data.h"
#include "pxrom/types.h"

namespace Tarvane::Plexura::PXROM::costing {

// The cost of an evaluation of one surface. The numbers are estimates, and doubles because no
// product of sizes overflows them.

using kernels::kElementary;
constexpr double kBytesPerNumber = 8.0;
/// The bytes of a row of samples in addition to its numbers.
constexpr double kBytesPerRow = 32.0;

struct SurfaceCost {
  /// Operations at one point: for the value, for the surface's own error in addition, and for the
  /// gradient.
  double value = 1.0;
  double error = 0.0;
  double gradient = 1.0;
  /// Bytes that a prepared copy holds.
  double held = 0.0;
  /// Bytes of the working area: for each point of a block, for each point of the blocks whose
  /// errors are predicted together, and once.
  double perPoint = 0.0;
  double perErrorPoint = 0.0;
  double once = 0.0;
};

/// The smaller of a count, which may be negative, and the size of the data.
inline double Counted(int count, std::size_t there) {
  return std::min(static_cast<double>(std::max(count, 0)), static_cast<double>(there));
}

/// The inputs that an evaluation of the record can have.
inline double InputsOf(const CRSData& record) {
  const std::size_t width = record.InputSamples.empty() ? 0 : record.InputSamples.front().size();
  return Counted(record.NumberOfInputVariables, std::max(width, record.InputScaleSlopes.size()));
}

/// Nothing for null, an unknown function, whose evaluation is refused.
inline kernels::Operations OperationsOf(const kernels::Kernel* kernel) {
  return kernel != nullptr ? kernel->operations : kernels::Operations();
}

/// The cost of a sum of `centres` kernels of so many operations.
inline SurfaceCost CostOfKernelSum(double centres, double inputs, kernels::Operations each) {
  SurfaceCost cost;
  cost.value = 2.0 * inputs + centres * (inputs * each.perInput + each.once + 2.0);
  // Slopes cost about as much as values, and need the values too.
  cost.gradient = 2.0 * cost.value + centres * inputs * 3.0;
  // Centres are kept twice, exact and multiplied for the fast mode.
  cost.held = kBytesPerNumber * (centres * (2.0 * inputs + 3.0) + 5.0 * inputs);
  cost.perPoint = kBytesPerNumber * (5.0 * inputs + 2.0 * std::min(centres, 64.0) + 4.0);
  return cost;
}

/// Adds a polynomial trend of `functions` functions.
inline void AddTrend(double functions, SurfaceCost& cost) {
  cost.value += 4.0 * functions;
  cost.gradient += 6.0 * functions;
  cost.held += 2.0 * kBytesPerNumber * functions;
  cost.perPoint += kBytesPerNumber * functions;
}

/// Adds the matrices and the working area of an error (error_norms.h). `stored` is how many numbers
/// of C come before the zeros of its rows.
inline void AddErrorNorms(double stored, double samples, double functions, double inputs,
                          SurfaceCost& cost) {
  cost.held += kBytesPerNumber * (stored + 3.0 * samples + functions * (samples + functions));
  cost.perErrorPoint =
      kBytesPerNumber * (samples + std::min(samples, 96.0) + 1.2 * functions + 2.0 * inputs + 12.0);
}

}  // namespace Tarvane::Plexura::PXROM::costing
