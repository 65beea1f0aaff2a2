#pragma once

// Functions whose error in the host is too large for a rounding test. They repeat its operations,
// which are those of fdlibm (Sun Microsystems, 1993) with polynomials by Estrin's scheme.

#include "simd/functions.h"

namespace Tarvane::Plexura::PXROM::simd {
namespace {

#if PXROM_SIMD == PXROM_SIMD_PORTABLE

PXROM_INLINE Exact Tanh(Vector x, HostForm) { return {x, kAllLanes}; }
PXROM_INLINE Exact Log1p(Vector x, HostForm) { return {x, kAllLanes}; }

#else

template <bool kFused>
PXROM_INLINE Vector TimesPlus(Vector a, Vector b, Vector c) {
  if constexpr (kFused) return Fma(a, b, c);
  return a * b + c;
}

template <bool kFused>
PXROM_INLINE Vector MinusTimes(Vector c, Vector a, Vector b) {
  if constexpr (kFused) return MinusFma(a, b, c);
  return c - a * b;
}

/// exp(y) - 1 for the arguments of the hyperbolic tangent: y in (-2, 0], or y in [2, 44) in the
/// lanes of `grows`. `size` is |y|.
template <bool kFused>
PXROM_INLINE Vector ExpMinus1(Vector y, Vector size, Mask grows) {
  constexpr double kLn2 = 0x1.62e42feep-1;
  constexpr double kLn2Rest = 0x1.a39ef35793c76p-33;
  constexpr double kInverse = 0x1.71547652b82fep+0;
  constexpr double kHalfLn2 = 0x1.62e43p-2;  // rounded, as the host compares
  const Vector whole = Select(size < kHalfLn2, 0.0, Truncated(size * kInverse + 0.5));
  const Vector k = Select(grows, whole, 0.0 - whole);
  const Vector high = MinusFma(k, kLn2, y);  // exact
  const Vector low = k * kLn2Rest;
  const Vector x = high - low;
  const Vector c = (high - x) - low;

  const Vector half = 0.5 * x;
  const Vector square = x * half;
  const Vector square2 = square * square;
  const Vector r1 = TimesPlus<kFused>(square, -0x1.11111111110f4p-5, 1.0);
  const Vector r2 = TimesPlus<kFused>(square, -0x1.4ce199eaadbb7p-14, 0x1.a01a019fe5585p-10);
  const Vector r3 = TimesPlus<kFused>(square, -0x1.afdb76e09c32dp-23, 0x1.0cfca86e65239p-18);
  const Vector r = TimesPlus<kFused>(square2 * square2, r3, TimesPlus<kFused>(square2, r2, r1));
  const Vector t = MinusTimes<kFused>(3.0, r, half);
  const Vector e = square * ((r - t) / MinusTimes<kFused>(6.0, x, t));
  const Vector unscaled = x - TimesPlus<kFused>(x, e, 0.0 - square);
  const Vector rest = TimesPlus<kFused>(x, e - c, 0.0 - c) - square;

  const Vector inverse = AsDoubles(ShiftLeft<52>(AsInts(kMagic + 1023.0 - k)));  // 2^-k
  const Vector fromRest = rest - x;
  const Vector medium = (1.0 - inverse) - fromRest;
  const Vector large = (x - (rest + inverse)) + 1.0;
  const Vector other = 1.0 - fromRest;
  const Mask isUsual = 2.0 <= k && k <= 56.0;
  const Vector value = Select(isUsual, Select(k < 20.0, medium, large), other);
  const Vector scaled = OverPowerOf2(value, kMagic - k);
  const Vector least = Select(isUsual, scaled, scaled - 1.0);
  const Vector nearest = Select(size < kHalfLn2, unscaled, 0.5 * (x - rest) - 0.5);
  return Select(k <= -2.0, least, Select(k <= 0.0, nearest, least));
}

template <bool kFused>
PXROM_INLINE Vector TanhOf(Vector x) {
  const Vector size = Abs(x);
  const Mask isLarge = 1.0 <= size;
  const Vector twice = size + size;
  const Vector t = ExpMinus1<kFused>(Select(isLarge, twice, 0.0 - twice), twice, isLarge);
  const Vector ratio = Select(isLarge, 2.0, 0.0 - t) / (t + 2.0);
  const Vector tangent = Select(size < 22.0, Select(isLarge, 1.0 - ratio, ratio), 1.0);
  return Or(Abs(tangent), AsDoubles(And(AsInts(x), Ints(std::int64_t{1} << 63))));
}

/// tanh(x). NaNs are left open.
PXROM_INLINE Exact Tanh(Vector x, HostForm host) {
  if (host == HostForm::Fused) return {TanhOf<true>(x), Bits(x != x)};
  if (host == HostForm::Plain) return {TanhOf<false>(x), Bits(x != x)};
  return {x, kAllLanes};
}

template <bool kFused>
PXROM_INLINE Exact Log1pOf(Vector x) {
  constexpr double kLn2 = 0x1.62e42feep-1;
  constexpr double kLn2Rest = 0x1.a39ef35793c76p-33;
  constexpr std::int64_t kLeast = 0x3fe6a09e00000000;
  const Vector u = 1.0 + x;
  const Parts parts = SplitFromPowerOf2(u, kLeast);
  const Vector rest = Select(u < 2.0, x - (u - 1.0), 1.0 - (u - x));
  const Vector c = rest / u;
  const Mask isNear = x < 0x1.a827ap-2;
  const Vector k = parts.k;
  const Vector f = Select(isNear, x, parts.m - 1.0);

  const Vector halfSquare = 0.5 * f * f;
  const Vector s = f / (2.0 + f);
  const Vector z = s * s;
  const Vector z2 = z * z;
  const Vector z4 = z2 * z2;
  const Vector r2 = TimesPlus<kFused>(z, 0x1.2492494229359p-2, 0x1.999999997fa04p-2);
  const Vector r3 = TimesPlus<kFused>(z, 0x1.7466496cb03dep-3, 0x1.c71c51d8e78afp-3);
  const Vector r4 = TimesPlus<kFused>(z, 0x1.2f112df3e5244p-3, 0x1.39a09d078c69fp-3);
  const Vector early = TimesPlus<kFused>(z, 0x1.5555555555593p-1, z2 * r2);
  const Vector r = TimesPlus<kFused>(z2 * z4, r4, TimesPlus<kFused>(z4, r3, early));
  const Vector product = s * (halfSquare + r);

  const Vector near = f - (halfSquare - product);
  const Vector correction = product + TimesPlus<kFused>(k, kLn2Rest, c);
  const Vector far = k * kLn2 - ((halfSquare - correction) - f);
  const Vector small = x - x * x * 0.5;
  // The host has another formula where f is close to 0 beside a power of 2.
  const Mask isKnown = !(!isNear && Abs(f) < 0x1p-19);
  const Mask isUsual = 0.0 <= x && x < 0x1p53 && isKnown;
  return {Select(isNear, Select(x < 0x1p-29, small, near), far), ~Bits(isUsual) & kAllLanes};
}

/// log(1 + x) for x from 0 to 2^53; other lanes are left open.
PXROM_INLINE Exact Log1p(Vector x, HostForm host) {
  if (host == HostForm::Fused) return Log1pOf<true>(x);
  if (host == HostForm::Plain) return Log1pOf<false>(x);
  return {x, kAllLanes};
}

#endif

}  // namespace
}  // namespace Tarvane::Plexura::PXROM::simd
