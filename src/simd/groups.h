#pragma once

#include "simd/bessel.h"
#include "simd/fdlibm.h"
#include "simd/loop_table.h"

namespace Tarvane::Plexura::PXROM::simd {
namespace {

/// This many vectors of points go through a loop together, so that the additions of one point fill
/// the waiting times of the others.
constexpr std::size_t kGroup = 4;

/// How many vectors, as a type.
template <std::size_t kCount>
struct Vectors {
  static constexpr std::size_t count = kCount;
};

template <std::size_t kValue>
struct Index {
  static constexpr std::size_t value = kValue;
};

/// body(0) to body(kCount - 1) with indices that are constants, so that arrays with these indices
/// become registers at every level of optimisation.
template <std::size_t kCount, class Body>
PXROM_INLINE void Unrolled(const Body& body) {
  if constexpr (kCount > 0) {
    Unrolled<kCount - 1>(body);
    body(Index<kCount - 1>());
  }
}

/// Calls body(size, first) for all points, group by group and then vector by vector: `size` is a
/// Vectors, `first` the first point.
template <class Body>
PXROM_INLINE void ForAllPoints(std::size_t points, const Body& body) {
  std::size_t first = 0;
  // After the last point come copies of it, up to the end of the block.
  for (; first < points && points - first > (kGroup - 1) * kLanes; first += kGroup * kLanes) {
    body(Vectors<kGroup>(), first);
  }
  for (; first < points; first += kLanes) body(Vectors<1>(), first);
}

}  // namespace
}  // namespace Tarvane::Plexura::PXROM::simd
