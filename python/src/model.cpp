#include <pybind11/numpy.h>
#include <pybind11/pybind11.h>
#include <pybind11/stl.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "bindings.h"
#include "pxrom/batch.h"
#include "pxrom/discrete_combinations.h"
#include "pxrom/inspection.h"
#include "pxrom/writer.h"
#include "segments.h"
#include "text.h"

namespace py = pybind11;
namespace pxrom = Tarvane::Plexura::PXROM;

namespace pxrom_python {
namespace {

using Table = py::array_t<double, py::array::c_style>;
using Statuses = py::array_t<int, py::array::c_style>;

/// The objects of a text. They never change after they are read, so threads may share them.
std::shared_ptr<pxrom::CDiscreteCombinations> ReadModel(const py::str& given) {
  const std::string text = ToBytes(given);
  std::string reason;
  auto model = std::make_shared<pxrom::CDiscreteCombinations>();
  {
    const py::gil_scoped_release unlocked;
    pxrom::ReadExplainedPXROMDatabase(text, *model, reason);
  }
  if (!reason.empty()) throw py::value_error(reason);
  return model;
}

template <class Value>
Value Only(const std::vector<std::pair<std::string, Value>>& named) {
  return named.empty() ? Value() : named.front().second;
}

/// One dict per parameter, by ID.
py::list Parameters(const pxrom::CDiscreteCombinations& model) {
  py::list all;
  for (const auto& [id, rank] : *model.GetRegistrationRank()) {
    if (!model.IsRegistered(id)) continue;
    py::dict parameter;
    parameter["name"] = ToStr(id);
    parameter["rank"] = rank;
    parameter["is_input"] = model.IsInput(id);
    parameter["type"] = static_cast<int>(model.ListParameterType({id}).front());
    parameter["enabled"] = model.IsEnabled(id);
    parameter["unit"] = ToStr(Only(model.ListParameterUnit({id})));
    parameter["caption"] = ToStr(Only(model.ListParameterCaption({id})));
    parameter["lower"] = Only(model.ListLowerBound({id}));
    parameter["upper"] = Only(model.ListUpperBound({id}));
    py::tuple values(0);
    // Of any other parameter the library would list the values of the first discrete one.
    if (model.IsInput(id) && model.IsDiscrete(id) && model.IsEnabled(id)) {
      values = py::tuple(py::cast(model.ListRegisteredValuesForDiscreteParameter(id)));
    }
    parameter["values"] = values;
    all.append(parameter);
  }
  return all;
}

/// The keys of the combinations, ascending, with the IDs of the outputs whose error is in a scaled
/// space.
py::list Combinations(const pxrom::CDiscreteCombinations& model) {
  py::list all;
  const auto& outputs = *model.GetOutputsWrtDiscCombPtr();
  for (const auto& [key, position] : *model.GetDiscreteCombinationsIndexingPtr()) {
    py::list scaled;
    for (const auto& [id, list] : outputs[static_cast<std::size_t>(position)]) {
      const pxrom::CFittingCandidate* const candidate = list->GetEvaluationCandidatePtr();
      if (candidate != nullptr && !candidate->GetIsErrPredRequired()) scaled.append(ToStr(id));
    }
    all.append(py::make_tuple(py::tuple(py::cast(key)), py::tuple(scaled)));
  }
  return all;
}

/// (rows of inputs, outputs) that the database keeps for one output of a combination.
py::tuple Samples(const pxrom::CDiscreteCombinations& model, const std::vector<int>& key,
                  const py::str& output) {
  const auto& indexing = *model.GetDiscreteCombinationsIndexingPtr();
  const auto combination = indexing.find(key);
  std::vector<std::vector<double>> inputs;
  std::vector<double> outputs;
  if (combination != indexing.end()) {
    const auto& all = *model.GetOutputsWrtDiscCombPtr();
    const auto& lists = all[static_cast<std::size_t>(combination->second)];
    const auto found = lists.find(ToBytes(output));
    const pxrom::CFittingCandidate* const candidate =
        found != lists.end() ? found->second->GetEvaluationCandidatePtr() : nullptr;
    if (candidate != nullptr) {
      candidate->GetInputSamples(inputs);
      candidate->GetOutputSamples(outputs);
    }
  }
  return py::make_tuple(inputs, outputs);
}

using DiscreteValues = std::vector<std::pair<std::string, int>>;

DiscreteValues NamedValues(const std::vector<std::pair<py::str, int>>& given) {
  DiscreteValues values;
  values.reserve(given.size());
  for (const auto& [id, value] : given) values.emplace_back(ToBytes(id), value);
  return values;
}

/// (operations, bytes)
py::tuple CostOf(const pxrom::CDiscreteCombinations& model,
                 const std::vector<std::pair<py::str, int>>& given) {
  pxrom::CEvaluationCost cost;
  std::string reason;
  if (pxrom::CPreparedModel::EstimateCost(model, NamedValues(given), cost, &reason) != 0) {
    throw py::value_error(reason);
  }
  return py::make_tuple(cost.operations, cost.bytes);
}

pxrom::CPreparedModel Prepare(const pxrom::CDiscreteCombinations& model,
                              const std::vector<std::pair<py::str, int>>& given,
                              std::optional<std::uint64_t> operations,
                              std::optional<std::uint64_t> bytes) {
  const DiscreteValues values = NamedValues(given);
  pxrom::CEvaluationLimit limit;
  if (operations.has_value()) limit.operations = *operations;
  if (bytes.has_value()) limit.bytes = *bytes;
  pxrom::CPreparedModel prepared;
  std::string reason;
  int status = 1;
  {
    const py::gil_scoped_release unlocked;
    status = pxrom::CPreparedModel::Prepare(model, values, prepared, &reason, limit);
  }
  if (status != 0) throw py::value_error(reason);
  return prepared;
}

py::tuple Names(const std::vector<std::string>& ids) {
  py::tuple names(ids.size());
  for (std::size_t i = 0; i < ids.size(); ++i) names[i] = ToStr(ids[i]);
  return names;
}

pxrom::CPreparedModel Select(const pxrom::CPreparedModel& model,
                             const std::vector<py::str>& outputs) {
  std::vector<std::string> ids;
  for (const py::str& output : outputs) ids.push_back(ToBytes(output));
  pxrom::CPreparedModel selected;
  std::string reason;
  if (model.Select(ids, selected, &reason) != 0) throw py::value_error(reason);
  return selected;
}

py::ssize_t Columns(const std::vector<std::string>& ids) {
  return static_cast<py::ssize_t>(ids.size());
}

/// The number of rows of a table that has one column per input.
py::ssize_t RowsOf(const pxrom::CPreparedModel& model, const Table& points) {
  if (points.ndim() != 2 || points.shape(1) != Columns(model.InputIDs())) {
    throw py::value_error("points must be a table with one column per input");
  }
  return points.shape(0);
}

/// (values, statuses), each of the shape (rows, outputs).
py::tuple Evaluate(const pxrom::CPreparedModel& model, const Table& points, bool fast,
                   std::size_t jobs) {
  const py::ssize_t rows = RowsOf(model, points);
  const std::vector<py::ssize_t> shape = {rows, Columns(model.OutputIDs())};
  Table values(shape);
  Statuses statuses(shape);
  const double* const x = points.data();
  double* const v = values.mutable_data();
  int* const s = statuses.mutable_data();
  const std::size_t inputs = model.InputIDs().size();
  const std::size_t outputs = model.OutputIDs().size();
  ForSegments(static_cast<std::size_t>(rows), jobs, [&](std::size_t first, std::size_t count) {
    const std::size_t at = first * outputs;
    model.Evaluate(x + first * inputs, count, fast ? pxrom::PrecisionFast : pxrom::PrecisionExact,
                   v + at, nullptr, s + at);
  });
  return py::make_tuple(values, statuses);
}

/// (values, errors, lower, upper, raw errors, statuses), each of the shape (rows, outputs).
py::tuple EvaluateWithErrors(const pxrom::CPreparedModel& model, const Table& points, bool fast,
                             std::size_t jobs) {
  const py::ssize_t rows = RowsOf(model, points);
  const std::vector<py::ssize_t> shape = {rows, Columns(model.OutputIDs())};
  Table values(shape);
  Table errors(shape);
  Table lower(shape);
  Table upper(shape);
  Table rawErrors(shape);
  Statuses statuses(shape);
  const double* const x = points.data();
  const pxrom::CResultsInUnits to = {values.mutable_data(),    errors.mutable_data(),
                                     lower.mutable_data(),     upper.mutable_data(),
                                     rawErrors.mutable_data(), statuses.mutable_data()};
  const std::size_t inputs = model.InputIDs().size();
  const std::size_t outputs = model.OutputIDs().size();
  ForSegments(static_cast<std::size_t>(rows), jobs, [&](std::size_t first, std::size_t count) {
    const std::size_t at = first * outputs;
    model.EvaluateWithUnits(x + first * inputs, count,
                            fast ? pxrom::PrecisionFast : pxrom::PrecisionExact,
                            {to.values + at, to.errors + at, to.lower + at, to.upper + at,
                             to.rawErrors + at, to.statuses + at});
  });
  return py::make_tuple(values, errors, lower, upper, rawErrors, statuses);
}

/// (origin, surface, number of surfaces, first order) for each output.
py::list ErrorOrigins(const pxrom::CPreparedModel& model) {
  py::list all;
  for (std::size_t output = 0; output < model.OutputIDs().size(); ++output) {
    const pxrom::CErrorOrigin found = model.ErrorOrigin(output);
    all.append(py::make_tuple(static_cast<int>(found.origin), found.surface, found.surfaces,
                              found.firstOrder));
  }
  return all;
}

/// (lower, upper) of the samples of one output, empty where the model holds none.
py::tuple SampleRanges(const pxrom::CPreparedModel& model, std::size_t output) {
  std::vector<double> lower;
  std::vector<double> upper;
  model.SampleRanges(output, lower, upper);
  return py::make_tuple(lower, upper);
}

/// (inside, distances, sides): (rows, outputs) twice and (rows, outputs, inputs).
py::tuple Locate(const pxrom::CPreparedModel& model, const Table& points, std::size_t jobs) {
  const py::ssize_t rows = RowsOf(model, points);
  const py::ssize_t columns = Columns(model.OutputIDs());
  Statuses inside(std::vector<py::ssize_t>{rows, columns});
  Table distances(std::vector<py::ssize_t>{rows, columns});
  py::array_t<signed char> sides({rows, columns, Columns(model.InputIDs())});
  const double* const x = points.data();
  const pxrom::CLocations to = {inside.mutable_data(), distances.mutable_data(),
                                sides.mutable_data()};
  const std::size_t inputs = model.InputIDs().size();
  const std::size_t outputs = model.OutputIDs().size();
  ForSegments(static_cast<std::size_t>(rows), jobs, [&](std::size_t first, std::size_t count) {
    const std::size_t at = first * outputs;
    std::string reason;
    model.LocatePoints(x + first * inputs, count,
                       {to.inside + at, to.distances + at, to.sides + at * inputs}, &reason);
    if (!reason.empty()) throw py::value_error(reason);
  });
  return py::make_tuple(inside, distances, sides);
}

/// (gradients, statuses): (rows, outputs, inputs) and (rows, outputs).
py::tuple EvaluateGradients(const pxrom::CPreparedModel& model, const Table& points,
                            std::size_t jobs) {
  const py::ssize_t rows = RowsOf(model, points);
  const py::ssize_t outputs = Columns(model.OutputIDs());
  Table gradients(std::vector<py::ssize_t>{rows, outputs, Columns(model.InputIDs())});
  Statuses statuses(std::vector<py::ssize_t>{rows, outputs});
  const double* const x = points.data();
  double* const g = gradients.mutable_data();
  int* const s = statuses.mutable_data();
  const std::size_t inputs = model.InputIDs().size();
  const std::size_t columns = model.OutputIDs().size();
  ForSegments(static_cast<std::size_t>(rows), jobs, [&](std::size_t first, std::size_t count) {
    std::string reason;
    model.EvaluateGradients(x + first * inputs, count, g + first * columns * inputs,
                            s + first * columns, &reason);
    if (!reason.empty()) throw py::value_error(reason);
  });
  return py::make_tuple(gradients, statuses);
}

}  // namespace

py::str ToText(const pxrom::CDiscreteCombinations& model) {
  std::string text;
  std::string reason;
  int status = 1;
  {
    const py::gil_scoped_release unlocked;
    status = pxrom::CWriterPXROMDatabase().WriteDiscreteCombinations(model, text, reason);
  }
  if (status != 0) throw py::value_error(reason);
  return ToStr(text);
}

void BindModel(py::module_& module) {
  py::class_<pxrom::CDiscreteCombinations, std::shared_ptr<pxrom::CDiscreteCombinations>>(
      module, "Combinations", "All combinations of a database.")
      .def("parameters", &Parameters)
      .def("combinations", &Combinations)
      .def("samples", &Samples, py::arg("key"), py::arg("output"))
      .def("cost", &CostOf, py::arg("values"))
      .def("prepare", &Prepare, py::arg("values"), py::arg("operations"), py::arg("bytes"))
      .def("to_text", &ToText);
  module.def("read", &ReadModel, py::arg("text"));

  py::class_<pxrom::CPreparedModel>(module, "Prepared", "One combination, ready for many points.")
      .def_property_readonly("inputs",
                             [](const pxrom::CPreparedModel& m) { return Names(m.InputIDs()); })
      .def_property_readonly("outputs",
                             [](const pxrom::CPreparedModel& m) { return Names(m.OutputIDs()); })
      .def("select", &Select, py::arg("outputs"))
      .def("evaluate", &Evaluate, py::arg("points"), py::arg("fast"), py::arg("jobs"))
      .def("evaluate_with_errors", &EvaluateWithErrors, py::arg("points"), py::arg("fast"),
           py::arg("jobs"))
      .def("error_origins", &ErrorOrigins)
      .def("sample_ranges", &SampleRanges, py::arg("output"))
      .def("locate", &Locate, py::arg("points"), py::arg("jobs"))
      .def("gradients", &EvaluateGradients, py::arg("points"), py::arg("jobs"));
}

}  // namespace pxrom_python
