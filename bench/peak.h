#pragma once

#include <cstddef>

#if defined(__GNUC__) && defined(__x86_64__)
#include <immintrin.h>
#endif

/// The most multiplications and additions that one core does: many independent sums in registers,
/// without memory. Products of matrices can't be faster.
namespace peak {

#if defined(__GNUC__) && defined(__x86_64__)

inline bool IsKnown() { return __builtin_cpu_supports("avx512f") != 0; }

constexpr std::size_t kSums = 24;
constexpr std::size_t kPerStep = 8 * kSums;

/// `steps` times kPerStep multiplications and as many additions.
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

#else

inline bool IsKnown() { return false; }
constexpr std::size_t kPerStep = 1;
inline double Run(std::size_t) { return 0.0; }

#endif

}  // namespace peak
