#pragma once

#include "kernels/shapes.h"
#include "kernels/weights.h"

namespace Tarvane::Plexura::PXROM::kernels {

// The squared exponential, in several conventions of its scale. Rasmussen and Williams, Gaussian
// Processes for Machine Learning (2006), equation 4.9.

/// exp(-sum of k (x - y)^2).
struct Gaussian : ExpOfSum {
  static constexpr const char* kName = "gaussian";
  static constexpr Operations kOperations = {7.0, kElementary};
  template <class N>
  PXROM_INLINE static N Term(N difference, N scale) {
    return scale * difference * difference;
  }
  static double Descent(double difference, double scale) { return 2.0 * scale * difference; }

  struct Fast : FastSquaredDistance {
    static double InputFactor(double scale) { return std::sqrt(scale * kLog2OfE); }
    template <class N>
    PXROM_INLINE static N Value(const Constants&, N sum, N) {
      return Exp2OfMinus(sum);
    }
    static double Deviation(double d, double /*norm1*/, double norm2) {
      return 3.0 * norm2 + d + 20.0;
    }
  };
};

/// exp(-r^2 / h^2).
struct RadialGaussian : Radial {
  static constexpr const char* kName = "radial gaussian";
  static constexpr Operations kOperations = {3.0, 5.0 + kElementary};
  template <class N>
  PXROM_INLINE static auto Value(const Constants&, N r2, N h) {
    return ExpOfMinus(r2 / (h * h));
  }
  static double Slope(const Constants&, double r2, double h) {
    return -2.0 / (h * h) * std::exp(-(r2 / (h * h)));
  }

  struct Fast : FastSquaredDistance {
    static double CentreFactor(const Constants&, double h) { return kLog2OfE / (h * h); }
    template <class N>
    PXROM_INLINE static N Value(const Constants&, N r2, N factor) {
      return Exp2OfMinus(r2 * factor);
    }
    static double Deviation(double d, double /*norm1*/, double /*norm2*/) { return d + 20.0; }
  };
};

/// exp(-r^2 / 2).
struct GaussianOfDistance : Distance {
  static constexpr const char* kName = "gaussian of distance";
  static constexpr Operations kOperations = {4.0, 2.0 + kElementary};
  template <class N>
  PXROM_INLINE static auto Value(const Constants&, N r2, N) {
    return ExpOfMinus(0.5 * r2);
  }
  static double Slope(const Constants&, double r2) { return -std::exp(-(0.5 * r2)); }

  struct Fast : FastSquaredDistance {
    static double InputFactor(double scale) { return std::sqrt(0.5 * kLog2OfE) * scale; }
    template <class N>
    PXROM_INLINE static N Value(const Constants&, N r2, N) {
      return Exp2OfMinus(r2);
    }
    static double Deviation(double d, double /*norm1*/, double norm2) {
      return 3.0 * norm2 + d + 20.0;
    }
  };
};

/// exp(-z^2), z = r / rho; in the old version exp(-20 z^2).
struct GaussianWeight {
  explicit GaussianWeight(const WeightSetting& setting)
      : sharpness(setting.isOld ? -20.0 : -1.0), rho(setting.rho) {}
  double At(double r) const {
    const double z = r / rho;
    return std::exp(sharpness * z * z);
  }
  WeightSlopes SlopesAt(double r) const {
    const double z = r / rho;
    const double value = At(r);
    return {value, 2.0 * sharpness * value / (rho * rho), -2.0 * sharpness * value * z * z / rho};
  }

  double sharpness;
  double rho;
};

}  // namespace Tarvane::Plexura::PXROM::kernels
