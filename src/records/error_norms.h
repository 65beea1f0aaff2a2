#pragma once

#include <cstddef>

#include "simd/panels.h"

namespace Tarvane::Plexura::PXROM::batch {

/// The matrix products of predictor errors, for the points of several blocks:
///
///   v = C r,  w = w0 + F v,  g = G w,
///
/// with a value of r for each sample and one of w and g for each trend function. Each element is
/// one sum in ascending order.
class ErrorNorms {
 public:
  /// The blocks that share what is read of C. More of them would leave the caches.
  static constexpr std::size_t kBlocksAtOnce = 8;

  ErrorNorms(simd::Panels c, simd::Panels f, simd::Panels g);

  /// Negative, 0 or positive: an order by the bits of the matrices.
  int Compare(const ErrorNorms& other) const;

  /// The rows of a block's w: those of G and what pads them to whole panels.
  std::size_t FunctionRows() const { return g_.Count() * simd::kPanelRows; }
  std::size_t WorkSize(std::size_t blocks) const;

  struct Call {
    std::size_t points = 0;
    const double* r = nullptr;  ///< block by block
    double* w = nullptr;        ///< block by block, begins as w0 and is overwritten
    double* work = nullptr;     ///< WorkSize values
    double* squaresOfV = nullptr;
    double* squaresOfG = nullptr;
  };
  /// Fills in the sums of the squares of v and of g at each point.
  void Fill(const simd::LoopTable& loops, const Call& call) const;

 private:
  struct Work;

  simd::Panels c_;
  simd::Panels f_;
  simd::Panels g_;
};

}  // namespace Tarvane::Plexura::PXROM::batch
