#pragma once

#include <cstdint>

namespace Tarvane::Plexura::PXROM::simd {

enum class InstructionSet : std::uint8_t { Portable, Avx2, Avx512 };

/// Whether this machine has `set`.
bool CanRun(InstructionSet set) noexcept;

}  // namespace Tarvane::Plexura::PXROM::simd
