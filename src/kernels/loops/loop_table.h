#pragma once

#include <cstddef>

#include "kernels/shapes.h"
#include "simd/instruction_set.h"
#include "simd/loop_table.h"

namespace Tarvane::Plexura::PXROM::kernels {

using simd::kBlock;

struct Kernel;

/// The loops process this many centres at a time, so that their kernel values stay in the nearest
/// cache.
constexpr std::size_t kChunk = 64;

/// A value that the vectors cannot compute to the last bit, so the host's library computes it.
struct Question {
  double argument;
  std::size_t place;  ///< where the result belongs
};

/// A kernel in a number of inputs.
struct KernelCall {
  const Kernel* kernel = nullptr;
  std::size_t inputs = 0;
  Constants constants;
};

/// Kernels around centres, each with its weight.
struct WeightedKernels : KernelCall {
  std::size_t centreCount = 0;
  const double* centres = nullptr;       ///< row by row
  const double* scales = nullptr;        ///< one per input
  const double* centreScales = nullptr;  ///< one per centre, or null
  const double* weights = nullptr;       ///< one per centre
};

/// The sum of weighted kernels at each point of a block.
struct KernelSum : WeightedKernels {
  double start = 0.0;             ///< what the sum begins with
  const double* x = nullptr;      ///< the points, input by input
  std::size_t points = 0;         ///< how many of them count
  double* sums = nullptr;         ///< one per point
  bool keepsValues = false;       ///< whether `values` holds the kernels of all centres
  double* values = nullptr;       ///< else those of kChunk centres, a block for each
  double* steps = nullptr;        ///< two blocks per input
  Question* questions = nullptr;  ///< a block for each of kChunk centres and all inputs
};

/// The loops for one point and rows in separate arrays process this many rows at a time.
constexpr std::size_t kRows = 32;

/// Kernels between one point and up to kRows rows, which are scaled while they are read. The arrays
/// of rows, scales and values hold kRows elements. Up to the next multiple of 8 after `count`, rows
/// and scales must be readable and hold valid values; values there may be overwritten.
struct RowKernels : KernelCall {
  const double* x = nullptr;       ///< the scaled point
  const double* slopes = nullptr;  ///< null for rows that are not scaled
  const double* intercepts = nullptr;
  const double* scales = nullptr;  ///< one per input, or one for all
  bool isOneScale = false;
  const double* const* rows = nullptr;
  const double* rowScales = nullptr;  ///< one per row, or null
  std::size_t count = 0;
  double* values = nullptr;
};

/// The loops of one kernel, for one instruction set.
struct KernelLoops {
  /// Keeps the order of operations that an evaluator has, point by point.
  void (*sum)(const KernelSum& call);
  /// With data prepared for it, see shapes.h. Null without a fast form.
  void (*fastSum)(const KernelSum& call);
  /// The same without weights and sums: `values` has room for the kernels of all centres.
  void (*fastValues)(const KernelSum& call);
  /// Null where the plain loop (Kernel::rows) is as fast.
  void (*rows)(const RowKernels& call);
};

/// All loops for one instruction set.
struct LoopTable : simd::LoopTable {
  const KernelLoops* byKernel;  ///< in the order of the kernels
  /// What KernelLoops::sum and fastSum give, from the kernels of all centres in call.values.
  void (*weigh)(const KernelSum& call);
  void (*fastWeigh)(const KernelSum& call);
};

/// The loops for `set`; null when they are not in this program or the machine cannot run them.
const LoopTable* FindLoops(simd::InstructionSet set) noexcept;
/// The best set that the machine can run.
simd::InstructionSet BestInstructionSet() noexcept;
/// The fastest exact loops for one point at a time; null when there are no such loops.
const LoopTable* LoopsForRows() noexcept;

/// Loops that give the bits of the host's functions: those of `set`, but the portable ones for each
/// kernel whose function the host computes in a way that the vectors do not expect. The first call
/// for a set finds that out with some thousand arguments for each kernel. Null as FindLoops.
const LoopTable* ExactLoops(simd::InstructionSet set) noexcept;

// One per instruction set; null when its file was compiled for another kind of machine.
const LoopTable* PortableLoops() noexcept;
const LoopTable* NeonLoops() noexcept;
const LoopTable* Avx2Loops() noexcept;
const LoopTable* Avx512Loops() noexcept;

}  // namespace Tarvane::Plexura::PXROM::kernels
