#pragma once

#include <cstddef>
#include <cstdint>

#include "pxrom/types.h"

namespace Tarvane::Plexura::PXROM {

// The polynomial basis of a trend, in the order that types.h gives. Each family that uses it has
// its own status for a type without functions.

/// The number of functions of `type` in `d` inputs, or -1 for a negative `d` or a type outside
/// PolyNone to PolyFullQuadratic. `d` is the length of a vector or an int, so nothing overflows.
std::int64_t PolynomialCount(E_PolynomialType type, std::int64_t d) noexcept;

/// Writes the functions at x[0..d) in order to `out`, which holds PolynomialCount values.
/// The type must be one that PolynomialCount knows.
void EvaluatePolynomialBasis(E_PolynomialType type, const double* x, std::size_t d,
                             double* out) noexcept;

/// The first `count` functions, or all if there are fewer. A basis can be far longer than the list
/// of a record's coefficients.
void EvaluateLeadingPolynomialBasis(E_PolynomialType type, const double* x, std::size_t d,
                                    std::size_t count, double* out) noexcept;

}  // namespace Tarvane::Plexura::PXROM
