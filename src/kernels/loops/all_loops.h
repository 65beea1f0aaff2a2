#pragma once

// All loops for the instruction set that this is compiled for.

#include "kernels/loops/rows.h"
#include "kernels/loops/sums.h"
#include "kernels/loops/weighing.h"
#include "kernels/table.h"
#include "simd/loops.h"

namespace Tarvane::Plexura::PXROM::kernels {
namespace {

template <class K>
constexpr KernelLoops LoopsOf() {
  KernelLoops loops = {&Sum<K>, nullptr, nullptr, RowLoopOf<K>()};
  if constexpr (kHasFast<K>) {
    loops.fastSum = &FastSum<K>;
    loops.fastValues = &FastValuesOf<K>;
  }
  return loops;
}

template <class... TableRows>
struct LoopsOfAll {
  explicit constexpr LoopsOfAll(Table<TableRows...>) {}
  KernelLoops loops[sizeof...(TableRows)] = {LoopsOf<typename TableRows::Type>()...};
};

constexpr LoopsOfAll kLoopsOfAll{Kernels()};

constexpr LoopTable kTable = {simd::kLoops, kLoopsOfAll.loops, &Weigh, &FastWeigh};

}  // namespace
}  // namespace Tarvane::Plexura::PXROM::kernels
