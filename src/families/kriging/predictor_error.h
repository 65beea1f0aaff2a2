#pragma once

#include <cstddef>
#include <optional>
#include <vector>

#include "pxrom/kriging.h"

namespace Tarvane::Plexura::PXROM::kriging {

/// The predictor error of one record with one number of trend functions, at any number of points.
/// It refers to the record, which must outlive it, and holds the working copies of a point.
class PredictorError {
 public:
  PredictorError(const CKrigingData& record, std::size_t trendFunctions)
      : record_(record), p_(trendFunctions) {}

  /// Whether the record holds the data of an error: new enough, present, and none of its matrices
  /// smaller than its samples and `trendFunctions` need.
  bool IsAvailable() const;

  /// Whether a prediction has an error: the record also has to ask for one, and to know its trend.
  bool IsPredicted() const;

  /// The error at a point with the correlations `r` (one per sample) and the trend functions `f`;
  /// CKrigingData::GetPredictorError has the formula. Only if IsAvailable.
  double At(const double* r, const double* f);

 private:
  const CKrigingData& record_;
  std::size_t p_;
  std::vector<double> v_;
  std::vector<double> w_;
  std::vector<double> g_;
};

/// The number of trend functions that a prediction with this record computes; empty when its
/// coefficients do not fit, so that it has no value.
std::optional<std::size_t> TrendFunctionsOf(const CKrigingData& record);

/// Whether the evaluator's form with an error leaves the record changed: it then has no error.
bool ChangesRecordForError(const CRSData& record);

}  // namespace Tarvane::Plexura::PXROM::kriging
