#pragma once

#include <cstddef>
#include <cstdint>

namespace Tarvane::Plexura::PXROM::lanes {

/// Points are worked on in blocks, side by side: value `v` of all points of a block stands at
/// [v * kBlock] to [v * kBlock + kBlock - 1]. The last points of a block that is not full are
/// copies, which cost nothing where the lanes of a vector are there anyway.
constexpr std::size_t kBlock = 32;

/// As many centres are gone through at a time, so that their kernels stay in the nearest cache.
constexpr std::size_t kChunk = 64;

/// The radial functions of all families. What a value is made of stands with each family.
enum class Kernel : std::uint8_t {
  Exponential,  ///< exp(-sum of k a), Kriging and support vectors
  Gaussian,     ///< exp(-sum of k a a), Kriging and support vectors
  Linear,       ///< from here to Sinc: Kriging alone
  Spherical,
  Cubic,
  Multiquadric,
  Spline,
  Matern52,
  Parabolic,
  BesselJ0,
  Sinc,
  DotLinear,  ///< from here to Epanechnikov: support vectors alone
  DotQuadratic,
  DotSigmoid,
  Epanechnikov,
  RadialGaussian,  ///< from here on: linear basis functions, of the distance and a width
  RadialCompact,
  RadialCubic,
  RadialSinc,
  RadialRational,
  RadialTanh,
};

/// A value that the lanes cannot give to the last bit: the host's library is asked for it.
struct Question {
  double argument;
  std::size_t place;  ///< where the answer belongs
};

/// Which function a kernel is.
struct KernelShape {
  Kernel kernel = Kernel::Gaussian;
  std::size_t inputs = 0;
  double shift = 0.0;     ///< the constant of the functions that are shifted to end at 0
  double perInput = 0.0;  ///< the factor of the functions that depend on the inputs' number
};

/// A weighted sum of kernels between each point of a block and all centres.
struct KernelSum : KernelShape {
  std::size_t centreCount = 0;
  const double* centres = nullptr;  ///< row by row
  const double* kernels = nullptr;  ///< one per input
  const double* widths = nullptr;   ///< one per centre, or null
  const double* weights = nullptr;  ///< one per centre
  double start = 0.0;               ///< what the sum begins with

  const double* x = nullptr;      ///< the points, input by input
  std::size_t points = 0;         ///< how many of them count
  double* sums = nullptr;         ///< one per point
  bool keepsKernels = false;      ///< whether `values` has room for the kernels of all centres
  double* values = nullptr;       ///< room for those of kChunk centres, a block for each
  double* steps = nullptr;        ///< room for two blocks per input
  Question* questions = nullptr;  ///< room for a block for each of kChunk centres and all inputs
};

/// As many rows are gone through at a time where one point meets rows that lie anywhere.
constexpr std::size_t kRows = 32;

/// Kernels between one point and up to kRows rows, which are scaled on the way: the arrays of rows,
/// widths and values have room for kRows, and up to the next multiple of 8 behind `count` they hold
/// something that may be read and is as good as the rest, or may be written.
struct RowKernels : KernelShape {
  const double* x = nullptr;       ///< the scaled point
  const double* slopes = nullptr;  ///< null for rows that are not scaled
  const double* intercepts = nullptr;
  const double* kernels = nullptr;  ///< one per input, or one for all
  bool isOneKernel = false;
  const double* const* rows = nullptr;
  const double* widths = nullptr;  ///< of the rows, or null
  std::size_t count = 0;
  double* values = nullptr;
};

/// A polynomial: products of up to two variables, in order. Variable `inputs` is a 1.
struct Monomial {
  double coefficient;
  std::uint32_t first;
  std::uint32_t second;
};

struct Polynomial {
  const Monomial* terms = nullptr;
  std::size_t count = 0;
  /// (c x) y, as a regression multiplies, or else (x y) c, as a trend does.
  bool coefficientFirst = false;
};

/// What the error of a Kriging prediction is made of: v = C r, w = F v - f, g = G w.
struct KrigingErrorSum {
  std::size_t samples = 0;
  std::size_t functions = 0;
  const double* invC = nullptr;
  const std::size_t* lengths = nullptr;  ///< behind which a row of invC is zero
  const double* invG = nullptr;
  const double* ft = nullptr;
  double sigma2 = 0.0;

