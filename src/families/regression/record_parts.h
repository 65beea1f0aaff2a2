#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <vector>

#include "pxrom/regression.h"

namespace Tarvane::Plexura::PXROM {

/// Term `k` of the record, or null without such a term.
inline const RegTerm* TermOf(const CQRSData& record, int k) {
  const bool isThere = record.RegTerms != nullptr && k >= 0 && k < record.NumberOfRegTerms;
  return isThere ? record.RegTerms[k] : nullptr;
}

/// Whether the record has an array for its count of terms. SetRegTerm may set a count without
/// terms.
inline bool HasTermArray(const CQRSData& record) {
  return record.NumberOfRegTerms <= 0 || record.RegTerms != nullptr;
}

/// A copy of the caller's point that may be changed. For the usual numbers of inputs it allocates
/// nothing.
class WorkingPoint {
 public:
  explicit WorkingPoint(const std::vector<double>& x)
      : size_(x.size()), far_(size_ > kNear ? x : std::vector<double>()) {
    if (size_ <= kNear) std::copy(x.begin(), x.end(), near_.begin());
  }

  std::size_t Size() const { return size_; }
  double* Data() { return size_ <= kNear ? near_.data() : far_.data(); }

 private:
  static constexpr std::size_t kNear = 32;

  std::size_t size_;
  std::array<double, kNear> near_;
  std::vector<double> far_;
};

/// The number of inputs that a term may read at a point of `size` values: at most `size`.
inline int UsableInputs(const CQRSData& record, std::size_t size) {
  const int inputs = std::max(record.NumberOfInputVariables, 0);
  return size < static_cast<std::size_t>(inputs) ? static_cast<int>(size) : inputs;
}

// Operations of the record on a block of values.
int ScaleInputs(const CQRSData& record, std::size_t count, double* x);
int TransformInputs(const CQRSData& record, std::size_t count, double* x);
int SumTerms(const CQRSData& record, std::size_t count, const double* x, double& sum);
int PredictorErrorAt(const CQRSData& record, std::size_t count, const double* x, double& error);

/// Whether the inverse of X'X covers `order` active terms.
bool HasInverseOfOrder(const CQRSData& record, std::size_t order);
/// The quantile of Student's t that all predictor errors of a record share. The status is that of
/// StudTDist.
int QuantileOf(const CQRSData& record, std::size_t activeTerms, double& t);
/// Half the width of the prediction interval where x' inv(X'X) x is `leverage`.
double HalfWidth(const CQRSData& record, double leverage, double t);

/// The steps from a point in physical units to the back-transformed sum `b`; `point` becomes the
/// scaled and transformed point. All steps run, even after one that failed; 1 if any failed.
int BacktransformedSum(const CQRSData& record, WorkingPoint& point, double& b);

/// Whether a back-transformed sum is the value that marks a hole of the surface.
bool IsHole(double b);

/// The largest size of an interpolation over a hole, including boxes inside boxes.
struct InterpolationSize {
  double corners = 0.0;
  double bytes = 0.0;
};
InterpolationSize MostOfInterpolation(const CQRSData& record);

}  // namespace Tarvane::Plexura::PXROM
