#pragma once

#include <algorithm>
#include <cstddef>
#include <vector>

#include "lanes/lanes.h"

namespace Tarvane::Plexura::PXROM::lanes {

/// Calls use(first, count, values) for one piece after the other of the first `count` rows, with
/// the kernels of its rows. `call` tells the rest; `widths`, one per row, may be null.
template <class Use>
void ForRowKernels(const Lanes& lanes, RowKernels call, const std::vector<double>* rows,
                   std::size_t count, const double* widths, const Use& use) {
  constexpr std::size_t kMostLanes = 8;
  const double* pointers[kRows];
  double pieceOfWidths[kRows];
  double values[kRows];
  call.rows = pointers;
  call.widths = widths != nullptr ? pieceOfWidths : nullptr;
  call.values = values;
  for (std::size_t first = 0; first < count; first += kRows) {
    call.count = std::min(kRows, count - first);
    const std::size_t filled = (call.count + kMostLanes - 1) / kMostLanes * kMostLanes;
    for (std::size_t k = 0; k < filled; ++k) {
      const std::size_t row = first + (k < call.count ? k : 0);
      pointers[k] = rows[row].data();
      if (widths != nullptr) pieceOfWidths[k] = widths[row];
    }
    lanes.rowKernels(call);
    use(first, call.count, values);
  }
}

}  // namespace Tarvane::Plexura::PXROM::lanes
