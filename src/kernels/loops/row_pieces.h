#pragma once

#include <algorithm>
#include <cstddef>
#include <vector>

#include "kernels/kernels.h"

namespace Tarvane::Plexura::PXROM::kernels {

/// Rows of `width` values, one after the other.
struct FlatRows {
  struct Row {
    const double* data() const { return values; }
    const double* values;
  };
  Row operator[](std::size_t row) const { return {first + row * width}; }

  const double* first;
  std::size_t width;
};

/// Fills `values` with the kernel values of the first `count` rows, and calls use(first, last)
/// after each piece of them. `call` holds the rest; `scales`, one per row, may be null. Uses the
/// vectors of `loops` for kernels that have them; with null it uses plain numbers.
template <class Rows, class Use>
void ForRowKernels(const LoopTable* loops, RowKernels call, const Rows& rows, std::size_t count,
                   const double* scales, double* values, const Use& use) {
  constexpr std::size_t kMostLanes = 8;
  const auto onVectors = loops != nullptr ? loops->byKernel[call.kernel->index].rows : nullptr;
  const auto fill = onVectors != nullptr ? onVectors : call.kernel->rows;
  const double* pointers[kRows];
  double pieceOfScales[kRows];
  double padded[kRows];
  call.rows = pointers;
  call.rowScales = scales != nullptr ? pieceOfScales : nullptr;
  for (std::size_t first = 0; first < count; first += kRows) {
    call.count = std::min(kRows, count - first);
    const std::size_t filled = (call.count + kMostLanes - 1) / kMostLanes * kMostLanes;
    for (std::size_t k = 0; k < filled; ++k) {
      const std::size_t row = first + (k < call.count ? k : 0);
      pointers[k] = rows[row].data();
      if (scales != nullptr) pieceOfScales[k] = scales[row];
    }
    call.values = call.count == kRows ? values + first : padded;
    fill(call);
    if (call.count < kRows) std::copy_n(padded, call.count, values + first);
    use(first, first + call.count);
  }
}

}  // namespace Tarvane::Plexura::PXROM::kernels
