#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "assignments.h"
#include "csv_reader.h"
#include "model_file.h"

namespace pxrom_command {

/// What the columns of a table of points mean: from its header and from the inputs that have one
/// value for all rows.
class PointColumns {
 public:
  /// Refusal that begins with `name`, the table's, when an input has no column and no assignment,
  /// or more than one of them, and when a column has the name of one that is to be added.
  PointColumns(const Model& model, const CsvRow& header,
               const std::vector<std::string>& assignments, const std::string& name);

  /// The point of a row, by rank, into `point`; or what is wrong with the row, as a part of a
  /// sentence.
  std::string Read(const Model& model, const CsvRow& row, Point& point) const;
  /// Whether a value of the point of such a row lies outside its bounds.
  bool IsOutsideBounds(const Point& point) const;

  /// The number of fields in the header.
  std::size_t Count() const { return count_; }

 private:
  struct Column {
    std::size_t index;
    Input input;
  };

  std::size_t count_;
  std::vector<Column> columns_;
  Point fixed_;
  std::vector<Input> bounded_;
};

/// The columns that an output adds to a table. An error in the output's unit and one in a scaled
/// space are different things, and which of them there is depends on the combination.
struct OutputColumns {
  std::string id;
  bool has_error = false;
  bool has_scaled_error = false;
};

/// By ID.
std::vector<OutputColumns> OutputColumnsOf(const Model& model);
/// "deflection", "deflection error", "deflection scaled error" and so on.
std::vector<std::string> HeadingsOf(const std::vector<OutputColumns>& outputs);

}  // namespace pxrom_command
