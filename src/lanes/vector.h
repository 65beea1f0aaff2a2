#pragma once

// A vector of doubles and what can be done with it, one definition per instruction set. Only the
// lanes_*.cpp files include this, each for the set that PXROM_LANES names; everything here has
// internal linkage, so that no code for one machine can take the place of code for another. For the
// same reason these files use no function of the standard library, but in the portable one.

#include <cstddef>
#include <cstdint>

#define PXROM_LANES_PORTABLE 0
#define PXROM_LANES_AVX2 1
#define PXROM_LANES_AVX512 2

#ifndef PXROM_LANES
#error "PXROM_LANES must name an instruction set"
#endif

#if PXROM_LANES != PXROM_LANES_PORTABLE
#include <immintrin.h>
#define PXROM_INLINE static inline __attribute__((always_inline))
#else
#include <cmath>
#include <cstring>
#define PXROM_INLINE static inline
#endif

namespace Tarvane::Plexura::PXROM::lanes {
namespace {

// V is the vector, M the result of a comparison, one truth value per lane. Bits(M) has the first
// lane in its lowest bit. A comparison with a NaN is false, but that of IsOther.

#if PXROM_LANES == PXROM_LANES_AVX512

using V = __m512d;
using M = __mmask8;
constexpr std::size_t kLanes = 8;
// Some compilers take the unmasked forms of a few operations for reading something uninitialised.
constexpr M kEveryLane = 0xFF;

PXROM_INLINE V Set(double value) { return _mm512_set1_pd(value); }
PXROM_INLINE V Load(const double* from) { return _mm512_loadu_pd(from); }
PXROM_INLINE void Store(double* to, V v) { _mm512_storeu_pd(to, v); }
PXROM_INLINE V Abs(V v) { return _mm512_abs_pd(v); }
PXROM_INLINE V Or(V a, V b) {
  return _mm512_castsi512_pd(_mm512_or_si512(_mm512_castpd_si512(a), _mm512_castpd_si512(b)));
}
PXROM_INLINE V Sqrt(V v) { return _mm512_maskz_sqrt_pd(kEveryLane, v); }
PXROM_INLINE V Fma(V a, V b, V c) { return _mm512_fmadd_pd(a, b, c); }
PXROM_INLINE V MinusFma(V a, V b, V c) { return _mm512_fnmadd_pd(a, b, c); }
PXROM_INLINE M IsLess(V a, V b) { return _mm512_cmp_pd_mask(a, b, _CMP_LT_OQ); }
PXROM_INLINE M IsAtMost(V a, V b) { return _mm512_cmp_pd_mask(a, b, _CMP_LE_OQ); }
PXROM_INLINE M IsOther(V a, V b) { return _mm512_cmp_pd_mask(a, b, _CMP_NEQ_UQ); }
PXROM_INLINE V Select(M m, V yes, V no) { return _mm512_mask_blend_pd(m, no, yes); }
PXROM_INLINE unsigned Bits(M m) { return m; }

template <int kPair>
PXROM_INLINE V WithPair(V v, const double* from) {
  const __m128 pair = _mm_castpd_ps(_mm_loadu_pd(from));
  return _mm512_castps_pd(_mm512_insertf32x4(_mm512_castpd_ps(v), pair, kPair));
}

/// Values i and i + 1 of kLanes rows.
PXROM_INLINE void LoadTwoColumns(const double* const* rows, std::size_t i, V& first, V& second) {
  V even = _mm512_castpd128_pd512(_mm_loadu_pd(rows[0] + i));
  V odd = _mm512_castpd128_pd512(_mm_loadu_pd(rows[1] + i));
  even = WithPair<1>(even, rows[2] + i);
  odd = WithPair<1>(odd, rows[3] + i);
  even = WithPair<2>(even, rows[4] + i);
  odd = WithPair<2>(odd, rows[5] + i);
  even = WithPair<3>(even, rows[6] + i);
  odd = WithPair<3>(odd, rows[7] + i);
  first = _mm512_maskz_unpacklo_pd(kEveryLane, even, odd);
  second = _mm512_maskz_unpackhi_pd(kEveryLane, even, odd);
}

/// Four values of row `a` and four of row `b`.
PXROM_INLINE V LoadFours(const double* a, const double* b) {
  return _mm512_maskz_insertf64x4(kEveryLane, _mm512_castpd256_pd512(_mm256_loadu_pd(a)),
                                  _mm256_loadu_pd(b), 1);
}

/// Values i to i + 3 of kLanes rows.
PXROM_INLINE void LoadFourColumns(const double* const* rows, std::size_t i, V* columns) {
  const V p = LoadFours(rows[0] + i, rows[2] + i);
  const V q = LoadFours(rows[1] + i, rows[3] + i);
  const V r = LoadFours(rows[4] + i, rows[6] + i);
  const V s = LoadFours(rows[5] + i, rows[7] + i);
  const V evenLow = _mm512_maskz_unpacklo_pd(kEveryLane, p, q);
  const V evenHigh = _mm512_maskz_unpacklo_pd(kEveryLane, r, s);
  const V oddLow = _mm512_maskz_unpackhi_pd(kEveryLane, p, q);
  const V oddHigh = _mm512_maskz_unpackhi_pd(kEveryLane, r, s);
  columns[0] = _mm512_maskz_shuffle_f64x2(kEveryLane, evenLow, evenHigh, 0x88);
  columns[1] = _mm512_maskz_shuffle_f64x2(kEveryLane, oddLow, oddHigh, 0x88);
  columns[2] = _mm512_maskz_shuffle_f64x2(kEveryLane, evenLow, evenHigh, 0xDD);
  columns[3] = _mm512_maskz_shuffle_f64x2(kEveryLane, oddLow, oddHigh, 0xDD);
}

#elif PXROM_LANES == PXROM_LANES_AVX2

using V = __m256d;
using M = __m256d;
constexpr std::size_t kLanes = 4;

PXROM_INLINE V Set(double value) { return _mm256_set1_pd(value); }
PXROM_INLINE V Load(const double* from) { return _mm256_loadu_pd(from); }
PXROM_INLINE void Store(double* to, V v) { _mm256_storeu_pd(to, v); }
PXROM_INLINE V Abs(V v) { return _mm256_andnot_pd(_mm256_set1_pd(-0.0), v); }
PXROM_INLINE V Or(V a, V b) { return _mm256_or_pd(a, b); }
PXROM_INLINE V Sqrt(V v) { return _mm256_sqrt_pd(v); }
PXROM_INLINE V Fma(V a, V b, V c) { return _mm256_fmadd_pd(a, b, c); }
PXROM_INLINE V MinusFma(V a, V b, V c) { return _mm256_fnmadd_pd(a, b, c); }
PXROM_INLINE M IsLess(V a, V b) { return _mm256_cmp_pd(a, b, _CMP_LT_OQ); }
PXROM_INLINE M IsAtMost(V a, V b) { return _mm256_cmp_pd(a, b, _CMP_LE_OQ); }
PXROM_INLINE M IsOther(V a, V b) { return _mm256_cmp_pd(a, b, _CMP_NEQ_UQ); }
PXROM_INLINE V Select(M m, V yes, V no) { return _mm256_blendv_pd(no, yes, m); }
PXROM_INLINE unsigned Bits(M m) { return static_cast<unsigned>(_mm256_movemask_pd(m)); }

/// Values i and i + 1 of kLanes rows.
PXROM_INLINE void LoadTwoColumns(const double* const* rows, std::size_t i, V& first, V& second) {
  V even = _mm256_castpd128_pd256(_mm_loadu_pd(rows[0] + i));
  V odd = _mm256_castpd128_pd256(_mm_loadu_pd(rows[1] + i));
  even = _mm256_insertf128_pd(even, _mm_loadu_pd(rows[2] + i), 1);
  odd = _mm256_insertf128_pd(odd, _mm_loadu_pd(rows[3] + i), 1);
  first = _mm256_unpacklo_pd(even, odd);
  second = _mm256_unpackhi_pd(even, odd);
}

/// Values i to i + 3 of kLanes rows.
PXROM_INLINE void LoadFourColumns(const double* const* rows, std::size_t i, V* columns) {
  LoadTwoColumns(rows, i, columns[0], columns[1]);
  LoadTwoColumns(rows, i + 2, columns[2], columns[3]);
}

#else

using V = double;
using M = bool;
constexpr std::size_t kLanes = 1;

PXROM_INLINE V Set(double value) { return value; }
PXROM_INLINE V Load(const double* from) { return *from; }
PXROM_INLINE void Store(double* to, V v) { *to = v; }
PXROM_INLINE V Abs(V v) { return std::fabs(v); }
PXROM_INLINE M IsLess(V a, V b) { return a < b; }
PXROM_INLINE M IsAtMost(V a, V b) { return a <= b; }
PXROM_INLINE M IsOther(V a, V b) { return !(a == b); }
PXROM_INLINE V Select(M m, V yes, V no) { return m ? yes : no; }
PXROM_INLINE unsigned Bits(M m) { return m ? 1U : 0U; }
// Rounded twice where the machine has no fused operation: good enough for the fast mode, and the
// exact mode does without here.
PXROM_INLINE V Fma(V a, V b, V c) { return a * b + c; }
PXROM_INLINE V MinusFma(V a, V b, V c) { return c - a * b; }
PXROM_INLINE V Sqrt(V v) { return std::sqrt(v); }

#endif

#if PXROM_LANES == PXROM_LANES_PORTABLE
PXROM_INLINE std::size_t FirstOf(unsigned) { return 0; }
#else
/// The lowest bit that is set; one is.
PXROM_INLINE std::size_t FirstOf(unsigned bits) {
  return static_cast<std::size_t>(__builtin_ctz(bits));
}
#endif

constexpr unsigned kAllLanes = (1U << kLanes) - 1U;

PXROM_INLINE V Smaller(V a, V b) { return Select(IsLess(a, b), a, b); }

}  // namespace
}  // namespace Tarvane::Plexura::PXROM::lanes
