#pragma once

#include <cstddef>
#include <vector>

#include "simd/loop_table.h"

namespace Tarvane::Plexura::PXROM::simd {

/// A matrix in panels of kPanelRows rows, column by column, for LoopTable::addPanels. A panel ends
/// with the last column that one of its rows stores, so a triangle takes half of a square.
class Panels {
 public:
  /// What follows the columns that a row stores.
  enum class Rest { Nothing, Zeros };

  Panels() = default;
  /// Stores all columns of `rows` rows; row(r) is an array with the values of row r.
  template <class Row>
  static Panels OfAll(std::size_t rows, std::size_t columns, const Row& row) {
    return Panels(columns, std::vector<std::size_t>(rows, columns), Rest::Nothing, row);
  }
  /// Leaves out the zeros at the ends of rows.
  template <class Row>
  static Panels BeforeZeros(std::size_t rows, std::size_t columns, const Row& row) {
    std::vector<std::size_t> lengths(rows, columns);
    for (std::size_t r = 0; r < rows; ++r) {
      while (lengths[r] > 0 && row(r)[lengths[r] - 1] == 0.0) --lengths[r];
    }
    return Panels(columns, std::move(lengths), Rest::Zeros, row);
  }
  /// A lower triangle: row(r) has r + 1 values.
  template <class Row>
  static Panels OfTriangle(std::size_t order, const Row& row) {
    std::vector<std::size_t> lengths(order);
    for (std::size_t r = 0; r < order; ++r) lengths[r] = r + 1;
    return Panels(order, std::move(lengths), Rest::Nothing, row);
  }

  /// Negative, 0 or positive: an order by the bits.
  int Compare(const Panels& other) const;

  std::size_t Rows() const { return lengths_.size(); }
  std::size_t Columns() const { return columns_; }
  std::size_t Count() const { return starts_.size() - 1; }
  std::size_t Length(std::size_t panel) const {
    return (starts_[panel + 1] - starts_[panel]) / kPanelRows;
  }

  /// `to` grows by the products of columns `firstColumn` to `lastColumn` of panels `first` to
  /// `last` with the points of a block. `x` begins with the column, `to` with the panel; `to` has
  /// kPanelRows rows for every panel.
  void AddTo(const LoopTable& loops, std::size_t first, std::size_t last, std::size_t firstColumn,
             std::size_t lastColumn, const double* x, std::size_t points, double* to) const {
    loops.addPanels(
        {values_.data(), starts_.data(), first, last, firstColumn, lastColumn, x, points, to});
  }

  /// The products of the rows of a panel with one point, which has a value in every kBlock. With a
  /// number that is not finite, the zeros that AddTo leaves out or adds to a row make a difference;
  /// here each row has its own columns and its own rest.
  void FillRows(std::size_t panel, const double* x, double* to) const;

 private:
  template <class Row>
  Panels(std::size_t columns, std::vector<std::size_t> lengths, Rest rest, const Row& row)
      : columns_(columns), lengths_(std::move(lengths)), rest_(rest) {
    LayOut();
    for (std::size_t r = 0; r < Rows(); ++r) {
      double* const to = values_.data() + starts_[r / kPanelRows] + r % kPanelRows;
      const double* const from = row(r);
      for (std::size_t c = 0; c < lengths_[r]; ++c) to[c * kPanelRows] = from[c];
    }
  }

  void LayOut();

  std::size_t columns_ = 0;
  std::vector<std::size_t> lengths_;  ///< the columns that each row stores
  Rest rest_ = Rest::Nothing;
  std::vector<std::size_t> starts_ = {0};  ///< of the panels, and the end of the last one
  std::vector<double> values_;
};

}  // namespace Tarvane::Plexura::PXROM::simd
