#pragma once

// Sine and cosine with the bits of the host's.

#include "simd/functions.h"

namespace Tarvane::Plexura::PXROM::simd {
namespace {

#if PXROM_SIMD == PXROM_SIMD_PORTABLE

PXROM_INLINE Exact Sin(Vector x) { return {x, kAllLanes}; }

#else

/// (-1)^k sin(x - m pi) for |m| up to 10, k in the lowest bit of `parity`.
PXROM_INLINE Exact SineBeside(Vector x, Vector m, Vector parity) {
  // pi in two parts. The first is so short that its product with m is exact.
  constexpr double kPi = 0x1.921fb54442d00p+1;
  constexpr double kPiRest = 0x1.8469898cc5170p-47;
  const Vector rough = MinusFma(m, kPi, x);
  const Vector r = MinusFma(m, kPiRest, rough);
  const Vector rRest = MinusFma(m, kPiRest, rough - r);

  // sin(r) / r - 1, from the third power of z = r^2 on in one double, before it in two.
  const Vector z = r * r;
  const Vector zRest = Fma(r, r, 0.0 - z);
  const Vector series =
      z * Horner(z, -0x1.291d88a98e5bap-57, 0x1.9517979801052p-49, -0x1.ae7f1b639231dp-41,
                 0x1.6124611c45b0ap-33, -0x1.ae64567f3b6ecp-26, 0x1.71de3a556c6b9p-19,
                 -0x1.a01a01a01a01ap-13);
  constexpr double kFifth = 0x1.1111111111111p-7;   // 1 / 5!
  constexpr double kThird = -0x1.5555555555555p-3;  // -1 / 3!
  constexpr double kThirdRest = -0x1.5555555555555p-57;
  constexpr double kFifthRest = 0x1.1111111111111p-63;
  const Vector a = kFifth + series;
  const Vector aRest = (kFifth - a) + series + kFifthRest;
  const Vector za = z * a;
  const Vector zaRest = Fma(z, a, 0.0 - za) + Fma(z, aRest, zRest * a);
  const Vector b = kThird + za;
  const Vector bRest = ((kThird - b) + za) + (zaRest + kThirdRest);
  const Vector zb = z * b;
  const Vector zbRest = Fma(z, b, 0.0 - zb) + Fma(z, bRest, zRest * b);
  const Vector rzb = r * zb;
  const Vector rzbRest = Fma(r, zb, 0.0 - rzb) + r * zbRest;

  const Vector cosine = Horner(z, 0.0367736, -0.4955365, 0.9993896);  // to 0.00062
  const Vector high = r + rzb;
  const Vector low = ((r - high) + rzb) + Fma(rRest, cosine, rzbRest);
  // The host's error is absolute, but for small results.
  const Vector doubt = Select(z < 0x1p-6, LeadingPowerOf2(high) * (0.0125 * 0x1p-52),
                              Fma(z, 1.7 * 0x1p-62, 3.1 * 0x1p-62));
  const Exact sine = Rounded(high, low, doubt);
  const I sign = ShiftLeft<63>(AsInts(parity));
  const unsigned nearZero = ~Bits(0x1p-40 <= z) & kAllLanes;
  return {AsDoubles(Xor(AsInts(sine.value), sign)), sine.open | nearZero};
}

constexpr double kInversePi = 0x1.45f306dc9c883p-2;

/// For |x| up to 32; lanes near multiples of pi are left open. Other lanes hold any value.
PXROM_INLINE Exact Sin(Vector x) {
  const Vector shifted = Fma(x, kInversePi, kMagic);
  return SineBeside(x, shifted - kMagic, shifted);
}

/// For |x| from 1 to 32; lanes near zeros are left open. Other lanes hold any value.
PXROM_INLINE Exact Cos(Vector x) {
  // sin(x + pi / 2)
  const Vector shifted = Fma(x, kInversePi, 0.5) + kMagic;
  return SineBeside(x, (shifted - kMagic) - 0.5, shifted);
}

#endif

}  // namespace
}  // namespace Tarvane::Plexura::PXROM::simd
