#include "batch/prepared_cross_validation.h"

#include <algorithm>
#include <cmath>

#include "ensemble/cross_validation.h"

namespace Tarvane::Plexura::PXROM::batch {

namespace {

constexpr double kSortTolerance = 1.0e-12;

/// What an evaluation works on, laid out over a working area.
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

/// The least of `count` blocks of values, point by point, and whether at each point all but its
/// copies lie more than `threshold` above it: then it is what a tolerant sort puts first.
void FindLeast(const double* values, std::size_t count, double threshold, double* least,
               bool* isClear) {
  std::copy_n(values, kBlock, least);
  for (std::size_t r = 1; r < count; ++r) {
    const double* const row = values + r * kBlock;
    for (std::size_t lane = 0; lane < kBlock; ++lane) {
      least[lane] = row[lane] < least[lane] ? row[lane] : least[lane];
    }
  }
  std::fill_n(isClear, kBlock, true);
  for (std::size_t r = 0; r < count; ++r) {
    const double* const row = values + r * kBlock;
    for (std::size_t lane = 0; lane < kBlock; ++lane) {
      const bool isAbove = row[lane] - least[lane] > threshold;
      isClear[lane] = isClear[lane] && (isAbove || row[lane] == least[lane]);
    }
  }
}

}  // namespace

PreparedCrossValidation::PreparedCrossValidation(
    const std::vector<std::vector<double>>& sortedInput, const std::vector<int>& foldCounts,
    std::size_t folds, std::size_t inputs, double distanceScale, double outputSlope)
    : inputs_(inputs),
      rowCount_(sortedInput.size()),
      foldCounts_(foldCounts.begin(), foldCounts.begin() + static_cast<std::ptrdiff_t>(folds)),
      distanceScale_(distanceScale),
      outputSlope_(outputSlope) {
  rows_.reserve(rowCount_ * inputs);
  for (const std::vector<double>& row : sortedInput) {
    rows_.insert(rows_.end(), row.begin(), row.begin() + static_cast<std::ptrdiff_t>(inputs));
  }
}

std::size_t PreparedCrossValidation::WorkSize() const {
  return ValidationWork(rowCount_, Folds(), nullptr).size;
}

void PreparedCrossValidation::Evaluate(const Points& points, const Lanes& lanes,
                                       const double* foldPredictions, const double* predictions,
                                       double* start, double* errors, int* statuses) const {
  const ValidationWork work(rowCount_, Folds(), start);
  std::fill_n(work.distances, rowCount_ * kBlock, 0.0);
  lanes.squaredDistances(rows_.data(), rowCount_, points.x, inputs_, points.count, work.distances);
  for (std::size_t lane = 0; lane < points.count; ++lane) {
    double nearest = -1.0;
    for (std::size_t r = 0; r < rowCount_; ++r) {
      const double distance = work.distances[r * kBlock + lane];
      if (r == 0 || distance < nearest) nearest = distance;
    }
    work.nearest[lane] = nearest;
    work.totals[lane] = 0.0;
  }

  const double threshold = 2.0 * std::sqrt(static_cast<double>(inputs_)) * kSortTolerance;
  const double* distances = work.distances;
  for (std::size_t f = 0; f < Folds(); ++f) {
    const std::size_t count = foldCounts_[f];
    bool isClear[kBlock];
    FindLeast(distances, count, threshold, work.least, isClear);
    for (std::size_t lane = 0; lane < points.count; ++lane) {
      double closest = work.least[lane];
      if (!isClear[lane]) {
        for (std::size_t r = 0; r < count; ++r) work.column[r] = distances[r * kBlock + lane];
        if (FirstAfterTolerantSort(work.column, count, threshold, closest) != 0) {
          statuses[lane] = 1;
        }
      }
      const double ratio = closest / distanceScale_;
      const double weight = 1.0 - std::exp(-10.0 * ratio * ratio);
      work.weights[lane * Folds() + f] = weight;
      work.totals[lane] += weight;
    }
    distances += count * kBlock;
  }

  for (std::size_t lane = 0; lane < points.count; ++lane) {
    double* const weights = work.weights + lane * Folds();
    for (std::size_t f = 0; f < Folds(); ++f) weights[f] = weights[f] / work.totals[lane];
    errors[lane] =
        ErrorFrom(weights, foldPredictions + lane, predictions[lane], work.nearest[lane]);
  }
}

double PreparedCrossValidation::ErrorFrom(const double* weights, const double* foldPredictions,
                                          double prediction, double nearest) const {
  double weightedMean = 0.0;
  for (std::size_t f = 0; f < Folds(); ++f) {
    weightedMean += weights[f] * foldPredictions[f * kBlock];
  }
  const auto folds = static_cast<double>(Folds());
  const double mean = (folds * weightedMean + prediction) / (folds + 1.0);
  double variance = 0.0;
  for (std::size_t f = 0; f < Folds(); ++f) {
    const double deviation = foldPredictions[f * kBlock] - mean;
    variance += weights[f] * (deviation * deviation);
  }
  const double damping = std::min(1.0, std::log(1.0 + 10.0 * nearest / (distanceScale_ + 0.0001)));
  return ((0.005 * nearest + std::sqrt(variance)) * damping / outputSlope_) * 3.0;
}

}  // namespace Tarvane::Plexura::PXROM::batch
