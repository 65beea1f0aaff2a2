#include "batch/prepared_cross_validation.h"

#include <algorithm>

namespace Tarvane::Plexura::PXROM::batch {

namespace {

/// The parts of an evaluation's working area.
struct ValidationWork {
  ValidationWork(std::size_t rows, std::size_t folds, double* start) {
    WorkArea area(start);
    distances = area.Take(rows * kBlock);
    nearest = area.Take(kBlock);
    least = area.Take(kBlock);
    column = area.Take(rows);
    weights = area.Take(folds * kBlock);
    totals = area.Take(kBlock);
    size = area.Used();
  }

  double* distances;
  double* nearest;
  double* least;
  double* column;
  double* weights;
  double* totals;
  std::size_t size;
};

/// The least of `count` blocks of values, point by point, and whether at each point all values
/// except its copies are more than `threshold` above it. Then a tolerant sort puts it first.
void FindLeast(const double* values, std::size_t count, double threshold, double* least,
               bool* isClear) {
  std::copy_n(values, kBlock, least);
  for (std::size_t r = 1; r < count; ++r) {
    const double* const row = values + r * kBlock;
    for (std::size_t point = 0; point < kBlock; ++point) {
      least[point] = row[point] < least[point] ? row[point] : least[point];
    }
  }
  std::fill_n(isClear, kBlock, true);
  for (std::size_t r = 0; r < count; ++r) {
    const double* const row = values + r * kBlock;
    for (std::size_t point = 0; point < kBlock; ++point) {
      const bool isAbove = row[point] - least[point] > threshold;
      isClear[point] = isClear[point] && (isAbove || row[point] == least[point]);
    }
  }
}

}  // namespace

PreparedCrossValidation::PreparedCrossValidation(const CrossValidation& validation,
                                                 std::size_t inputs)
    : inputs_(inputs),
      rowCount_(validation.sortedInput.size()),
      foldCounts_(validation.foldCounts.begin(),
                  validation.foldCounts.begin() + static_cast<std::ptrdiff_t>(validation.folds)),
      formulas_(validation.formulas),
      sortThreshold_(SortThreshold(validation.inputs)) {
  rows_.reserve(rowCount_ * inputs);
  for (const std::vector<double>& row : validation.sortedInput) {
    rows_.insert(rows_.end(), row.begin(), row.begin() + static_cast<std::ptrdiff_t>(inputs));
  }
}

std::size_t PreparedCrossValidation::WorkSize() const {
  return ValidationWork(rowCount_, Folds(), nullptr).size;
}

void PreparedCrossValidation::Evaluate(const Points& points, const LoopTable& loops,
                                       const double* foldPredictions, const double* predictions,
                                       double* start, double* errors, int* statuses) const {
  const ValidationWork work(rowCount_, Folds(), start);
  std::fill_n(work.distances, rowCount_ * kBlock, 0.0);
  loops.squaredDistances(rows_.data(), rowCount_, points.x, inputs_, points.count, work.distances);
  for (std::size_t point = 0; point < points.count; ++point) {
    double nearest = -1.0;
    for (std::size_t r = 0; r < rowCount_; ++r) {
      const double distance = work.distances[r * kBlock + point];
      if (r == 0 || distance < nearest) nearest = distance;
    }
    work.nearest[point] = nearest;
    work.totals[point] = 0.0;
  }

  const double* distances = work.distances;
  for (std::size_t f = 0; f < Folds(); ++f) {
    const std::size_t count = foldCounts_[f];
    bool isClear[kBlock];
    FindLeast(distances, count, sortThreshold_, work.least, isClear);
    for (std::size_t point = 0; point < points.count; ++point) {
      double closest = work.least[point];
      if (!isClear[point]) {
        for (std::size_t r = 0; r < count; ++r) work.column[r] = distances[r * kBlock + point];
        if (FirstAfterTolerantSort(work.column, count, sortThreshold_, closest) != 0) {
          statuses[point] = 1;
        }
      }
      const double weight = formulas_.Weight(closest);
      work.weights[point * Folds() + f] = weight;
      work.totals[point] += weight;
    }
    distances += count * kBlock;
  }

  for (std::size_t point = 0; point < points.count; ++point) {
    const WeightedFolds folds = {Folds(), foldPredictions + point, kBlock,
                                 work.weights + point * Folds(), work.totals[point]};
    errors[point] = formulas_.Of(folds, predictions[point], work.nearest[point]);
  }
}

}  // namespace Tarvane::Plexura::PXROM::batch
