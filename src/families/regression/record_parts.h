#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <vector>

#include "pxrom/regression.h"

namespace Tarvane::Plexura::PXROM {

/// Term `k` of the record, or null when there is none.
inline const RegTerm* TermOf(const CQRSData& record, int k) {
  const bool isThere = record.RegTerms != nullptr && k >= 0 && k < record.NumberOfRegTerms;
  return isThere ? record.RegTerms[k] : nullptr;
}

/// Whether the terms that the record counts can be there: SetRegTerm may leave a count without any.
inline bool HasTermArray(const CQRSData& record) {
  return record.NumberOfRegTerms <= 0 || record.RegTerms != nullptr;
}

/// A point that is worked on: a copy of the caller's, without an allocation for as many inputs as
/// models usually have.
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

/// The number of inputs that a term may read at a point of `size` values: never more than that.
inline int UsableInputs(const CQRSData& record, std::size_t size) {
  const int inputs = std::max(record.NumberOfInputVariables, 0);
  return size < static_cast<std::size_t>(inputs) ? static_cast<int>(size) : inputs;
}

// Operations of the record on a block of values.
int ScaleInputs(const CQRSData& record, std::size_t count, double* x);
int TransformInputs(const CQRSData& record, std::size_t count, double* x);
int SumTerms(const CQRSData& record, std::size_t count, const double* x, double& sum);
int PredictorErrorAt(const CQRSData& record, std::size_t count, const double* x, double& error);

/// The steps from a point in physical units to the back-transformed sum `b`; `point` becomes the
/// scaled and transformed point. All steps run, whatever one before reported; 1 if one failed.
int BacktransformedSum(const CQRSData& record, WorkingPoint& point, double& b);

/// Whether a back-transformed sum is the value that stands for a hole of the surface.
bool IsHole(double b);

/// What the interpolation over a hole takes at most, boxes inside boxes included.
struct InterpolationSize {
  double corners = 0.0;
  double bytes = 0.0;
};
InterpolationSize MostOfInterpolation(const CQRSData& record);

}  // namespace Tarvane::Plexura::PXROM
