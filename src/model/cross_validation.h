#pragma once

#include <cstddef>
#include <utility>
#include <vector>

namespace Tarvane::Plexura::PXROM {

/// The folds at one point: the prediction without fold f is predictions[f * stride], and weights[f]
/// its weight. The weights are divided by `total`, their sum, when the error is computed.
struct WeightedFolds {
  std::size_t count = 0;
  const double* predictions = nullptr;
  std::size_t stride = 1;
  double* weights = nullptr;
  double total = 0.0;
};

/// The formulas of the predicted error, with the two scales of a candidate.
struct FoldError {
  double distanceScale = 0.0;  ///< rho, a squared distance
  double outputScaleSlope = 0.0;

  /// The weight of a fold whose closest sample is at the squared distance `closest`.
  double Weight(double closest) const;
  /// The error where the full prediction is `prediction` and the closest sample of all is at the
  /// squared distance `nearest`.
  double Of(const WeightedFolds& folds, double prediction, double nearest) const;
};

/// The data of the predicted error of an ensemble: the samples in the candidate's scaled space,
/// fold by fold, and the candidate's two scales. For k-fold cross-validation see Hastie, Tibshirani
/// and Friedman, The Elements of Statistical Learning (2009), section 7.10.
struct CrossValidation {
  const std::vector<std::vector<double>>& sortedInput;
  const std::vector<int>& foldCounts;
  std::size_t folds = 0;
  FoldError formulas;
  /// The candidate's count, which sets the tolerance of the sort. Distances use all inputs of the
  /// point, and nothing compares the two numbers.
  int inputs = 0;

  /// Whether all folds have a count, the counts are positive and lie within the rows, and every row
  /// is at least `columns` long.
  bool Fits(std::size_t columns) const;

  /// The predicted error at `point` (scaled), in the physical unit of the output.
  ///
  /// `foldPredictions[f]` is the ensemble's prediction without fold f and `prediction` the full
  /// one, both in the scaled output space. Fits must be true. 0; 1 when the tolerant sort of a fold
  /// would take more than about a second, which needs thousands of samples within 1e-12 of each
  /// other.
  int EvaluateError(const std::vector<double>& point, const std::vector<double>& foldPredictions,
                    double prediction, double& error) const;
};

/// The tolerant sort exchanges two squared distances only if they differ by more than this, in a
/// candidate of `inputs` inputs. NaN for a negative number: then nothing is exchanged.
double SortThreshold(int inputs);

/// The first of `values` after a bubble sort that exchanges neighbours only if they differ by more
/// than `threshold`; closer values keep their order. `values` is overwritten. 1 when the sort would
/// take too long, else 0. There must be at least one value.
int FirstAfterTolerantSort(double* values, std::size_t count, double threshold, double& first);
/// The largest number of comparisons of this sort.
double MostOfTolerantSort(double count);

}  // namespace Tarvane::Plexura::PXROM
