#include "records/error_norms.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "records/prepared_surface.h"

namespace Tarvane::Plexura::PXROM::batch {

namespace {

using simd::kPanelRows;
using simd::Panels;

// The products of these rows of C with these columns stay in the second-level cache for all blocks
// of points, and the columns' values at the points of one block in the first.
constexpr std::size_t kPanelsAtOnce = 16;
constexpr std::size_t kColumnsAtOnce = 128;

std::size_t PanelsAtOnce(const Panels& m) { return std::min(kPanelsAtOnce, m.Count()); }

/// Replaces the products of panels `first` to `last` at those points of a block whose sum of
/// squares is not finite, where zeros make a difference.
void RepairRows(const Panels& m, std::size_t first, std::size_t last, const double* squares,
                const double* x, std::size_t points, double* to) {
  for (std::size_t point = 0; point < points; ++point) {
    if (std::isfinite(squares[point])) continue;
    for (std::size_t panel = first; panel < last; ++panel) {
      m.FillRows(panel, x + point, to + (panel - first) * kPanelRows * kBlock + point);
    }
  }
}

}  // namespace

struct ErrorNorms::Work {
  Work(const ErrorNorms& norms, std::size_t blocks, double* start) {
    WorkArea area(start);
    rows = PanelsAtOnce(norms.c_) * kPanelRows;
    v = area.Take(blocks * rows * kBlock);
    g = area.Take(norms.FunctionRows() * kBlock);
    squares = area.Take(blocks * kBlock);
    size = area.Used();
  }

  std::size_t rows;  ///< of v at a time
  double* v;
  double* g;
  double* squares;  ///< of r
  std::size_t size;
};

ErrorNorms::ErrorNorms(Panels c, Panels f, Panels g)
    : c_(std::move(c)), f_(std::move(f)), g_(std::move(g)) {}

int ErrorNorms::Compare(const ErrorNorms& other) const {
  for (const auto matrix : {&ErrorNorms::c_, &ErrorNorms::f_, &ErrorNorms::g_}) {
    const int order = (this->*matrix).Compare(other.*matrix);
    if (order != 0) return order;
  }
  return 0;
}

std::size_t ErrorNorms::WorkSize(std::size_t blocks) const {
  return Work(*this, blocks, nullptr).size;
}

void ErrorNorms::Fill(const simd::LoopTable& loops, const Call& call) const {
  const std::size_t blocks = (call.points + kBlock - 1) / kBlock;
  const auto pointsOf = [&](std::size_t b) { return std::min(kBlock, call.points - b * kBlock); };
  const std::size_t n = c_.Columns();
  const Work work(*this, blocks, call.work);

  std::fill_n(work.squares, blocks * kBlock, 0.0);
  for (std::size_t b = 0; b < blocks; ++b) {
    loops.addSquares(call.r + b * n * kBlock, n, pointsOf(b), work.squares + b * kBlock);
  }
  std::fill_n(call.squaresOfV, blocks * kBlock, 0.0);
  std::fill_n(call.squaresOfG, blocks * kBlock, 0.0);
  for (std::size_t panel = 0; panel < c_.Count(); panel += kPanelsAtOnce) {
    const std::size_t last = std::min(panel + kPanelsAtOnce, c_.Count());
    std::size_t length = 0;
    for (std::size_t k = panel; k < last; ++k) length = std::max(length, c_.Length(k));
    std::fill_n(work.v, blocks * work.rows * kBlock, 0.0);
    for (std::size_t column = 0; column < length; column += kColumnsAtOnce) {
      for (std::size_t b = 0; b < blocks; ++b) {
        c_.AddTo(loops, panel, last, column, column + kColumnsAtOnce,
                 call.r + (b * n + column) * kBlock, pointsOf(b), work.v + b * work.rows * kBlock);
      }
    }
    const std::size_t row = panel * kPanelRows;
    const std::size_t endRow = std::min(last * kPanelRows, c_.Rows());
    for (std::size_t b = 0; b < blocks; ++b) {
      double* const v = work.v + b * work.rows * kBlock;
      RepairRows(c_, panel, last, work.squares + b * kBlock, call.r + b * n * kBlock, pointsOf(b),
                 v);
      loops.addSquares(v, endRow - row, pointsOf(b), call.squaresOfV + b * kBlock);
      f_.AddTo(loops, 0, f_.Count(), row, endRow, v, pointsOf(b),
               call.w + b * FunctionRows() * kBlock);
    }
  }
  for (std::size_t b = 0; b < blocks; ++b) {
    const double* const w = call.w + b * FunctionRows() * kBlock;
    std::fill_n(work.g, FunctionRows() * kBlock, 0.0);
    double squares[kBlock] = {};
    loops.addSquares(w, g_.Rows(), pointsOf(b), squares);
    g_.AddTo(loops, 0, g_.Count(), 0, g_.Columns(), w, pointsOf(b), work.g);
    RepairRows(g_, 0, g_.Count(), squares, w, pointsOf(b), work.g);
    loops.addSquares(work.g, g_.Rows(), pointsOf(b), call.squaresOfG + b * kBlock);
  }
}

}  // namespace Tarvane::Plexura::PXROM::batch
