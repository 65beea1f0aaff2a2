#pragma once

// The parts of a kernel. Each kernel is one class in a file of its own, with templates over a
// number type N: double gives the plain loops, simd::Vector the loops on vectors, and a dual number
// the derivative that tests compare with. All have the same order of operations.
//
// A class derives from one of the shapes below and holds
//   ExpOfSum   Term(difference, scale): exp(-sum of the terms)
//   Product    Factor(distance, scale): the product of the factors. With kHasEnd also
//              IsInside(distance, scale): outside, the product becomes 0
//   Dot        Value(constants, x . y)
//   Radial     Value(constants, squared distance, scale of the centre)
//   Distance   Value(constants, squared scaled distance, unused): each input has its scale
// and beside it
//   kOperations, for the estimated cost of an evaluation
//   Descent or Slope, the derivative in closed form, which is better conditioned near a centre than
//   the chain rule. At a kink, where a coordinate equals the centre's under an absolute value, it
//   is 0, the mean of both sides. At a cut-off it is that of the branch that the value takes.
//
//   Fast, the form for the fast mode and the bound of its error. Kernels of plain arithmetic have
//   none, since their exact form is as fast.
//
// A kernel with kAsksPerInput needs in each step a function that the host may have to compute. Its
// Argument turns the Distance into the argument of the function Inner. Term or Factor get the
// distance and inner(), the value of the function.

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <type_traits>

#include "simd/number.h"

