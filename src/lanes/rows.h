#pragma once

// One point against rows that lie anywhere: vectors across rows, which are turned into columns on
// the way. Each row keeps its own order of operations.

#include "lanes/kernels.h"

namespace Tarvane::Plexura::PXROM::lanes {
namespace {

#if PXROM_LANES != PXROM_LANES_PORTABLE

/// Value `i` of kLanes rows.
PXROM_INLINE V LoadColumn(const double* const* rows, std::size_t i) {
  double column[kLanes];
  for (std::size_t lane = 0; lane < kLanes; ++lane) column[lane] = rows[lane][i];
  return Load(column);
}

template <class Function, bool kScaled>
PXROM_INLINE V StepOf(const RowKernels& call, std::size_t i, V column, V state) {
  if constexpr (kScaled) column = Set(call.slopes[i]) * column + Set(call.intercepts[i]);
  const V kernel = Set(call.kernels[call.isOneKernel ? 0 : i]);
  return Function::Step(state, Set(call.x[i]), column, kernel);
}

template <class Function, bool kScaled>
PXROM_INLINE void ForEachVectorOfRows(const RowKernels& call) {
  for (std::size_t first = 0; first < call.count; first += kLanes) {
    const double* const* const rows = call.rows + first;
    V state = Set(Function::kStart);
    std::size_t i = 0;
    for (; i + 2 <= call.inputs; i += 2) {
      V column;
      V next;
      LoadTwoColumns(rows, i, column, next);
      state = StepOf<Function, kScaled>(call, i, column, state);
      state = StepOf<Function, kScaled>(call, i + 1, next, state);
    }
    if (i < call.inputs) state = StepOf<Function, kScaled>(call, i, LoadColumn(rows, i), state);
    const V width = call.widths != nullptr ? Load(call.widths + first) : Set(1.0);
    const Exact kernel = Function::Finish(call, state, width);
    Store(call.values + first, kernel.value);
    if (kernel.open == 0) continue;
    double sums[kLanes];
    Store(sums, state);
    for (unsigned open = kernel.open; open != 0; open &= open - 1U) {
      const std::size_t row = first + FirstOf(open);
      const double own = call.widths != nullptr ? call.widths[row] : 1.0;
      call.values[row] = AskForKernel(call, sums[row - first], own);
    }
  }
}

template <class Function>
void KernelsOfRows(const RowKernels& call) {
  if (call.slopes != nullptr) {
    ForEachVectorOfRows<Function, true>(call);
  } else {
    ForEachVectorOfRows<Function, false>(call);
  }
}

void RowKernelsOf(const RowKernels& call) {
  switch (call.kernel) {
    case Kernel::Exponential:
      return KernelsOfRows<Exponential>(call);
    case Kernel::Gaussian:
      return KernelsOfRows<Gaussian>(call);
    case Kernel::Linear:
      return KernelsOfRows<Linear>(call);
    case Kernel::Spherical:
      return KernelsOfRows<Spherical>(call);
    case Kernel::Cubic:
      return KernelsOfRows<Cubic>(call);
    case Kernel::Multiquadric:
      return KernelsOfRows<Multiquadric>(call);
    case Kernel::Spline:
      return KernelsOfRows<Spline>(call);
    case Kernel::Parabolic:
      return KernelsOfRows<Parabolic>(call);
    case Kernel::DotLinear:
      return KernelsOfRows<DotLinear>(call);
    case Kernel::DotQuadratic:
      return KernelsOfRows<DotQuadratic>(call);
    case Kernel::Epanechnikov:
      return KernelsOfRows<Epanechnikov>(call);
    case Kernel::RadialGaussian:
      return KernelsOfRows<RadialGaussian>(call);
    case Kernel::RadialCompact:
      return KernelsOfRows<RadialCompact>(call);
    case Kernel::RadialCubic:
      return KernelsOfRows<RadialCubic>(call);
    case Kernel::RadialRational:
      return KernelsOfRows<RadialRational>(call);
    default:
      return;  // HasRowKernels
  }
}

void RowProductsOf(const double* const* rows, const double* x, std::size_t columns, double* out) {
  constexpr std::size_t kVectors = kRowsOfProducts / kLanes;
  V sum[kVectors];
  for (std::size_t u = 0; u < kVectors; ++u) sum[u] = Load(out + u * kLanes);
  std::size_t j = 0;
  for (; j + 4 <= columns; j += 4) {
    for (std::size_t u = 0; u < kVectors; ++u) {
      V column[4];
      LoadFourColumns(rows + u * kLanes, j, column);
      for (std::size_t next = 0; next < 4; ++next) {
        sum[u] = sum[u] + column[next] * Set(x[j + next]);
      }
    }
  }
  for (; j < columns; ++j) {
    for (std::size_t u = 0; u < kVectors; ++u) {
      sum[u] = sum[u] + LoadColumn(rows + u * kLanes, j) * Set(x[j]);
    }
  }
  for (std::size_t u = 0; u < kVectors; ++u) Store(out + u * kLanes, sum[u]);
}

std::size_t LengthBeforeZerosOf(const double* const* rows, std::size_t length) {
  for (; length >= kLanes; length -= kLanes) {
    V bits = Set(0.0);
    for (std::size_t k = 0; k < kRowsOfProducts; ++k) {
      bits = Or(bits, Load(rows[k] + length - kLanes));
    }
    if (Bits(IsOther(bits, Set(0.0))) != 0) break;
  }
  return length;
}

constexpr auto kRowKernels = &RowKernelsOf;
constexpr auto kRowProducts = &RowProductsOf;
constexpr auto kLengthBeforeZeros = &LengthBeforeZerosOf;

#else

// The evaluators' own loops are as good.
constexpr void (*kRowKernels)(const RowKernels&) = nullptr;
constexpr void (*kRowProducts)(const double* const*, const double*, std::size_t, double*) = nullptr;
constexpr std::size_t (*kLengthBeforeZeros)(const double* const*, std::size_t) = nullptr;

#endif

}  // namespace
}  // namespace Tarvane::Plexura::PXROM::lanes
