#pragma once

// A vector of doubles and its operations, one definition per instruction set. Only the files that
// are compiled per set (kernels/loops/) include this, each for the set that PXROM_SIMD names.
// Everything here and every template over it has internal linkage, so that the linker cannot
// replace code for one machine by code for another. For the same reason these files use no function
// of the standard library, except the portable file.

#include <cstddef>
#include <cstdint>

#define PXROM_SIMD_PORTABLE 0
#define PXROM_SIMD_AVX2 1
#define PXROM_SIMD_AVX512 2
#define PXROM_SIMD_NEON 3

#ifndef PXROM_SIMD
#error "PXROM_SIMD must name an instruction set"
#endif

#include "simd/number.h"

#if PXROM_SIMD == PXROM_SIMD_PORTABLE
#include <cstring>
#elif PXROM_SIMD == PXROM_SIMD_NEON
#include <arm_neon.h>
#else
#include <immintrin.h>
#endif

namespace Tarvane::Plexura::PXROM::simd {
namespace {

// A Mask is the result of a comparison, one truth value per lane, with the rules for NaNs that a
// double has. Bits(mask) has the first lane in its lowest bit.

#if PXROM_SIMD == PXROM_SIMD_AVX512

constexpr std::size_t kLanes = 8;
// Some compilers warn that the unmasked forms of a few operations read uninitialised data.
constexpr __mmask8 kEveryLane = 0xFF;

struct Vector {
  Vector() = default;
  PXROM_INLINE Vector(__m512d all) : v(all) {}
  PXROM_INLINE Vector(double value) : v(_mm512_set1_pd(value)) {}
  __m512d v;
};

struct Mask {
  __mmask8 m;
};

PXROM_INLINE Vector Load(const double* from) { return _mm512_loadu_pd(from); }
PXROM_INLINE void Store(double* to, Vector a) { _mm512_storeu_pd(to, a.v); }
PXROM_INLINE Vector Abs(Vector a) { return _mm512_abs_pd(a.v); }
PXROM_INLINE Vector Or(Vector a, Vector b) {
  return _mm512_castsi512_pd(_mm512_or_si512(_mm512_castpd_si512(a.v), _mm512_castpd_si512(b.v)));
}
PXROM_INLINE Vector Sqrt(Vector a) { return _mm512_maskz_sqrt_pd(kEveryLane, a.v); }
PXROM_INLINE Vector Fma(Vector a, Vector b, Vector c) { return _mm512_fmadd_pd(a.v, b.v, c.v); }
PXROM_INLINE Vector MinusFma(Vector a, Vector b, Vector c) {
  return _mm512_fnmadd_pd(a.v, b.v, c.v);
}
PXROM_INLINE Mask operator<(Vector a, Vector b) {
  return {_mm512_cmp_pd_mask(a.v, b.v, _CMP_LT_OQ)};
}
PXROM_INLINE Mask operator<=(Vector a, Vector b) {
  return {_mm512_cmp_pd_mask(a.v, b.v, _CMP_LE_OQ)};
}
PXROM_INLINE Mask operator!=(Vector a, Vector b) {
  return {_mm512_cmp_pd_mask(a.v, b.v, _CMP_NEQ_UQ)};
}
PXROM_INLINE Mask operator!(Mask mask) { return {static_cast<__mmask8>(~mask.m)}; }
PXROM_INLINE Mask operator&&(Mask a, Mask b) { return {static_cast<__mmask8>(a.m & b.m)}; }
PXROM_INLINE Vector Select(Mask mask, Vector yes, Vector no) {
  return _mm512_mask_blend_pd(mask.m, no.v, yes.v);
}
PXROM_INLINE unsigned Bits(Mask mask) { return mask.m; }
PXROM_INLINE Vector Smaller(Vector a, Vector b) {
  return _mm512_maskz_min_pd(kEveryLane, a.v, b.v);
}

template <int kPair>
PXROM_INLINE Vector WithPair(Vector a, const double* from) {
  const __m128 pair = _mm_castpd_ps(_mm_loadu_pd(from));
  return _mm512_castps_pd(_mm512_insertf32x4(_mm512_castpd_ps(a.v), pair, kPair));
}

/// Values i and i + 1 of kLanes rows.
PXROM_INLINE void LoadTwoColumns(const double* const* rows, std::size_t i, Vector& first,
                                 Vector& second) {
  Vector even = _mm512_castpd128_pd512(_mm_loadu_pd(rows[0] + i));
  Vector odd = _mm512_castpd128_pd512(_mm_loadu_pd(rows[1] + i));
  even = WithPair<1>(even, rows[2] + i);
  odd = WithPair<1>(odd, rows[3] + i);
  even = WithPair<2>(even, rows[4] + i);
  odd = WithPair<2>(odd, rows[5] + i);
  even = WithPair<3>(even, rows[6] + i);
  odd = WithPair<3>(odd, rows[7] + i);
  first = _mm512_maskz_unpacklo_pd(kEveryLane, even.v, odd.v);
  second = _mm512_maskz_unpackhi_pd(kEveryLane, even.v, odd.v);
}

/// Four values of row `a` and four of row `b`.
PXROM_INLINE Vector LoadFours(const double* a, const double* b) {
  return _mm512_maskz_insertf64x4(kEveryLane, _mm512_castpd256_pd512(_mm256_loadu_pd(a)),
                                  _mm256_loadu_pd(b), 1);
}

/// Values i to i + 3 of kLanes rows.
PXROM_INLINE void LoadFourColumns(const double* const* rows, std::size_t i, Vector* columns) {
  const Vector p = LoadFours(rows[0] + i, rows[2] + i);
  const Vector q = LoadFours(rows[1] + i, rows[3] + i);
  const Vector r = LoadFours(rows[4] + i, rows[6] + i);
  const Vector s = LoadFours(rows[5] + i, rows[7] + i);
  const Vector evenLow = _mm512_maskz_unpacklo_pd(kEveryLane, p.v, q.v);
  const Vector evenHigh = _mm512_maskz_unpacklo_pd(kEveryLane, r.v, s.v);
  const Vector oddLow = _mm512_maskz_unpackhi_pd(kEveryLane, p.v, q.v);
  const Vector oddHigh = _mm512_maskz_unpackhi_pd(kEveryLane, r.v, s.v);
  columns[0] = _mm512_maskz_shuffle_f64x2(kEveryLane, evenLow.v, evenHigh.v, 0x88);
  columns[1] = _mm512_maskz_shuffle_f64x2(kEveryLane, oddLow.v, oddHigh.v, 0x88);
  columns[2] = _mm512_maskz_shuffle_f64x2(kEveryLane, evenLow.v, evenHigh.v, 0xDD);
  columns[3] = _mm512_maskz_shuffle_f64x2(kEveryLane, oddLow.v, oddHigh.v, 0xDD);
}

#elif PXROM_SIMD == PXROM_SIMD_AVX2

constexpr std::size_t kLanes = 4;

struct Vector {
  Vector() = default;
  PXROM_INLINE Vector(__m256d all) : v(all) {}
  PXROM_INLINE Vector(double value) : v(_mm256_set1_pd(value)) {}
  __m256d v;
};

struct Mask {
  __m256d m;
};

PXROM_INLINE Vector Load(const double* from) { return _mm256_loadu_pd(from); }
PXROM_INLINE void Store(double* to, Vector a) { _mm256_storeu_pd(to, a.v); }
PXROM_INLINE Vector Abs(Vector a) { return _mm256_andnot_pd(_mm256_set1_pd(-0.0), a.v); }
PXROM_INLINE Vector Or(Vector a, Vector b) { return _mm256_or_pd(a.v, b.v); }
PXROM_INLINE Vector Sqrt(Vector a) { return _mm256_sqrt_pd(a.v); }
PXROM_INLINE Vector Fma(Vector a, Vector b, Vector c) { return _mm256_fmadd_pd(a.v, b.v, c.v); }
PXROM_INLINE Vector MinusFma(Vector a, Vector b, Vector c) {
  return _mm256_fnmadd_pd(a.v, b.v, c.v);
}
PXROM_INLINE Mask operator<(Vector a, Vector b) { return {_mm256_cmp_pd(a.v, b.v, _CMP_LT_OQ)}; }
PXROM_INLINE Mask operator<=(Vector a, Vector b) { return {_mm256_cmp_pd(a.v, b.v, _CMP_LE_OQ)}; }
PXROM_INLINE Mask operator!=(Vector a, Vector b) { return {_mm256_cmp_pd(a.v, b.v, _CMP_NEQ_UQ)}; }
PXROM_INLINE Mask operator!(Mask mask) {
  return {_mm256_xor_pd(mask.m, _mm256_castsi256_pd(_mm256_set1_epi64x(-1)))};
}
PXROM_INLINE Mask operator&&(Mask a, Mask b) { return {_mm256_and_pd(a.m, b.m)}; }
PXROM_INLINE Vector Select(Mask mask, Vector yes, Vector no) {
  return _mm256_blendv_pd(no.v, yes.v, mask.m);
}
PXROM_INLINE unsigned Bits(Mask mask) { return static_cast<unsigned>(_mm256_movemask_pd(mask.m)); }
PXROM_INLINE Vector Smaller(Vector a, Vector b) { return _mm256_min_pd(a.v, b.v); }

/// Values i and i + 1 of kLanes rows.
PXROM_INLINE void LoadTwoColumns(const double* const* rows, std::size_t i, Vector& first,
                                 Vector& second) {
  Vector even = _mm256_castpd128_pd256(_mm_loadu_pd(rows[0] + i));
  Vector odd = _mm256_castpd128_pd256(_mm_loadu_pd(rows[1] + i));
  even = _mm256_insertf128_pd(even.v, _mm_loadu_pd(rows[2] + i), 1);
  odd = _mm256_insertf128_pd(odd.v, _mm_loadu_pd(rows[3] + i), 1);
  first = _mm256_unpacklo_pd(even.v, odd.v);
  second = _mm256_unpackhi_pd(even.v, odd.v);
}

/// Values i to i + 3 of kLanes rows.
PXROM_INLINE void LoadFourColumns(const double* const* rows, std::size_t i, Vector* columns) {
  LoadTwoColumns(rows, i, columns[0], columns[1]);
  LoadTwoColumns(rows, i + 2, columns[2], columns[3]);
}

#elif PXROM_SIMD == PXROM_SIMD_NEON

constexpr std::size_t kLanes = 2;

struct Vector {
  Vector() = default;
  PXROM_INLINE Vector(float64x2_t all) : v(all) {}
  PXROM_INLINE Vector(double value) : v(vdupq_n_f64(value)) {}
  float64x2_t v;
};

struct Mask {
  uint64x2_t m;
};

PXROM_INLINE Vector Load(const double* from) { return vld1q_f64(from); }
PXROM_INLINE void Store(double* to, Vector a) { vst1q_f64(to, a.v); }
PXROM_INLINE Vector Abs(Vector a) { return vabsq_f64(a.v); }
PXROM_INLINE Vector Or(Vector a, Vector b) {
  return vreinterpretq_f64_u64(vorrq_u64(vreinterpretq_u64_f64(a.v), vreinterpretq_u64_f64(b.v)));
}
PXROM_INLINE Vector Sqrt(Vector a) { return vsqrtq_f64(a.v); }
PXROM_INLINE Vector Fma(Vector a, Vector b, Vector c) { return vfmaq_f64(c.v, a.v, b.v); }
PXROM_INLINE Vector MinusFma(Vector a, Vector b, Vector c) { return vfmsq_f64(c.v, a.v, b.v); }
PXROM_INLINE Mask operator<(Vector a, Vector b) { return {vcltq_f64(a.v, b.v)}; }
PXROM_INLINE Mask operator<=(Vector a, Vector b) { return {vcleq_f64(a.v, b.v)}; }
PXROM_INLINE Mask operator!(Mask mask) {
  return {veorq_u64(mask.m, vdupq_n_u64(~std::uint64_t{0}))};
}
PXROM_INLINE Mask operator!=(Vector a, Vector b) { return !Mask{vceqq_f64(a.v, b.v)}; }
PXROM_INLINE Mask operator&&(Mask a, Mask b) { return {vandq_u64(a.m, b.m)}; }
PXROM_INLINE Vector Select(Mask mask, Vector yes, Vector no) {
  return vbslq_f64(mask.m, yes.v, no.v);
}
PXROM_INLINE Vector Smaller(Vector a, Vector b) { return Select(a < b, a, b); }
PXROM_INLINE unsigned Bits(Mask mask) {
  return static_cast<unsigned>((vgetq_lane_u64(mask.m, 0) & 1U) | (vgetq_lane_u64(mask.m, 1) & 2U));
}

/// Values i and i + 1 of kLanes rows.
PXROM_INLINE void LoadTwoColumns(const double* const* rows, std::size_t i, Vector& first,
                                 Vector& second) {
  const float64x2_t a = vld1q_f64(rows[0] + i);
  const float64x2_t b = vld1q_f64(rows[1] + i);
  first = vzip1q_f64(a, b);
  second = vzip2q_f64(a, b);
}

/// Values i to i + 3 of kLanes rows.
PXROM_INLINE void LoadFourColumns(const double* const* rows, std::size_t i, Vector* columns) {
  LoadTwoColumns(rows, i, columns[0], columns[1]);
  LoadTwoColumns(rows, i + 2, columns[2], columns[3]);
}

#else

constexpr std::size_t kLanes = 1;

struct Vector {
  Vector() = default;
  PXROM_INLINE Vector(double value) : v(value) {}
  double v;
};

struct Mask {
  bool m;
};

PXROM_INLINE Vector Load(const double* from) { return *from; }
PXROM_INLINE void Store(double* to, Vector a) { *to = a.v; }
PXROM_INLINE Vector Abs(Vector a) { return std::fabs(a.v); }
PXROM_INLINE Vector Sqrt(Vector a) { return std::sqrt(a.v); }
// Rounds twice where the machine has no fused operation. This is good enough for the fast mode; the
// exact mode does not use it here.
PXROM_INLINE Vector Fma(Vector a, Vector b, Vector c) { return a.v * b.v + c.v; }
PXROM_INLINE Mask operator<(Vector a, Vector b) { return {a.v < b.v}; }
PXROM_INLINE Mask operator<=(Vector a, Vector b) { return {a.v <= b.v}; }
PXROM_INLINE Mask operator!=(Vector a, Vector b) { return {!(a.v == b.v)}; }
PXROM_INLINE Mask operator!(Mask mask) { return {!mask.m}; }
PXROM_INLINE Mask operator&&(Mask a, Mask b) { return {a.m && b.m}; }
PXROM_INLINE Vector Select(Mask mask, Vector yes, Vector no) { return mask.m ? yes : no; }
PXROM_INLINE unsigned Bits(Mask mask) { return mask.m ? 1U : 0U; }
PXROM_INLINE Vector Smaller(Vector a, Vector b) { return Select(a < b, a, b); }

#endif

#if defined(__GNUC__)
PXROM_INLINE void Prefetch(const double* from) { __builtin_prefetch(from); }
#else
PXROM_INLINE void Prefetch(const double*) {}
#endif

PXROM_INLINE Vector operator+(Vector a, Vector b) { return a.v + b.v; }
PXROM_INLINE Vector operator-(Vector a, Vector b) { return a.v - b.v; }
PXROM_INLINE Vector operator*(Vector a, Vector b) { return a.v * b.v; }
PXROM_INLINE Vector operator/(Vector a, Vector b) { return a.v / b.v; }

/// The lowest bit that is set. At least one must be set.
#if defined(__GNUC__)
PXROM_INLINE std::size_t FirstOf(std::uint32_t bits) {
  return static_cast<std::size_t>(__builtin_ctz(bits));
}
#else
PXROM_INLINE std::size_t FirstOf(std::uint32_t bits) {
  std::size_t first = 0;
  while ((bits >> first & 1U) == 0) ++first;
  return first;
}
#endif

constexpr unsigned kAllLanes = (1U << kLanes) - 1U;

/// Value `i` of kLanes rows.
PXROM_INLINE Vector LoadColumn(const double* const* rows, std::size_t i) {
  double column[kLanes];
  for (std::size_t lane = 0; lane < kLanes; ++lane) column[lane] = rows[lane][i];
  return Load(column);
}

/// If (number.h) for all lanes at once.
template <class Yes>
PXROM_INLINE auto If(Mask mask, const Yes& yes, double no) -> decltype(yes()) {
  return Select(mask, yes(), no);
}

}  // namespace
}  // namespace Tarvane::Plexura::PXROM::simd
