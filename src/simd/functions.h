#pragma once

// Functions on vectors.
//
// The exact functions give the bits of the host's C library without calling it. They compute a
// function as a sum of two doubles, to a few more bits than a double has. If this sum is farther
// from the midpoint of two doubles than the host's own error, the host has rounded to the same side
// (the rounding test of Ziv, ACM Transactions on Mathematical Software 17, 1991). Other lanes, a
// few in a hundred, are left open, and the host computes them. docs/vector-functions.md derives the
// bounds. Those of the host's error are checked, kernel by kernel (kernels::ExactLoops), and where
// they do not hold, the exact mode uses only the host.

#include <cstdint>

#include "simd/vector.h"

namespace Tarvane::Plexura::PXROM::simd {
namespace {

/// A value, and the lanes (Bits) that the host has to compute.
struct Exact {
  PXROM_INLINE Exact(Vector known, unsigned openLanes = 0) : value(known), open(openLanes) {}
  Vector value;
  unsigned open;
};

PXROM_INLINE Exact operator*(Exact a, Vector b) { return {a.value * b, a.open}; }
PXROM_INLINE Exact operator/(Exact a, Vector b) { return {a.value / b, a.open}; }
PXROM_INLINE Exact operator-(Exact a, Vector b) { return {a.value - b, a.open}; }
PXROM_INLINE Exact Select(Mask mask, Exact yes, Vector no) {
  return {Select(mask, yes.value, no), yes.open & Bits(mask)};
}

/// high + low rounded to a double, which is open where an error of `doubt` could change it.
PXROM_INLINE Exact Rounded(Vector high, Vector low, Vector doubt) {
  const Vector up = high + (low + doubt);
  const Vector down = high + (low - doubt);
  return {up, Bits(up != down)};
}

/// A polynomial by Horner's rule, from the coefficient of the highest power down.
template <class... Doubles>
PXROM_INLINE Vector Horner(Vector x, double first, Doubles... rest) {
  Vector sum = first;
  ((sum = Fma(sum, x, rest)), ...);
  return sum;
}

template <std::size_t kFirst, std::size_t kCount, std::size_t kSize>
PXROM_INLINE Vector PartOfEstrin(const Vector* powers, const double (&coefficients)[kSize]) {
  if constexpr (kCount == 1) {
    return coefficients[kFirst];
  } else {
    constexpr std::size_t kLevel = kCount > 8 ? 3 : kCount > 4 ? 2 : kCount > 2 ? 1 : 0;
    constexpr std::size_t kLow = std::size_t{1} << kLevel;
    return Fma(PartOfEstrin<kFirst + kLow, kCount - kLow>(powers, coefficients), powers[kLevel],
               PartOfEstrin<kFirst, kLow>(powers, coefficients));
  }
}

/// A polynomial by Estrin's scheme, from the coefficient of power 0 up: more operations than by
/// Horner's rule, but a third of the latency.
template <std::size_t kSize>
PXROM_INLINE Vector Estrin(Vector x, const double (&coefficients)[kSize]) {
  static_assert(kSize <= 16);
  const Vector square = x * x;
  const Vector fourth = square * square;
  const Vector powers[] = {x, square, fourth, fourth * fourth};
  return PartOfEstrin<0, kSize>(powers, coefficients);
}

constexpr double kMagic = 0x1.8p52;  // adding it leaves an integer in the lowest bits

#if PXROM_SIMD == PXROM_SIMD_PORTABLE

// Without a fused multiply-add the second double costs more than a call of the host's function.
PXROM_INLINE Exact ExpOfMinus(Vector s) { return {s, kAllLanes}; }
PXROM_INLINE Exact Log(Vector x) { return {x, kAllLanes}; }
PXROM_INLINE Exact Power(Vector x, double) { return {x, kAllLanes}; }
PXROM_INLINE Exact Power4(Vector x) { return {x, kAllLanes}; }
PXROM_INLINE Vector Third(Vector v) { return v / 3.0; }

PXROM_INLINE Vector OverPowerOf2(Vector v, Vector shifted) {
  std::uint64_t bits = 0;
  std::uint64_t exponent = 0;
  std::memcpy(&bits, &v, sizeof bits);
  std::memcpy(&exponent, &shifted, sizeof exponent);
  bits -= exponent << 52;
  std::memcpy(&v, &bits, sizeof bits);
  return v;
}

#else

#if PXROM_SIMD == PXROM_SIMD_AVX512

using I = __m512i;
PXROM_INLINE I AsInts(Vector v) { return _mm512_castpd_si512(v.v); }
PXROM_INLINE Vector AsDoubles(I i) { return _mm512_castsi512_pd(i); }
PXROM_INLINE I Ints(std::int64_t value) { return _mm512_set1_epi64(value); }
PXROM_INLINE I Plus(I a, I b) { return _mm512_add_epi64(a, b); }
PXROM_INLINE I Minus(I a, I b) { return _mm512_sub_epi64(a, b); }
PXROM_INLINE I And(I a, I b) { return _mm512_and_si512(a, b); }
PXROM_INLINE I Or(I a, I b) { return _mm512_or_si512(a, b); }
PXROM_INLINE I Xor(I a, I b) { return _mm512_xor_si512(a, b); }
PXROM_INLINE Vector Truncated(Vector v) {
  return _mm512_maskz_cvtepi32_pd(kEveryLane, _mm512_maskz_cvttpd_epi32(kEveryLane, v.v));
}
template <unsigned kBits>
PXROM_INLINE I ShiftLeft(I i) {
  return _mm512_maskz_slli_epi64(kEveryLane, i, kBits);
}
template <unsigned kBits>
PXROM_INLINE I ShiftRight(I i) {
  return _mm512_maskz_srli_epi64(kEveryLane, i, kBits);
}

#elif PXROM_SIMD == PXROM_SIMD_NEON

using I = int64x2_t;
PXROM_INLINE I AsInts(Vector v) { return vreinterpretq_s64_f64(v.v); }
PXROM_INLINE Vector AsDoubles(I i) { return vreinterpretq_f64_s64(i); }
PXROM_INLINE I Ints(std::int64_t value) { return vdupq_n_s64(value); }
PXROM_INLINE I Plus(I a, I b) { return vaddq_s64(a, b); }
PXROM_INLINE I Minus(I a, I b) { return vsubq_s64(a, b); }
PXROM_INLINE I And(I a, I b) { return vandq_s64(a, b); }
PXROM_INLINE I Or(I a, I b) { return vorrq_s64(a, b); }
PXROM_INLINE I Xor(I a, I b) { return veorq_s64(a, b); }
PXROM_INLINE Vector Truncated(Vector v) { return vrndq_f64(v.v); }
template <unsigned kBits>
PXROM_INLINE I ShiftLeft(I i) {
  return vshlq_n_s64(i, kBits);
}
template <unsigned kBits>
PXROM_INLINE I ShiftRight(I i) {
  return vreinterpretq_s64_u64(vshrq_n_u64(vreinterpretq_u64_s64(i), kBits));
}

#else

using I = __m256i;
PXROM_INLINE I AsInts(Vector v) { return _mm256_castpd_si256(v.v); }
PXROM_INLINE Vector AsDoubles(I i) { return _mm256_castsi256_pd(i); }
PXROM_INLINE I Ints(std::int64_t value) { return _mm256_set1_epi64x(value); }
PXROM_INLINE I Plus(I a, I b) { return _mm256_add_epi64(a, b); }
PXROM_INLINE I Minus(I a, I b) { return _mm256_sub_epi64(a, b); }
PXROM_INLINE I And(I a, I b) { return _mm256_and_si256(a, b); }
PXROM_INLINE I Or(I a, I b) { return _mm256_or_si256(a, b); }
PXROM_INLINE I Xor(I a, I b) { return _mm256_xor_si256(a, b); }
PXROM_INLINE Vector Truncated(Vector v) { return _mm256_cvtepi32_pd(_mm256_cvttpd_epi32(v.v)); }
template <unsigned kBits>
PXROM_INLINE I ShiftLeft(I i) {
  return _mm256_slli_epi64(i, kBits);
}
template <unsigned kBits>
PXROM_INLINE I ShiftRight(I i) {
  return _mm256_srli_epi64(i, kBits);
}

#endif

#if PXROM_SIMD == PXROM_SIMD_AVX2

// The powers 2^(j / 4) and their rounding errors.
constexpr unsigned kTableBits = 2;
constexpr double kPowers[] = {0x1.0000000000000p+0, 0x1.306fe0a31b715p+0, 0x1.6a09e667f3bcdp+0,
                              0x1.ae89f995ad3adp+0};
constexpr double kPowersRest[] = {0.0, 0x1.6f46ad23182e4p-55, -0x1.bdd3413b26456p-54,
                                  0x1.7a1cd345dcc81p-54};
// Of the result in [1, 2): the host's error beyond one half of its last bit, and ours.
constexpr double kExpDoubt = (0.0125 + 0.0125) * 0x1p-52;

// There is only a permutation of floats, and a double is two of them. Only the lowest three bits of
// an index count.
PXROM_INLINE I TableIndex(I i) {
  const I doubled = Plus(i, i);
  const I both = _mm256_shuffle_epi32(doubled, 0xA0);
  return Or(both, Ints(std::int64_t{1} << 32));
}
PXROM_INLINE Vector LookUp(const double* table, I index) {
  return _mm256_castps_pd(_mm256_permutevar8x32_ps(_mm256_castpd_ps(Load(table).v), index));
}

#else

// The powers 2^(j / 8) and their rounding errors. Only the lowest three bits of an index count.
constexpr unsigned kTableBits = 3;
constexpr double kPowers[] = {0x1.0000000000000p+0, 0x1.172b83c7d517bp+0, 0x1.306fe0a31b715p+0,
                              0x1.4bfdad5362a27p+0, 0x1.6a09e667f3bcdp+0, 0x1.8ace5422aa0dbp+0,
                              0x1.ae89f995ad3adp+0, 0x1.d5818dcfba487p+0};
constexpr double kPowersRest[] = {0.0,
                                  -0x1.19041b9d78a76p-55,
                                  0x1.6f46ad23182e4p-55,
                                  0x1.d4397afec42e2p-56,
                                  -0x1.bdd3413b26456p-54,
                                  0x1.6e9f156864b27p-54,
                                  0x1.7a1cd345dcc81p-54,
                                  0x1.2ed02d75b3707p-55};
// Of the result in [1, 2): the host's error beyond one half of its last bit, and ours.
constexpr double kExpDoubt = (0.0125 + 0.0035) * 0x1p-52;

#if PXROM_SIMD == PXROM_SIMD_AVX512
PXROM_INLINE I TableIndex(I i) { return i; }
PXROM_INLINE Vector LookUp(const double* table, I index) {
  return _mm512_maskz_permutexvar_pd(kEveryLane, index, Load(table).v);
}
#else
PXROM_INLINE I TableIndex(I i) { return And(i, Ints((1 << kTableBits) - 1)); }
PXROM_INLINE Vector LookUp(const double* table, I index) {
  const float64x2_t first = vld1q_dup_f64(table + vgetq_lane_s64(index, 0));
  return vld1q_lane_f64(table + vgetq_lane_s64(index, 1), first, 1);
}
#endif

#endif

/// exp(y + yRest) = 2^(k / N) exp(r), with |r| up to ln 2 / 2N: Tang, Table-driven implementation
/// of the exponential function, ACM Transactions on Mathematical Software 15 (1989).
PXROM_INLINE Exact ExpOfSum(Vector y, Vector yRest, Vector doubt) {
  constexpr double kTableSize = 1 << kTableBits;
  // ln 2 / N in two parts. The first is so short that its product with k is exact.
  constexpr double kStep = 0x1.62e42fefa0000p-1 / kTableSize;
  constexpr double kStepRest = 0x1.cf79abc9e3b3ap-40 / kTableSize;
  constexpr double kInverse = 0x1.71547652b82fep+0 * kTableSize;
  const Vector shifted = Fma(y, kInverse, kMagic);
  const Vector k = shifted - kMagic;
  const Vector rough = MinusFma(k, kStep, y);
  const Vector r = MinusFma(k, kStepRest, rough);
  const Vector rRest = MinusFma(k, kStepRest, rough - r) + yRest;

  // exp(r) = 1 + r + tail, the tail by its Taylor series.
  const Vector series = Horner(r, 1.0 / 3628800.0, 1.0 / 362880.0, 1.0 / 40320.0, 1.0 / 5040.0,
                               1.0 / 720.0, 1.0 / 120.0, 1.0 / 24.0, 1.0 / 6.0, 0.5);
  const Vector tail = Fma(r * r, series, Fma(rRest, r, rRest));

  const I bits = AsInts(shifted);
  const I index = TableIndex(bits);
  const Vector power = LookUp(kPowers, index);
  const Vector powerRest = LookUp(kPowersRest, index);
  const Vector product = power * r;
  const Vector productRest = Fma(power, r, 0.0 - product);
  const Vector high = power + product;
  const Vector highRest = (power - high) + product;
  const Vector low = Fma(power, tail, Fma(powerRest, r, powerRest)) + (productRest + highRest);
  const Exact unscaled = Rounded(high, low, doubt);

  const I exponent = ShiftLeft<52 - kTableBits>(And(bits, Ints(-(1 << kTableBits))));
  return {AsDoubles(Plus(AsInts(unscaled.value), exponent)), unscaled.open};
}

PXROM_INLINE Exact ExpOfMinus(Vector s) {
  // Beyond the first every result is normal; beyond the second every result is 0.
  constexpr double kNormal = 708.0;
  constexpr double kVanished = 746.0;
  const Exact exp = ExpOfSum(0.0 - s, 0.0, kExpDoubt);
  const unsigned normal = Bits(Abs(s) <= kNormal);
  const Mask vanished = kVanished < s;
  return {Select(vanished, 0.0, exp.value), (exp.open | ~normal) & ~Bits(vanished) & kAllLanes};
}

/// The largest power of 2 that is not above v: times 2^-52 it is the last bit of v.
PXROM_INLINE Vector LeadingPowerOf2(Vector v) {
  return AsDoubles(And(AsInts(v), Ints(std::int64_t{0x7ff} << 52)));
}

/// x = 2^k m, with m from the root of 1/2 to that of 2.
struct Parts {
  Vector k;
  Vector m;
};

constexpr std::int64_t kRootHalf = 0x3fe6a09e667f3bcd;

/// For a normal x above 0. `least` holds the bits of the least m.
PXROM_INLINE Parts SplitFromPowerOf2(Vector x, std::int64_t least = kRootHalf) {
  constexpr std::int64_t kBias = std::int64_t{1024} << 52;
  constexpr std::int64_t kDoubleOf52 = 0x4330000000000000;  // 2^52; integers below add up to it
  const I bits = AsInts(x);
  const I biased = ShiftRight<52>(Plus(Minus(bits, Ints(least)), Ints(kBias)));
  return {AsDoubles(Or(biased, Ints(kDoubleOf52))) - (0x1p52 + 1024.0),
          AsDoubles(Minus(bits, ShiftLeft<52>(Minus(biased, Ints(1024)))))};
}

/// A logarithm as a sum, whose error is at most `scale` times kLogDoubt.
struct Logarithm {
  Vector high;
  Vector low;
  Vector scale;
};
constexpr double kLogDoubt = 4.6 * 0x1p-53;

/// log(x) = k ln 2 + 2 atanh(s), s = (m - 1) / (m + 1), x = 2^k m with m around 1 (Abramowitz and
/// Stegun 4.1.27). For x from 2^-1000 to 2^1000.
PXROM_INLINE Logarithm LogAsSum(Vector x) {
  constexpr double kLn2 = 0x1.62e42fefa2000p-1;
  constexpr double kLn2Rest = 0x1.9ef35793c7673p-41;
  const Parts parts = SplitFromPowerOf2(x);
  const Vector k = parts.k;
  const Vector m = parts.m;
  const Vector above = m - 1.0;
  const Vector sum = m + 1.0;
  const Vector sumRest = m - (sum - 1.0);
  const Vector inverse = 1.0 / sum;
  const Vector s = above * inverse;
  const Vector sRest = MinusFma(s, sumRest, MinusFma(s, sum, above)) * inverse;
  const Vector w = s * s;
  // A Chebyshev fit of 2/5 + 2/7 w + 2/9 w^2 + ...
  const Vector later = Estrin(
      w, {0x1.999999999999ep-2, 0x1.249249248e532p-2, 0x1.c71c71d7e7fc3p-3, 0x1.745d09f06d811p-3,
          0x1.3b18b8ee7a308p-3, 0x1.1018ae366a914p-3, 0x1.08788c3e01713p-3});
  const Vector series = Fma(later, w, 2.0 / 3.0);
  const Vector twiceRest = sRest + sRest;
  const Vector tail = Fma(s * w, series, Fma(twiceRest, w, twiceRest));

  const Vector whole = k * kLn2;
  const Vector twice = s + s;
  const Vector high = whole + twice;
  const Vector low = ((whole - high) + twice) + Fma(k, kLn2Rest, tail);
  return {high, low, Abs(s * w)};
}

/// Whether a logarithm is known.
PXROM_INLINE Mask IsUsualForLog(Vector x) { return 0x1p-1000 <= x && x <= 0x1p1000; }

/// log(x) for x from 2^-1000 to 2^1000; other lanes are left open.
PXROM_INLINE Exact Log(Vector x) {
  const Logarithm log = LogAsSum(x);
  // The host's error is absolute, but for small results.
  const Vector host = Smaller(LeadingPowerOf2(log.high) * (0.0215 * 0x1p-52), 1.5 * 0x1p-62);
  const Exact rounded = Rounded(log.high, log.low, Fma(log.scale, kLogDoubt, host));
  return {rounded.value, (rounded.open | ~Bits(IsUsualForLog(x))) & kAllLanes};
}

/// x to the power `exponent` as exp(exponent log x), for a logarithm of the power up to 16; other
/// lanes are left open.
PXROM_INLINE Exact Power(Vector x, double exponent) {
  constexpr double kMost = 16.0;
  constexpr double kHost = 0.0025 * 0x1p-52;  // beyond that of exp
  const Logarithm log = LogAsSum(x);
  const Vector sum = log.high + log.low;
  const Vector rest = (log.high - sum) + log.low;
  const Vector high = exponent * sum;
  const Vector low = Fma(exponent, rest, Fma(exponent, sum, 0.0 - high));
  const double size = exponent < 0.0 ? -exponent : exponent;
  const Vector doubt = Fma(log.scale, 2.0 * kLogDoubt * size, kExpDoubt + kHost);
  const Exact power = ExpOfSum(high, low, doubt);
  const Mask isUsual = IsUsualForLog(x) && Abs(high) <= kMost;
  return {power.value, (power.open | ~Bits(isUsual)) & kAllLanes};
}

/// x to the power 4. Lanes with a very small or very large result are left open, except 0, since
/// the host's error grows with the logarithm of the result.
PXROM_INLINE Exact Power4(Vector x) {
  constexpr double kDoubt = 0.015 * 0x1p-52;  // only the host's
  const Vector square = x * x;
  const Vector squareRest = Fma(x, x, 0.0 - square);
  const Vector high = square * square;
  const Vector low = Fma(square + square, squareRest, Fma(square, square, 0.0 - high));
  const Exact rounded = Rounded(high, low, LeadingPowerOf2(high) * kDoubt);
  const unsigned usual = (Bits(1e-16 <= high) & Bits(high <= 1e16)) | (kAllLanes & ~Bits(x != 0.0));
  return {rounded.value, (rounded.open | ~usual) & kAllLanes};
}

/// v / 3, correctly rounded like a division, by one correction step: Markstein, IA-64 and
/// Elementary Functions (2000). A NaN for an infinite v.
PXROM_INLINE Vector Third(Vector v) {
  const Vector inverse = 1.0 / 3.0;
  const Vector rough = v * inverse;
  return Fma(MinusFma(rough, 3.0, v), inverse, rough);
}

/// v / 2^n, for an integer n in the lowest bits of `shifted`.
PXROM_INLINE Vector OverPowerOf2(Vector v, Vector shifted) {
  return AsDoubles(Minus(AsInts(v), ShiftLeft<52>(AsInts(shifted))));
}

#endif

PXROM_INLINE Exact ExpOfMinus(Exact s) {
  const Exact exp = ExpOfMinus(s.value);
  return {exp.value, exp.open | s.open};
}

// The fast functions are within about one unit in the last place of 1. Their polynomials are
// Chebyshev fits of the lowest degree that is enough.

/// 2^-q for q >= 0; for a result below 2^-1000 any number near 0.
PXROM_INLINE Vector Exp2OfMinus(Vector q) {
  const Vector bounded = Smaller(q, 1000.0);
  const Vector shifted = bounded + kMagic;
  const Vector g = bounded - (shifted - kMagic);
  const Vector p = Horner(g, -0x1.e9ec1fcb69a7fp-32, 0x1.e6228acd1c6e5p-28, -0x1.b524ebd13a55fp-24,
                          0x1.62bfc2c86d700p-20, -0x1.ffcbfc6da6ed1p-17, 0x1.430913112c61bp-13,
                          -0x1.5d87fe78a3f9cp-10, 0x1.3b2ab6fb9f1a5p-7, -0x1.c6b08d704a0c6p-5,
                          0x1.ebfbdff82c5aep-3, -0x1.62e42fefa39efp-1, 1.0);
  return OverPowerOf2(p, shifted);
}

/// log2(1 + q) for q from 0 up to 1e300.
#if PXROM_SIMD == PXROM_SIMD_PORTABLE
PXROM_INLINE Vector Log2OfOnePlus(Vector q) { return std::log1p(q.v) * 0x1.71547652b82fep+0; }
#else
PXROM_INLINE Vector Log2OfOnePlus(Vector q) {
  const Vector sum = 1.0 + q;
  const Vector rest = q - (sum - 1.0);
  const Parts x = SplitFromPowerOf2(sum);
  const Vector s = (x.m - 1.0) / (x.m + 1.0);
  const Vector w = s * s;
  const Vector series = Horner(w, 2.0 / 19.0, 2.0 / 17.0, 2.0 / 15.0, 2.0 / 13.0, 2.0 / 11.0,
                               2.0 / 9.0, 2.0 / 7.0, 2.0 / 5.0, 2.0 / 3.0, 2.0);
  return Fma(Fma(s, series, rest / sum), 0x1.71547652b82fep+0, x.k);
}
#endif

/// sin(z) / z for w = z z up to (3 pi / 2)^2.
PXROM_INLINE Vector SineRatio(Vector w) {
  return Horner(w, 0x1.03b526158ddeap-84, -0x1.6eed8c5f154dap-75, 0x1.7135b8df47476p-66,
                -0x1.2f439f0b9b2c3p-57, 0x1.952c15377c993p-49, -0x1.ae7f3a3a2e61ap-41,
                0x1.6124611a8c058p-33, -0x1.ae64567e0f903p-26, 0x1.71de3a55642dcp-19,
                -0x1.a01a01a019c17p-13, 0x1.1111111111101p-7, -0x1.5555555555555p-3, 1.0);
}

/// J0(z) for w = z z up to 3.8317^2.
PXROM_INLINE Vector BesselJ0OfSquare(Vector w) {
  return Horner(w, -0x1.3654ff6af8e5ep-73, 0x1.523a0849dac01p-64, -0x1.0b07deaa6e777p-55,
                0x1.522803e6401e2p-47, -0x1.522a2f3172569p-39, 0x1.02e85b888a221p-31,
                -0x1.234567859b634p-24, 0x1.c71c71c6f28e7p-18, -0x1.c71c71c71b72fp-12,
                0x1.fffffffffff9cp-7, -0x1.ffffffffffffep-3, 1.0);
}

/// tanh(z).
PXROM_INLINE Vector HyperbolicTangent(Vector z) {
  // tanh |z| = (1 - e) / (1 + e), e = exp(-2 |z|); 2 / ln 2 turns that into a power of 2.
  const Vector e = Exp2OfMinus(Abs(z) * 0x1.71547652b82fep+1);
  const Vector t = (1.0 - e) / (1.0 + e);
  return Select(z < 0.0, 0.0 - t, t);
}

}  // namespace
}  // namespace Tarvane::Plexura::PXROM::simd
