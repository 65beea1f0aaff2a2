#include "model/cross_validation.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

#include "records/samples.h"

namespace Tarvane::Plexura::PXROM {

namespace {

constexpr double kSortTolerance = 1.0e-12;
constexpr std::uint64_t kLongestSort = 100'000'000;

// Whether only copies of the least value are within `threshold` of it. Then the sort moves it to
// the front past every other value, so the sort itself is not needed. False with a NaN.
bool HasClearLeast(const double* values, std::size_t count, double threshold, double& least) {
  least = *std::min_element(values, values + count);
  return std::all_of(values, values + count,
                     [&](double value) { return value == least || value - least > threshold; });
}

}  // namespace

double SortThreshold(int inputs) {
  return 2.0 * std::sqrt(static_cast<double>(inputs)) * kSortTolerance;
}

int FirstAfterTolerantSort(double* values, std::size_t count, double threshold, double& first) {
  if (HasClearLeast(values, count, threshold, first)) return 0;
  std::uint64_t comparisons = 0;
  for (std::size_t pass = count - 1; pass > 0; --pass) {
    comparisons += pass;
    if (comparisons > kLongestSort) return 1;
    bool swapped = false;
    double carried = values[0];
    for (std::size_t i = 0; i < pass; ++i) {
      const double next = values[i + 1];
      const bool swap = carried - next > threshold;
      values[i] = swap ? next : carried;
      carried = swap ? carried : next;
      swapped = swapped || swap;
    }
    values[pass] = carried;
    if (!swapped) break;
  }
  first = values[0];
  return 0;
}

double MostOfTolerantSort(double count) {
  return std::min(count * (count + 1.0) / 2.0, static_cast<double>(kLongestSort));
}

bool CrossValidation::Fits(std::size_t columns) const {
  if (foldCounts.size() < folds) return false;
  std::size_t rows = 0;
  for (std::size_t f = 0; f < folds; ++f) {
    if (foldCounts[f] <= 0) return false;
    rows += static_cast<std::size_t>(foldCounts[f]);
  }
  return rows <= sortedInput.size() &&
         std::all_of(sortedInput.begin(), sortedInput.end(),
                     [&](const std::vector<double>& row) { return row.size() >= columns; });
}

double FoldError::Weight(double closest) const {
  // A fold with samples near the point gets little weight, since its prediction was made without
  // these samples.
  const double ratio = closest / distanceScale;
  return 1.0 - std::exp(-10.0 * ratio * ratio);
}

double FoldError::Of(const WeightedFolds& folds, double prediction, double nearest) const {
  double weightedMean = 0.0;
  for (std::size_t f = 0; f < folds.count; ++f) {
    folds.weights[f] = folds.weights[f] / folds.total;
    weightedMean += folds.weights[f] * folds.predictions[f * folds.stride];
  }
  const auto count = static_cast<double>(folds.count);
  const double mean = (count * weightedMean + prediction) / (count + 1.0);
  double variance = 0.0;
  for (std::size_t f = 0; f < folds.count; ++f) {
    const double deviation = folds.predictions[f * folds.stride] - mean;
    variance += folds.weights[f] * (deviation * deviation);
  }
  // Near a sample the prediction is known well, so the error goes to 0 there.
  const double damping = std::min(1.0, std::log(1.0 + 10.0 * nearest / (distanceScale + 0.0001)));
  return ((0.005 * nearest + std::sqrt(variance)) * damping / outputScaleSlope) * 3.0;
}

int CrossValidation::EvaluateError(const std::vector<double>& point,
                                   const std::vector<double>& foldPredictions, double prediction,
                                   double& error) const {
  std::vector<double> work(sortedInput.size() + folds);
  double* const distances = work.data();
  double* const weights = distances + sortedInput.size();

  // Deliberate (squared-distances): here and below the method uses squared distances where
  // distances are usual. The distance scale is a squared distance too, and the constants were
  // chosen for it.
  SquaredDistances(sortedInput, sortedInput.size(), point.size(), point, distances);
  double nearest = -1.0;
  for (std::size_t r = 0; r < sortedInput.size(); ++r) {
    if (r == 0 || distances[r] < nearest) nearest = distances[r];
  }

  const double threshold = SortThreshold(inputs);
  double total = 0.0;
  double* start = distances;
  for (std::size_t f = 0; f < folds; ++f) {
    const auto count = static_cast<std::size_t>(foldCounts[f]);
    double closest = 0.0;
    if (FirstAfterTolerantSort(start, count, threshold, closest) != 0) return 1;
    weights[f] = formulas.Weight(closest);
    total += weights[f];
    start += count;
  }

  error = formulas.Of({folds, foldPredictions.data(), 1, weights, total}, prediction, nearest);
  return 0;
}

}  // namespace Tarvane::Plexura::PXROM
