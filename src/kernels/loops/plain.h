#pragma once

// Kernels between one point and rows with plain numbers, for single rows and for machines without
// vectors. plain_rows.cpp compiles them for the kernels of the table.

#include "kernels/loops/loop_table.h"

namespace Tarvane::Plexura::PXROM::kernels {

/// A step that needs a function, for kCount rows. The calls have a loop of their own, so that no
/// call makes the compiler save registers of the other loops.
template <class K, std::size_t kCount, class Rows>
PXROM_INLINE void AskedSteps(const Constants& constants, double x, const Rows& y, double scale,
                             double* state) {
  double distances[kCount];
  double answers[kCount];
  bool asks[kCount];
  for (std::size_t k = 0; k < kCount; ++k) {
    distances[k] = K::Distance(Abs(x - y(k)), scale);
    answers[k] = K::Argument(distances[k]);
    asks[k] = true;
    if constexpr (K::kHasEnd) asks[k] = K::Asks(distances[k]);
  }
  for (std::size_t k = 0; k < kCount; ++k) {
    if (asks[k]) answers[k] = K::Inner(answers[k]);
  }
  for (std::size_t k = 0; k < kCount; ++k) {
    state[k] = Combine<K>(constants, state[k], distances[k], [&] { return answers[k]; });
  }
}

/// kCount rows together. Each row has a sum of its own in ascending input order, so the results are
/// those of one row at a time, while independent sums hide each other's latency and share vector
/// instructions.
template <class K, bool kScaled, std::size_t kCount>
void PlainRowsSideBySide(const RowKernels& call, std::size_t first) {
  // Copies, so that the compiler knows that no store to the values changes them.
  const Constants constants = call.constants;
  const double* const x = call.x;
  const double* const scales = call.scales;
  const std::size_t nextScale = call.isOneScale ? 0 : 1;
  const double* rows[kCount];
  double state[kCount];
  for (std::size_t k = 0; k < kCount; ++k) {
    rows[k] = call.rows[first + k];
    state[k] = K::kStart;
  }
  for (std::size_t i = 0; i < call.inputs; ++i) {
    const double slope = kScaled ? call.slopes[i] : 1.0;
    const double intercept = kScaled ? call.intercepts[i] : 0.0;
    const double scale = scales[i * nextScale];
    const auto y = [&](std::size_t k) {
      return kScaled ? slope * rows[k][i] + intercept : rows[k][i];
    };
    if constexpr (K::kAsksPerInput) {
      AskedSteps<K, kCount>(constants, x[i], y, scale, state);
    } else {
      for (std::size_t k = 0; k < kCount; ++k) {
        state[k] = Step<K>(constants, state[k], x[i], y(k), scale);
      }
    }
  }
  for (std::size_t k = 0; k < kCount; ++k) {
    const double scale = call.rowScales != nullptr ? call.rowScales[first + k] : 1.0;
    call.values[first + k] = K::Value(constants, state[k], scale);
  }
}

template <class K, bool kScaled>
void PlainRowsOf(const RowKernels& call) {
  constexpr std::size_t kSideBySide = 8;
  std::size_t first = 0;
  for (; first + kSideBySide <= call.count; first += kSideBySide) {
    PlainRowsSideBySide<K, kScaled, kSideBySide>(call, first);
  }
  for (; first < call.count; ++first) PlainRowsSideBySide<K, kScaled, 1>(call, first);
}

template <class K>
void PlainRows(const RowKernels& call) {
  if (call.slopes != nullptr) {
    PlainRowsOf<K, true>(call);
  } else {
    PlainRowsOf<K, false>(call);
  }
}

}  // namespace Tarvane::Plexura::PXROM::kernels
