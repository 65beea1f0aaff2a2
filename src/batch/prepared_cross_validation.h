#pragma once

#include <cstddef>
#include <vector>

#include "model/cross_validation.h"
#include "records/prepared_surface.h"

namespace Tarvane::Plexura::PXROM::batch {

/// The predicted error of an ensemble from cross-validation (model/cross_validation.h), for
/// blocks of points.
class PreparedCrossValidation {
 public:
  /// Copies the data for points of `inputs` values, which `validation` must fit.
  PreparedCrossValidation(const CrossValidation& validation, std::size_t inputs);

  std::size_t Folds() const { return foldCounts_.size(); }
  std::size_t WorkSize() const;
  /// The errors from the predictions without each fold (a block for each) and those with all. A
  /// status becomes 1 where there is no error; else it stays.
  void Evaluate(const Points& points, const LoopTable& loops, const double* foldPredictions,
                const double* predictions, double* work, double* errors, int* statuses) const;

 private:
  std::size_t inputs_;
  std::size_t rowCount_;
  std::vector<double> rows_;
  std::vector<std::size_t> foldCounts_;
  FoldError formulas_;
  double sortThreshold_;
};

}  // namespace Tarvane::Plexura::PXROM::batch
