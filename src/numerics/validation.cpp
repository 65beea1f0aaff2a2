#include "pxrom/validation.h"

#include <algorithm>
#include <cmath>

namespace Tarvane::Plexura::PXROM {

void CPredictionComparison::Add(double measured, double predicted, double error) {
  if (!std::isfinite(measured)) {
    ++counts_.missing;
    return;
  }
  if (!std::isfinite(predicted)) {
    ++counts_.failed;
    return;
  }
  if (++counts_.count == 1) first_ = measured;
  const double shifted = measured - first_;
  const double deviation = shifted - mean_;
  mean_ += deviation / static_cast<double>(counts_.count);
  squaredDeviations_ += deviation * (shifted - mean_);

  const double difference = predicted - measured;
  const double distance = std::fabs(difference);
  squaredDifferences_ += difference * difference;
  absoluteDifferences_ += distance;
  differences_ += difference;
  largest_ = std::max(largest_, distance);

  if (std::isnan(error)) return;
  ++counts_.withError;
  for (std::size_t k = 0; k < counts_.within.size(); ++k) {
    if (distance <= static_cast<double>(k + 1) * std::fabs(error)) ++counts_.within[k];
  }
}

CPredictionScores CPredictionComparison::Scores() const {
  CPredictionScores scores = counts_;
  if (scores.count == 0) return scores;
  const double count = static_cast<double>(scores.count);
  if (squaredDeviations_ > 0.0) scores.r2 = 1.0 - squaredDifferences_ / squaredDeviations_;
  scores.rmse = std::sqrt(squaredDifferences_ / count);
  scores.meanAbsoluteError = absoluteDifferences_ / count;
  scores.largestAbsoluteError = largest_;
  scores.bias = differences_ / count;
  return scores;
}

}  // namespace Tarvane::Plexura::PXROM
