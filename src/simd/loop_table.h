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

/// The rows of a panel of a packed matrix (panels.h): six by the four vectors of a block are as
/// many sums as the registers of AVX-512 hold, and six by two as many as those of AVX2.
constexpr std::size_t kPanelRows = 6;

/// Columns `firstColumn` to `lastColumn` of panels `first` to `last` of a packed matrix, times the
/// points of a block: out[r] grows by m[r][c] x[c], c ascending.
struct PanelProduct {
  const double* values = nullptr;
  const std::size_t* starts = nullptr;  ///< of the panels in `values`
  std::size_t first = 0;
  std::size_t last = 0;
  std::size_t firstColumn = 0;
  std::size_t lastColumn = 0;
  const double* x = nullptr;  ///< begins with `firstColumn`
  std::size_t points = 0;
  double* out = nullptr;  ///< begins with `first`, kPanelRows rows for each panel
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
  void (*addPanels)(const PanelProduct& call);
  /// sums grow by the squares of `count` values at each point, in ascending order.
  void (*addSquares)(const double* values, std::size_t count, std::size_t points, double* sums);
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
