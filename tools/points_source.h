#pragma once

#include <cstddef>
#include <fstream>
#include <istream>
#include <string>
#include <vector>

#include "csv_reader.h"

namespace pxrom_command {

/// Where a table of points comes from and what messages call it. "-" is the standard input.
class PointsSource {
 public:
  /// Refusal when the file can't be opened.
  explicit PointsSource(const std::string& path);

  const std::string& Name() const { return name_; }
  std::istream& Stream();

 private:
  std::string name_;
  std::ifstream file_;
};

/// The first row. Refusal when the table is empty.
CsvRow HeaderOf(CsvReader& reader, const std::string& name);
/// At most `most` rows, fewer if they are long; empty at the end. Rows without quotation marks wait
/// for SplitFields.
std::vector<CsvRow> NextRows(CsvReader& reader, std::size_t most);

}  // namespace pxrom_command
