// Tests whether the host's C library computes as the exact vector functions assume.

#include <array>
#include <cmath>
#include <vector>

#include "kernels/kernels.h"
#include "kernels/table.h"

namespace Tarvane::Plexura::PXROM::kernels {

namespace {

/// A kernel of one input, with its centre at 1 for a dot product and else at 0, at points of a
/// block.
class Trial {
 public:
  explicit Trial(const Kernel& kernel) : centre_(kernel.shape == Shape::Dot ? 1.0 : 0.0) {
    call_.kernel = &kernel;
    call_.inputs = 1;
    call_.constants = kernel.constants(1.0);
    call_.centreCount = 1;
    call_.centres = &centre_;
    call_.scales = &one_;
    call_.centreScales = kernel.shape == Shape::Radial ? &scale_ : nullptr;
    call_.weights = &one_;
    call_.points = kBlock;
    call_.values = values_.data();
    call_.steps = steps_.data();
    call_.questions = questions_.data();
  }

  /// Whether two loops give the same bits between -end / 3 and `end`. The grid is uneven, so that
  /// the arguments have no pattern in their bits.
  bool AreSame(const KernelLoops& a, const KernelLoops& b, double end) {
    constexpr std::size_t kBlocks = 32;
    for (std::size_t block = 0; block < kBlocks; ++block) {
      for (std::size_t point = 0; point < kBlock; ++point) {
        const double turn = static_cast<double>(block * kBlock + point) * 0.6180339887498949;
        x_[point] = ((turn - std::floor(turn)) * 4.0 - 1.0) / 3.0 * end;
      }
      call_.x = x_.data();
      call_.sums = sums_.data();
      a.sum(call_);
      call_.sums = others_.data();
      b.sum(call_);
      for (std::size_t point = 0; point < kBlock; ++point) {
        // A NaN counts as unequal too.
        if (!(sums_[point] == others_[point])) return false;
        if (std::signbit(sums_[point]) != std::signbit(others_[point])) return false;
      }
    }
    return true;
  }

 private:
  const double one_ = 1.0;
  const double scale_ = 0.5;
  double centre_;
  std::array<double, kBlock> x_ = {};
  std::array<double, kBlock> sums_ = {};
  std::array<double, kBlock> others_ = {};
  std::array<double, 2 * kBlock> steps_ = {};
  std::vector<double> values_ = std::vector<double>(kChunk * kBlock);
  std::vector<Question> questions_ = std::vector<Question>((kChunk + 1) * kBlock);
  KernelSum call_;
};

// The bounds of the vector functions are those of glibc. Another library may differ so seldom that
// a trial does not show it.
#if defined(__GLIBC__)
constexpr bool kIsHostKnown = true;
#else
constexpr bool kIsHostKnown = false;
#endif

bool AreExact(const KernelLoops& loops, const KernelLoops& plain, const Kernel& kernel) {
  if (loops.sum == plain.sum) return true;
  // The others need no function of the host.
  const Operations& operations = kernel.operations;
  if (operations.perInput < kElementary && operations.once < kElementary) return true;
  if (!kIsHostKnown) return false;
  Trial trial(kernel);
  for (const double end : {0.01, 1.0, 4.7, 25.0, 700.0}) {
    if (!trial.AreSame(loops, plain, end)) return false;
  }
  return true;
}

/// The loops of a set, with portable ones for the kernels that are not exact.
struct Mixed {
  explicit Mixed(const LoopTable& ofSet) : table(ofSet) {
    for (std::size_t index = 0; index < loops.size(); ++index) {
      const KernelLoops& own = table.byKernel[index];
      const KernelLoops& plain = PortableLoops()->byKernel[index];
      loops[index] = AreExact(own, plain, KernelAt(index)) ? own : plain;
    }
    table.byKernel = loops.data();
  }
  std::array<KernelLoops, Kernels::kCount> loops = {};
  LoopTable table;
};

template <simd::InstructionSet kSet>
const LoopTable* MixedLoops() {
  if (FindLoops(kSet) == nullptr) return nullptr;
  static const Mixed mixed(*FindLoops(kSet));
  return &mixed.table;
}

}  // namespace

const LoopTable* ExactLoops(simd::InstructionSet set) noexcept {
  using simd::InstructionSet;
  switch (set) {
    case InstructionSet::Avx512:
      return MixedLoops<InstructionSet::Avx512>();
    case InstructionSet::Avx2:
      return MixedLoops<InstructionSet::Avx2>();
    case InstructionSet::Neon:
      return MixedLoops<InstructionSet::Neon>();
    case InstructionSet::Portable:
      break;
  }
  return PortableLoops();
}

}  // namespace Tarvane::Plexura::PXROM::kernels