namespace Tarvane::Plexura::PXROM::kernels {

using simd::Abs;
using simd::ExpOfMinus;
using simd::If;
using simd::J0;
using simd::Log;
using simd::Log1p;
using simd::Power;
using simd::Power4;
using simd::Select;
using simd::Sin;
using simd::Sqrt;
using simd::Tanh;
using simd::Third;

/// What a kernel needs besides its arguments, by the number of inputs.
struct Constants {
  double shift = 0.0;      ///< for functions that are shifted to end at 0
  double perInput = 0.0;   ///< the factor of functions that depend on the number of inputs
  double parameter = 1.0;  ///< for functions of a distance that have one, from the record
  simd::HostForm hostForm = simd::HostForm::Other;  ///< of its function, where that counts
};

/// How many operations exp, log, pow, a sine or a hyperbolic tangent count as.
constexpr double kElementary = 40.0;

/// Roughly the operations of a kernel: for each input, and once in addition.
struct Operations {
  double perInput = 0.0;
  double once = 0.0;
};

enum class Shape : std::uint8_t { ExpOfSum, Product, Dot, Radial, Distance };

struct AnyShape {
  static constexpr bool kAsksPerInput = false;
  static constexpr bool kHasEnd = false;
  using Fast = void;
  static Constants ConstantsFor(double /*inputs*/) { return {}; }
};

struct ExpOfSum : AnyShape {
  static constexpr Shape kShape = Shape::ExpOfSum;
  static constexpr double kStart = 0.0;
  template <class N>
  PXROM_INLINE static auto Value(const Constants&, N sum, N) {
    return ExpOfMinus(sum);
  }
};

struct Product : AnyShape {
  static constexpr Shape kShape = Shape::Product;
  static constexpr double kStart = 1.0;
  template <class N>
  PXROM_INLINE static N Value(const Constants&, N product, N) {
    return product;
  }
};

/// Its factors end where the scaled distance is 1.
struct ProductWithin1 : Product {
  static constexpr bool kHasEnd = true;
  template <class N>
  PXROM_INLINE static auto IsInside(N distance, N scale) {
    return scale * distance < 1.0;
  }
};

/// Each factor is a function of the scaled distance that the host is asked for, up to an end.
struct ProductOfAsked : Product {
  static constexpr bool kAsksPerInput = true;
  static constexpr bool kHasEnd = true;
  template <class N>
  PXROM_INLINE static N Distance(N distance, N scale) {
    return scale * distance;
  }
  template <class N>
  PXROM_INLINE static N Argument(N z) {
    return z;
  }
};

struct Dot : AnyShape {
  static constexpr Shape kShape = Shape::Dot;
  static constexpr double kStart = 0.0;
};

struct Radial : AnyShape {
  static constexpr Shape kShape = Shape::Radial;
  static constexpr double kStart = 0.0;
};

struct Distance : AnyShape {
  static constexpr Shape kShape = Shape::Distance;
  static constexpr double kStart = 0.0;
};

/// min(z, 1), but a NaN stays a NaN, as with std::min.
template <class N>
PXROM_INLINE N UpTo1(N z) {
  return Select(1.0 < z, N(1.0), z);
}

/// The next state of a kernel that asks per input, from the distance and inner().
template <class K, class N, class Inner>
PXROM_INLINE N Combine(const Constants& constants, N state, N distance, const Inner& inner) {
  if constexpr (K::kShape == Shape::ExpOfSum) {
    return state + K::Term(distance, inner);
  } else {
    // Outside, 0 is assigned. This differs from a factor of 0 only if the product is infinite or a
    // NaN. For the same reason the loop continues with the other inputs.
    return If(
        K::IsInside(distance), [&] { return state * K::Factor(constants, distance, inner); }, 0.0);
  }
}

/// The state after one more input. The first state is K::kStart, and K::Value gives the kernel for
/// the last state.
template <class K, class N>
PXROM_INLINE N Step([[maybe_unused]] const Constants& constants, N state, N x, N y,
                    [[maybe_unused]] N scale) {
  if constexpr (K::kAsksPerInput) {
    const N distance = K::Distance(Abs(x - y), scale);
    return Combine<K>(constants, state, distance, [&] { return K::Inner(K::Argument(distance)); });
  } else if constexpr (K::kShape == Shape::ExpOfSum) {
    return state + K::Term(x - y, scale);
  } else if constexpr (K::kShape == Shape::Product) {
    const N distance = Abs(x - y);
    if constexpr (K::kHasEnd) {
      return If(
          K::IsInside(distance, scale), [&] { return state * K::Factor(distance, scale); }, 0.0);
    } else {
      return state * K::Factor(distance, scale);
    }
  } else if constexpr (K::kShape == Shape::Dot) {
    return state + x * y;
  } else if constexpr (K::kShape == Shape::Distance) {
    const N difference = (x - y) * scale;
    return state + difference * difference;
  } else {
    const N difference = x - y;
    return state + difference * difference;
  }
}

// The fast forms. Points and centres are multiplied by InputFactor(scale) in advance, and the scale
// of a centre is replaced by CentreFactor(scale), the factor of the distance or of its square.
// Start, Step and Value are as above. Deviation bounds the difference between one kernel and its
// exact value, in units of 2^-53, the relative error of one rounding. `norm1` and `norm2` are the
// largest norms of a multiplied centre: a rounding error there does not shrink with the difference
// of point and centre. The factors in the bound are upper limits of a function's slope times its
// argument.

constexpr double kLog2OfE = 0x1.71547652b82fep+0;

struct AnyFast {
  static constexpr std::size_t kMostInputs = std::numeric_limits<std::size_t>::max();
  static double InputFactor(double /*scale*/) { return 1.0; }
  static double CentreFactor(const Constants&, double /*scale*/) { return 1.0; }
};

struct FastSum : AnyFast {
  template <class N>
  PXROM_INLINE static N Start() {
    return 0.0;
  }
};

struct FastProduct : AnyFast {
  template <class N>
  PXROM_INLINE static N Start() {
    return 1.0;
  }
  template <class N>
  PXROM_INLINE static N Value(const Constants&, N product, N) {
    return product;
  }
};

struct FastSquaredDistance : FastSum {
  template <class N>
  PXROM_INLINE static N Step(N sum, N x, N y) {
    const N a = x - y;
    return Fma(a, a, sum);
  }
};

/// exp(-t) times a polynomial in t, 0 where the exponential has vanished: there the polynomial may
/// be infinite. A NaN stays one.
template <class N>
PXROM_INLINE auto ExpTimes(N t, N polynomial) {
  constexpr double kVanished = 746.0;
  return Select(!(kVanished < t), ExpOfMinus(t) * polynomial, N(0.0));
}

template <class K>
constexpr bool kHasFast = !std::is_void_v<typename K::Fast>;

inline double SignOf(double value) { return value > 0.0 ? 1.0 : value < 0.0 ? -1.0 : 0.0; }

}  // namespace Tarvane::Plexura::PXROM::kernels
