#pragma once

// The kernels on vectors: what one input adds to a state, and the kernel from the last state.
// The exact ones do what the evaluators do, operation by operation.

#include "lanes/functions.h"
#include "lanes/lanes.h"

namespace Tarvane::Plexura::PXROM::lanes {
namespace {

// ------------------------------------------------------------------------------------------ exact

struct ExactSum {
  static constexpr double kStart = 0.0;
  static constexpr bool kAsksPerInput = false;
};

struct ExactProduct {
  static constexpr double kStart = 1.0;
  static constexpr bool kAsksPerInput = false;
  static Exact Finish(const KernelShape&, V product, V) { return {product, 0}; }
};

struct Exponential : ExactSum {
  PXROM_INLINE V Step(V sum, V x, V y, V k) { return sum + k * Abs(x - y); }
  PXROM_INLINE Exact Finish(const KernelShape&, V sum, V) { return ExpOfMinus(sum); }
};

struct Gaussian : ExactSum {
  // Twice the sign of the difference: no absolute value is needed.
  PXROM_INLINE V Step(V sum, V x, V y, V k) {
    const V a = x - y;
    return sum + k * a * a;
  }
  PXROM_INLINE Exact Finish(const KernelShape&, V sum, V) { return ExpOfMinus(sum); }
};

struct Linear : ExactProduct {
  PXROM_INLINE V Step(V product, V x, V y, V k) {
    const V factor = Set(1.0) - k * Abs(x - y);
    return product * Select(IsLess(Set(0.0), factor), factor, Set(0.0));
  }
};

// Not the smaller of both, but as std::min picks: a NaN stays one.
PXROM_INLINE V UpTo1(V z) { return Select(IsLess(Set(1.0), z), Set(1.0), z); }

struct Spherical : ExactProduct {
  PXROM_INLINE V Step(V product, V x, V y, V k) {
    const V s = UpTo1(k * Abs(x - y));
    return product * (Set(1.0) - Set(1.5) * s + Set(0.5) * s * s * s);
  }
};

struct Cubic : ExactProduct {
  PXROM_INLINE V Step(V product, V x, V y, V k) {
    const V s = UpTo1(k * Abs(x - y));
    return product * (Set(1.0) - Set(3.0) * s * s + Set(2.0) * s * s * s);
  }
};

struct Multiquadric : ExactProduct {
  PXROM_INLINE V Step(V product, V x, V y, V k) { return product * Sqrt(k * k + Abs(x - y)); }
};

struct Spline : ExactProduct {
  PXROM_INLINE V Step(V product, V x, V y, V k) {
    const V z = k * Abs(x - y);
    const V rest = Set(1.0) - z;
    const V near = product * (Set(1.0) - Set(15.0) * z * z + Set(30.0) * z * z * z);
    const V far = product * (Set(1.25) * rest * rest * rest);
    return Select(IsAtMost(z, Set(0.2)), near, Select(IsLess(z, Set(1.0)), far, Set(0.0)));
  }
};

struct Parabolic : ExactProduct {
  PXROM_INLINE V Step(V product, V x, V y, V k) {
    const V z = k * Abs(x - y);
    return Select(IsLess(z, Set(1.0)), product * (Set(1.0) - z * z), Set(0.0));
  }
};

// The next three need a function in each step. Distance gives its argument's root, Ask the
// function, Combine the next state from the state and both.

struct Matern52 : ExactSum {
  static constexpr bool kAsksPerInput = true;
  PXROM_INLINE V Distance(V x, V y, V k) { return Set(0x1.1e3779b97f4a8p+1) * (k * Abs(x - y)); }
  PXROM_INLINE V Argument(V t) { return Set(1.0) + t + Third(t * t); }
  PXROM_INLINE Exact Ask(V argument) { return Log(argument); }
  PXROM_INLINE V Combine(const KernelShape&, V sum, V t, V log) { return sum + (t - log); }
  PXROM_INLINE Exact Finish(const KernelShape&, V sum, V) { return ExpOfMinus(sum); }
};

struct BesselJ0 : ExactProduct {
  static constexpr bool kAsksPerInput = true;
  static constexpr double kEnd = 3.8317;
  PXROM_INLINE V Distance(V x, V y, V k) { return k * Abs(x - y); }
  PXROM_INLINE V Argument(V z) { return z; }
  PXROM_INLINE Exact Ask(V z) { return {z, Bits(IsAtMost(z, Set(kEnd)))}; }
  PXROM_INLINE V Combine(const KernelShape& call, V product, V z, V j0) {
    const V factor = (j0 - Set(call.shift)) / (Set(1.0) - Set(call.shift));
    return Select(IsAtMost(z, Set(kEnd)), product * factor, Set(0.0));
  }
};

constexpr double kSincEnd = 4.71238898038469;
constexpr double kSincTiny = 1e-06;

struct Sinc : ExactProduct {
  static constexpr bool kAsksPerInput = true;
  PXROM_INLINE V Distance(V x, V y, V k) { return k * Abs(x - y); }
  PXROM_INLINE V Argument(V z) { return z; }
  // A NaN counts as tiny, and so it is here.
  PXROM_INLINE Exact Ask(V z) {
    return {z, Bits(IsLess(Set(kSincTiny), Abs(z))) & Bits(IsAtMost(z, Set(kSincEnd)))};
  }
  PXROM_INLINE V Combine(const KernelShape& call, V product, V z, V sine) {
    const V factor = (sine / z - Set(call.shift)) / (Set(1.0) - Set(call.shift));
    const V inside = Select(IsLess(Set(kSincTiny), Abs(z)), product * factor, product);
    return Select(IsLess(Set(kSincEnd), z), Set(0.0), inside);
  }
};

struct Dot : ExactSum {
  PXROM_INLINE V Step(V sum, V x, V y, V) { return sum + x * y; }
};

struct DotLinear : Dot {
  PXROM_INLINE Exact Finish(const KernelShape&, V sum, V) { return {Set(1.0) + sum, 0}; }
};

struct DotQuadratic : Dot {
  PXROM_INLINE Exact Finish(const KernelShape&, V sum, V) {
    return {(Set(1.0) + sum) * (Set(1.0) + sum), 0};
  }
};

struct DotSigmoid : Dot {
  PXROM_INLINE Exact Finish(const KernelShape&, V sum, V) { return {sum, kAllLanes}; }
};

struct SquaredDistance : ExactSum {
  PXROM_INLINE V Step(V sum, V x, V y, V) {
    const V a = x - y;
    return sum + a * a;
  }
};

struct Epanechnikov : SquaredDistance {
  PXROM_INLINE Exact Finish(const KernelShape&, V sum, V) {
    const V inside = Set(0.75) * (Set(1.0) - sum * sum);
    return {Select(IsAtMost(Set(1.0), sum), Set(0.0), inside), 0};
  }
};

struct RadialGaussian : SquaredDistance {
  PXROM_INLINE Exact Finish(const KernelShape&, V r2, V h) { return ExpOfMinus(r2 / (h * h)); }
};

struct RadialCompact : SquaredDistance {
  PXROM_INLINE Exact Finish(const KernelShape&, V r2, V h) {
    const V t = Sqrt(r2) / (Set(2.0) * h);
    const Exact power = Power4(Set(1.0) - t);
    const M inside = IsAtMost(t, Set(1.0));
    return {Select(inside, power.value * (Set(4.0) * t + Set(1.0)), Set(0.0)),
            power.open & Bits(inside)};
  }
};

struct RadialCubic : SquaredDistance {
  PXROM_INLINE Exact Finish(const KernelShape&, V r2, V h) {
    const V t = Sqrt(r2) / (Set(2.0) * h);
    const V inside = Set(1.0) - Set(3.0) * t * t + Set(2.0) * t * t * t;
    return {Select(IsAtMost(Abs(t), Set(1.0)), inside, Set(0.0)), 0};
  }
};

struct RadialSinc : SquaredDistance {
  PXROM_INLINE Exact Finish(const KernelShape&, V r2, V) { return {r2, kAllLanes}; }
};

struct RadialRational : SquaredDistance {
  PXROM_INLINE Exact Finish(const KernelShape&, V r2, V h) {
    return {Set(1.0) / (r2 / (h * h) + Set(1.0)), 0};
  }
};

struct RadialTanh : SquaredDistance {
  PXROM_INLINE Exact Finish(const KernelShape&, V r2, V) { return {r2, kAllLanes}; }
};

// ------------------------------------------------------------------------------------------- fast

// Points and centres come multiplied by the factor that the kernel asks for in front of each input,
// and widths as the factor in front of the distance (fast_kernels.cpp).

struct FastGaussian {
  using State = V;
  PXROM_INLINE State Start() { return Set(0.0); }
  PXROM_INLINE V Step(V q, V x, V y) {
    const V a = x - y;
    return Fma(a, a, q);
  }
  PXROM_INLINE V Finish(const KernelShape&, V q, V) { return Exp2OfMinus(q); }
};

struct FastExponential {
  using State = V;
  PXROM_INLINE State Start() { return Set(0.0); }
  PXROM_INLINE V Step(V q, V x, V y) { return q + Abs(x - y); }
  PXROM_INLINE V Finish(const KernelShape&, V q, V) { return Exp2OfMinus(q); }
};

struct FastMatern52 {
  struct State {
    V sum;
    V product;
  };
  PXROM_INLINE State Start() { return {Set(0.0), Set(1.0)}; }
  // The product grows no faster than exp of the sum, and what it could not hold has vanished.
  PXROM_INLINE State Step(State s, V x, V y) {
    const V t = Abs(x - y);
    const V factor = Fma(t, Fma(t, Set(1.0 / 3.0), Set(1.0)), Set(1.0));
    return {s.sum + t, s.product * factor};
  }
  PXROM_INLINE V Finish(const KernelShape&, State s, V) {
    constexpr double kBase2 = 0x1.71547652b82fep+0;
    const V kernel = Exp2OfMinus(s.sum * Set(kBase2)) * s.product;
    return Select(IsLess(s.sum, Set(690.0)), kernel, Set(0.0));
  }
};

struct FastBesselJ0 {
  using State = V;
  PXROM_INLINE State Start() { return Set(1.0); }
  PXROM_INLINE V Step(V product, V x, V y) {
    // J0 - c over 1 - c, with c = J0(3.8317).
    constexpr double kShift = -0.4027593956953751;
    const V a = x - y;
    const V w = a * a;
    const V factor = (BesselJ0OfSquare(w) - Set(kShift)) * Set(1.0 / (1.0 - kShift));
    return Select(IsAtMost(w, Set(BesselJ0::kEnd * BesselJ0::kEnd)), product * factor, Set(0.0));
  }
  PXROM_INLINE V Finish(const KernelShape&, V product, V) { return product; }
};

// sin(z) / z - c over 1 - c, with c = -1 / kSincEnd.
PXROM_INLINE V ShiftedSincOfSquare(V w) {
  constexpr double kShift = -1.0 / kSincEnd;
  const V inside = (SineRatio(w) - Set(kShift)) * Set(1.0 / (1.0 - kShift));
  return Select(IsAtMost(w, Set(kSincEnd * kSincEnd)), inside, Set(0.0));
}

struct FastSinc {
  using State = V;
  PXROM_INLINE State Start() { return Set(1.0); }
  PXROM_INLINE V Step(V product, V x, V y) {
    const V a = x - y;
    return product * ShiftedSincOfSquare(a * a);
  }
  PXROM_INLINE V Finish(const KernelShape&, V product, V) { return product; }
};

struct FastSquaredDistance : FastGaussian {};

struct FastDotSigmoid {
  using State = V;
  PXROM_INLINE State Start() { return Set(0.0); }
  // As exact: nothing bounds what cancels here.
  PXROM_INLINE V Step(V sum, V x, V y) { return sum + x * y; }
  PXROM_INLINE V Finish(const KernelShape& call, V sum, V) {
    return HyperbolicTangent(Set(call.perInput) * sum - Set(call.shift));
  }
};

struct FastRadialGaussian : FastSquaredDistance {
  PXROM_INLINE V Finish(const KernelShape&, V r2, V g) { return Exp2OfMinus(r2 * g); }
};

struct FastRadialCompact : FastSquaredDistance {
  PXROM_INLINE V Finish(const KernelShape&, V r2, V g) {
    const V t = Smaller(Sqrt(r2) * g, Set(1.0));
    const V u = Set(1.0) - t;
    const V square = u * u;
    return square * square * Fma(Set(4.0), t, Set(1.0));
  }
};

struct FastRadialSinc : FastSquaredDistance {
  PXROM_INLINE V Finish(const KernelShape&, V r2, V g) { return ShiftedSincOfSquare(r2 * g); }
};

struct FastRadialTanh : FastSquaredDistance {
  PXROM_INLINE V Finish(const KernelShape&, V r2, V g) { return HyperbolicTangent(Sqrt(r2) * g); }
};

}  // namespace
}  // namespace Tarvane::Plexura::PXROM::lanes
