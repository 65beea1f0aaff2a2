#include "numerics/polynomial_basis.h"

#include <algorithm>

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
  if (type < PolyConstant) return;
  *out++ = 1.0;
  if (type < PolyLinear) return;
  out = std::copy_n(x, d, out);
  if (type == PolyPureQuadratic) {
    for (std::size_t i = 0; i < d; ++i) *out++ = x[i] * x[i];
  } else if (type == PolyFullQuadratic) {
    for (std::size_t i = 0; i < d; ++i) {
      for (std::size_t j = i; j < d; ++j) *out++ = x[i] * x[j];
    }
  }
}

}  // namespace Tarvane::Plexura::PXROM
