#pragma once

#include <cstddef>

#if defined(__GNUC__) && defined(__x86_64__)
#include <immintrin.h>
#endif

/// What bounds products of matrices on one core.
namespace peak {

#if defined(__GNUC__) && defined(__x86_64__)

inline bool IsKnown() { return __builtin_cpu_supports("avx512f") != 0; }

constexpr std::size_t kSums = 24;
constexpr std::size_t kPerStep = 8 * kSums;

/// The most multiplications and additions, in many independent sums and without memory: `steps`
/// times kPerStep of both.
__attribute__((target("avx512f"))) inline double Run(std::size_t steps) {
  const __m512d a = _mm512_set1_pd(0.75);
  __m512d sums[kSums];
#pragma GCC unroll 24
  for (std::size_t k = 0; k < kSums; ++k) sums[k] = _mm512_setzero_pd();
  for (std::size_t step = 0; step < steps; ++step) {
#pragma GCC unroll 24
    for (std::size_t k = 0; k < kSums; ++k) {
      // The compiler must not see that all products are the same.
      __m512d product = a;
      __asm__ volatile("vmulpd %0, %0, %0" : "+v"(product));
      sums[k] = _mm512_add_pd(sums[k], product);
    }
  }
  double result = 0.0;
#pragma GCC unroll 24
  for (std::size_t k = 0; k < kSums; ++k) result += _mm512_cvtsd_f64(sums[k]);
  return result;
}

/// Reads `count` values and does nothing else, but for adding them up.
__attribute__((target("avx512f"))) inline double Read(const double* values, std::size_t count) {
  __m512d sums[4] = {_mm512_setzero_pd(), _mm512_setzero_pd(), _mm512_setzero_pd(),
                     _mm512_setzero_pd()};
  for (std::size_t at = 0; at + 32 <= count; at += 32) {
#pragma GCC unroll 4
    for (std::size_t k = 0; k < 4; ++k) {
      sums[k] = _mm512_add_pd(sums[k], _mm512_loadu_pd(values + at + 8 * k));
    }
  }
  return _mm512_cvtsd_f64(
      _mm512_add_pd(_mm512_add_pd(sums[0], sums[1]), _mm512_add_pd(sums[2], sums[3])));
}

#else

inline double Read(const double*, std::size_t) { return 0.0; }
inline bool IsKnown() { return false; }
constexpr std::size_t kPerStep = 1;
inline double Run(std::size_t) { return 0.0; }

#endif

}  // namespace peak
