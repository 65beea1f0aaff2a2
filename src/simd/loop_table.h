#pragma once

#include <cstddef>
#include <cstdint>

namespace Tarvane::Plexura::PXROM::simd {

/// Points are evaluated in blocks: value `v` of all points of a block is at [v * kBlock] to
/// [v * kBlock + kBlock - 1]. A block that is not full ends with copies of its last point, which
/// cost nothing, since a vector computes all its lanes anyway.
constexpr std::size_t kBlock = 32;

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

/// The parts of the error of a Kriging prediction (kriging.h): v = C r, w = F v - f, g = G w.
struct KrigingErrorSum {
  std::size_t samples = 0;
  std::size_t functions = 0;
  const double* invC = nullptr;
  const std::size_t* lengths = nullptr;  ///< after which a row of invC is zero
  const double* invG = nullptr;
  const double* ft = nullptr;
  double sigma2 = 0.0;

  const double* r = nullptr;  ///< the correlations, sample by sample
  const double* f = nullptr;  ///< the trend functions, one by one
  std::size_t points = 0;
  double* v = nullptr;  ///< working area: one value per sample
  double* w = nullptr;  ///< working area: two values per function
  double* errors = nullptr;
};

/// A matrix, row by row, times the columns of a block: out[r] grows by m[r][c] x[c], c ascending.
struct MatrixProduct {
  const double* matrix = nullptr;
  std::size_t rows = 0;
  std::size_t columns = 0;
  /// After which a row is zero, so that its rest may be left out; null where all of it counts.
  const std::size_t* lengths = nullptr;
  const double* x = nullptr;
  std::size_t points = 0;
  double* out = nullptr;
};

/// How many rows LoopTable::rowProducts takes: enough independent sums to hide the latency of an
/// addition.
constexpr std::size_t kRowsOfProducts = 16;

/// The loops over points, for one instruction set. All of them keep the order of operations that
/// the evaluators have, point by point.
struct LoopTable {
  void (*polynomial)(const Polynomial& polynomial, const double* x, std::size_t points,
                     double* sums);
  /// The products without their coefficients, one after the other.
  void (*products)(const Polynomial& polynomial, const double* x, std::size_t points,
                   double* values);
  /// sums = the sum of f[i] M[i][j] f[j], rows first.
  void (*quadraticForm)(const double* matrix, const double* f, std::size_t order,
                        std::size_t points, double* sums);
  void (*krigingError)(const KrigingErrorSum& call);
  void (*matrixProduct)(const MatrixProduct& call);
  /// out[k] grows by rows[k][j] x[j], in ascending j, for kRowsOfProducts rows. Null for an
  /// instruction set where the evaluator's own loop is as fast.
  void (*rowProducts)(const double* const* rows, const double* x, std::size_t columns, double* out);
  /// A length after which kRowsOfProducts rows hold only zeros. Null if rowProducts is.
  std::size_t (*lengthBeforeZeros)(const double* const* rows, std::size_t length);
  /// values[r] = the sum of (x - row)^2 over the inputs.
  void (*squaredDistances)(const double* rows, std::size_t rowCount, const double* x,
                           std::size_t inputs, std::size_t points, double* values);
};

}  // namespace Tarvane::Plexura::PXROM::simd
