#include <cmath>

#include "numerics/console.h"
#include "numerics/distributions.h"

namespace {

constexpr double kSqrtTwoPi = 2.5066282746310007;

/// The asymptotic expansion of the lower tail (Abramowitz and Stegun 26.2.12), for z <= -7 or NaN.
int LowerTail(double z, double& out) {
  double term = 1.0;
  double sum = 1.0;
  int k = 1;
  while (std::fabs(term) >= 1e-10 && k < 501) {
    term = -(k * term) / (z * z);
    sum = sum + term;
    k = k + 2;
  }
  if (k > 500) {
    console::Print(" *** ERROR in StdGaussCdf *** \n");
    console::Print(" NO convergence of asymptotic expansion algorithm \n");
    return 1;
  }
  out = std::exp(z * -0.5 * z) * sum / (z * -kSqrtTwoPi);
  return 0;
}

/// Where the Newton iteration for a level h up to 0.5 starts: at `x` of the first row with h <
/// below.
struct Start {
  double below;
  double x;
};

constexpr Start kStarts[] = {{1e-78, -18.75}, {1e-60, -15.0}, {1e-30, -11.0}, {1e-20, -8.5},
                             {1e-06, -5.0},   {0.001, -4.0},  {0.2, -2.0},    {0.5, -0.5}};

double StartOf(double h) {
  for (const Start& start : kStarts) {
    if (h < start.below) return start.x;
  }
  return 0.0;
}

}  // namespace

int StdGaussPdf(const double& x, double& out) {
  out = std::exp(x * -0.5 * x) * 0.39894228;
  return 0;
}

int StdGaussCdf(const double& x, double& out) {
  const double z = -std::fabs(x);
  double p = 0.0;
  if (!(z > -7.0)) {
    const int status = LowerTail(z, p);
    if (status != 0) return status;
  } else if (z >= -0.001) {
    p = z / kSqrtTwoPi + 0.5;
  } else {
    double g = 0.0;
    const int status = IncompleteGammaP(0.5, z * 0.5 * z, g);
    if (status != 0) {
      console::Print(" *** ERROR in StdGaussCdf *** \n");
      return status;
    }
    p = 0.5 - g * 0.5;
  }
  out = x > 0.0 ? 1.0 - p : p;
  return 0;
}

int StdGaussInvCdf(const double& p, double& out) {
  if (p <= 0.0) {
    out = -9e99;
    return 2;
  }
  if (p >= 1.0) {
    out = +9e99;
    return 3;
  }
  if (p == 0.5) {
    out = 0.0;
    return 0;
  }

  const bool upper = p > 0.5;
  const double h = upper ? 1.0 - p : p;
  double x = StartOf(h);
  double pdf = 0.0;
  double cdf = 0.0;
  double step = 1e9;
  for (int round = 0; std::fabs(step) > 1e-06; ++round) {
    if (round == 200) {
      console::Print(" *** ERROR in StdGaussInvCdf *** \n");
      console::Print(" NO convergence of Newton-Raphson algorithm \n");
      console::PrintFixed(" prob = ", p, 11, 9, " (given) \n");
      console::PrintFixed(" pro2 = ", h, 11, 9, " (help ) \n");
      console::PrintFixed(" cdf  = ", cdf, 11, 9, " \n");
      console::PrintFixed(" pdf  = ", pdf, 11, 9, " \n");
      console::PrintFixed(" step = ", step, 11, 9, " \n");
      console::PrintFixed(" xstd = ", x, 11, 9, " \n");
      return 1;
    }
    const int status = StdGaussPdf(x, pdf) + StdGaussCdf(x, cdf);
    if (status != 0) {
      console::Print(" *** ERROR in StdGaussInvCdf *** \n");
      return status;
    }
    step = (h - cdf) / pdf;
    x = x + step;
    if (x > 0.0) x = 0.0;
  }
  out = upper ? -x : x;
  return 0;
}
