#include "numerics/polynomial_basis.h"

#include <algorithm>
#include <limits>

namespace Tarvane::Plexura::PXROM {

std::int64_t PolynomialCount(E_PolynomialType type, std::int64_t d) noexcept {
  if (d < 0) return -1;
  switch (type) {
    case PolyNone:
      return 0;
    case PolyConstant:
      return 1;
    case PolyLinear:
      return d + 1;
    case PolyPureQuadratic:
      return 2 * d + 1;
    case PolyFullQuadratic:
      return (d + 1) * (d + 2) / 2;
  }
  return -1;
}

void EvaluatePolynomialBasis(E_PolynomialType type, const double* x, std::size_t d,
                             double* out) noexcept {
  EvaluateLeadingPolynomialBasis(type, x, d, std::numeric_limits<std::size_t>::max(), out);
}

void EvaluateLeadingPolynomialBasis(E_PolynomialType type, const double* x, std::size_t d,
                                    std::size_t count, double* out) noexcept {
  if (type < PolyConstant || count == 0) return;
  *out++ = 1.0;
  std::size_t left = count - 1;
  if (type < PolyLinear) return;
  const std::size_t linear = std::min(d, left);
  out = std::copy_n(x, linear, out);
  left -= linear;
  if (type == PolyPureQuadratic) {
    const std::size_t squares = std::min(d, left);
    for (std::size_t i = 0; i < squares; ++i) *out++ = x[i] * x[i];
  } else if (type == PolyFullQuadratic) {
    for (std::size_t i = 0; i < d && left > 0; ++i) {
      const std::size_t end = i + std::min(d - i, left);
      for (std::size_t j = i; j < end; ++j) *out++ = x[i] * x[j];
      left -= end - i;
    }
  }
}

}  // namespace Tarvane::Plexura::PXROM
