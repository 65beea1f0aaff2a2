// The functions that the evaluators take from the host's library, for the few lanes that vectors
// leave open; and whether vectors may take that library for what they think it is.

#include <cmath>
#include <vector>

#include "lanes/lanes.h"
#include "numerics/bessel.h"

namespace Tarvane::Plexura::PXROM::lanes {

namespace {

constexpr double kSincEnd = 4.71238898038469;

double RadialCompact(double r2, double h) {
  const double t = std::sqrt(r2) / (2.0 * h);
  return t <= 1.0 ? std::pow(1.0 - t, 4.0) * (4.0 * t + 1.0) : 0.0;
}

double RadialSinc(double r2, double h, double shift) {
  const double z = 2.0 * std::sqrt(r2) / h;
  if (z > kSincEnd) return 0.0;
  return std::fabs(z) > 1e-06 ? (std::sin(z) / z - shift) / (1.0 - shift) : 1.0;
}

// Calls `use(kernel)`, where kernel(sum, width) is the whole kernel; not for kernels without a
// function of the host.
template <class Use>
void WithHostKernel(const KernelShape& call, const Use& use) {
  switch (call.kernel) {
    case Kernel::Exponential:
    case Kernel::Gaussian:
    case Kernel::Matern52:
      return use([](double sum, double) { return std::exp(-sum); });
    case Kernel::DotSigmoid:
      return use([slope = call.perInput, offset = call.shift](double sum, double) {
        return std::tanh(slope * sum - offset);
      });
    case Kernel::RadialGaussian:
      return use([](double r2, double h) { return std::exp(-(r2 / (h * h))); });
    case Kernel::RadialCompact:
      return use(RadialCompact);
    case Kernel::RadialSinc:
      return use([shift = call.shift](double r2, double h) { return RadialSinc(r2, h, shift); });
    case Kernel::RadialTanh:
      return use([perInput = call.perInput](double r2, double h) {
        return std::tanh(std::sqrt(r2) * perInput / h);
      });
    default:
      return;
  }
}

}  // namespace

double AskForKernel(const KernelShape& shape, double sum, double width) {
  double value = 0.0;
  WithHostKernel(shape, [&](const auto& kernel) { value = kernel(sum, width); });
  return value;
}

void AskForKernels(const KernelSum& call, std::size_t firstCentre, const Question* questions,
                   std::size_t count, double* values) {
  WithHostKernel(call, [&](const auto& kernel) {
    for (const Question* question = questions; question != questions + count; ++question) {
      const std::size_t centre = firstCentre + question->place / kBlock;
      const double width = call.widths != nullptr ? call.widths[centre] : 1.0;
      values[question->place] = kernel(question->argument, width);
    }
  });
}

void AskForSteps(Kernel kernel, const Question* questions, std::size_t count, double* values) {
  const auto answer = [&](const auto& function) {
    for (const Question* question = questions; question != questions + count; ++question) {
      values[question->place] = function(question->argument);
    }
  };
  if (kernel == Kernel::Matern52) answer([](double x) { return std::log(x); });
  if (kernel == Kernel::BesselJ0) answer([](double x) { return BesselJ0(x); });
  if (kernel == Kernel::Sinc) answer([](double x) { return std::sin(x); });
}

namespace {

// Whether `kernel` of one input, with its centre at 0, has the bits of `expected` on a grid of
// distances up to `end`. The grid is uneven, so that the arguments have no pattern in their bits.
template <class Expected>
bool IsAsExpected(const Lanes& lanes, Kernel kernel, double end, const Expected& expected) {
  constexpr std::size_t kBlocks = 64;
  const double one = 1.0;
  const double zero = 0.0;
  const double width = 0.5;
  std::vector<double> x(kBlock);
  std::vector<double> sums(kBlock);
  std::vector<double> values(kChunk * kBlock);
  std::vector<double> steps(2 * kBlock);
  std::vector<Question> questions((kChunk + 1) * kBlock);
  KernelSum call;
  call.kernel = kernel;
  call.inputs = 1;
  call.centreCount = 1;
  call.centres = &zero;
  call.kernels = &one;
  call.widths = &width;
  call.weights = &one;
  call.x = x.data();
  call.points = kBlock;
  call.sums = sums.data();
  call.values = values.data();
  call.steps = steps.data();
  call.questions = questions.data();
  for (std::size_t block = 0; block < kBlocks; ++block) {
    for (std::size_t lane = 0; lane < kBlock; ++lane) {
      const auto i = static_cast<double>(block * kBlock + lane);
      const double turn = i * 0.6180339887498949;
      x[lane] = (turn - std::floor(turn)) * end;
    }
    lanes.sum(call);
    for (std::size_t lane = 0; lane < kBlock; ++lane) {
      const double value = expected(x[lane]);
      // A NaN is unequal too: whatever can't be shown to be equal is not taken.
      if (!(value == sums[lane]) || std::signbit(value) != std::signbit(sums[lane])) return false;
    }
  }
  return true;
}

bool TryHostFunctions(const Lanes& lanes) {
  const auto expOfMinus = [](double x) { return std::exp(-x); };
  const auto matern52 = [](double x) {
    const double t = std::sqrt(5.0) * x;
    return std::exp(-(t - std::log(1.0 + t + t * t / 3.0)));
  };
  const auto compact = [](double x) { return RadialCompact(x * x, 0.5); };
  return IsAsExpected(lanes, Kernel::Exponential, 1.0, expOfMinus) &&
         IsAsExpected(lanes, Kernel::Exponential, 700.0, expOfMinus) &&
         IsAsExpected(lanes, Kernel::Matern52, 1.0, matern52) &&
         IsAsExpected(lanes, Kernel::Matern52, 100.0, matern52) &&
         IsAsExpected(lanes, Kernel::RadialCompact, 1.0, compact);
}

}  // namespace

bool AreHostFunctionsKnown() noexcept {
  static const bool areKnown = TryHostFunctions(*FindLanes(BestInstructionSet()));
  return areKnown;
}

}  // namespace Tarvane::Plexura::PXROM::lanes
