#pragma once

#include <cstdint>

namespace Tarvane::Plexura::PXROM::simd {

enum class InstructionSet : std::uint8_t { Portable, Neon, Avx2, Avx512 };

/// From the slowest to the fastest.
constexpr InstructionSet kInstructionSets[] = {InstructionSet::Portable, InstructionSet::Neon,
                                               InstructionSet::Avx2, InstructionSet::Avx512};

/// Whether this machine has `set`.
bool CanRun(InstructionSet set) noexcept;

}  // namespace Tarvane::Plexura::PXROM::simd
