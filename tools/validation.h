#pragma once

#include <cstddef>
#include <istream>
#include <limits>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "model_file.h"
#include "pxrom/evaluation_cost.h"
#include "pxrom/validation.h"

namespace pxrom_command {

/// One measured value beside what the model predicts for its row.
struct MeasuredPair {
  std::size_t line = 0;
  std::vector<std::pair<std::string, int>> discrete;
  double measured = 0.0;
  double predicted = 0.0;
  /// In the unit of the output; NaN for an output without an error.
  double error = std::numeric_limits<double>::quiet_NaN();

  double Difference() const { return predicted - measured; }
};

/// An output that a table has measured values of.
struct ValidatedOutput {
  /// The scores of one combination.
  struct Part {
    std::vector<std::pair<std::string, int>> discrete;
    Tarvane::Plexura::PXROM::CPredictionScores scores;
  };

  std::string id;
  /// Of all rows.
  Tarvane::Plexura::PXROM::CPredictionScores scores;
  /// By combination, in the order of its values.
  std::vector<Part> parts;
  /// The pairs that differ most, the largest difference first.
  std::vector<MeasuredPair> worst;
  /// The first pairs of the table, for a picture.
  std::vector<MeasuredPair> pairs;
};

struct Validation {
  /// By ID.
  std::vector<ValidatedOutput> outputs;
  std::size_t rows = 0;
  std::size_t bad = 0;
  /// The line of each of the first bad rows, and what is wrong with it.
  std::vector<std::pair<std::size_t, std::string>> faults;
  std::size_t outside_bounds = 0;
};

struct ValidationOptions {
  /// Values for all rows, as NAME=VALUE.
  std::vector<std::string> assignments;
  Tarvane::Plexura::PXROM::CEvaluationLimit limit;
  /// How many pairs are kept for each output.
  std::size_t worst = 0;
  std::size_t pairs = 0;
};

/// Compares a model with the measured outputs of a table. An empty cell, or one with NaN or NA, is
/// a missing value; a row with a cell that is no number is bad. Refusal when it can't begin or
/// continue, such as for a table without any output; it calls the table `name`.
Validation Validate(const Model& model, std::istream& table, const std::string& name,
                    const ValidationOptions& options);

}  // namespace pxrom_command
