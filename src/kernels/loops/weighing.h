#pragma once

// The weighted sums of kernel values that are there already, because surfaces have them in common.

#include "kernels/loops/loop_table.h"
#include "simd/groups.h"

namespace Tarvane::Plexura::PXROM::kernels {
namespace {

using namespace simd;

template <class Add>
PXROM_INLINE void WeighBy(const KernelSum& call, const Add& add) {
  ForAllPoints(call.points, [&](auto size, std::size_t point) {
    Vector sum[size.count];
    for (std::size_t u = 0; u < size.count; ++u) sum[u] = call.start;
    const double* values = call.values + point;
    for (std::size_t j = 0; j < call.centreCount; ++j, values += kBlock) {
      const Vector weight = call.weights[j];
      for (std::size_t u = 0; u < size.count; ++u) {
        sum[u] = add(Load(values + u * kLanes), weight, sum[u]);
      }
    }
    for (std::size_t u = 0; u < size.count; ++u) Store(call.sums + point + u * kLanes, sum[u]);
  });
}

/// As Sum adds them.
void Weigh(const KernelSum& call) {
  WeighBy(call, [](Vector value, Vector weight, Vector sum) { return sum + value * weight; });
}

/// As FastSum adds them.
void FastWeigh(const KernelSum& call) {
  WeighBy(call, [](Vector value, Vector weight, Vector sum) { return Fma(value, weight, sum); });
}

}  // namespace
}  // namespace Tarvane::Plexura::PXROM::kernels
