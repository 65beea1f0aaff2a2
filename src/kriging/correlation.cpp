#include "kriging/correlation.h"

#include <algorithm>
#include <cmath>

#include "lanes/row_pieces.h"
#include "numerics/bessel.h"

namespace Tarvane::Plexura::PXROM::kriging {

namespace {

// Each function is told by its start, its step for one input, and its result. The steps are written
// once; the loops below run them over one pair of points, and over several rows side by side.

struct Sum {
  static constexpr double kStart = 0.0;
  static double Result(double sum) { return std::exp(-sum); }
};

struct Product {
  static constexpr double kStart = 1.0;
  static double Result(double product) { return product; }
};

struct Exponential : Sum {
  double Step(double sum, double a, double k) const { return sum + k * a; }
};

struct Gaussian : Sum {
  double Step(double sum, double a, double k) const { return sum + k * a * a; }
};

struct Linear : Product {
  double Step(double product, double a, double k) const {
    const double factor = 1.0 - k * a;
    return product * (factor > 0.0 ? factor : 0.0);
  }
};

struct Spherical : Product {
  double Step(double product, double a, double k) const {
    const double s = std::min(k * a, 1.0);
    return product * (1.0 - 1.5 * s + 0.5 * s * s * s);
  }
};

struct Cubic : Product {
  double Step(double product, double a, double k) const {
    const double s = std::min(k * a, 1.0);
    return product * (1.0 - 3.0 * s * s + 2.0 * s * s * s);
  }
};

struct Multiquadric : Product {
  // The plain distance stands under the root, not its square. Deliberate.
  double Step(double product, double a, double k) const { return product * std::sqrt(k * k + a); }
};

// The functions with a cut-off assign 0 there. That differs from a factor of 0 only once an
// infinity or a NaN is in the product, and the loops go on behind it for the same reason.

struct Spline : Product {
  double Step(double product, double a, double k) const {
    const double z = k * a;
    if (z <= 0.2) return product * (1.0 - 15.0 * z * z + 30.0 * z * z * z);
    if (z < 1.0) return product * (1.25 * (1.0 - z) * (1.0 - z) * (1.0 - z));
    return 0.0;
  }
};

struct Matern52 : Sum {
  const double root5 = std::sqrt(5.0);
  double Step(double sum, double a, double k) const {
    const double t = root5 * (k * a);
    return sum + (t - std::log(1.0 + t + t * t / 3.0));
  }
};

struct Parabolic : Product {
  double Step(double product, double a, double k) const {
    const double z = k * a;
    return z < 1.0 ? product * (1.0 - z * z) : 0.0;
  }
};

struct ShiftedBessel : Product {
  static constexpr double kEnd = 3.8317;
  const double shift = BesselJ0(kEnd);
  double Step(double product, double a, double k) const {
    const double z = k * a;
    return z <= kEnd ? product * ((BesselJ0(z) - shift) / (1.0 - shift)) : 0.0;
  }
};

struct ShiftedSinc : Product {
  static constexpr double kEnd = 4.71238898038469;
  static constexpr double kTiny = 1e-06;
  const double shift = std::sin(kEnd) / kEnd;
  double Step(double product, double a, double k) const {
    const double z = k * a;
    if (z > kEnd) return 0.0;
    if (!(std::fabs(z) > kTiny)) return product;
    return product * ((std::sin(z) / z - shift) / (1.0 - shift));
  }
};

// One pair of points. A single kernel and a kernel per input are two loops.
template <class Function, bool kPerInput>
double PairLoop(const double* kernels, const double* x, const double* y, std::size_t d) {
  const Function function;
  double state = Function::kStart;
  for (std::size_t i = 0; i < d; ++i) {
    state = function.Step(state, std::fabs(x[i] - y[i]), kernels[kPerInput ? i : 0]);
  }
  return Function::Result(state);
}

template <class Function>
double OfPair(const Kernels& kernels, const double* x, const double* y, std::size_t d) {
  return kernels.count == 1 ? PairLoop<Function, false>(kernels.values, x, y, d)
                            : PairLoop<Function, true>(kernels.values, x, y, d);
}

// `kLanes` rows side by side. Each row is a chain of its own in ascending input order, so that the
// results are those of one row at a time, while the chains hide each other's latency and share
// vector instructions.
template <class Function, bool kPerInput, std::size_t kLanes>
void LanesLoop(const Function& function, const double* kernels, const double* x,
               const ScaledRows& samples, std::size_t first, std::size_t d, double* r) {
  const double* rows[kLanes];
  double state[kLanes];
  for (std::size_t lane = 0; lane < kLanes; ++lane) {
    rows[lane] = samples.rows[first + lane].data();
    state[lane] = Function::kStart;
  }
  for (std::size_t i = 0; i < d; ++i) {
    const double slope = samples.slopes[i];
    const double intercept = samples.intercepts[i];
    const double kernel = kernels[kPerInput ? i : 0];
    for (std::size_t lane = 0; lane < kLanes; ++lane) {
      const double scaled = slope * rows[lane][i] + intercept;
      state[lane] = function.Step(state[lane], std::fabs(x[i] - scaled), kernel);
    }
  }
  for (std::size_t lane = 0; lane < kLanes; ++lane) r[first + lane] = Function::Result(state[lane]);
}

template <class Function, bool kPerInput>
double RowsLoop(const double* kernels, const double* x, const ScaledRows& samples, std::size_t d,
                const double* weights, double* r) {
  constexpr std::size_t kLanes = 8;
  const Function function;
  double sum = 0.0;
  // The sum follows each group at once: its chain of additions hides behind the next group's work.
  const auto addUp = [&](std::size_t first, std::size_t last) {
    if (weights == nullptr) return;
    for (std::size_t j = first; j < last; ++j) sum += r[j] * weights[j];
  };
  std::size_t first = 0;
  for (; first + kLanes <= samples.count; first += kLanes) {
    LanesLoop<Function, kPerInput, kLanes>(function, kernels, x, samples, first, d, r);
    addUp(first, first + kLanes);
  }
  for (; first < samples.count; ++first) {
    LanesLoop<Function, kPerInput, 1>(function, kernels, x, samples, first, d, r);
    addUp(first, first + 1);
  }
  return sum;
}

template <class Function>
double OfRows(const Kernels& kernels, const double* x, const ScaledRows& samples, std::size_t d,
              const double* weights, double* r) {
  return kernels.count == 1 ? RowsLoop<Function, false>(kernels.values, x, samples, d, weights, r)
                            : RowsLoop<Function, true>(kernels.values, x, samples, d, weights, r);
}

template <class Function>
constexpr Correlation Row(lanes::Kernel kernel) {
  return {&OfPair<Function>, &OfRows<Function>, kernel};
}

// By E_KringingCorrelationFunctionType, from 1.
constexpr Correlation kCorrelations[] = {
    Row<Exponential>(lanes::Kernel::Exponential),
    Row<Gaussian>(lanes::Kernel::Gaussian),
    Row<Linear>(lanes::Kernel::Linear),
    Row<Spherical>(lanes::Kernel::Spherical),
    Row<Cubic>(lanes::Kernel::Cubic),
    Row<Multiquadric>(lanes::Kernel::Multiquadric),
    Row<Spline>(lanes::Kernel::Spline),
    Row<Matern52>(lanes::Kernel::Matern52),
    Row<Parabolic>(lanes::Kernel::Parabolic),
    Row<ShiftedBessel>(lanes::Kernel::BesselJ0),
    Row<ShiftedSinc>(lanes::Kernel::Sinc),
};

}  // namespace

double CorrelateRows(const Correlation& correlation, const Kernels& kernels, const double* x,
                     const ScaledRows& samples, std::size_t d, const double* weights, double* r,
                     const lanes::Lanes* lanes) {
  if (lanes == nullptr || !lanes::HasRowKernels(correlation.kernel)) {
    return correlation.ofRows(kernels, x, samples, d, weights, r);
  }
  lanes::RowKernels call;
  call.kernel = correlation.kernel;
  call.inputs = d;
  call.x = x;
  call.slopes = samples.slopes;
  call.intercepts = samples.intercepts;
  call.kernels = kernels.values;
  call.isOneKernel = kernels.count == 1;
  double sum = 0.0;
  lanes::ForRowKernels(*lanes, call, samples.rows, samples.count, nullptr,
                       [&](std::size_t first, std::size_t count, const double* values) {
                         std::copy_n(values, count, r + first);
                         if (weights == nullptr) return;
                         for (std::size_t k = 0; k < count; ++k) {
                           sum += values[k] * weights[first + k];
                         }
                       });
  return sum;
}

const Correlation* FindCorrelation(const CKrigingData& record) noexcept {
  const std::size_t kernels = record.CorrelationKernels.size();
  const bool served =
      record.NumberOfInputVariables > 0 &&
      (kernels == 1 || kernels >= static_cast<std::size_t>(record.NumberOfInputVariables));
  const int type = record.CorrelationFunctionType;
  if (!served || type < CorrExponential || type > CorrSinc) return nullptr;
  return &kCorrelations[type - CorrExponential];
}

}  // namespace Tarvane::Plexura::PXROM::kriging
