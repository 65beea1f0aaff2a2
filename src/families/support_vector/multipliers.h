#pragma once

#include <cstddef>
#include <vector>

#include "pxrom/support_vector.h"

namespace Tarvane::Plexura::PXROM {

/// Whether the kernels of a record of this loss function are weighted by alpha* - alpha, and not by
/// beta.
inline bool IsPaired(E_SVRLossFuncType loss) {
  return loss == SVRLossFuncPaired3 || loss == SVRLossFuncPaired4;
}

/// The weights of the kernels of a record, which must outlive it.
class Multipliers {
 public:
  explicit Multipliers(const CSVRData& record)
      : added_(IsPaired(record.SVRLossFuncType) ? record.AlphasStar : record.Betas),
        subtracted_(IsPaired(record.SVRLossFuncType) ? &record.Alphas : nullptr) {}

  std::size_t size() const { return added_.size(); }
  /// Whether each has what is subtracted from it.
  bool AreComplete() const { return subtracted_ == nullptr || subtracted_->size() >= size(); }
  double operator[](std::size_t i) const {
    return subtracted_ == nullptr ? added_[i] : added_[i] - (*subtracted_)[i];
  }

 private:
  const std::vector<double>& added_;
  const std::vector<double>* subtracted_;
};

}  // namespace Tarvane::Plexura::PXROM
