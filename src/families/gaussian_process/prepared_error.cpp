#include "families/gaussian_process/prepared_error.h"

#include <algorithm>

namespace Tarvane::Plexura::PXROM::gaussian_process {

namespace {

using batch::kBlock;

std::vector<double> Square(const std::vector<double>& triangle, std::size_t order) {
  std::vector<double> square(order * order, 0.0);
  const double* row = triangle.data();
  for (std::size_t k = 0; k < order; ++k) {
    std::copy_n(row, k + 1, square.data() + k * order);
    row += k + 1;
  }
  return square;
}

/// Adds the squares of `count` values at each point of a block, in ascending order.
void SumSquares(const double* values, std::size_t count, double* sums) {
  std::fill_n(sums, kBlock, 0.0);
  for (std::size_t k = 0; k < count; ++k, values += kBlock) {
    for (std::size_t point = 0; point < kBlock; ++point) {
      sums[point] += values[point] * values[point];
    }
  }
}

}  // namespace

PreparedError::PreparedError(const CGaussianProcessData& record)
    : samples_(static_cast<std::size_t>(record.NumberOfSamples)),
      functions_(record.TrendAtSamples.size()),
      inverse_(Square(record.InverseFactor, samples_)),
      trendInverse_(Square(record.TrendInverseFactor, functions_)) {
  for (std::size_t k = 0; k < std::max(samples_, functions_); ++k) lengths_.push_back(k + 1);
  trendAtSamples_.reserve(functions_ * samples_);
  for (const std::vector<double>& row : record.TrendAtSamples) {
    for (const double value : row) trendAtSamples_.push_back(-value);
  }
}

void PreparedError::Variances(const batch::LoopTable& loops, std::size_t points,
                              const double* covariances, const double* f, double atDistance0,
                              double* work, double* variances) const {
  double* const v = work;
  double* const w = v + samples_ * kBlock;
  double* const g = w + functions_ * kBlock;
  std::fill_n(v, samples_ * kBlock, 0.0);
  std::copy_n(f, functions_ * kBlock, w);
  std::fill_n(g, functions_ * kBlock, 0.0);
  // The zeros that a group of rows shares add nothing, unless they meet an infinity or a NaN.
  loops.matrixProduct(
      {inverse_.data(), samples_, samples_, lengths_.data(), covariances, points, v});
  loops.matrixProduct({trendAtSamples_.data(), functions_, samples_, nullptr, v, points, w});
  loops.matrixProduct(
      {trendInverse_.data(), functions_, functions_, lengths_.data(), w, points, g});
  double squares[kBlock];
  SumSquares(v, samples_, squares);
  for (std::size_t point = 0; point < kBlock; ++point) {
    variances[point] = atDistance0 - squares[point];
  }
  SumSquares(g, functions_, squares);
  for (std::size_t point = 0; point < kBlock; ++point) {
    variances[point] += squares[point];
    if (variances[point] < 0.0) variances[point] = 0.0;
  }
}

}  // namespace Tarvane::Plexura::PXROM::gaussian_process
