#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace pxrom_command {

struct PointsOptions {
  std::string model;
  /// Values for all rows, as NAME=VALUE.
  std::vector<std::string> assignments;
  /// The table; "-" is the standard input.
  std::string table;
  /// The result; empty is the standard output.
  std::string out;
  bool fast = false;
  std::size_t jobs = 1;
};

/// Evaluates a table of points row by row: pxrom eval --points. Refusal when that can't begin or
/// go on; ends with status 1 by CLI::RuntimeError after rows that were bad.
void EvalPoints(const PointsOptions& options);

}  // namespace pxrom_command
