// Tests whether the host's C library is as accurate as the exact vector functions assume.

#include <cmath>
#include <vector>

#include "kernels/kernels.h"
#include "kernels/wendland.h"

namespace Tarvane::Plexura::PXROM::kernels {

namespace {

// Whether `kernel` of one input, with its centre at 0, has the bits of `expected` on a grid of
// distances up to `end`. The grid is uneven, so that the arguments have no pattern in their bits.
template <class Expected>
bool IsAsExpected(const LoopTable& loops, const Kernel& kernel, double end,
                  const Expected& expected) {
  constexpr std::size_t kBlocks = 64;
  const double one = 1.0;
  const double zero = 0.0;
  const double scale = 0.5;
  std::vector<double> x(kBlock);
  std::vector<double> sums(kBlock);
  std::vector<double> values(kChunk * kBlock);
  std::vector<double> steps(2 * kBlock);
  std::vector<Question> questions((kChunk + 1) * kBlock);
  KernelSum call;
  call.kernel = &kernel;
  call.inputs = 1;
  call.centreCount = 1;
  call.centres = &zero;
  call.scales = &one;
  call.centreScales = &scale;
  call.weights = &one;
  call.x = x.data();
  call.points = kBlock;
  call.sums = sums.data();
  call.values = values.data();
  call.steps = steps.data();
  call.questions = questions.data();
  for (std::size_t block = 0; block < kBlocks; ++block) {
    for (std::size_t point = 0; point < kBlock; ++point) {
      const auto i = static_cast<double>(block * kBlock + point);
      const double turn = i * 0.6180339887498949;
      x[point] = (turn - std::floor(turn)) * end;
    }
    loops.byKernel[kernel.index].sum(call);
    for (std::size_t point = 0; point < kBlock; ++point) {
      const double value = expected(x[point]);
      // A NaN counts as unequal too.
      if (!(value == sums[point]) || std::signbit(value) != std::signbit(sums[point])) return false;
    }
  }
  return true;
}

bool TryHostFunctions(const LoopTable& loops) {
  const auto expOfMinus = [](double x) { return std::exp(-x); };
  const auto matern52 = [](double x) {
    const double t = std::sqrt(5.0) * x;
    return std::exp(-(t - std::log(1.0 + t + t * t / 3.0)));
  };
  const auto compact = [](double x) { return RadialCompact::Value({}, x * x, 0.5); };
  const Kernel& exponential = *FindKernel(CorrExponential);
  const Kernel& matern = *FindKernel(CorrMatern52);
  return IsAsExpected(loops, exponential, 1.0, expOfMinus) &&
         IsAsExpected(loops, exponential, 700.0, expOfMinus) &&
         IsAsExpected(loops, matern, 1.0, matern52) &&
         IsAsExpected(loops, matern, 100.0, matern52) &&
         IsAsExpected(loops, *FindKernel(LBFCompact), 1.0, compact);
}

}  // namespace

bool AreHostFunctionsKnown() noexcept {
  static const bool areKnown = TryHostFunctions(*FindLoops(BestInstructionSet()));
  return areKnown;
}

}  // namespace Tarvane::Plexura::PXROM::kernels
