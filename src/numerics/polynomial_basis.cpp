#include "numerics/polynomial_basis.h"

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
  ForEachBasisFunction(
      type, d, count, [&] { *out++ = 1.0; }, [&](std::size_t i) { *out++ = x[i]; },
      [&](std::size_t i, std::size_t j) { *out++ = x[i] * x[j]; });
}

}  // namespace Tarvane::Plexura::PXROM
