#pragma once

#include <cstdint>

namespace Tarvane::Plexura::PXROM::simd {

/// Which operations a function of the host consists of: those of fdlibm (fdlibm.h), or the same
/// with multiplications fused into additions, which a library for newer processors may do.
enum class HostForm : std::uint8_t { Other, Plain, Fused };

// They ask the host once, at arguments where the difference shows.
HostForm FormOfTanh() noexcept;
HostForm FormOfLog1p() noexcept;

}  // namespace Tarvane::Plexura::PXROM::simd
