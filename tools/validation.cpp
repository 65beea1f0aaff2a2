#include "validation.h"

#include <algorithm>
#include <cmath>
#include <optional>

#include "csv_reader.h"
#include "numbers.h"
#include "point_columns.h"
#include "point_evaluator.h"
#include "points_source.h"
#include "refusal.h"
#include "wording.h"

namespace pxrom_command {

namespace pxrom = Tarvane::Plexura::PXROM;

namespace {

constexpr double kNone = std::numeric_limits<double>::quiet_NaN();

/// A column of measured values, and where an evaluation puts what belongs to it.
struct MeasuredColumn {
  std::string id;
  std::size_t field = 0;
  std::size_t value_heading = 0;  ///< that of the error follows
};

std::vector<MeasuredColumn> MeasuredColumnsOf(const Model& model, const CsvRow& header,
                                              const std::string& name) {
  std::vector<MeasuredColumn> columns;
  std::vector<std::string> ids;
  std::size_t heading = 0;
  for (const OutputColumns& output : OutputColumnsOf(model)) {
    ids.push_back(output.id);
    const auto first = std::find(header.fields.begin(), header.fields.end(), output.id);
    if (first != header.fields.end()) {
      if (std::find(first + 1, header.fields.end(), output.id) != header.fields.end()) {
        throw Refusal("the header of " + name + " has two columns " + Quoted(output.id));
      }
      MeasuredColumn column;
      column.id = output.id;
      column.field = static_cast<std::size_t>(first - header.fields.begin());
      column.value_heading = heading;
      columns.push_back(column);
    }
    heading += HeadingsOf({output}).size();
  }
  if (columns.empty()) {
    throw Refusal("the header of " + name +
                  " has no column of measured values: it needs at least one of the outputs " +
                  Listed(ids));
  }
  return columns;
}

bool IsMissing(const std::string& text) {
  return text.empty() || text == "NaN" || text == "nan" || text == "NA";
}

/// The measured values of a row. What is wrong with one of them goes to `fault`, unless that
/// already says what is wrong with the row.
std::vector<double> MeasuredIn(const CsvRow& row, const std::vector<MeasuredColumn>& columns,
                               std::string& fault) {
  constexpr std::size_t kLongest = 64;
  std::vector<double> values(columns.size(), kNone);
  for (std::size_t c = 0; c < columns.size(); ++c) {
    if (!row.fault.empty() || columns[c].field >= row.fields.size()) continue;
    const std::string& text = row.fields[columns[c].field];
    const std::optional<double> value = ParseReal(text);
    if (value.has_value()) {
      values[c] = *value;
    } else if (!IsMissing(text) && fault.empty()) {
      fault = "column " + Cut(columns[c].id, kLongest) + ": found " +
              Quoted(Printed(Cut(text, kLongest))) + ", expected a measured value or nothing";
    }
  }
  return values;
}

std::vector<int> KeyOf(const std::vector<std::pair<std::string, int>>& discrete) {
  std::vector<int> key;
  key.reserve(discrete.size());
  for (const auto& [name, value] : discrete) key.push_back(value);
  return key;
}

/// One output while the table is read.
class Comparison {
 public:
  Comparison(const ValidationOptions& options, MeasuredColumn column)
      : options_(options), column_(std::move(column)) {
    output_.id = column_.id;
  }

  /// `cells` are those of the row, which has no prediction if `combination` is null.
  void Add(std::size_t line, const PointEvaluator::Combination* combination,
           const std::optional<double>* cells, double measured) {
    if (combination == nullptr) {
      total_.Add(measured, kNone);
      return;
    }
    MeasuredPair pair;
    pair.line = line;
    pair.discrete = combination->discrete;
    pair.measured = measured;
    pair.predicted = cells[column_.value_heading].value_or(kNone);
    pair.error = cells[column_.value_heading + 1].value_or(kNone);
    total_.Add(pair.measured, pair.predicted, pair.error);
    auto& [discrete, part] = parts_[KeyOf(pair.discrete)];
    discrete = pair.discrete;
    part.Add(pair.measured, pair.predicted, pair.error);
    if (!std::isfinite(pair.measured) || !std::isfinite(pair.predicted)) return;
    if (output_.pairs.size() < options_.pairs) output_.pairs.push_back(pair);
    NoteWorst(pair);
  }

  ValidatedOutput Done() {
    output_.scores = total_.Scores();
    for (const auto& [key, part] : parts_) {
      output_.parts.push_back({part.first, part.second.Scores()});
    }
    return std::move(output_);
  }

 private:
  void NoteWorst(const MeasuredPair& pair) {
    std::vector<MeasuredPair>& worst = output_.worst;
    // Of equal differences the first in the table is listed first.
    const auto place = std::upper_bound(
        worst.begin(), worst.end(), pair, [](const MeasuredPair& a, const MeasuredPair& b) {
          return std::fabs(a.Difference()) > std::fabs(b.Difference());
        });
    if (worst.size() == options_.worst && place == worst.end()) return;
    worst.insert(place, pair);
    if (worst.size() > options_.worst) worst.pop_back();
  }

  const ValidationOptions& options_;
  MeasuredColumn column_;
  ValidatedOutput output_;
  pxrom::CPredictionComparison total_;
  std::map<std::vector<int>,
           std::pair<std::vector<std::pair<std::string, int>>, pxrom::CPredictionComparison>>
      parts_;
};

}  // namespace

Validation Validate(const Model& model, std::istream& table, const std::string& name,
                    const ValidationOptions& options) {
  CsvReader reader(table, name);
  const CsvRow header = HeaderOf(reader, name);
  const PointColumns columns(model, header, options.assignments, Quoted(name));
  const std::vector<MeasuredColumn> measured = MeasuredColumnsOf(model, header, Quoted(name));
  const std::size_t headings = HeadingsOf(OutputColumnsOf(model)).size();
  PointEvaluator evaluator(model, columns, pxrom::PrecisionExact, options.limit);

  std::vector<Comparison> comparisons;
  comparisons.reserve(measured.size());
  for (const MeasuredColumn& column : measured) comparisons.emplace_back(options, column);
  Validation done;
  const std::size_t rows_at_once = evaluator.RowsPerBlock();
  for (auto rows = NextRows(reader, rows_at_once); !rows.empty();
       rows = NextRows(reader, rows_at_once)) {
    for (CsvRow& row : rows) {
      if (!row.is_split) SplitFields(row);
    }
    PointEvaluator::Results results = evaluator.Predict(rows);
    done.rows += rows.size();
    done.outside_bounds += results.outside_bounds;
    for (std::size_t r = 0; r < rows.size(); ++r) {
      const std::vector<double> values = MeasuredIn(rows[r], measured, results.faults[r]);
      const auto* const cells = results.cells.data() + r * headings;
      for (std::size_t c = 0; c < measured.size(); ++c) {
        comparisons[c].Add(rows[r].line, results.combinations[r], cells, values[c]);
      }
      if (results.faults[r].empty()) continue;
      ++done.bad;
      if (done.faults.size() < PointEvaluator::kMostFaults) {
        done.faults.emplace_back(rows[r].line, std::move(results.faults[r]));
      }
    }
  }
  for (Comparison& comparison : comparisons) done.outputs.push_back(comparison.Done());
  return done;
}

}  // namespace pxrom_command
