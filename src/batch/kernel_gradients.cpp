// The derivatives of the kernels with respect to the scaled point.
//
// At a kink, which is where a coordinate equals the centre's under an absolute value, the
// derivative is 0: the mean of both sides. At a cut-off it is that of the branch that the value
// takes.

#include <math.h>  // j1 is POSIX's, and stands in the global namespace

#include <cmath>

#include "batch/kernel_surface.h"
#include "numerics/bessel.h"

namespace Tarvane::Plexura::PXROM::batch {

namespace {

constexpr double kRoot5 = 0x1.1e3779b97f4a8p+1;
constexpr double kBesselEnd = 3.8317;
constexpr double kSincEnd = 4.71238898038469;
constexpr double kSincTiny = 1e-06;

double SignOf(double value) { return value > 0.0 ? 1.0 : value < 0.0 ? -1.0 : 0.0; }

double BesselJ1(double x) {
#if defined(_WIN32)
  return ::_j1(x);
#else
  return ::j1(x);
#endif
}

/// The derivative of sin(z) / z, over z. Near 0 by its series, where the formula cancels.
double SincSlopeOverArgument(double z) {
  const double w = z * z;
  if (w > 0.0625) return (std::cos(z) - std::sin(z) / z) / w;
  double series = 1.0 / 518918400.0;
  for (const double term : {3991680.0, 45360.0, 840.0, 30.0, 3.0}) series = 1.0 / term - series * w;
  return -series;
}

/// One factor of a product, and its derivative by the distance a.
struct Factor {
  double value;
  double slope;
};

Factor FactorOf(const KernelModel& model, double a, double k) {
  const double z = k * a;
  switch (model.kernel) {
    case Kernel::Linear:
      return 1.0 - z > 0.0 ? Factor{1.0 - z, -k} : Factor{0.0, 0.0};
    case Kernel::Spherical:
      if (z > 1.0) return {0.0, 0.0};
      return {1.0 - 1.5 * z + 0.5 * z * z * z, 1.5 * k * (z * z - 1.0)};
    case Kernel::Cubic:
      if (z > 1.0) return {0.0, 0.0};
      return {1.0 - 3.0 * z * z + 2.0 * z * z * z, 6.0 * k * z * (z - 1.0)};
    case Kernel::Multiquadric: {
      const double root = std::sqrt(k * k + a);
      return {root, 0.5 / root};
    }
    case Kernel::Spline: {
      if (z <= 0.2) return {1.0 - 15.0 * z * z + 30.0 * z * z * z, k * z * (90.0 * z - 30.0)};
      const double rest = 1.0 - z;
      if (z < 1.0) return {1.25 * rest * rest * rest, -3.75 * k * rest * rest};
      return {0.0, 0.0};
    }
    case Kernel::Parabolic:
      return z < 1.0 ? Factor{1.0 - z * z, -2.0 * k * z} : Factor{0.0, 0.0};
    case Kernel::BesselJ0:
      if (!(z <= kBesselEnd)) return {0.0, 0.0};
      return {(BesselJ0(z) - model.shift) / (1.0 - model.shift),
              -k * BesselJ1(z) / (1.0 - model.shift)};
    default: {
      if (z > kSincEnd) return {0.0, 0.0};
      if (!(std::fabs(z) > kSincTiny)) return {1.0, 0.0};
      return {(std::sin(z) / z - model.shift) / (1.0 - model.shift),
              k * z * SincSlopeOverArgument(z) / (1.0 - model.shift)};
    }
  }
}

/// Kernels that are exp(-sum of steps): minus the derivative of a step by the coordinate.
double DescentOf(Kernel kernel, double difference, double k) {
  const double a = std::fabs(difference);
  switch (kernel) {
    case Kernel::Exponential:
      return k * SignOf(difference);
    case Kernel::Gaussian:
      return 2.0 * k * difference;
    default: {
      const double t = kRoot5 * (k * a);
      return kRoot5 * k * SignOf(difference) * (t + t * t) / (3.0 + 3.0 * t + t * t);
    }
  }
}

double StepOf(Kernel kernel, double difference, double k) {
  const double a = std::fabs(difference);
  if (kernel == Kernel::Exponential) return k * a;
  if (kernel == Kernel::Gaussian) return k * a * a;
  const double t = kRoot5 * (k * a);
  return t - std::log(1.0 + t + t * t / 3.0);
}

/// The derivative of a kernel of the scalar product by that product.
double DotSlope(const KernelModel& model, double dot) {
  if (model.kernel == Kernel::DotLinear) return 1.0;
  if (model.kernel == Kernel::DotQuadratic) return 2.0 * (1.0 + dot);
  const double hyperbolic = std::cosh(model.perInput * dot - model.shift);
  return model.perInput / (hyperbolic * hyperbolic);
}

/// The derivative of a radial function by half the squared distance: so it has no kink at its
/// centre, but where the function itself has one.
double RadialSlope(const KernelModel& model, double r2, double h) {
  const double r = std::sqrt(r2);
  const double t = r / (2.0 * h);
  switch (model.kernel) {
    case Kernel::Epanechnikov:
      return r2 >= 1.0 ? 0.0 : -3.0 * r2;
    case Kernel::RadialGaussian:
      return -2.0 / (h * h) * std::exp(-(r2 / (h * h)));
    case Kernel::RadialCompact:
      return t <= 1.0 ? -5.0 / (h * h) * std::pow(1.0 - t, 3.0) : 0.0;
    case Kernel::RadialCubic:
      return std::fabs(t) <= 1.0 ? 1.5 / (h * h) * (t - 1.0) : 0.0;
    case Kernel::RadialSinc: {
      const double z = 2.0 * r / h;
      if (z > kSincEnd || !(std::fabs(z) > kSincTiny)) return 0.0;
      return SincSlopeOverArgument(z) * (4.0 / (h * h)) / (1.0 - model.shift);
    }
    case Kernel::RadialRational: {
      const double value = 1.0 / (r2 / (h * h) + 1.0);
      return -2.0 / (h * h) * value * value;
    }
    default: {
      if (r == 0.0) return 0.0;
      const double hyperbolic = std::cosh(r * model.perInput / h);
      return model.perInput / h / (hyperbolic * hyperbolic) / r;
    }
  }
}

enum class Shape { ExpOfSum, Product, Dot, Radial };

Shape ShapeOf(Kernel kernel) {
  switch (kernel) {
    case Kernel::Exponential:
    case Kernel::Gaussian:
    case Kernel::Matern52:
      return Shape::ExpOfSum;
    case Kernel::DotLinear:
    case Kernel::DotQuadratic:
    case Kernel::DotSigmoid:
      return Shape::Dot;
    default:
      return kernel < Kernel::DotLinear ? Shape::Product : Shape::Radial;
  }
}

void AddExpOfSum(const KernelModel& model, const double* u, const double* centre, double weight,
                 double* gradient) {
  double sum = 0.0;
  for (std::size_t i = 0; i < model.inputs; ++i) {
    sum += StepOf(model.kernel, u[i] - centre[i], model.kernels[i]);
  }
  const double factor = -weight * std::exp(-sum);
  for (std::size_t i = 0; i < model.inputs; ++i) {
    gradient[i] += factor * DescentOf(model.kernel, u[i] - centre[i], model.kernels[i]);
  }
}

void AddProduct(const KernelModel& model, const double* u, const double* centre, double weight,
                double* work, double* gradient) {
  // What stands before and behind each factor, since none may be divided by.
  const std::size_t d = model.inputs;
  double* const before = work;
  double* const values = work + d;
  double* const slopes = work + 2 * d;
  double product = weight;
  for (std::size_t i = 0; i < d; ++i) {
    const double difference = u[i] - centre[i];
    const Factor factor = FactorOf(model, std::fabs(difference), model.kernels[i]);
    before[i] = product;
    values[i] = factor.value;
    slopes[i] = difference == 0.0 ? 0.0 : factor.slope * SignOf(difference);
    product *= factor.value;
  }
  double behind = 1.0;
  for (std::size_t i = d; i-- > 0;) {
    gradient[i] += before[i] * slopes[i] * behind;
    behind *= values[i];
  }
}

void AddDot(const KernelModel& model, const double* u, const double* centre, double weight,
            double* gradient) {
  double dot = 0.0;
  for (std::size_t i = 0; i < model.inputs; ++i) dot += u[i] * centre[i];
  const double factor = weight * DotSlope(model, dot);
  for (std::size_t i = 0; i < model.inputs; ++i) gradient[i] += factor * centre[i];
}

void AddRadial(const KernelModel& model, const double* u, const double* centre, double width,
               double weight, double* gradient) {
  double r2 = 0.0;
  for (std::size_t i = 0; i < model.inputs; ++i) {
    r2 += (u[i] - centre[i]) * (u[i] - centre[i]);
  }
  const double factor = weight * RadialSlope(model, r2, width);
  for (std::size_t i = 0; i < model.inputs; ++i) gradient[i] += factor * (u[i] - centre[i]);
}

}  // namespace

void AddKernelGradients(const KernelModel& model, const double* u, double* work, double* gradient) {
  const Shape shape = ShapeOf(model.kernel);
  for (std::size_t j = 0; j < model.centreCount; ++j) {
    const double* const centre = model.centres.data() + j * model.inputs;
    const double weight = model.weights[j];
    switch (shape) {
      case Shape::ExpOfSum:
        AddExpOfSum(model, u, centre, weight, gradient);
        break;
      case Shape::Product:
        AddProduct(model, u, centre, weight, work, gradient);
        break;
      case Shape::Dot:
        AddDot(model, u, centre, weight, gradient);
        break;
      case Shape::Radial:
        AddRadial(model, u, centre, model.widths.empty() ? 1.0 : model.widths[j], weight, gradient);
        break;
    }
  }
}

}  // namespace Tarvane::Plexura::PXROM::batch
