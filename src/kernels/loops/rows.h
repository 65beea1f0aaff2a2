#pragma once

// Kernels between one point and rows in separate arrays: each lane of a vector is a row. Rows are
// transposed while they are read. Each row keeps its own order of operations.

#include "kernels/loops/sums.h"

namespace Tarvane::Plexura::PXROM::kernels {
namespace {

#if PXROM_SIMD != PXROM_SIMD_PORTABLE

/// A step that the host may have to compute.
template <class K>
PXROM_INLINE Vector AskedStep(const RowKernels& call, Vector state, Vector difference,
                              Vector scale) {
  const Vector distance = K::Distance(Abs(difference), scale);
  const Vector argument = K::Argument(distance);
  const Exact answer = InnerOf<K>(distance, argument);
  if (answer.open == 0) {
    return Combine<K>(call.constants, state, distance, [&] { return answer.value; });
  }
  double answers[kLanes];
  Question questions[kLanes];
  Store(answers, answer.value);
  Pending pending = {questions, 0, answers};
  Ask(pending, answer.open, argument, 0);
  call.kernel->answerSteps(questions, pending.count, answers);
  return Combine<K>(call.constants, state, distance, [&] { return Load(answers); });
}

template <class K, bool kScaled>
PXROM_INLINE Vector StepOf(const RowKernels& call, std::size_t i, Vector column, Vector state) {
  if constexpr (kScaled) column = call.slopes[i] * column + call.intercepts[i];
  const Vector scale = call.scales[call.isOneScale ? 0 : i];
  if constexpr (K::kAsksPerInput) {
    return AskedStep<K>(call, state, call.x[i] - column, scale);
  } else {
    return Step<K>(call.constants, state, Vector(call.x[i]), column, scale);
  }
}

template <class K, bool kScaled>
PXROM_INLINE void ForEachVectorOfRows(const RowKernels& call) {
  // Copies for the loop, which no store to the values can change.
  const std::size_t count = call.count;
  const double* const* const allRows = call.rows;
  double* const values = call.values;
  for (std::size_t first = 0; first < count; first += kLanes) {
    const double* const* const rows = allRows + first;
    Vector state = K::kStart;
    std::size_t i = 0;
    for (; i + 2 <= call.inputs; i += 2) {
      Vector column;
      Vector next;
      LoadTwoColumns(rows, i, column, next);
      state = StepOf<K, kScaled>(call, i, column, state);
      state = StepOf<K, kScaled>(call, i + 1, next, state);
    }
    if (i < call.inputs) state = StepOf<K, kScaled>(call, i, LoadColumn(rows, i), state);
    if constexpr (!K::kHasVectorForm) {
      Store(values + first, state);
      continue;
    }
    const Vector scale = call.rowScales != nullptr ? Load(call.rowScales + first) : 1.0;
    const Exact value = ValueOf<K>(call.constants, state, scale);
    Store(values + first, value.value);
    if (value.open == 0) continue;
    double states[kLanes];
    Store(states, state);
    for (unsigned open = value.open; open != 0; open &= open - 1U) {
      const std::size_t row = first + FirstOf(open);
      const double own = call.rowScales != nullptr ? call.rowScales[row] : 1.0;
      call.values[row] = call.kernel->value(call.constants, states[row - first], own);
    }
  }
  if constexpr (!K::kHasVectorForm) {
    call.kernel->values(call.constants, call.rowScales, call.count, call.values);
  }
}

template <class K>
void Rows(const RowKernels& call) {
  if (call.slopes != nullptr) {
    ForEachVectorOfRows<K, true>(call);
  } else {
    ForEachVectorOfRows<K, false>(call);
  }
}

template <class K>
constexpr auto RowLoopOf() -> void (*)(const RowKernels&) {
  return &Rows<K>;
}

#else

// The plain loops are as fast.
template <class K>
constexpr auto RowLoopOf() -> void (*)(const RowKernels&) {
  return nullptr;
}

#endif

}  // namespace
}  // namespace Tarvane::Plexura::PXROM::kernels
