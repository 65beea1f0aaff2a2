#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "pxrom/evaluation_cost.h"

namespace pxrom_command {

struct PointsOptions {
  std::string model;
  /// Values for all rows, as NAME=VALUE.
  std::vector<std::string> assignments;
  /// The table; "-" is the standard input.
  std::string table;
  /// The result; empty is the standard output.
  std::string out;
  Tarvane::Plexura::PXROM::CEvaluationLimit limit;
  bool fast = false;
  std::size_t jobs = 1;
};

/// Evaluates a table of points row by row: pxrom eval --points. Refusal when it can't begin or
/// continue; CLI::RuntimeError with status 1 at the end if rows were bad.
void EvalPoints(const PointsOptions& options);

}  // namespace pxrom_command
