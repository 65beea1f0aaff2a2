#pragma once

#include <cstdint>

namespace Tarvane::Plexura::PXROM::simd {

/// Which operations the host's hyperbolic tangent consists of. The formulas are the same, but a
/// library that was compiled for newer processors fuses multiplications with additions, which
/// changes a result in a thousand.
enum class TanhOfHost : std::uint8_t { Other, Plain, Fused };

/// Asks the host once, at arguments where the difference shows.
TanhOfHost FindTanhOfHost() noexcept;

}  // namespace Tarvane::Plexura::PXROM::simd
