#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "pxrom/types.h"

namespace Tarvane::Plexura::PXROM {

// The polynomial basis of a trend, in the order that types.h gives. Each family that uses it has
// its own status for a type without functions.

/// The number of functions of `type` in `d` inputs, or -1 for a negative `d` or a type outside
/// PolyNone to PolyFullQuadratic. `d` is the length of a vector or an int, so nothing overflows.
std::int64_t PolynomialCount(E_PolynomialType type, std::int64_t d) noexcept;

/// Calls one(), linear(i) and product(i, j) for the first `count` functions in order, or all when
/// there are fewer. The type must be one that PolynomialCount knows.
template <class One, class Linear, class Product>
void ForEachBasisFunction(E_PolynomialType type, std::size_t d, std::size_t count, const One& one,
                          const Linear& linear, const Product& product) {
  if (type < PolyConstant || count == 0) return;
  one();
  std::size_t left = count - 1;
  if (type < PolyLinear) return;
  const std::size_t linears = std::min(d, left);
  for (std::size_t i = 0; i < linears; ++i) linear(i);
  left -= linears;
  if (type == PolyPureQuadratic) {
    const std::size_t squares = std::min(d, left);
    for (std::size_t i = 0; i < squares; ++i) product(i, i);
  } else if (type == PolyFullQuadratic) {
    for (std::size_t i = 0; i < d && left > 0; ++i) {
      const std::size_t end = i + std::min(d - i, left);
      for (std::size_t j = i; j < end; ++j) product(i, j);
      left -= end - i;
    }
  }
}

/// Writes the functions at x[0..d) in order to `out`, which holds PolynomialCount values.
/// The type must be one that PolynomialCount knows.
void EvaluatePolynomialBasis(E_PolynomialType type, const double* x, std::size_t d,
                             double* out) noexcept;

/// The first `count` functions, or all if there are fewer. A basis can be far longer than the list
/// of a record's coefficients.
void EvaluateLeadingPolynomialBasis(E_PolynomialType type, const double* x, std::size_t d,
                                    std::size_t count, double* out) noexcept;

}  // namespace Tarvane::Plexura::PXROM
