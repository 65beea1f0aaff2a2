#include "families/surface_text.h"

#include "numerics/polynomial_basis.h"

namespace Tarvane::Plexura::PXROM::inspection {

std::string SamplesOf(const Shape& shape) {
  return Counted(static_cast<std::size_t>(shape.samples.value_or(0)), "sample");
}

std::string InputsOf(const Shape& shape) {
  return Counted(static_cast<std::size_t>(shape.inputs.value_or(0)), "input");
}

std::optional<std::int64_t> BasisSize(std::optional<int> type, std::optional<int> inputs) {
  if (!type || !inputs) return std::nullopt;
  const std::int64_t size = PolynomialCount(static_cast<E_PolynomialType>(*type), *inputs);
  return size < 0 ? std::nullopt : std::optional(size);
}

}  // namespace Tarvane::Plexura::PXROM::inspection
