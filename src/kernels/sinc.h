#pragma once

#include <initializer_list>

#include "kernels/shapes.h"

namespace Tarvane::Plexura::PXROM::kernels {

// The cardinal sine sin(z) / z, shifted by c = sin(e) / e and divided by 1 - c, so that it is 0 at
// its end e = 3 pi / 2. Chiles and Delfiner, Geostatistics (2012), section 2.5 (hole effect
// models).

constexpr double kSincEnd = 4.71238898038469;
constexpr double kSincTiny = 1e-06;  // the function is 1 up to here

// A NaN is inside, and counts as tiny.
template <class N>
PXROM_INLINE auto IsInsideSinc(N z) {
  return !(kSincEnd < z);
}
template <class N>
PXROM_INLINE auto IsBeyondTiny(N z) {
  return kSincTiny < Abs(z);
}

template <class N, class Sine>
PXROM_INLINE auto ShiftedSinc(const Constants& constants, N z, const Sine& sine) {
  return If(
      IsBeyondTiny(z), [&] { return (sine() / z - constants.shift) / (1.0 - constants.shift); },
      1.0);
}

/// The same of w = z^2, for the fast mode.
template <class N>
PXROM_INLINE N ShiftedSincOfSquare(N w) {
  constexpr double kShift = -1.0 / kSincEnd;
  const N inside = (SineRatio(w) - kShift) * (1.0 / (1.0 - kShift));
  return Select(w <= kSincEnd * kSincEnd, inside, N(0.0));
}

inline Constants ConstantsOfSinc() { return {std::sin(kSincEnd) / kSincEnd, 0.0}; }

/// The derivative of sin(z) / z, divided by z. Near 0, where the formula cancels, by its series.
inline double SincSlopeOverArgument(double z) {
  const double w = z * z;
  if (w > 0.0625) return (std::cos(z) - std::sin(z) / z) / w;
  double series = 1.0 / 518918400.0;
  for (const double term : {3991680.0, 45360.0, 840.0, 30.0, 3.0}) series = 1.0 / term - series * w;
  return -series;
}

/// Its product over the inputs, z = k |x - y|.
struct Sinc : ProductOfAsked {
  static constexpr const char* kName = "sinc";
  static constexpr Operations kOperations = {8.0 + kElementary, 0.0};
  static Constants ConstantsFor(double /*inputs*/) { return ConstantsOfSinc(); }
  template <class N>
  PXROM_INLINE static auto IsInside(N z) {
    return IsInsideSinc(z);
  }
  template <class N>
  PXROM_INLINE static auto Asks(N z) {
    return IsBeyondTiny(z) && IsInsideSinc(z);
  }
  template <class N>
  PXROM_INLINE static auto Inner(N z) {
    return Sin(z);
  }
  template <class N, class Sine>
  PXROM_INLINE static N Factor(const Constants& constants, N z, const Sine& sine) {
    return ShiftedSinc(constants, z, sine);
  }
  static double Slope(const Constants& constants, double z, double scale) {
    if (!IsBeyondTiny(z)) return 0.0;
    return scale * z * SincSlopeOverArgument(z) / (1.0 - constants.shift);
  }

  struct Fast : FastProduct {
    static double InputFactor(double scale) { return scale; }
    template <class N>
    PXROM_INLINE static N Step(N product, N x, N y) {
      const N a = x - y;
      return product * ShiftedSincOfSquare(a * a);
    }
    static double Deviation(double d, double norm1, double /*norm2*/) {
      return 2.0 * norm1 + 50.0 * d;
    }
  };
};

/// Of the distance, z = 2 r / h.
struct RadialSinc : Radial {
  static constexpr const char* kName = "radial sinc";
  static constexpr Operations kOperations = {3.0, 5.0 + kElementary};
  static Constants ConstantsFor(double /*inputs*/) { return ConstantsOfSinc(); }
  template <class N>
  PXROM_INLINE static auto Value(const Constants& constants, N r2, N h) {
    const N z = 2.0 * Sqrt(r2) / h;
    return If(
        IsInsideSinc(z), [&] { return ShiftedSinc(constants, z, [&] { return Sin(z); }); }, 0.0);
  }
  static double Slope(const Constants& constants, double r2, double h) {
    const double z = 2.0 * std::sqrt(r2) / h;
    if (!IsInsideSinc(z) || !IsBeyondTiny(z)) return 0.0;
    return SincSlopeOverArgument(z) * (4.0 / (h * h)) / (1.0 - constants.shift);
  }

  struct Fast : FastSquaredDistance {
    static double CentreFactor(const Constants&, double h) { return 4.0 / (h * h); }
    template <class N>
    PXROM_INLINE static N Value(const Constants&, N r2, N factor) {
      return ShiftedSincOfSquare(r2 * factor);
    }
    static double Deviation(double d, double /*norm1*/, double /*norm2*/) { return 2.0 * d + 40.0; }
  };
};

}  // namespace Tarvane::Plexura::PXROM::kernels
