#include "point_evaluator.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "csv_fields.h"
#include "numbers.h"
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
  combination.locator = SampleLocator(combination.model);
  const auto& candidates = OutputsAt(model_, point);
  std::size_t heading = 0;
  for (const OutputColumns& output : outputs_) {
    // Both lists are by ID.
    if (candidates.find(output.id) != candidates.end()) {
      combination.value_headings.push_back(heading);
      combination.has_raw_error.push_back(output.has_raw_error);
    }
    heading += output.Count();
  }
  return prepared_.emplace(key, std::move(combination)).first->second;
}

void PointEvaluator::EvaluateGroup(const Group& group, Results& results) const {
  const pxrom::CPreparedModel& model = group.combination->model;
  const std::vector<std::string>& ids = model.OutputIDs();
  const std::size_t rows = group.rows.size();
  std::vector<double> values(rows * ids.size());
  std::vector<double> errors(rows * ids.size());
  std::vector<double> raw_errors(rows * ids.size());
  std::vector<int> statuses(rows * ids.size());
  model.EvaluateWithUnits(
      group.points.data(), rows, mode_,
      {values.data(), errors.data(), nullptr, nullptr, raw_errors.data(), statuses.data()});

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
      const std::size_t heading = group.combination->value_headings[o];
      cells[heading] = values[k];
      if (statuses[k] != 0) continue;
      cells[heading + 1] = errors[k];
      if (group.combination->has_raw_error[o]) cells[heading + 2] = raw_errors[k];
    }
  }
}

void PointEvaluator::LocateGroup(const Group& group, Results& results) {
  const SampleLocator& locator = group.combination->locator;
  const std::vector<std::string>& inputs = group.combination->model.InputIDs();
  // So many rows that the sides of all inputs don't fill the memory.
  const std::size_t per_row = std::max<std::size_t>(locator.Count() * inputs.size(), 1);
  const std::size_t most = std::max<std::size_t>(kMostCells / per_row, 1);
  for (std::size_t first = 0; first < group.rows.size(); first += most) {
    const std::size_t count = std::min(most, group.rows.size() - first);
    const SampleLocator::Places places =
        locator.Locate(group.points.data() + first * inputs.size(), count);
    for (std::size_t r = 0; r < count; ++r) {
      const std::size_t row = group.rows[first + r];
      std::vector<bool> is_outside(inputs.size());
      for (std::size_t k = r * locator.Count(); k < (r + 1) * locator.Count(); ++k) {
        const double distance = places.distances[k];
        if (!std::isnan(distance)) {
          results.distances[row] = std::max(results.distances[row].value_or(distance), distance);
        }
        for (std::size_t i = 0; i < inputs.size(); ++i) {
          if (places.sides[k * inputs.size() + i] != 0) is_outside[i] = true;
        }
      }
      std::string& names = results.outside_samples[row];
      for (std::size_t i = 0; i < inputs.size(); ++i) {
        if (is_outside[i]) names += (names.empty() ? "" : "; ") + inputs[i];
      }
    }
  }
}

void PointEvaluator::Append(const CsvRow& row, std::size_t place, const Results& results,
                            std::string& text) const {
  text += row.text;
  // The results of a row that is too short must not go to the columns that it lacks.
  if (row.fault.empty() && row.fields.size() < columns_.Count()) {
    text.append(columns_.Count() - row.fields.size(), ',');
  }
  const std::optional<double>* const cells = results.cells.data() + place * headings_;
  for (std::size_t h = 0; h < headings_; ++h) {
    text += ',';
    if (cells[h].has_value()) AppendShortest(*cells[h], text);
  }
  text += ',' + CsvField(results.outside_samples[place]) + ',';
  if (results.distances[place].has_value()) AppendShortest(*results.distances[place], text);
  text += row.line_end.empty() ? "\n" : row.line_end;
}

PointEvaluator::Results PointEvaluator::Predict(const std::vector<CsvRow>& rows) {
  Results results;
  results.cells.resize(rows.size() * headings_);
  results.combinations.resize(rows.size());
  results.faults.resize(rows.size());
  results.outside_samples.resize(rows.size());
  results.distances.resize(rows.size());

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
  for (const auto& [key, group] : groups) {
    EvaluateGroup(group, results);
    LocateGroup(group, results);
  }
  return results;
}

EvaluatedRows PointEvaluator::Evaluate(const std::vector<CsvRow>& rows) {
  EvaluatedRows done;
  done.rows = rows.size();
  Results results = Predict(rows);
  done.outside_bounds = results.outside_bounds;
  for (std::size_t r = 0; r < rows.size(); ++r) {
    Append(rows[r], r, results, done.text);
    if (results.faults[r].empty()) continue;
    ++done.bad;
    if (done.faults.size() < kMostFaults) {
      done.faults.push_back({rows[r].line, std::move(results.faults[r])});
    }
  }
  return done;
}

}  // namespace pxrom_command
