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

  const Vector cosine = Horner(z, -1.0 / 720.0, 1.0 / 24.0, -0.5, 1.0);
  const Vector high = r + rzb;
  const Vector low = ((r - high) + rzb) + Fma(rRest, cosine, rzbRest);
  // The host's error is absolute, but for small results.
  const Vector host = Smaller(LeadingPowerOf2(high) * (0.05 * 0x1p-52), 6.5 * 0x1p-62);
  const Vector doubt = Fma(Abs(r) * z, (z * z) * 0x1p-63, host);
  const Vector up = high + (low + doubt);
  const Vector down = high + (low - doubt);
  const I sign = ShiftLeft<63>(AsInts(parity));
  return {AsDoubles(Xor(AsInts(up), sign)),
          (Bits(up != down) | ~Bits(0x1p-20 <= Abs(r))) & kAllLanes};
}

constexpr double kInversePi = 0x1.45f306dc9c883p-2;
constexpr double kMostForSine = 32.0;

/// For |x| from 2^-20 to 32, but for the neighbourhood of multiples of pi; other lanes are left
/// open.
PXROM_INLINE Exact Sin(Vector x) {
  const Vector shifted = Fma(x, kInversePi, kMagic);
  Exact sine = SineBeside(x, shifted - kMagic, shifted);
  sine.open |= ~Bits(Abs(x) <= kMostForSine) & kAllLanes;
  return sine;
}

/// For |x| from 1 to 32, but for the neighbourhood of zeros: sin(x + pi / 2).
PXROM_INLINE Exact Cos(Vector x) {
  const Vector shifted = Fma(x, kInversePi, 0.5) + kMagic;
  Exact cosine = SineBeside(x, (shifted - kMagic) - 0.5, shifted);
  cosine.open |= ~Bits(1.0 <= Abs(x) && Abs(x) <= kMostForSine) & kAllLanes;
  return cosine;
}

#endif

}  // namespace
}  // namespace Tarvane::Plexura::PXROM::simd
