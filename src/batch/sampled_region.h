#pragma once

#include <atomic>
#include <cstddef>
#include <memory>
#include <vector>

#include "records/prepared_surface.h"

namespace Tarvane::Plexura::PXROM::batch {

/// Where the samples of an output are. Nothing that a caller sees ever changes.
class SampledRegion {
 public:
  /// `rows` holds samples of `inputs` values, in physical units and all finite.
  SampledRegion(Sharing::Array rows, std::size_t inputs);
  SampledRegion(const SampledRegion&) = delete;
  SampledRegion& operator=(const SampledRegion&) = delete;
  ~SampledRegion();

  bool IsKnown() const { return count_ > 0; }
  // By input; empty unless the region is known.
  const std::vector<double>& Lower() const { return lower_; }
  const std::vector<double>& Upper() const { return upper_; }

  /// -1 where `value` lies below the range of input `i`, 1 above it or for a NaN, else 0.
  signed char SideOf(std::size_t i, double value) const;

  /// The typical spacing of the samples, in units of the widths of their ranges; NaN without two
  /// different samples.
  double Spacing(const LoopTable& loops) const { return Found(loops).spacing; }

  std::size_t WorkSize() const;
  /// The distance of each point of one block to the nearest sample (CPreparedModel::LocatePoints).
  void FindDistances(const Points& points, const LoopTable& loops, double* work,
                     double* distances) const;

 private:
  /// What distances need.
  struct Neighbours {
    std::vector<double> rows;  ///< the distinct samples, scaled by their ranges
    std::size_t count = 0;
    double spacing = 0.0;  ///< NaN without two of them
  };
  struct Work;

  const Neighbours& Found(const LoopTable& loops) const;
  std::unique_ptr<const Neighbours> Find(const LoopTable& loops) const;
  /// 0 for an input whose samples are all equal: it has no scale.
  double ScaledValue(std::size_t i, double value) const {
    return widths_[i] > 0.0 ? (value - lower_[i]) / widths_[i] : 0.0;
  }

  Sharing::Array rows_;
  std::size_t inputs_;
  std::size_t count_;
  std::vector<double> lower_;
  std::vector<double> upper_;
  std::vector<double> widths_;  ///< 0 where the input has no scale
  /// Made when distances are first asked for, since it takes longer than many preparations. Threads
  /// that ask at the same time each make one, and one of these remains.
  mutable std::atomic<const Neighbours*> neighbours_{nullptr};
};

}  // namespace Tarvane::Plexura::PXROM::batch
