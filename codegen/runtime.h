#pragma once

#include <math.h>

#include <cmath>

#if defined(__MINGW32__) && defined(__STRICT_ANSI__)
// The header hides them from a compiler that follows the standard strictly.
extern "C" double _j0(double x);
extern "C" double _j1(double x);
#endif

// The pieces of the generated code, compiled here for one type of numbers. The generator fills
// their structures, writes them as tables, and evaluates them itself to check what it has written.

namespace pxrom_codegen {

#if defined(_WIN32)
inline double BesselJ0(double x) { return ::_j0(x); }
inline double BesselJ1(double x) { return ::_j1(x); }
#else
inline double BesselJ0(double x) { return ::j0(x); }
inline double BesselJ1(double x) { return ::j1(x); }
#endif

/// The functions of math.h under their names in C, for float and double.
template <class Real>
struct HostFunctions {
  static Real fabs(Real x) { return std::fabs(x); }
  static Real exp(Real x) { return std::exp(x); }
  static Real log(Real x) { return std::log(x); }
  static Real log1p(Real x) { return std::log1p(x); }
  static Real log10(Real x) { return std::log10(x); }
  static Real sqrt(Real x) { return std::sqrt(x); }
  static Real pow(Real x, Real y) { return std::pow(x, y); }
  static Real sin(Real x) { return std::sin(x); }
  static Real cos(Real x) { return std::cos(x); }
  static Real tanh(Real x) { return std::tanh(x); }
  static Real cosh(Real x) { return std::cosh(x); }
  static Real j0(Real x) { return static_cast<Real>(BesselJ0(x)); }
  static Real j1(Real x) { return static_cast<Real>(BesselJ1(x)); }
};

/// The largest result of a back-transformation, and its logarithms, as texts of the generated code.
/// The range of a float ends earlier than that of the library.
template <class Real>
struct Limits;
template <>
struct Limits<double> {
  static constexpr double kLargest = 1e99;
  static constexpr double kLeastOfLog = 1e-99;
};
template <>
struct Limits<float> {
  static constexpr float kLargest = 3e38F;
  static constexpr float kLeastOfLog = 0.0F;
};

#define USES(piece) 1
#define R(number) (static_cast<real>(number))
#define M(function) HostFunctions<real>::function

template <class real>
struct Runtime {
  using place = unsigned short;
  inline static const real LIMIT_OF_TRANSFORMATION = Limits<real>::kLargest;
  inline static const real LEAST_OF_LOG = Limits<real>::kLeastOfLog;
  inline static const real LOG_OF_LIMIT = std::log(Limits<real>::kLargest);
  inline static const real LOG_LOG_OF_LIMIT = std::log(std::log(Limits<real>::kLargest));

  // clang-format off
#include "codegen/runtime/common.inc"
#include "codegen/runtime/kernels.inc"
#include "codegen/runtime/kernel_sum.inc"
#include "codegen/runtime/terms.inc"
#include "codegen/runtime/process.inc"
#include "codegen/runtime/local_fit.inc"
#include "codegen/runtime/ensemble.inc"
  // clang-format on
};

#undef USES
#undef R
#undef M

}  // namespace pxrom_codegen
