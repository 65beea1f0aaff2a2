#include <cmath>

#include "numerics/distributions.h"
#include "numerics/lentz.h"

int GammaLn(const double& x, double& out) {
  constexpr double kCoefficients[] = {76.18009172947146,    -86.50532032941678,
                                      24.01409824083091,    -1.231739572450155,
                                      0.001208650973866179, -5.395239384953e-06};
  double series = 1.000000000190015;
  double k = 1.0;
  for (const double coefficient : kCoefficients) {
    series = series + coefficient / (x + k);
    k = k + 1.0;
  }
  const double shifted = x + 5.5;
  out = std::log(series * 2.5066282746310007 / x) - (shifted - std::log(shifted) * (x + 0.5));
  return 0;
}

int IncompleteGammaP(const double& a, const double& x, double& out) {
  if (x < 0.0 || !(a > 0.0)) return 1;
  double value = 0.0;
  if (x >= a + 1.0) {
    if (IncompleteGammaContinuedFraction(a, x, value) != 0) return 1;
    out = 1.0 - value;
    return 0;
  }
  if (IncompleteGammaSeries(a, x, value) != 0) return 1;
  out = value;
  return 0;
}

int IncompleteGammaSeries(const double& a, const double& x, double& out) {
  if (!(x > 0.0)) {
    out = 0.0;
    return 1;  // although 0.0 is right: see distributions.h
  }
  double lnGammaA = 0.0;
  GammaLn(a, lnGammaA);
  double shifted = a;
  double term = 1.0 / a;
  double sum = term;
  for (int round = 1; round <= 100; ++round) {
    shifted = shifted + 1.0;
    term = term * x / shifted;
    sum = sum + term;
    if (std::fabs(term) < std::fabs(sum) * 3e-07) {
      out = sum * std::exp(std::log(x) * a - x - lnGammaA);
      return 0;
    }
  }
  return 1;
}

int IncompleteGammaContinuedFraction(const double& a, const double& x, double& out) {
  double lnGammaA = 0.0;
  GammaLn(a, lnGammaA);
  double b = x + 1.0 - a;
  double c = 1.0 / lentz::kTiny;
  double d = 1.0 / b;
  double h = d;
  for (int i = 1; i <= lentz::kMostRounds; ++i) {
    const double an = -i * (i - a);
    b = b + 2.0;
    d = 1.0 / lentz::AwayFromZero(an * d + b);
    c = lentz::AwayFromZero(b + an / c);
    const double factor = d * c;
    h = h * factor;
    if (lentz::HasConverged(factor)) {
      out = std::exp(std::log(x) * a - x - lnGammaA) * h;
      return 0;
    }
  }
  return 1;
}