  const double* r = nullptr;  ///< the correlations, sample by sample
  const double* f = nullptr;  ///< the trend functions, one by one
  std::size_t points = 0;
  double* v = nullptr;  ///< room for a value per sample
  double* w = nullptr;  ///< room for two per function
  double* errors = nullptr;
};

/// How many rows Lanes::rowProducts takes: enough chains of additions to hide their latency.
constexpr std::size_t kRowsOfProducts = 16;

/// The loops over points, for one instruction set. All of them keep the order of operations that
/// the evaluators have, point by point, but the fast sum.
struct Lanes {
  void (*sum)(const KernelSum& call);
  /// With data prepared for it, see FastKernels. Only for kernels with a fast form.
  void (*fastSum)(const KernelSum& call);
  void (*polynomial)(const Polynomial& polynomial, const double* x, std::size_t points,
                     double* sums);
  /// The products without their coefficients, one after the other.
  void (*products)(const Polynomial& polynomial, const double* x, std::size_t points,
                   double* values);
  /// sums = the sum of f[i] M[i][j] f[j], rows first.
  void (*quadraticForm)(const double* matrix, const double* f, std::size_t order,
                        std::size_t points, double* sums);
  void (*krigingError)(const KrigingErrorSum& call);
  /// Only for kernels that HasRowKernels names; null in loops that would be no faster than others.
  void (*rowKernels)(const RowKernels& call);
  /// out[k] grows by rows[k][j] x[j], in ascending j, for kRowsOfProducts rows. Null as rowKernels
  /// is.
  void (*rowProducts)(const double* const* rows, const double* x, std::size_t columns, double* out);
  /// A length behind which kRowsOfProducts rows hold zeros alone. Null as rowKernels is.
  std::size_t (*lengthBeforeZeros)(const double* const* rows, std::size_t length);
  /// values[r] = the sum of (x - row)^2 over the inputs.
  void (*squaredDistances)(const double* rows, std::size_t rowCount, const double* x,
                           std::size_t inputs, std::size_t points, double* values);
};

enum class InstructionSet : std::uint8_t { Portable, Avx2, Avx512 };

/// The loops for `set`; null when they are not in this program or the machine cannot run them.
const Lanes* FindLanes(InstructionSet set) noexcept;
/// The best that the machine can run.
InstructionSet BestInstructionSet() noexcept;
/// The loops for one point at a time: the best that are exact; null when there are none.
const Lanes* LanesForRows() noexcept;
/// Whether Lanes::rowKernels serves `kernel`: those whose functions vectors can give.
bool HasRowKernels(Kernel kernel) noexcept;

/// Whether the host's exp, log and pow are as near to the exact value as the exact loops of the
/// other sets take for granted; tried out on some thousand arguments, once. Else only the portable
/// ones are exact.
bool AreHostFunctionsKnown() noexcept;

// One per lanes_*.cpp; null when that file was compiled for another kind of machine.
const Lanes* PortableLanes() noexcept;
const Lanes* Avx2Lanes() noexcept;
const Lanes* Avx512Lanes() noexcept;

/// The whole kernel by the host's library, from the sum of its steps; `width` is that of a radial
/// function.
double AskForKernel(const KernelShape& shape, double sum, double width);
/// Writes what the host's library gives for `count` questions to their places in `values`: the
/// whole kernel of a centre, counted from `firstCentre`, for the sum of its steps.
void AskForKernels(const KernelSum& call, std::size_t firstCentre, const Question* questions,
                   std::size_t count, double* values);
/// The same for one step of Matern52, BesselJ0 and Sinc: a logarithm, J0 or a sine.
void AskForSteps(Kernel kernel, const Question* questions, std::size_t count, double* values);

}  // namespace Tarvane::Plexura::PXROM::lanes
