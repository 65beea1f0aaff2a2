#pragma once

// The loops over points that need no kernel, and their table for one instruction set.

#include "simd/groups.h"

namespace Tarvane::Plexura::PXROM::simd {
namespace {

template <bool kCoefficientFirst>
void AddTerms(const Polynomial& polynomial, const double* x, std::size_t points, double* sums) {
  ForAllPoints(points, [&](auto size, std::size_t point) {
    Vector sum[size.count];
    for (std::size_t u = 0; u < size.count; ++u) sum[u] = 0.0;
    for (std::size_t k = 0; k < polynomial.count; ++k) {
      const Monomial& term = polynomial.terms[k];
      const double* const first = x + term.first * kBlock + point;
      const double* const second = x + term.second * kBlock + point;
      const Vector c = term.coefficient;
      for (std::size_t u = 0; u < size.count; ++u) {
        const Vector a = Load(first + u * kLanes);
        const Vector b = Load(second + u * kLanes);
        sum[u] = sum[u] + (kCoefficientFirst ? a * c * b : a * b * c);
      }
    }
    for (std::size_t u = 0; u < size.count; ++u) Store(sums + point + u * kLanes, sum[u]);
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
    for (std::size_t u = 0; u < size.count; ++u) sum[u] = 0.0;
    const double* m = matrix;
    for (std::size_t i = 0; i < order; ++i) {
      Vector fi[size.count];
      for (std::size_t u = 0; u < size.count; ++u)
        fi[u] = Load(f + i * kBlock + point + u * kLanes);
      for (std::size_t j = 0; j < order; ++j, ++m) {
        const Vector element = *m;
        for (std::size_t u = 0; u < size.count; ++u) {
          const Vector fj = Load(f + j * kBlock + point + u * kLanes);
          sum[u] = sum[u] + fi[u] * element * fj;
        }
      }
    }
    for (std::size_t u = 0; u < size.count; ++u) Store(sums + point + u * kLanes, sum[u]);
  });
}

/// out[k] grows by the sum of m[k][j] x[j], in ascending j, for `kRows` rows from `m` on.
template <std::size_t kRows, class Size>
PXROM_INLINE void AddRows(const double* m, std::size_t stride, std::size_t columns, const double* x,
                          double* out, Size size) {
  Vector sum[kRows][size.count];
  for (std::size_t k = 0; k < kRows; ++k) {
    for (std::size_t u = 0; u < size.count; ++u) sum[k][u] = Load(out + k * kBlock + u * kLanes);
  }
  for (std::size_t j = 0; j < columns; ++j) {
    Vector xj[size.count];
    for (std::size_t u = 0; u < size.count; ++u) xj[u] = Load(x + j * kBlock + u * kLanes);
    for (std::size_t k = 0; k < kRows; ++k) {
      const Vector element = m[k * stride + j];
      for (std::size_t u = 0; u < size.count; ++u) sum[k][u] = sum[k][u] + element * xj[u];
    }
  }
  for (std::size_t k = 0; k < kRows; ++k) {
    for (std::size_t u = 0; u < size.count; ++u) Store(out + k * kBlock + u * kLanes, sum[k][u]);
  }
}

/// The same for all rows. `lengths` gives the number of columns of each row that count; with null
/// all of them count.
PXROM_INLINE void AddProduct(const double* m, std::size_t rows, std::size_t columns,
                             const std::size_t* lengths, const double* x, std::size_t points,
                             double* out) {
  constexpr std::size_t kRows = kLanes == 8 ? 4 : 2;
  ForAllPoints(points, [&](auto size, std::size_t point) {
    std::size_t k = 0;
    for (; k + kRows <= rows; k += kRows) {
      std::size_t length = columns;
      if (lengths != nullptr) {
        length = 0;
        for (std::size_t row = k; row < k + kRows; ++row) {
          if (lengths[row] > length) length = lengths[row];
        }
      }
      AddRows<kRows>(m + k * columns, columns, length, x + point, out + k * kBlock + point, size);
    }
    for (; k < rows; ++k) {
      const std::size_t length = lengths != nullptr ? lengths[k] : columns;
      AddRows<1>(m + k * columns, columns, length, x + point, out + k * kBlock + point, size);
    }
  });
}

void MatrixProductOf(const MatrixProduct& call) {
  AddProduct(call.matrix, call.rows, call.columns, call.lengths, call.x, call.points, call.out);
}

PXROM_INLINE Vector NormOf(const double* values, std::size_t count) {
  Vector squares = 0.0;
  for (std::size_t k = 0; k < count; ++k) {
    const Vector value = Load(values + k * kBlock);
    squares = squares + value * value;
  }
  return Sqrt(squares);
}

/// Whether all values are finite at all points: only then is zero times each of them zero.
PXROM_INLINE bool AreFinite(const double* values, std::size_t count, std::size_t points) {
  Vector zero = 0.0;
  for (std::size_t k = 0; k < count; ++k) {
    for (std::size_t point = 0; point < points; point += kLanes) {
      zero = zero + Load(values + k * kBlock + point) * 0.0;
    }
  }
  return Bits(zero != 0.0) == 0;
}

void KrigingErrorOf(const KrigingErrorSum& call) {
  const std::size_t n = call.samples;
  const std::size_t p = call.functions;
  double* const w = call.w;
  double* const g = call.w + p * kBlock;
  for (std::size_t point = 0; point < call.points; point += kLanes) {
    for (std::size_t k = 0; k < n; ++k) Store(call.v + k * kBlock + point, 0.0);
    for (std::size_t k = 0; k < p; ++k) {
      Store(w + k * kBlock + point, -0.0 - Load(call.f + k * kBlock + point));
      Store(g + k * kBlock + point, 0.0);
    }
  }
  // After its length a row adds zeros, which change no sum unless they meet an infinity or a NaN.
  const bool areLengthsGood = AreFinite(call.r, n, call.points);
  AddProduct(call.invC, n, n, areLengthsGood ? call.lengths : nullptr, call.r, call.points, call.v);
  AddProduct(call.ft, p, n, nullptr, call.v, call.points, w);
  AddProduct(call.invG, p, p, nullptr, w, call.points, g);
  for (std::size_t point = 0; point < call.points; point += kLanes) {
    const Vector nc = NormOf(call.v + point, n);
    const Vector ng = NormOf(g + point, p);
    const Vector radicand = (ng * ng + 1.0 - nc * nc) * call.sigma2;
    Store(call.errors + point, Sqrt(Abs(radicand)));
  }
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

constexpr LoopTable kLoops = {&PolynomialOf,      &ProductsOf,        &QuadraticFormOf,
                              &KrigingErrorOf,    &MatrixProductOf,   kRowProducts,
                              kLengthBeforeZeros, &SquaredDistancesOf};

}  // namespace
}  // namespace Tarvane::Plexura::PXROM::simd
