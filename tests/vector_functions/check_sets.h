#pragma once

namespace Tarvane::Plexura::PXROM::simd {

// Whether the functions of an instruction set have the host's bits at `count` arguments each; they
// print what they find.
bool IsNeonExact(long count);
bool IsAvx2Exact(long count);
bool IsAvx512Exact(long count);

}  // namespace Tarvane::Plexura::PXROM::simd
