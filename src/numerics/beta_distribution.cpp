#include <algorithm>
#include <cmath>

#include "numerics/console.h"
#include "numerics/distributions.h"
#include "numerics/lentz.h"

namespace {

/// Two shapes and what depends only on them, so an iteration over x computes it once.
struct Shapes {
  Shapes(double shapeA, double shapeB) : a(shapeA), b(shapeB) {
    status = GammaLn(a, lnGammaA) + GammaLn(b, lnGammaB) + GammaLn(a + b, lnGammaSum);
  }
  double BetaFunction() const { return std::exp(lnGammaB + lnGammaA - lnGammaSum); }

  double a;
  double b;
  double lnGammaA = 0.0;
  double lnGammaB = 0.0;
  double lnGammaSum = 0.0;
  int status = 0;
};

/// The regularised incomplete Beta function by its continued fraction: Abramowitz and
/// Stegun 26.5.8; Press et al., Numerical Recipes in C (1992), section 6.4.
int Ratio(const Shapes& shapes, double x, double& out) {
  const auto& [a, b, lnGammaA, lnGammaB, lnGammaSum, status] = shapes;
  if (status != 0) return status;
  const double f = x == 0.0 || x == 1.0
                       ? 0.0
                       : std::exp(std::log(x) * a + ((lnGammaSum - lnGammaA) - lnGammaB) +
                                  std::log(1.0 - x) * b);
  double fraction = 0.0;
  // The fraction converges fast below the mean. Above it, I_x(a, b) = 1 - I_(1-x)(b, a) is used.
  if ((a + 1.0) / (a + b + 2.0) <= x) {
    if (BetaContinuedFraction(b, a, 1.0 - x, fraction) != 0) return 1;
    out = 1.0 - fraction * f / b;
  } else {
    if (BetaContinuedFraction(a, b, x, fraction) != 0) return 1;
    out = fraction * f / a;
  }
  return 0;
}

int Pdf(const Shapes& shapes, double lo, double hi, double x, double& out) {
  if (x < lo || x > hi) {
    out = 0.0;
    return 0;
  }
  if (shapes.status != 0) {
    console::Print(" *** ERROR in BetaDist::EvalPdf *** \n");
    return shapes.status;
  }
  const double u = (x - lo) / (hi - lo);
  out = std::pow(1.0 - u, shapes.b - 1.0) * std::pow(u, shapes.a - 1.0) /
        ((hi - lo) * shapes.BetaFunction());
  return 0;
}

int Cdf(const Shapes& shapes, double lo, double hi, double x, double& out) {
  if (!(x > lo)) {
    out = 0.0;
    return 0;
  }
  if (x >= hi) {
    out = 1.0;
    return 0;
  }
  const int status = Ratio(shapes, (x - lo) / (hi - lo), out);
  if (status != 0) console::Print(" *** ERROR in BetaDist::EvalCdf *** \n");
  return status;
}

}  // namespace

int BetaFunction(const double& a, const double& b, double& out) {
  const Shapes shapes(a, b);
  if (shapes.status == 0) out = shapes.BetaFunction();
  return shapes.status;
}

int IncompleteBetaRatio(const double& a, const double& b, const double& x, double& out) {
  return Ratio(Shapes(a, b), x, out);
}

int BetaContinuedFraction(const double& a, const double& b, const double& x, double& out) {
  const double sum = a + b;
  const double above = a + 1.0;
  const double below = a - 1.0;
  double c = 1.0;
  double d = 1.0 / lentz::AwayFromZero(1.0 - sum * x / above);
  double h = d;
  for (int m = 1; m <= lentz::kMostRounds; ++m) {
    const int m2 = 2 * m;
    // The even half-step.
    const double even = m * (b - m) * x / ((below + m2) * (a + m2));
    d = 1.0 / lentz::AwayFromZero(1.0 + even * d);
    c = lentz::AwayFromZero(1.0 + even / c);
    h = h * (d * c);
    // The odd half-step.
    const double odd = -(a + m) * (sum + m) * x / ((a + m2) * (above + m2));
    d = 1.0 / lentz::AwayFromZero(1.0 + odd * d);
    c = lentz::AwayFromZero(1.0 + odd / c);
    const double factor = d * c;
    h = h * factor;
    if (lentz::HasConverged(factor)) {
      out = h;
      return 0;
    }
  }
  return 1;
}

int BetaDist::EvalPdf(const double& shapeR, const double& shapeT, const double& lo,
                      const double& hi, const double& x, double& out) {
  return Pdf(Shapes(shapeR, shapeT), lo, hi, x, out);
}

int BetaDist::EvalCdf(const double& shapeR, const double& shapeT, const double& lo,
                      const double& hi, const double& x, double& out) {
  return Cdf(Shapes(shapeR, shapeT), lo, hi, x, out);
}

int BetaDist::EvalInvCdf(const double& shapeR, const double& shapeT, const double& lo,
                         const double& hi, const double& prob, double& out) {
  if (prob <= 0.0) {
    out = lo;
    return 0;
  }
  if (prob >= 1.0) {
    out = hi;
    return 0;
  }
  const Shapes shapes(shapeR, shapeT);
  const double s = shapeR + shapeT;
  const double mean = shapeR / s;
  const double sd = std::sqrt(shapeT * shapeR / (s * s * (s + 1.0)));
  double x = mean;
  if (prob < 0.2) x = std::max(mean * 0.5, mean - sd);
  if (prob > 0.8) x = std::min((mean + 1.0) * 0.5, mean + sd);

  double step = 1e9;
  for (int round = 0; std::fabs(step) >= 1e-08; ++round) {
    if (round == 150) {
      console::Print(" \n *** ERROR in EvalInvCdf *** \n");
      console::Print(" NO convergence of Newton-Raphson algorithm \n");
      console::PrintFixed(" dProb     = ", prob, 8, 6, " (given) \n");
      console::PrintFixed(" dShapeR = ", shapeR, 8, 6, " (given) \n");
      console::PrintFixed(" dShapeT = ", shapeT, 8, 6, " (given) \n");
      console::PrintFixed(" xstd      = ", x, 8, 6, " (given) \n");
      return 1;
    }
    double pdf = 0.0;
    int status = Pdf(shapes, 0.0, 1.0, x, pdf);
    if (status != 0) {
      console::Print(" *** ERROR in BetaDist::EvalInvCdf *** \n");
      return status;
    }
    double cdf = 0.0;
    status = Cdf(shapes, 0.0, 1.0, x, cdf);
    if (status != 0) return status;
    step = (prob - cdf) / pdf;
    const double next = x + step;
    if (next > 0.0 && next < 1.0) {
      x = next;
    } else {
      // A step out of the interval goes half the way to its end. The second test uses the x that
      // the first one left.
      if (next <= 0.0) x = x * 0.5;
      if (x + step >= 1.0) x = (x + 1.0) * 0.5;
    }
  }
  out = (hi - lo) * x + lo;
  return 0;
}
