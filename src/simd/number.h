#pragma once

// The operations of a formula on a plain double. A vector has the same ones (vector.h,
// functions.h), so that one template serves both.

#include <cmath>

#include "numerics/bessel.h"
#include "simd/host.h"

#if defined(__GNUC__)
#define PXROM_INLINE inline __attribute__((always_inline))
#define PXROM_INLINE_BODY __attribute__((always_inline))
#else
#define PXROM_INLINE inline
#define PXROM_INLINE_BODY
#endif

namespace Tarvane::Plexura::PXROM::simd {

PXROM_INLINE double Abs(double v) { return std::fabs(v); }
PXROM_INLINE double Sqrt(double v) { return std::sqrt(v); }
PXROM_INLINE double Third(double v) { return v / 3.0; }
PXROM_INLINE double ExpOfMinus(double s) { return std::exp(-s); }
PXROM_INLINE double Log(double x) { return std::log(x); }
PXROM_INLINE double Log1p(double x, HostForm /*host*/) { return std::log1p(x); }
PXROM_INLINE double Power(double x, double exponent) { return std::pow(x, exponent); }
PXROM_INLINE double Power4(double x) { return std::pow(x, 4.0); }
PXROM_INLINE double Sin(double x) { return std::sin(x); }
PXROM_INLINE double Tanh(double x, HostForm /*host*/) { return std::tanh(x); }
PXROM_INLINE double J0(double x) { return BesselJ0(x); }

PXROM_INLINE double Select(bool condition, double yes, double no) { return condition ? yes : no; }

/// yes() where `condition` holds, else `no`. A vector computes yes() for all lanes and selects; a
/// plain number computes it only if it is needed.
template <class Yes>
PXROM_INLINE auto If(bool condition, const Yes& yes, double no) -> decltype(yes()) {
  if (condition) return yes();
  return no;
}

}  // namespace Tarvane::Plexura::PXROM::simd
