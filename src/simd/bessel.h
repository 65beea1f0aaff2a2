#pragma once

// The Bessel function J0 of the host, repeated operation by operation.

#include "simd/sine.h"

namespace Tarvane::Plexura::PXROM::simd {
namespace {

#if PXROM_SIMD == PXROM_SIMD_PORTABLE || PXROM_SIMD == PXROM_SIMD_NEON

// The hosts of ARM64 fuse multiplications with additions where their compilers do.
PXROM_INLINE Exact J0(Vector x) { return {x, kAllLanes}; }

#else

/// a + b y + (c + d y) y^2 + (e + f y) y^4, in the host's order.
PXROM_INLINE Vector Quintic(Vector y, Vector y2, Vector y4, Vector a, Vector b, Vector c, Vector d,
                            Vector e, Vector f) {
  return (a + y * b) + y2 * (c + y * d) + y4 * (e + y * f);
}

/// J0(x) for x from 0 up to 2.
PXROM_INLINE Vector J0UpTo2(Vector x) {
  const Vector z = x * x;
  const Vector z2 = z * z;
  const Vector z4 = z2 * z2;
  const Vector r = z * 0x1.ffffffffffffdp-7 +
                   z2 * (-0x1.8e6a5b61ac6e9p-13 + z * 0x1.eb1d10c503919p-20) +
                   z4 * -0x1.3d5e773d63fcep-28;
  const Vector s = (1.0 + z * 0x1.ffce882c8c2a4p-7) +
                   z2 * (0x1.ea6d2dd57dbf4p-14 + z * 0x1.13b54ce84d5a9p-21) +
                   z4 * 0x1.408bcf4745d8fp-30;
  const Vector ratio = r / s;
  const Vector half = 0.5 * x;
  const Vector upTo1 = 1.0 + z * (ratio - 0.25);
  const Vector beyond1 = (1.0 + half) * (1.0 - half) + z * ratio;
  const Vector small = 1.0 - 0.25 * x * x;
  return Select(x < 1.0, Select(x < 0x1p-13, small, upTo1), beyond1);
}

constexpr double kMostForJ0 = 0x1.22e8bp+2;

/// J0(x) for x from 2 up to 4.5.
PXROM_INLINE Exact J0From2(Vector x) {
  const Exact sine = Sin(x);
  const Exact cosine = Cos(x);
  const Exact ofTwice = Cos(x + x);
  const Vector difference = sine.value - cosine.value;
  const Vector sum = sine.value + cosine.value;
  const Mask isOpposed = sine.value * cosine.value < 0.0;
  const Vector other = (0.0 - ofTwice.value) / Select(isOpposed, difference, sum);
  const Vector cc = Select(isOpposed, other, sum);
  const Vector ss = Select(isOpposed, difference, other);

  const Mask isNear = x < 0x1.6db6dp+1;
  const auto either = [&](double near, double far) { return Select(isNear, near, far); };
  const Vector y = 1.0 / (x * x);
  const Vector y2 = y * y;
  const Vector y4 = y2 * y2;
  const Vector pr = Quintic(y, y2, y4, either(-0x1.7d316e927026dp-24, -0x1.5e1036fe1aa86p-29),
                            either(-0x1.1ff62495e1e42p-4, -0x1.1fff6f7c0e24bp-4),
                            either(-0x1.736398a24a843p+0, -0x1.345b2aea48074p+1),
                            either(-0x1.e8af3edafa7f3p+2, -0x1.5f74a4cb94e14p+4),
                            either(-0x1.662e6c5246303p+3, -0x1.d0a22420a1a45p+5),
                            either(-0x1.9de81af8fe70fp+1, -0x1.f72aca892d80fp+4));
  const Vector ps = Quintic(y, y2, y4, 1.0, either(0x1.63865908b5959p+4, 0x1.1ed9284077dd3p+5),
                            either(0x1.1069e0ee8878fp+7, 0x1.69839464a7c0ep+8),
                            either(0x1.0e78642ea079bp+8, 0x1.2a66e6d1061d6p+10),
                            either(0x1.33c033ab6faffp+7, 0x1.19ffcb8c39b7ep+10),
                            either(0x1.d50b344391809p+3, 0x1.5b296fc379081p+7));
  const Vector qr = Quintic(y, y2, y4, either(0x1.4313b54f76bdbp-23, 0x1.2cd036adecb82p-28),
                            either(0x1.2bec53e883e34p-4, 0x1.2bfee0e8d0842p-4),
                            either(0x1.ff897e727779cp+0, 0x1.ac0fc61149cf5p+1),
                            either(0x1.cfdbfaaf96fe5p+3, 0x1.54f98962daeddp+5),
                            either(0x1.faa8e29fbdc4ap+4, 0x1.559dbe25efd1fp+7),
                            either(0x1.040b171814bb4p+4, 0x1.4d77c81fa21e0p+7));
  const Vector qs = Quintic(y, y2, y4, 1.0, either(0x1.e5d96f7c07aedp+4, 0x1.86122bfe343a6p+5),
                            either(0x1.0d591e4d14b40p+8, 0x1.62d8386544eb3p+9),
                            either(0x1.a664522b3bf22p+9, 0x1.cf04be44dfc63p+11),
                            either(0x1.b977c9c5cc214p+9, 0x1.93c6cd7c76a28p+12),
                            either(0x1.a95530e001365p+7, 0x1.3a8aad94fb1c0p+11)) +
                    (y4 * y2) * either(-0x1.53e6af8b32931p+2, -0x1.2a7eb201cf40fp+7);
  const Vector p = 1.0 + pr / ps;
  const Vector q = (qr / qs - 0.125) / x;
  constexpr double kInverseRootPi = 0x1.20dd750429b6dp-1;
  const Vector value = kInverseRootPi * (p * cc - q * ss) / Sqrt(x);
  return {value, sine.open | cosine.open | ofTwice.open};
}

/// J0(x) for x from 0 up to 4.5; other lanes are left open.
PXROM_INLINE Exact J0(Vector x) {
  const unsigned large = Bits(!(x < 2.0));
  const unsigned known = Bits(0.0 <= x && x < kMostForJ0);
  const Vector near = J0UpTo2(x);
  if ((large & known) == 0) return {near, ~known & kAllLanes};
  const Exact far = J0From2(x);
  return {Select(x < 2.0, near, far.value), ((far.open & large) | ~known) & kAllLanes};
}

#endif

}  // namespace
}  // namespace Tarvane::Plexura::PXROM::simd
