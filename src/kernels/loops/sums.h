#pragma once

// The loops over centres and points.

#include "kernels/kernels.h"
#include "simd/groups.h"

namespace Tarvane::Plexura::PXROM::kernels {
namespace {

using namespace simd;

/// The values that the host has to compute, and where the kernel values go.
struct Pending {
  Question* questions;
  std::size_t count;
  double* values;
};

PXROM_INLINE void Ask(Pending& pending, unsigned open, Vector argument, std::size_t place) {
  double arguments[kLanes];
  Store(arguments, argument);
  for (; open != 0; open &= open - 1U) {
    const std::size_t lane = FirstOf(open);
    pending.questions[pending.count++] = {arguments[lane], place + lane};
  }
}

template <class K, class Size>
PXROM_INLINE void FinishValues(const KernelSum& call, Pending& pending, std::size_t centre,
                               std::size_t row, std::size_t point, const Vector* state, Size size) {
  const Vector scale = call.centreScales != nullptr ? call.centreScales[centre] : 1.0;
  for (std::size_t u = 0; u < size.count; ++u) {
    const std::size_t place = row * kBlock + point + u * kLanes;
    const Exact value = K::Value(call.constants, state[u], scale);
    Store(pending.values + place, value.value);
    if (value.open != 0) Ask(pending, value.open, state[u], place);
  }
}

/// The values of one centre, all inputs at once.
template <class K, class Size>
PXROM_INLINE void ValuesOf(const KernelSum& call, Pending& pending, std::size_t centre,
                           std::size_t row, std::size_t point, Size size) {
  Vector state[size.count];
  for (std::size_t u = 0; u < size.count; ++u) state[u] = K::kStart;
  const double* const y = call.centres + centre * call.inputs;
  for (std::size_t i = 0; i < call.inputs; ++i) {
    const Vector yi = y[i];
    const Vector scale = call.scales[i];
    for (std::size_t u = 0; u < size.count; ++u) {
      const Vector x = Load(call.x + i * kBlock + point + u * kLanes);
      state[u] = Step<K>(call.constants, state[u], x, yi, scale);
    }
  }
  FinishValues<K>(call, pending, centre, row, point, state, size);
}

/// Replaces arguments by the functions of them that the steps need. There is a block of kStride
/// arguments and distances for each input, of which `count` are used. Writes the questions for the
/// host and returns how many there are.
template <class K, std::size_t kStride>
PXROM_INLINE std::size_t AnswerInputs(std::size_t inputs, std::size_t count,
                                      const double* distances, double* answers,
                                      Question* questions) {
  static_assert(kStride <= 32);
  constexpr std::size_t kTogether = 16;
  std::size_t asked = 0;
  for (std::size_t first = 0; first < inputs; first += kTogether) {
    const std::size_t left = inputs - first;
    const std::size_t last = first + (left < kTogether ? left : kTogether);
    std::uint32_t open[kTogether];
    for (std::size_t i = first; i < last; ++i) {
      std::uint32_t openHere = 0;
      for (std::size_t at = 0; at < count; at += kLanes) {
        double* const answersHere = answers + i * kStride + at;
        const Exact answer = K::Inner(Load(answersHere));
        Store(answersHere, answer.value);
        openHere |= static_cast<std::uint32_t>(answer.open) << at;
      }
      open[i - first] = openHere;
    }
    // Not earlier: a branch on what is open would wait for the answer, and so would what follows.
    for (std::size_t i = first; i < last; ++i) {
      for (std::uint32_t rest = open[i - first]; rest != 0; rest &= rest - 1U) {
        const std::size_t place = i * kStride + FirstOf(rest);
        if constexpr (K::kHasEnd) {
          if (!K::Asks(distances[place])) continue;
        }
        questions[asked++] = {K::Argument(distances[place]), place};
      }
    }
  }
  return asked;
}

/// The values of one centre where each step needs a function that the host may have to compute.
template <class K>
PXROM_INLINE void ValuesByStep(const KernelSum& call, Pending& pending, std::size_t centre,
                               std::size_t row) {
  double* const distances = call.steps;
  double* const answers = distances + call.inputs * kBlock;
  const double* const y = call.centres + centre * call.inputs;
  for (std::size_t i = 0; i < call.inputs; ++i) {
    const Vector yi = y[i];
    const Vector scale = call.scales[i];
    for (std::size_t point = 0; point < call.points; point += kLanes) {
      const std::size_t place = i * kBlock + point;
      const Vector distance = K::Distance(Abs(Load(call.x + place) - yi), scale);
      Store(distances + place, distance);
      Store(answers + place, K::Argument(distance));
    }
  }
  // After the questions about whole kernels, which are answered later.
  Question* const questions = pending.questions + pending.count;
  const std::size_t asked =
      AnswerInputs<K, kBlock>(call.inputs, call.points, distances, answers, questions);
  if (asked > 0) call.kernel->answerSteps(questions, asked, answers);
  ForAllPoints(call.points, [&](auto size, std::size_t point) {
    Vector state[size.count];
    for (std::size_t u = 0; u < size.count; ++u) state[u] = K::kStart;
    for (std::size_t i = 0; i < call.inputs; ++i) {
      for (std::size_t u = 0; u < size.count; ++u) {
        const std::size_t place = i * kBlock + point + u * kLanes;
        state[u] = Combine<K>(call.constants, state[u], Load(distances + place),
                              [&] { return Load(answers + place); });
      }
    }
    FinishValues<K>(call, pending, centre, row, point, state, size);
  });
}

/// Adds the weighted values of `count` centres from `first` on. Not a part of Sum, so that the
/// kernels share it.
void AddWeighed(const KernelSum& call, std::size_t first, std::size_t count, const double* values) {
  ForAllPoints(call.points, [&](auto size, std::size_t point) {
    Vector sum[size.count];
    for (std::size_t u = 0; u < size.count; ++u) sum[u] = Load(call.sums + point + u * kLanes);
    for (std::size_t row = 0; row < count; ++row) {
      const Vector weight = call.weights[first + row];
      for (std::size_t u = 0; u < size.count; ++u) {
        const Vector value = Load(values + row * kBlock + point + u * kLanes);
        sum[u] = sum[u] + value * weight;
      }
    }
    for (std::size_t u = 0; u < size.count; ++u) Store(call.sums + point + u * kLanes, sum[u]);
  });
}

template <class K>
void Sum(const KernelSum& call) {
  for (std::size_t point = 0; point < call.points; point += kLanes) {
    Store(call.sums + point, call.start);
  }
  for (std::size_t first = 0; first < call.centreCount; first += kChunk) {
    const std::size_t left = call.centreCount - first;
    const std::size_t count = left < kChunk ? left : kChunk;
    double* const values = call.values + (call.keepsValues ? first * kBlock : 0);
    Pending pending = {call.questions, 0, values};
    if constexpr (K::kAsksPerInput) {
      for (std::size_t row = 0; row < count; ++row) {
        ValuesByStep<K>(call, pending, first + row, row);
      }
    } else {
      ForAllPoints(call.points, [&](auto size, std::size_t point) {
        for (std::size_t row = 0; row < count; ++row) {
          ValuesOf<K>(call, pending, first + row, row, point, size);
        }
      });
    }
    if (pending.count > 0) {
      call.kernel->answerValues(call, first, call.questions, pending.count, values);
    }
    AddWeighed(call, first, count, values);
  }
}

/// Calls use(centre, u, value) with the fast kernel values of all centres at some points.
template <class K, class Size, class Use>
PXROM_INLINE void ForFastValues(const KernelSum& call, std::size_t point, Size size,
                                const Use& use) {
  using Fast = typename K::Fast;
  using State = decltype(Fast::template Start<Vector>());
  const double* y = call.centres;
  for (std::size_t j = 0; j < call.centreCount; ++j, y += call.inputs) {
    State state[size.count];
    for (std::size_t u = 0; u < size.count; ++u) state[u] = Fast::template Start<Vector>();
    for (std::size_t i = 0; i < call.inputs; ++i) {
      const Vector yi = y[i];
      for (std::size_t u = 0; u < size.count; ++u) {
        const Vector x = Load(call.x + i * kBlock + point + u * kLanes);
        state[u] = Fast::Step(state[u], x, yi);
      }
    }
    const Vector scale = call.centreScales != nullptr ? call.centreScales[j] : 1.0;
    for (std::size_t u = 0; u < size.count; ++u) {
      use(j, u, Fast::Value(call.constants, state[u], scale));
    }
  }
}

template <class K>
void FastSum(const KernelSum& call) {
  ForAllPoints(call.points, [&](auto size, std::size_t point) {
    Vector sum[size.count];
    for (std::size_t u = 0; u < size.count; ++u) sum[u] = call.start;
    ForFastValues<K>(call, point, size, [&](std::size_t j, std::size_t u, Vector value) {
      sum[u] = Fma(value, call.weights[j], sum[u]);
    });
    for (std::size_t u = 0; u < size.count; ++u) Store(call.sums + point + u * kLanes, sum[u]);
  });
}

template <class K>
void FastValuesOf(const KernelSum& call) {
  ForAllPoints(call.points, [&](auto size, std::size_t point) {
    ForFastValues<K>(call, point, size, [&](std::size_t j, std::size_t u, Vector value) {
      Store(call.values + j * kBlock + point + u * kLanes, value);
    });
  });
}

}  // namespace
}  // namespace Tarvane::Plexura::PXROM::kernels
