#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <set>
#include <vector>

#include "records/error_norms.h"
#include "simd/loop_table.h"

namespace Tarvane::Plexura::PXROM::batch {

/// Kernel values that several surfaces need, of the blocks that are evaluated together.
struct SharedValues {
  enum class Form { None, Exact, Fast };

  /// Those of `count` centres.
  double* Of(std::size_t block, std::size_t count) const {
    return values + block * count * simd::kBlock;
  }

  double* values = nullptr;  ///< null where they are not shared
  Form forms[ErrorNorms::kBlocksAtOnce] = {};
};

/// The sums of squares of an error that several surfaces have up to a factor.
struct SharedErrors {
  bool AreFilled(std::size_t first, std::size_t last) const {
    return std::all_of(areFilled + first, areFilled + last, [](bool is) { return is; });
  }
  void SetFilled(std::size_t first, std::size_t last) {
    std::fill(areFilled + first, areFilled + last, true);
  }

  double squaresOfV[ErrorNorms::kBlocksAtOnce * simd::kBlock];
  double squaresOfG[ErrorNorms::kBlocksAtOnce * simd::kBlock];
  bool areFilled[ErrorNorms::kBlocksAtOnce] = {};
};

/// Finds what the surfaces of a prepared model have in common, while they are prepared: samples and
/// the matrices of errors, which are then held once, and kernel values and errors, which are then
/// computed once for each block. A tool that fits several outputs at once gives them all of this in
/// common.
class Sharing {
 public:
  using Array = std::shared_ptr<const std::vector<double>>;
  using Norms = std::shared_ptr<const ErrorNorms>;

  static constexpr std::size_t kNoSlot = static_cast<std::size_t>(-1);

  /// The points of the surfaces that follow are scaled by these.
  void Enter(const std::vector<double>& slopes, const std::vector<double>& intercepts);
  /// The first with the same bits.
  Array Pooled(Array values);
  Norms Pooled(Norms norms);
  /// The number of the values that a kernel has around `count` centres. `parts` is all that they
  /// depend on besides the points.
  std::size_t SlotOf(const void* kernel, const std::vector<Array>& parts, std::size_t count);
  /// The number of the sums that `norms` gives for the values of a slot and for trend functions.
  std::size_t ErrorSlotOf(std::size_t slot, const Norms& norms, const Array& functions);

  /// How many centres each slot has.
  const std::vector<std::size_t>& Counts() const { return counts_; }
  std::size_t ErrorSlotCount() const { return errorSlots_.size(); }

 private:
  using Key = std::vector<std::uintptr_t>;
  struct IsLess {
    bool operator()(const Array& a, const Array& b) const;
    bool operator()(const Norms& a, const Norms& b) const;
  };

  std::uintptr_t AddressOf(const Array& values);

  std::set<Array, IsLess> arrays_;
  std::set<Norms, IsLess> norms_;
  Key space_;
  std::map<Key, std::size_t> slots_;
  std::vector<std::size_t> counts_;
  std::map<Key, std::size_t> errorSlots_;
};

}  // namespace Tarvane::Plexura::PXROM::batch
