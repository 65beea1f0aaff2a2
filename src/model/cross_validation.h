#pragma once

#include <cstddef>
#include <utility>
#include <vector>

namespace Tarvane::Plexura::PXROM {

/// What the predicted error of an ensemble rests on, seen from one point: the samples in the
/// candidate's scaled space, fold by fold, and the candidate's two scales.
struct CrossValidation {
  const std::vector<std::vector<double>>& sortedInput;
  const std::vector<int>& foldCounts;
  double distanceScale = 0.0;  ///< rho, a squared distance
  double outputScaleSlope = 0.0;
  /// What the candidate says, which sets the tolerance of the sort: distances run over the inputs
  /// that a point has, and no one compares the two.
  int inputs = 0;

  /// Whether the first `folds` counts are positive and lie within the rows, and every row is at
  /// least `columns` long.
  bool Fits(std::size_t folds, std::size_t columns) const;

  /// The predicted error at `point` (scaled), in the physical unit of the output.
  ///
  /// `foldPredictions[f]` is the ensemble's prediction without fold f and `prediction` the full
  /// one, both in the scaled output space. Fits must hold. 0; 1 when the tolerant sort of a fold
  /// would take more than a second or so, which only thousands of samples within 1e-12 of each
  /// other can make it do.
  int EvaluateError(const std::vector<double>& point, const std::vector<double>& foldPredictions,
                    double prediction, double& error) const;
};

/// How far two squared distances must lie apart for the tolerant sort to exchange them, in a
/// candidate of `inputs` inputs. NaN for a negative number, so that nothing is exchanged.
double SortThreshold(int inputs);

/// The first of `values` after a bubble sort that exchanges neighbours only when they differ by
/// more than `threshold`, so that nearer ones keep their order. `values` is overwritten. 1 when
/// that would take too long, else 0. At least one value must be there.
int FirstAfterTolerantSort(double* values, std::size_t count, double threshold, double& first);
/// How many comparisons that takes at most.
double MostOfTolerantSort(double count);

}  // namespace Tarvane::Plexura::PXROM
