#include "simd/panels.h"

#include <algorithm>
#include <cstring>
#include <tuple>

namespace Tarvane::Plexura::PXROM::simd {

void Panels::LayOut() {
  for (std::size_t r = 0; r < Rows(); r += kPanelRows) {
    const auto first = lengths_.begin() + static_cast<std::ptrdiff_t>(r);
    const auto count = static_cast<std::ptrdiff_t>(std::min(kPanelRows, Rows() - r));
    starts_.push_back(starts_.back() + *std::max_element(first, first + count) * kPanelRows);
  }
  values_.resize(starts_.back());
}

int Panels::Compare(const Panels& other) const {
  const auto shape = std::tie(columns_, rest_, lengths_);
  const auto otherShape = std::tie(other.columns_, other.rest_, other.lengths_);
  if (shape != otherShape) return shape < otherShape ? -1 : 1;
  if (values_.empty()) return 0;
  return std::memcmp(values_.data(), other.values_.data(), values_.size() * sizeof(double));
}

void Panels::FillRows(std::size_t panel, const double* x, double* to) const {
  const std::size_t first = panel * kPanelRows;
  const std::size_t count = std::min(kPanelRows, Rows() - first);
  const double* const values = values_.data() + starts_[panel];
  const std::size_t length = Length(panel);
  const std::size_t common =
      rest_ == Rest::Zeros ? length : *std::min_element(&lengths_[first], &lengths_[first] + count);
  double sums[kPanelRows] = {};
  for (std::size_t c = 0; c < common; ++c) {
    for (std::size_t r = 0; r < kPanelRows; ++r) {
      sums[r] += values[c * kPanelRows + r] * x[c * kBlock];
    }
  }
  for (std::size_t r = 0; r < count; ++r) {
    double& sum = sums[r];
    for (std::size_t c = common; c < lengths_[first + r]; ++c) {
      sum += values[c * kPanelRows + r] * x[c * kBlock];
    }
    for (std::size_t c = length; rest_ == Rest::Zeros && c < columns_; ++c) {
      sum += 0.0 * x[c * kBlock];
    }
    to[r * kBlock] = sum;
  }
}

}  // namespace Tarvane::Plexura::PXROM::simd
