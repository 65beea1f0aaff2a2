#pragma once

// Kernels between one point and rows in separate arrays: each lane of a vector is a row. Rows are
// transposed while they are read. Each row keeps its own order of operations.

#include "kernels/loops/sums.h"

namespace Tarvane::Plexura::PXROM::kernels {
namespace {

#if PXROM_SIMD != PXROM_SIMD_PORTABLE

/// Calls use(i, column) with the values of input i in kLanes rows, for the inputs from `first` to
/// before `last`.
template <bool kScaled, class Use>
PXROM_INLINE void ForColumns(const RowKernels& call, const double* const* rows, std::size_t first,
                             std::size_t last, const Use& use) {
  const auto scaled = [&](std::size_t i, Vector column) {
    if constexpr (kScaled) column = call.slopes[i] * column + call.intercepts[i];
    use(i, column);
  };
  std::size_t i = first;
  for (; i + 2 <= last; i += 2) {
    Vector column;
    Vector next;
    LoadTwoColumns(rows, i, column, next);
    scaled(i, column);
    scaled(i + 1, next);
  }
  if (i < last) scaled(i, LoadColumn(rows, i));
}

PXROM_INLINE Vector ScaleOf(const RowKernels& call, std::size_t i) {
  return call.scales[call.isOneScale ? 0 : i];
}

/// The kernels for the last states of all rows.
template <class K>
PXROM_INLINE void FinishRows(const RowKernels& call, const double* states) {
  const std::size_t count = call.count;
  std::uint32_t open = 0;
  for (std::size_t row = 0; row < count; row += kLanes) {
    const Vector scale = call.rowScales != nullptr ? Load(call.rowScales + row) : 1.0;
    const Exact value = K::Value(call.constants, Load(states + row), scale);
    Store(call.values + row, value.value);
    open |= static_cast<std::uint32_t>(value.open) << row;
  }
  for (; open != 0; open &= open - 1U) {
    const std::size_t row = FirstOf(open);
    const double scale = call.rowScales != nullptr ? call.rowScales[row] : 1.0;
    call.values[row] = call.kernel->value(call.constants, states[row], scale);
  }
}

/// Calls use(i, column) as ForColumns does, for rows that are scaled or not.
template <class Use>
PXROM_INLINE void ForGivenColumns(const RowKernels& call, const double* const* rows,
                                  std::size_t first, std::size_t last, const Use& use) {
  if (call.slopes != nullptr) {
    ForColumns<true>(call, rows, first, last, use);
  } else {
    ForColumns<false>(call, rows, first, last, use);
  }
}

template <class K, bool kScaled>
PXROM_INLINE void StatesOf(const RowKernels& call, double* states) {
  for (std::size_t row = 0; row < call.count; row += kLanes) {
    Vector state = K::kStart;
    ForColumns<kScaled>(call, call.rows + row, 0, call.inputs, [&](std::size_t i, Vector column) {
      state = Step<K>(call.constants, state, Vector(call.x[i]), column, ScaleOf(call, i));
    });
    Store(states + row, state);
  }
}

/// The states where each step needs a function that the host may have to compute: some inputs of
/// all rows together, and then the host.
template <class K>
PXROM_INLINE void StatesByStep(const RowKernels& call, double* states) {
  constexpr std::size_t kTogether = 8;
  double distances[kTogether * kRows];
  double answers[kTogether * kRows];
  Question questions[kTogether * kRows];
  const std::size_t count = call.count;
  for (std::size_t row = 0; row < count; row += kLanes) Store(states + row, K::kStart);
  for (std::size_t first = 0; first < call.inputs; first += kTogether) {
    const std::size_t left = call.inputs - first;
    const std::size_t inputs = left < kTogether ? left : kTogether;
    for (std::size_t row = 0; row < count; row += kLanes) {
      ForGivenColumns(
          call, call.rows + row, first, first + inputs, [&](std::size_t i, Vector column) {
            const std::size_t place = (i - first) * kRows + row;
            const Vector distance = K::Distance(Abs(call.x[i] - column), ScaleOf(call, i));
            Store(distances + place, distance);
            Store(answers + place, K::Argument(distance));
          });
    }
    const std::size_t asked = AnswerInputs<K, kRows>(inputs, count, distances, answers, questions);
    if (asked > 0) call.kernel->answerSteps(questions, asked, answers);
    for (std::size_t row = 0; row < count; row += kLanes) {
      Vector state = Load(states + row);
      for (std::size_t i = 0; i < inputs; ++i) {
        const std::size_t place = i * kRows + row;
        state = Combine<K>(call.constants, state, Load(distances + place),
                           [&] { return Load(answers + place); });
      }
      Store(states + row, state);
    }
  }
}

template <class K>
void Rows(const RowKernels& call) {
  static_assert(kRows <= 32);
  double states[kRows];
  if constexpr (K::kAsksPerInput) {
    StatesByStep<K>(call, states);
  } else if (call.slopes != nullptr) {
    StatesOf<K, true>(call, states);
  } else {
    StatesOf<K, false>(call, states);
  }
  FinishRows<K>(call, states);
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
