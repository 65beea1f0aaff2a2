#pragma once

#include <cstddef>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "csv_reader.h"
#include "model_file.h"
#include "point_columns.h"
#include "prediction.h"
#include "pxrom/batch.h"

namespace pxrom_command {

/// A part of a table with its results.
struct EvaluatedRows {
  struct Fault {
    std::size_t line;
    std::string sentence;
  };

  /// Every row unchanged, with one more cell per heading; the new cells of a bad row are empty.
  std::string text;
  std::size_t rows = 0;
  std::size_t bad = 0;
  /// What is wrong with the first of the bad rows.
  std::vector<Fault> faults;
  std::size_t outside_bounds = 0;
};

/// Evaluates rows of points, each with the combination of discrete values that it names, and keeps
/// what it prepares for a combination. Any number of threads may use one; the results do not depend
/// on their number.
class PointEvaluator {
 public:
  /// The largest number of faults that are put in words.
  static constexpr std::size_t kMostFaults = 20;

  /// The model and the columns have to outlive the evaluator, which refuses combinations that cost
  /// more than `limit`.
  PointEvaluator(const Model& model, const PointColumns& columns,
                 Tarvane::Plexura::PXROM::E_PrecisionMode mode,
                 const Tarvane::Plexura::PXROM::CEvaluationLimit& limit);

  /// The number of rows to hand over at once: enough for the batches of the library, unless so many
  /// outputs would fill the memory with results. It does not depend on the number of jobs, since
  /// results of the fast mode may depend on the rows that are evaluated together.
  std::size_t RowsPerBlock() const;

  EvaluatedRows Evaluate(const std::vector<CsvRow>& rows);

  /// What is prepared for one combination, and the heading for each number.
  struct Combination {
    std::vector<std::pair<std::string, int>> discrete;
    Tarvane::Plexura::PXROM::CPreparedModel model;
    SampleLocator locator;
    /// Of each output; the heading of its error follows, and that of its raw error if it has one.
    std::vector<std::size_t> value_headings;
    std::vector<bool> has_raw_error;
  };
  /// For each row a cell per heading, its combination, and what is wrong with it. A row that can't
  /// be read has no combination.
  struct Results {
    std::vector<std::optional<double>> cells;
    std::vector<const Combination*> combinations;
    std::vector<std::string> faults;
    /// For each row the inputs that lie outside the samples of an output, and the largest distance
    /// to the nearest sample.
    std::vector<std::string> outside_samples;
    std::vector<std::optional<double>> distances;
    std::size_t outside_bounds = 0;
  };

  /// The numbers of Evaluate.
  Results Predict(const std::vector<CsvRow>& rows);

 private:
  /// The rows of one combination and their points, row by row.
  struct Group {
    const Combination* combination = nullptr;
    std::vector<std::size_t> rows;
    std::vector<double> points;
  };

  const Combination& Prepared(const Point& point);
  void EvaluateGroup(const Group& group, Results& results) const;
  static void LocateGroup(const Group& group, Results& results);
  void Append(const CsvRow& row, std::size_t place, const Results& results,
              std::string& text) const;

  const Model& model_;
  const PointColumns& columns_;
  Tarvane::Plexura::PXROM::E_PrecisionMode mode_;
  Tarvane::Plexura::PXROM::CEvaluationLimit limit_;
  std::vector<OutputColumns> outputs_;
  std::size_t headings_ = 0;
  std::mutex mutex_;
  std::map<std::vector<int>, Combination> prepared_;
};

}  // namespace pxrom_command
