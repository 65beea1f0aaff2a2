#pragma once

// The remaining loops over points, and the table of all of them.

#include "lanes/rows.h"
#include "lanes/sums.h"

namespace Tarvane::Plexura::PXROM::lanes {
namespace {

template <bool kCoefficientFirst>
void AddTerms(const Polynomial& polynomial, const double* x, std::size_t points, double* sums) {
  ForAllPoints(points, [&](auto size, std::size_t lane) {
    V sum[size.count];
    for (std::size_t u = 0; u < size.count; ++u) sum[u] = Set(0.0);
    for (std::size_t k = 0; k < polynomial.count; ++k) {
      const Monomial& term = polynomial.terms[k];
      const double* const first = x + term.first * kBlock + lane;
      const double* const second = x + term.second * kBlock + lane;
      const V c = Set(term.coefficient);
      for (std::size_t u = 0; u < size.count; ++u) {
        const V a = Load(first + u * kLanes);
        const V b = Load(second + u * kLanes);
        sum[u] = sum[u] + (kCoefficientFirst ? a * c * b : a * b * c);
      }
    }
    for (std::size_t u = 0; u < size.count; ++u) Store(sums + lane + u * kLanes, sum[u]);
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
    for (std::size_t lane = 0; lane < points; lane += kLanes) {
      Store(values + k * kBlock + lane, Load(first + lane) * Load(second + lane));
    }
  }
}

void QuadraticFormOf(const double* matrix, const double* f, std::size_t order, std::size_t points,
                     double* sums) {
  ForAllPoints(points, [&](auto size, std::size_t lane) {
    V sum[size.count];
    for (std::size_t u = 0; u < size.count; ++u) sum[u] = Set(0.0);
    const double* m = matrix;
    for (std::size_t i = 0; i < order; ++i) {
      V fi[size.count];
      for (std::size_t u = 0; u < size.count; ++u) fi[u] = Load(f + i * kBlock + lane + u * kLanes);
      for (std::size_t j = 0; j < order; ++j, ++m) {
        const V element = Set(*m);
        for (std::size_t u = 0; u < size.count; ++u) {
          const V fj = Load(f + j * kBlock + lane + u * kLanes);
          sum[u] = sum[u] + fi[u] * element * fj;
        }
      }
    }
    for (std::size_t u = 0; u < size.count; ++u) Store(sums + lane + u * kLanes, sum[u]);
  });
}

/// out[k] grows by the sum of m[k][j] x[j], in ascending j, for `kRows` rows from `m` on.
template <std::size_t kRows, class Size>
PXROM_INLINE void AddRows(const double* m, std::size_t stride, std::size_t columns, const double* x,
                          double* out, Size size) {
  V sum[kRows][size.count];
  for (std::size_t k = 0; k < kRows; ++k) {
    for (std::size_t u = 0; u < size.count; ++u) sum[k][u] = Load(out + k * kBlock + u * kLanes);
  }
  for (std::size_t j = 0; j < columns; ++j) {
    V xj[size.count];
    for (std::size_t u = 0; u < size.count; ++u) xj[u] = Load(x + j * kBlock + u * kLanes);
    for (std::size_t k = 0; k < kRows; ++k) {
      const V element = Set(m[k * stride + j]);
      for (std::size_t u = 0; u < size.count; ++u) sum[k][u] = sum[k][u] + element * xj[u];
    }
  }
  for (std::size_t k = 0; k < kRows; ++k) {
    for (std::size_t u = 0; u < size.count; ++u) Store(out + k * kBlock + u * kLanes, sum[k][u]);
  }
}

/// The same for all rows; `lengths` tells how many columns of a row count, null that all do.
PXROM_INLINE void AddProduct(const double* m, std::size_t rows, std::size_t columns,
                             const std::size_t* lengths, const double* x, std::size_t points,
                             double* out) {
  constexpr std::size_t kRows = kLanes == 8 ? 4 : 2;
  ForAllPoints(points, [&](auto size, std::size_t lane) {
    std::size_t k = 0;
    for (; k + kRows <= rows; k += kRows) {
      std::size_t length = columns;
      if (lengths != nullptr) {
        length = 0;
        for (std::size_t row = k; row < k + kRows; ++row) {
          if (lengths[row] > length) length = lengths[row];
        }
      }
      AddRows<kRows>(m + k * columns, columns, length, x + lane, out + k * kBlock + lane, size);
    }
    for (; k < rows; ++k) {
      const std::size_t length = lengths != nullptr ? lengths[k] : columns;
      AddRows<1>(m + k * columns, columns, length, x + lane, out + k * kBlock + lane, size);
    }
  });
}

PXROM_INLINE V NormOf(const double* values, std::size_t count) {
  V squares = Set(0.0);
  for (std::size_t k = 0; k < count; ++k) {
    const V value = Load(values + k * kBlock);
    squares = squares + value * value;
  }
  return Sqrt(squares);
}

/// Whether a zero times each of the values is a zero, at all points.
PXROM_INLINE bool AreFinite(const double* values, std::size_t count, std::size_t points) {
  V zero = Set(0.0);
  for (std::size_t k = 0; k < count; ++k) {
    for (std::size_t lane = 0; lane < points; lane += kLanes) {
      zero = zero + Load(values + k * kBlock + lane) * Set(0.0);
    }
  }
  return Bits(IsOther(zero, Set(0.0))) == 0;
}

void KrigingErrorOf(const KrigingErrorSum& call) {
  const std::size_t n = call.samples;
  const std::size_t p = call.functions;
  double* const w = call.w;
  double* const g = call.w + p * kBlock;
  for (std::size_t lane = 0; lane < call.points; lane += kLanes) {
    for (std::size_t k = 0; k < n; ++k) Store(call.v + k * kBlock + lane, Set(0.0));
    for (std::size_t k = 0; k < p; ++k) {
      Store(w + k * kBlock + lane, Set(-0.0) - Load(call.f + k * kBlock + lane));
      Store(g + k * kBlock + lane, Set(0.0));
    }
  }
  // Beyond its length a row adds zeros, which change no sum unless something infinite meets them.
  const bool areLengthsGood = AreFinite(call.r, n, call.points);
  AddProduct(call.invC, n, n, areLengthsGood ? call.lengths : nullptr, call.r, call.points, call.v);
  AddProduct(call.ft, p, n, nullptr, call.v, call.points, w);
  AddProduct(call.invG, p, p, nullptr, w, call.points, g);
  for (std::size_t lane = 0; lane < call.points; lane += kLanes) {
    const V nc = NormOf(call.v + lane, n);
    const V ng = NormOf(g + lane, p);
    const V radicand = (ng * ng + Set(1.0) - nc * nc) * Set(call.sigma2);
    Store(call.errors + lane, Sqrt(Abs(radicand)));
  }
}

void SquaredDistancesOf(const double* rows, std::size_t rowCount, const double* x,
                        std::size_t inputs, std::size_t points, double* values) {
  for (std::size_t r = 0; r < rowCount; ++r) {
    const double* const row = rows + r * inputs;
    for (std::size_t lane = 0; lane < points; lane += kLanes) {
      V sum = Set(0.0);
      for (std::size_t i = 0; i < inputs; ++i) {
        const V a = Load(x + i * kBlock + lane) - Set(row[i]);
        sum = sum + a * a;
      }
      Store(values + r * kBlock + lane, sum);
    }
  }
}

constexpr Lanes kTable = {
    &SumOf,          &FastSumOf,  &PolynomialOf, &ProductsOf,        &QuadraticFormOf,
    &KrigingErrorOf, kRowKernels, kRowProducts,  kLengthBeforeZeros, &SquaredDistancesOf};

}  // namespace
}  // namespace Tarvane::Plexura::PXROM::lanes
