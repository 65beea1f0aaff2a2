#pragma once

// The loops over points that need no kernel, and their table for one instruction set.

#include "simd/groups.h"

namespace Tarvane::Plexura::PXROM::simd {
namespace {

template <bool kCoefficientFirst>
void AddTerms(const Polynomial& polynomial, const double* x, std::size_t points, double* sums) {
  ForAllPoints(points, [&](auto size, std::size_t point) {
    Vector sum[size.count];
    Unrolled<size.count>([&](auto u) PXROM_INLINE_BODY { sum[u.value] = 0.0; });
    for (std::size_t k = 0; k < polynomial.count; ++k) {
      const Monomial& term = polynomial.terms[k];
      const double* const first = x + term.first * kBlock + point;
      const double* const second = x + term.second * kBlock + point;
      const Vector c = term.coefficient;
      Unrolled<size.count>([&](auto u) PXROM_INLINE_BODY {
        const Vector a = Load(first + u.value * kLanes);
        const Vector b = Load(second + u.value * kLanes);
        sum[u.value] = sum[u.value] + (kCoefficientFirst ? a * c * b : a * b * c);
      });
    }
    Unrolled<size.count>(
        [&](auto u) PXROM_INLINE_BODY { Store(sums + point + u.value * kLanes, sum[u.value]); });
  });
}

void PolynomialOf(const Polynomial& polynomial, const double* x, std::size_t points, double* sums) {
  if (polynomial.coefficientFirst) {
    AddTerms<true>(polynomial, x, points, sums);
  } else {
    AddTerms<false>(polynomial, x, points, sums);
  }
}

void ProductsOf(const Polynomial& polynomial, const double* x, std::size_t points, double* values) {
  for (std::size_t k = 0; k < polynomial.count; ++k) {
    const double* const first = x + polynomial.terms[k].first * kBlock;
    const double* const second = x + polynomial.terms[k].second * kBlock;
    for (std::size_t point = 0; point < points; point += kLanes) {
      Store(values + k * kBlock + point, Load(first + point) * Load(second + point));
    }
  }
}

void QuadraticFormOf(const double* matrix, const double* f, std::size_t order, std::size_t points,
                     double* sums) {
  ForAllPoints(points, [&](auto size, std::size_t point) {
    Vector sum[size.count];
    Unrolled<size.count>([&](auto u) PXROM_INLINE_BODY { sum[u.value] = 0.0; });
    const double* m = matrix;
    for (std::size_t i = 0; i < order; ++i) {
      Vector fi[size.count];
      Unrolled<size.count>([&](auto u) PXROM_INLINE_BODY {
        fi[u.value] = Load(f + i * kBlock + point + u.value * kLanes);
      });
      for (std::size_t j = 0; j < order; ++j, ++m) {
        const Vector element = *m;
        Unrolled<size.count>([&](auto u) PXROM_INLINE_BODY {
          const Vector fj = Load(f + j * kBlock + point + u.value * kLanes);
          sum[u.value] = sum[u.value] + fi[u.value] * element * fj;
        });
      }
    }
    Unrolled<size.count>(
        [&](auto u) PXROM_INLINE_BODY { Store(sums + point + u.value * kLanes, sum[u.value]); });
  });
}

/// The vectors of a block that a panel takes at once: as many as leave registers for its sums.
constexpr std::size_t kPanelVectors = kLanes == 4 ? 2 : 4;
/// The rows of a panel that it takes at once.
constexpr std::size_t kRowsAtOnce = kLanes == 1 ? 2 : kPanelRows;

/// out[k] grows by the sum of panel[j][k] x[j], in ascending j, for kRowsAtOnce rows. Panels are
/// too far from each other for the processor to foresee the next one, so its lines are asked for.
template <std::size_t kVectors>
void AddRows(const double* panel, std::size_t columns, const double* x, double* out,
             std::ptrdiff_t nextPanel) {
  Vector sum[kRowsAtOnce][kVectors];
  Unrolled<kRowsAtOnce>([&](auto k) PXROM_INLINE_BODY {
    Unrolled<kVectors>([&](auto u) PXROM_INLINE_BODY {
      sum[k.value][u.value] = Load(out + k.value * kBlock + u.value * kLanes);
    });
  });
  for (std::size_t j = 0; j < columns; ++j, panel += kPanelRows, x += kBlock) {
    Prefetch(panel + nextPanel);
    Vector xj[kVectors];
    Unrolled<kVectors>([&](auto u) PXROM_INLINE_BODY { xj[u.value] = Load(x + u.value * kLanes); });
    Unrolled<kRowsAtOnce>([&](auto k) PXROM_INLINE_BODY {
      const Vector element = panel[k.value];
      Unrolled<kVectors>([&](auto u) PXROM_INLINE_BODY {
        sum[k.value][u.value] = sum[k.value][u.value] + element * xj[u.value];
      });
    });
  }
  Unrolled<kRowsAtOnce>([&](auto k) PXROM_INLINE_BODY {
    Unrolled<kVectors>([&](auto u) PXROM_INLINE_BODY {
      Store(out + k.value * kBlock + u.value * kLanes, sum[k.value][u.value]);
    });
  });
}

void AddPanelsOf(const PanelProduct& call) {
  double* out = call.out;
  for (std::size_t panel = call.first; panel < call.last; ++panel, out += kPanelRows * kBlock) {
    const double* const values = call.values + call.starts[panel];
    const std::size_t length = (call.starts[panel + 1] - call.starts[panel]) / kPanelRows;
    const std::size_t end = length < call.lastColumn ? length : call.lastColumn;
    if (end <= call.firstColumn) continue;
    const bool isLast = panel + 1 == call.last;
    const auto next =
        static_cast<std::ptrdiff_t>(isLast ? 0 : call.starts[panel + 1] - call.starts[panel]);
    const auto add = [&](auto size, std::size_t point) {
      for (std::size_t k = 0; k < kPanelRows; k += kRowsAtOnce) {
        AddRows<size.count>(values + call.firstColumn * kPanelRows + k, end - call.firstColumn,
                            call.x + point, out + k * kBlock + point, next);
      }
    };
    // After the last point come copies of it, up to the end of the block.
    std::size_t point = 0;
    for (; point + kLanes < call.points; point += kPanelVectors * kLanes) {
      add(Vectors<kPanelVectors>(), point);
    }
    if (point < call.points) add(Vectors<1>(), point);
  }
}

void AddSquaresOf(const double* values, std::size_t count, std::size_t points, double* sums) {
  ForAllPoints(points, [&](auto size, std::size_t point) {
    Vector sum[size.count];
    Unrolled<size.count>(
        [&](auto u) PXROM_INLINE_BODY { sum[u.value] = Load(sums + point + u.value * kLanes); });
    for (std::size_t k = 0; k < count; ++k) {
      Unrolled<size.count>([&](auto u) PXROM_INLINE_BODY {
        const Vector value = Load(values + k * kBlock + point + u.value * kLanes);
        sum[u.value] = sum[u.value] + value * value;
      });
    }
    Unrolled<size.count>(
        [&](auto u) PXROM_INLINE_BODY { Store(sums + point + u.value * kLanes, sum[u.value]); });
  });
}

void SquaredDistancesOf(const double* rows, std::size_t rowCount, const double* x,
                        std::size_t inputs, std::size_t points, double* values) {
  for (std::size_t r = 0; r < rowCount; ++r) {
    const double* const row = rows + r * inputs;
    for (std::size_t point = 0; point < points; point += kLanes) {
      Vector sum = 0.0;
      for (std::size_t i = 0; i < inputs; ++i) {
        const Vector a = Load(x + i * kBlock + point) - row[i];
        sum = sum + a * a;
      }
      Store(values + r * kBlock + point, sum);
    }
  }
}

#if PXROM_SIMD != PXROM_SIMD_PORTABLE

void RowProductsOf(const double* const* rows, const double* x, std::size_t columns, double* out) {
  constexpr std::size_t kVectors = kRowsOfProducts / kLanes;
  Vector sum[kVectors];
  for (std::size_t u = 0; u < kVectors; ++u) sum[u] = Load(out + u * kLanes);
  std::size_t j = 0;
  for (; j + 4 <= columns; j += 4) {
    for (std::size_t u = 0; u < kVectors; ++u) {
      Vector column[4];
      LoadFourColumns(rows + u * kLanes, j, column);
      for (std::size_t next = 0; next < 4; ++next) {
        sum[u] = sum[u] + column[next] * x[j + next];
      }
    }
  }
  for (; j < columns; ++j) {
    for (std::size_t u = 0; u < kVectors; ++u) {
      sum[u] = sum[u] + LoadColumn(rows + u * kLanes, j) * x[j];
    }
  }
  for (std::size_t u = 0; u < kVectors; ++u) Store(out + u * kLanes, sum[u]);
}

std::size_t LengthBeforeZerosOf(const double* const* rows, std::size_t length) {
  for (; length >= kLanes; length -= kLanes) {
    Vector bits = 0.0;
    for (std::size_t k = 0; k < kRowsOfProducts; ++k) {
      bits = Or(bits, Load(rows[k] + length - kLanes));
    }
    if (Bits(bits != 0.0) != 0) break;
  }
  return length;
}

constexpr auto kRowProducts = &RowProductsOf;
constexpr auto kLengthBeforeZeros = &LengthBeforeZerosOf;

#else

// The evaluators' own loops are as fast.
constexpr void (*kRowProducts)(const double* const*, const double*, std::size_t, double*) = nullptr;
constexpr std::size_t (*kLengthBeforeZeros)(const double* const*, std::size_t) = nullptr;

#endif

constexpr LoopTable kLoops = {&PolynomialOf, &ProductsOf,  &QuadraticFormOf,   &AddPanelsOf,
                              &AddSquaresOf, kRowProducts, kLengthBeforeZeros, &SquaredDistancesOf};

}  // namespace
}  // namespace Tarvane::Plexura::PXROM::simd
