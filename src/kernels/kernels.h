#pragma once

#include <cstddef>
#include <vector>

#include "kernels/loops/loop_table.h"
#include "pxrom/gaussian_process.h"
#include "pxrom/kriging.h"
#include "pxrom/linear_basis.h"
#include "pxrom/support_vector.h"

namespace Tarvane::Plexura::PXROM::kernels {

/// The preparation of data for the fast form of a kernel, see shapes.h.
struct FastForm {
  std::size_t mostInputs;
  double (*inputFactor)(double scale);
  double (*centreFactor)(const Constants& constants, double scale);
  double (*deviation)(double inputs, double norm1, double norm2);
};

/// A row of the table of kernels (table.h) without its class: the functions that were compiled from
/// its formula for plain numbers.
struct Kernel {
  const char* name;
  std::size_t index;  ///< its place in the table
  Shape shape;
  Operations operations;
  Constants (*constants)(double inputs);
  /// The value for the last state of the steps; `scale` is that of the centre.
  double (*value)(const Constants& constants, double state, double scale);
  /// The values between a point and rows, one after the other: see RowKernels, but this reads
  /// nothing after `count`.
  void (*rows)(const RowKernels& call);
  /// Writes `value` for `count` questions to their places in call.values: `argument` is the last
  /// state, and each centre has kBlock places, beginning with `firstCentre`.
  void (*answerValues)(const KernelSum& call, std::size_t firstCentre, const Question* questions,
                       std::size_t count, double* values);
  /// The same for the function that a step needs; null when a step needs no function.
  void (*answerSteps)(const Question* questions, std::size_t count, double* values);
  /// Adds the gradient at `u` of the weighted kernels to `gradient`. `work` holds 3 values per
  /// input.
  void (*addGradients)(const WeightedKernels& call, const double* u, double* work,
                       double* gradient);
  const FastForm* fast;  ///< null without
};

/// The rows of the table.
std::size_t KernelCount() noexcept;
const Kernel& KernelAt(std::size_t index) noexcept;

/// The kernel that a number in a record means; null for an unknown number.
const Kernel* FindKernel(E_KringingCorrelationFunctionType type) noexcept;
const Kernel* FindKernel(E_SVRKernType type) noexcept;
const Kernel* FindKernel(E_LinearBasisFunction type) noexcept;
const Kernel* FindKernel(E_CovarianceFunctionType type) noexcept;

/// The numbers that mean a kernel, in ascending order.
std::vector<int> NumbersOfCorrelations();
std::vector<int> NumbersOfSupportVectorKernels();
std::vector<int> NumbersOfRadialFunctions();
std::vector<int> NumbersOfCovarianceFunctions();

}  // namespace Tarvane::Plexura::PXROM::kernels
