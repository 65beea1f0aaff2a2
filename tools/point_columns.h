#pragma once

#include <cstddef>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "assignments.h"
#include "csv_reader.h"
#include "model_file.h"

namespace pxrom_command {

/// The meaning of the columns of a table of points, from its header and from the inputs with one
/// value for all rows.
class PointColumns {
 public:
  /// Refusal that names the table, `name`, when an input has no column and no assignment, or more
  /// than one of them.
  PointColumns(const Model& model, const CsvRow& header,
               const std::vector<std::string>& assignments, const std::string& name);

  /// Writes the point of a row, by rank, to `point`. Returns what is wrong with the row, as a part
  /// of a sentence, or an empty string.
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
  /// The bounds of the inputs that have some, by ID.
  std::unordered_map<std::string, std::pair<double, double>> bounds_;
};

/// The columns that an output adds to a table: its value, its error and, if that does not always
/// come from cross-validation, its raw error.
struct OutputColumns {
  std::string id;
  bool has_raw_error = false;

  std::size_t Count() const { return has_raw_error ? 3 : 2; }
};

/// The last columns of the result, of the place of the point among the samples.
inline constexpr const char* kLocationHeadings[] = {"outside samples", "sample distance"};

/// By ID.
std::vector<OutputColumns> OutputColumnsOf(const Model& model);
/// "deflection", "deflection error", "deflection raw error" and so on.
std::vector<std::string> HeadingsOf(const std::vector<OutputColumns>& outputs);
/// Refusal that names the table, `name`, when one of its columns has the name of a column that an
/// evaluation adds.
void RequireNewHeadings(const Model& model, const CsvRow& header, const std::string& name);

}  // namespace pxrom_command
