#include "point_evaluator.h"

#include <algorithm>
#include <utility>

#include "numbers.h"
#include "prediction.h"
#include "refusal.h"
#include "wording.h"

namespace pxrom_command {

namespace pxrom = Tarvane::Plexura::PXROM;

namespace {
constexpr std::size_t kLongestName = 64;
constexpr std::size_t kMostRows = 2048;
constexpr std::size_t kMostCells = std::size_t{1} << 20U;
}  // namespace

PointEvaluator::PointEvaluator(const Model& model, const PointColumns& columns,
                               pxrom::E_PrecisionMode mode, const pxrom::CEvaluationLimit& limit)
    : model_(model),
      columns_(columns),
      mode_(mode),
      limit_(limit),
      outputs_(OutputColumnsOf(model)),
      headings_(HeadingsOf(outputs_).size()) {}

std::size_t PointEvaluator::RowsPerBlock() const {
  const std::size_t rows = kMostCells / std::max<std::size_t>(headings_, 1);
  return std::clamp<std::size_t>(rows, 1, kMostRows);
}

const PointEvaluator::Combination& PointEvaluator::Prepared(const Point& point) {
  const std::vector<int> key = point.Combination();
  const std::lock_guard<std::mutex> lock(mutex_);
  const auto known = prepared_.find(key);
  if (known != prepared_.end()) return known->second;

  Combination combination;
  combination.discrete = point.discrete;
  std::string reason;
  RequireWithin(limit_, model_, point);
  if (pxrom::CPreparedModel::Prepare(model_, point.discrete, combination.model, &reason) != 0) {
    throw Refusal("the library can't prepare " + point.CombinationText() + ": " + reason);
  }
  const auto& candidates = OutputsAt(model_, point);
  std::size_t heading = 0;
  for (const OutputColumns& output : outputs_) {
    const std::size_t value = heading++;
    const std::size_t error = heading;
    heading += (output.has_error ? 1U : 0U) + (output.has_scaled_error ? 1U : 0U);
    // Both lists are by ID.
    const auto at = candidates.find(output.id);
    if (at == candidates.end()) continue;
    const bool behind = output.has_error && ErrorSpaceOf(*at->second) == ErrorSpace::Scaled;
    combination.value_headings.push_back(value);
    combination.error_headings.push_back(error + (behind ? 1U : 0U));
  }
  return prepared_.emplace(key, std::move(combination)).first->second;
}

void PointEvaluator::EvaluateGroup(const Group& group, Results& results) const {
  const pxrom::CPreparedModel& model = group.combination->model;
  const std::vector<std::string>& ids = model.OutputIDs();
  const std::size_t rows = group.rows.size();
  std::vector<double> values(rows * ids.size());
  std::vector<double> errors(rows * ids.size());
  std::vector<int> statuses(rows * ids.size());
  model.Evaluate(group.points.data(), rows, mode_, values.data(), errors.data(), statuses.data());
  if (std::find(statuses.begin(), statuses.end(), 1) != statuses.end()) {
    // Families without an error have values if they are not asked for one.
    std::vector<double> alone(values.size());
    std::vector<int> again(statuses.size());
    model.Evaluate(group.points.data(), rows, mode_, alone.data(), nullptr, again.data());
    for (std::size_t k = 0; k < statuses.size(); ++k) {
      if (statuses[k] != 1 || again[k] != 0) continue;
      statuses[k] = -2;
      values[k] = alone[k];
    }
  }

  for (std::size_t r = 0; r < rows; ++r) {
    const std::size_t row = group.rows[r];
    std::optional<double>* const cells = results.cells.data() + row * headings_;
    for (std::size_t o = 0; o < ids.size(); ++o) {
      const std::size_t k = r * ids.size() + o;
      if (statuses[k] == 1) {
        if (results.faults[row].empty()) {
          results.faults[row] = "the library can't evaluate the output " +
                                Quoted(Cut(ids[o], kLongestName)) + " here";
        }
        continue;
      }
      cells[group.combination->value_headings[o]] = values[k];
      if (statuses[k] == 0) cells[group.combination->error_headings[o]] = errors[k];
    }
  }
}

void PointEvaluator::Append(const CsvRow& row, const std::optional<double>* cells,
                            std::string& text) const {
  text += row.text;
  // The results of a row that is too short must not go to the columns that it lacks.
  if (row.fault.empty() && row.fields.size() < columns_.Count()) {
    text.append(columns_.Count() - row.fields.size(), ',');
  }
  for (std::size_t h = 0; h < headings_; ++h) {
    text += ',';
    if (cells[h].has_value()) AppendShortest(*cells[h], text);
  }
  text += row.line_end.empty() ? "\n" : row.line_end;
}

PointEvaluator::Results PointEvaluator::Predict(const std::vector<CsvRow>& rows) {
  Results results;
  results.cells.resize(rows.size() * headings_);
  results.combinations.resize(rows.size());
  results.faults.resize(rows.size());

  std::map<std::vector<int>, Group> groups;
  Point point;
  for (std::size_t r = 0; r < rows.size(); ++r) {
    results.faults[r] = columns_.Read(model_, rows[r], point);
    if (!results.faults[r].empty()) continue;
    if (columns_.IsOutsideBounds(point)) ++results.outside_bounds;
    Group& group = groups[point.Combination()];
    if (group.combination == nullptr) group.combination = &Prepared(point);
    results.combinations[r] = group.combination;
    group.rows.push_back(r);
    for (const auto& [id, value] : point.continuous) group.points.push_back(value);
  }
  for (const auto& [key, group] : groups) EvaluateGroup(group, results);
  return results;
}

EvaluatedRows PointEvaluator::Evaluate(const std::vector<CsvRow>& rows) {
  EvaluatedRows done;
  done.rows = rows.size();
  Results results = Predict(rows);
  done.outside_bounds = results.outside_bounds;
  for (std::size_t r = 0; r < rows.size(); ++r) {
    Append(rows[r], results.cells.data() + r * headings_, done.text);
    if (results.faults[r].empty()) continue;
    ++done.bad;
    if (done.faults.size() < kMostFaults) {
      done.faults.push_back({rows[r].line, std::move(results.faults[r])});
    }
  }
  return done;
}

}  // namespace pxrom_command
