#pragma once

// The table of kernels: one row for each, with the numbers of the public enums that mean it. All
// loops, fast forms and gradients are made from it.

#include <cstddef>
#include <type_traits>

#include "kernels/bessel_j0.h"
#include "kernels/constant.h"
#include "kernels/cubic.h"
#include "kernels/epanechnikov.h"
#include "kernels/exponential.h"
#include "kernels/gaussian.h"
#include "kernels/inverse.h"
#include "kernels/linear.h"
#include "kernels/matern32.h"
#include "kernels/matern52.h"
#include "kernels/multiquadric.h"
#include "kernels/parabolic.h"
#include "kernels/polyharmonic.h"
#include "kernels/polynomial.h"
#include "kernels/rational.h"
#include "kernels/sinc.h"
#include "kernels/spherical.h"
#include "kernels/spline.h"
#include "kernels/tanh.h"
#include "kernels/wendland.h"
#include "pxrom/gaussian_process.h"
#include "pxrom/kriging.h"
#include "pxrom/linear_basis.h"
#include "pxrom/moving_least_squares.h"
#include "pxrom/support_vector.h"

namespace Tarvane::Plexura::PXROM::kernels {

/// A kernel, or a weight, and the numbers that mean it.
template <class K, auto... kNumbers>
struct Row {
  using Type = K;
  /// Whether one of its numbers is `number`, and of the same enum.
  template <class Number>
  static constexpr bool Has(Number number) {
    return (IsSame(kNumbers, number) || ...);
  }
  /// The largest of its numbers in an enum; -1 when it has no number there.
  template <class Number>
  static constexpr int Largest() {
    int largest = -1;
    ((largest =
          IsOf<Number>(kNumbers) && kNumbers > largest ? static_cast<int>(kNumbers) : largest),
     ...);
    return largest;
  }

 private:
  template <class Number, class Other>
  static constexpr bool IsOf(Other) {
    return std::is_same_v<Number, Other>;
  }
  template <class A, class B>
  static constexpr bool IsSame(A a, B b) {
    if constexpr (std::is_same_v<A, B>) return a == b;
    return false;
  }
};

template <class... Rows>
struct Table {
  static constexpr std::size_t kCount = sizeof...(Rows);
  /// The place of the row that has `number`; kCount without such a row.
  template <class Number>
  static constexpr std::size_t Find(Number number) {
    std::size_t at = 0;
    (void)((Rows::Has(number) || (++at, false)) || ...);
    return at;
  }
  /// The largest number of an enum that has a row.
  template <class Number>
  static constexpr int Largest() {
    int largest = -1;
    ((largest =
          Rows::template Largest<Number>() > largest ? Rows::template Largest<Number>() : largest),
     ...);
    return largest;
  }
};

using Kernels = Table<                                      //
    Row<Exponential, CorrExponential, SVRKernExponential>,  //
    Row<Gaussian, CorrGaussian, SVRKernGaussian>,           //
    Row<Linear, CorrLinear>,                                //
    Row<Spherical, CorrSpherical>,                          //
    Row<Cubic, CorrCubic>,                                  //
    Row<Multiquadric, CorrMultiquadric>,                    //
    Row<Spline, CorrSpline>,                                //
    Row<Matern52, CorrMatern52>,                            //
    Row<Parabolic, CorrParabolic>,                          //
    Row<ShiftedBesselJ0, CorrBesselJ0>,                     //
    Row<Sinc, CorrSinc>,                                    //
    Row<DotLinear, SVRKernLinear>,                          //
    Row<DotQuadratic, SVRKernQuadratic>,                    //
    Row<DotSigmoid, SVRKernSigmoid>,                        //
    Row<Epanechnikov, SVRKernEpanechnikov>,                 //
    Row<RadialGaussian, LBFGaussian>,                       //
    Row<RadialCompact, LBFCompact>,                         //
    Row<RadialCubic, LBFCubic>,                             //
    Row<RadialSinc, LBFSinc>,                               //
    Row<RadialRational, LBFRational>,                       //
    Row<RadialTanh, LBFTanh>,                               //
    Row<ExponentialOfDistance, CovMatern12>,                //
    Row<Matern32OfDistance, CovMatern32>,                   //
    Row<Matern52OfDistance, CovMatern52>,                   //
    Row<GaussianOfDistance, CovGaussian>,                   //
    Row<RationalQuadratic, CovRationalQuadratic>,           //
    Row<PowerExponential, CovGeneralisedExponential>,       //
    Row<ConstantOfDistance, CovConstant>,                   //
    Row<ThinPlateSpline, CovThinPlateSpline>,               //
    Row<LinearSpline, CovLinear>,                           //
    Row<CubicSpline, CovCubic>,                             //
    Row<QuinticSpline, CovQuintic>,                         //
    Row<MultiquadricOfDistance, CovMultiquadric>,           //
    Row<InverseMultiquadric, CovInverseMultiquadric>,       //
    Row<InverseQuadratic, CovInverseQuadratic>>;

/// The weights of moving least squares. They are not kernels of a sum: their scale is a distance
/// that depends on the point.
using Weights = Table<Row<ConstantWeight, WeightConstant>,  //
                      Row<GaussianWeight, WeightGaussian>,  //
                      Row<CompactWeight, WeightCompact>,    //
                      Row<RationalWeight, WeightRational>,  //
                      Row<InverseWeight, WeightInverse>>;

/// Calls use(weight) with the weight that `function` means; false for an unknown function.
template <class... Rows, class Use>
bool WithWeightOf(Table<Rows...>, E_WeightFunction function, const WeightSetting& setting,
                  const Use& use) {
  return ((Rows::Has(function) && (use(typename Rows::Type(setting)), true)) || ...);
}

template <class Use>
bool WithWeight(E_WeightFunction function, const WeightSetting& setting, const Use& use) {
  return WithWeightOf(Weights(), function, setting, use);
}

}  // namespace Tarvane::Plexura::PXROM::kernels
