#pragma once

// The loops over centres and points. A group of `kGroup` vectors of points goes through them
// together, so that the chains of additions of one point hide behind those of the others.

#include "lanes/kernels.h"

namespace Tarvane::Plexura::PXROM::lanes {
namespace {

constexpr std::size_t kGroup = 4;

/// Calls body(size, lane) for the points from `lane` on, group by group and then vector by vector;
/// `size` tells how many vectors by its type.
template <std::size_t kCount>
struct Vectors {
  static constexpr std::size_t count = kCount;
};

template <class Body>
PXROM_INLINE void ForAllPoints(std::size_t points, const Body& body) {
  std::size_t lane = 0;
  // Behind the last point stand copies of it, up to the end of the block.
  for (; lane < points && points - lane > (kGroup - 1) * kLanes; lane += kGroup * kLanes) {
    body(Vectors<kGroup>(), lane);
  }
  for (; lane < points; lane += kLanes) body(Vectors<1>(), lane);
}

/// What waits for the host, and where the kernels at hand go.
struct Pending {
  Question* questions;
  std::size_t count;
  double* values;
};

PXROM_INLINE void Ask(Pending& pending, unsigned open, V argument, std::size_t place) {
  double arguments[kLanes];
  Store(arguments, argument);
  for (; open != 0; open &= open - 1U) {
    const std::size_t lane = FirstOf(open);
    pending.questions[pending.count++] = {arguments[lane], place + lane};
  }
}

template <class Function, class Size>
PXROM_INLINE void FinishKernels(const KernelSum& call, Pending& pending, std::size_t centre,
                                std::size_t row, std::size_t lane, const V* state, Size size) {
  const V width = call.widths != nullptr ? Set(call.widths[centre]) : Set(1.0);
  for (std::size_t u = 0; u < size.count; ++u) {
    const std::size_t place = row * kBlock + lane + u * kLanes;
    const Exact kernel = Function::Finish(call, state[u], width);
    Store(pending.values + place, kernel.value);
    if (kernel.open != 0) Ask(pending, kernel.open, state[u], place);
  }
}

/// The kernels of one centre, all inputs at once.
template <class Function, class Size>
PXROM_INLINE void KernelsOf(const KernelSum& call, Pending& pending, std::size_t centre,
                            std::size_t row, std::size_t lane, Size size) {
  V state[size.count];
  for (std::size_t u = 0; u < size.count; ++u) state[u] = Set(Function::kStart);
  const double* const y = call.centres + centre * call.inputs;
  for (std::size_t i = 0; i < call.inputs; ++i) {
    const V yi = Set(y[i]);
    const V k = Set(call.kernels[i]);
    for (std::size_t u = 0; u < size.count; ++u) {
      const V x = Load(call.x + i * kBlock + lane + u * kLanes);
      state[u] = Function::Step(state[u], x, yi, k);
    }
  }
  FinishKernels<Function>(call, pending, centre, row, lane, state, size);
}

/// The same where each step needs a function that the host may have to be asked for.
template <class Function>
PXROM_INLINE void KernelsByStep(const KernelSum& call, Pending& pending, std::size_t centre,
                                std::size_t row) {
  double* const distances = call.steps;
  double* const answers = distances + call.inputs * kBlock;
  const double* const y = call.centres + centre * call.inputs;
  // Behind the questions about whole kernels, which wait.
  Pending steps = {pending.questions + pending.count, 0, answers};
  for (std::size_t i = 0; i < call.inputs; ++i) {
    const V yi = Set(y[i]);
    const V k = Set(call.kernels[i]);
    for (std::size_t lane = 0; lane < call.points; lane += kLanes) {
      const std::size_t place = i * kBlock + lane;
      const V distance = Function::Distance(Load(call.x + place), yi, k);
      const V argument = Function::Argument(distance);
      const Exact answer = Function::Ask(argument);
      Store(distances + place, distance);
      Store(answers + place, answer.value);
      if (answer.open != 0) Ask(steps, answer.open, argument, place);
    }
  }
  AskForSteps(call.kernel, steps.questions, steps.count, answers);
  ForAllPoints(call.points, [&](auto size, std::size_t lane) {
    V state[size.count];
    for (std::size_t u = 0; u < size.count; ++u) state[u] = Set(Function::kStart);
    for (std::size_t i = 0; i < call.inputs; ++i) {
      for (std::size_t u = 0; u < size.count; ++u) {
        const std::size_t place = i * kBlock + lane + u * kLanes;
        state[u] =
            Function::Combine(call, state[u], Load(distances + place), Load(answers + place));
      }
    }
    FinishKernels<Function>(call, pending, centre, row, lane, state, size);
  });
}

template <class Function>
void Sum(const KernelSum& call) {
  for (std::size_t lane = 0; lane < call.points; lane += kLanes) {
    Store(call.sums + lane, Set(call.start));
  }
  for (std::size_t first = 0; first < call.centreCount; first += kChunk) {
    const std::size_t left = call.centreCount - first;
    const std::size_t count = left < kChunk ? left : kChunk;
    double* const values = call.values + (call.keepsKernels ? first * kBlock : 0);
    Pending pending = {call.questions, 0, values};
    if constexpr (Function::kAsksPerInput) {
      for (std::size_t row = 0; row < count; ++row) {
        KernelsByStep<Function>(call, pending, first + row, row);
      }
    } else {
      ForAllPoints(call.points, [&](auto size, std::size_t lane) {
        for (std::size_t row = 0; row < count; ++row) {
          KernelsOf<Function>(call, pending, first + row, row, lane, size);
        }
      });
    }
    if (pending.count > 0) AskForKernels(call, first, call.questions, pending.count, values);
    ForAllPoints(call.points, [&](auto size, std::size_t lane) {
      V sum[size.count];
      for (std::size_t u = 0; u < size.count; ++u) sum[u] = Load(call.sums + lane + u * kLanes);
      for (std::size_t row = 0; row < count; ++row) {
        const V weight = Set(call.weights[first + row]);
        for (std::size_t u = 0; u < size.count; ++u) {
          const V kernel = Load(values + row * kBlock + lane + u * kLanes);
          sum[u] = sum[u] + kernel * weight;
        }
      }
      for (std::size_t u = 0; u < size.count; ++u) Store(call.sums + lane + u * kLanes, sum[u]);
    });
  }
}

template <class Function>
void FastSum(const KernelSum& call) {
  ForAllPoints(call.points, [&](auto size, std::size_t lane) {
    V sum[size.count];
    for (std::size_t u = 0; u < size.count; ++u) sum[u] = Set(call.start);
    const double* y = call.centres;
    for (std::size_t j = 0; j < call.centreCount; ++j, y += call.inputs) {
      typename Function::State state[size.count];
      for (std::size_t u = 0; u < size.count; ++u) state[u] = Function::Start();
      for (std::size_t i = 0; i < call.inputs; ++i) {
        const V yi = Set(y[i]);
        for (std::size_t u = 0; u < size.count; ++u) {
          const V x = Load(call.x + i * kBlock + lane + u * kLanes);
          state[u] = Function::Step(state[u], x, yi);
        }
      }
      const V width = call.widths != nullptr ? Set(call.widths[j]) : Set(1.0);
      const V weight = Set(call.weights[j]);
      for (std::size_t u = 0; u < size.count; ++u) {
        sum[u] = Fma(Function::Finish(call, state[u], width), weight, sum[u]);
      }
    }
    for (std::size_t u = 0; u < size.count; ++u) Store(call.sums + lane + u * kLanes, sum[u]);
  });
}

void SumOf(const KernelSum& call) {
  switch (call.kernel) {
    case Kernel::Exponential:
      return Sum<Exponential>(call);
    case Kernel::Gaussian:
      return Sum<Gaussian>(call);
    case Kernel::Linear:
      return Sum<Linear>(call);
    case Kernel::Spherical:
      return Sum<Spherical>(call);
    case Kernel::Cubic:
      return Sum<Cubic>(call);
    case Kernel::Multiquadric:
      return Sum<Multiquadric>(call);
    case Kernel::Spline:
      return Sum<Spline>(call);
    case Kernel::Matern52:
      return Sum<Matern52>(call);
    case Kernel::Parabolic:
      return Sum<Parabolic>(call);
    case Kernel::BesselJ0:
      return Sum<BesselJ0>(call);
    case Kernel::Sinc:
      return Sum<Sinc>(call);
    case Kernel::DotLinear:
      return Sum<DotLinear>(call);
    case Kernel::DotQuadratic:
      return Sum<DotQuadratic>(call);
    case Kernel::DotSigmoid:
      return Sum<DotSigmoid>(call);
    case Kernel::Epanechnikov:
      return Sum<Epanechnikov>(call);
    case Kernel::RadialGaussian:
      return Sum<RadialGaussian>(call);
    case Kernel::RadialCompact:
      return Sum<RadialCompact>(call);
    case Kernel::RadialCubic:
      return Sum<RadialCubic>(call);
    case Kernel::RadialSinc:
      return Sum<RadialSinc>(call);
    case Kernel::RadialRational:
      return Sum<RadialRational>(call);
    case Kernel::RadialTanh:
      return Sum<RadialTanh>(call);
  }
}

void FastSumOf(const KernelSum& call) {
  switch (call.kernel) {
    case Kernel::Exponential:
      return FastSum<FastExponential>(call);
    case Kernel::Gaussian:
      return FastSum<FastGaussian>(call);
    case Kernel::Matern52:
      return FastSum<FastMatern52>(call);
    case Kernel::BesselJ0:
      return FastSum<FastBesselJ0>(call);
    case Kernel::Sinc:
      return FastSum<FastSinc>(call);
    case Kernel::DotSigmoid:
      return FastSum<FastDotSigmoid>(call);
    case Kernel::RadialGaussian:
      return FastSum<FastRadialGaussian>(call);
    case Kernel::RadialCompact:
      return FastSum<FastRadialCompact>(call);
    case Kernel::RadialSinc:
      return FastSum<FastRadialSinc>(call);
    case Kernel::RadialTanh:
      return FastSum<FastRadialTanh>(call);
    default:
      return;  // no fast form
  }
}

}  // namespace
}  // namespace Tarvane::Plexura::PXROM::lanes
