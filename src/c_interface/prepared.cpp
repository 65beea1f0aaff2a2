#include <algorithm>
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "c_interface/border.h"
#include "c_interface/model.h"
#include "pxrom/batch.h"
#include "pxrom/inspection.h"

namespace pxrom = Tarvane::Plexura::PXROM;
using namespace Tarvane::Plexura::PXROM::c_interface;

struct pxrom_prepared {
  pxrom::CPreparedModel model;
  /// For each output, whether its error is in the output's unit.
  std::vector<bool> error_in_unit;
};

namespace {

using DiscreteValues = std::vector<std::pair<std::string, int>>;

DiscreteValues NamedValues(const pxrom_model& model, const char* const* names,
                           const std::int32_t* values, std::size_t count) {
  const std::vector<std::size_t>& inputs = model.lists[PXROM_DISCRETE_INPUTS];
  if (count != inputs.size()) {
    throw Refusal{PXROM_REFUSED, "the model has " + std::to_string(inputs.size()) +
                                     " discrete inputs, but " + std::to_string(count) +
                                     " values are given"};
  }
  if (count > 0) RequireArgument(values, "values");
  DiscreteValues named;
  for (std::size_t i = 0; i < count; ++i) {
    if (names != nullptr) RequireArgument(names[i], "one of names");
    named.emplace_back(names != nullptr ? names[i] : model.parameters[inputs[i]].id, values[i]);
  }
  return named;
}

/// The values in the order of the discrete inputs. The library itself only checks the number of
/// registered names, so each input is searched for here.
std::vector<int> RankedValues(const pxrom_model& model, const DiscreteValues& named) {
  std::multimap<std::string_view, int> values;
  for (const auto& [id, value] : named) values.emplace(id, value);
  std::vector<int> ranked;
  for (const std::size_t place : model.lists[PXROM_DISCRETE_INPUTS]) {
    const std::string& id = model.parameters[place].id;
    const auto times = values.count(id);
    if (times != 1) {
      throw Refusal{PXROM_REFUSED, "the discrete input '" + pxrom::VisibleText(id) +
                                       "' needs one value, but " + std::to_string(times) +
                                       " are given"};
    }
    ranked.push_back(values.find(id)->second);
  }
  return ranked;
}

void NoteErrorUnits(const pxrom_model& model, const std::vector<int>& key,
                    pxrom_prepared& prepared) {
  const auto& indexing = *model.combinations.GetDiscreteCombinationsIndexingPtr();
  const auto found = indexing.find(key);
  if (found == indexing.end()) return;
  const auto& all = *model.combinations.GetOutputsWrtDiscCombPtr();
  for (const auto& [id, list] : all[static_cast<std::size_t>(found->second)]) {
    const pxrom::CFittingCandidate* const candidate = list->GetEvaluationCandidatePtr();
    prepared.error_in_unit.push_back(candidate != nullptr && candidate->GetIsErrPredRequired());
  }
}

DiscreteValues CheckedValues(const pxrom_model& model, const char* const* names,
                             const std::int32_t* values, std::size_t count) {
  DiscreteValues named = NamedValues(model, names, values, count);
  static_cast<void>(RankedValues(model, named));
  return named;
}

pxrom::E_PrecisionMode PrecisionOf(std::int32_t mode) {
  if (mode != PXROM_EXACT && mode != PXROM_FAST) {
    throw Refusal{PXROM_REFUSED,
                  "there is no mode " + std::to_string(mode) + ": it is 0 for exact or 1 for fast"};
  }
  return static_cast<pxrom::E_PrecisionMode>(mode);
}

void RequirePoints(const pxrom_prepared& prepared, const double* points, std::size_t rows) {
  if (rows > 0 && !prepared.model.InputIDs().empty()) RequireArgument(points, "points");
}

}  // namespace

pxrom_status pxrom_model_prepare(const pxrom_model* model, const char* const* names,
                                 const int32_t* values, size_t count, pxrom_prepared** prepared,
                                 char* message, size_t message_size) {
  const pxrom_cost none = {UINT64_MAX, UINT64_MAX};
  return pxrom_model_prepare_within(model, names, values, count, &none, prepared, message,
                                    message_size);
}

pxrom_status pxrom_model_cost(const pxrom_model* model, const char* const* names,
                              const int32_t* values, size_t count, pxrom_cost* cost, char* message,
                              size_t message_size) {
  return AtTheBorder(message, message_size, [&] {
    RequireArgument(model, "model");
    RequireArgument(cost, "cost");
    const DiscreteValues named = CheckedValues(*model, names, values, count);
    pxrom::CEvaluationCost found;
    std::string reason;
    if (pxrom::CPreparedModel::EstimateCost(model->combinations, named, found, &reason) != 0) {
      throw Refusal{PXROM_REFUSED, reason};
    }
    *cost = {found.operations, found.bytes};
  });
}

pxrom_status pxrom_model_prepare_within(const pxrom_model* model, const char* const* names,
                                        const int32_t* values, size_t count,
                                        const pxrom_cost* limit, pxrom_prepared** prepared,
                                        char* message, size_t message_size) {
  return AtTheBorder(message, message_size, [&] {
    RequireArgument(model, "model");
    RequireArgument(limit, "limit");
    RequireArgument(prepared, "prepared");
    const DiscreteValues named = CheckedValues(*model, names, values, count);
    auto made = std::make_unique<pxrom_prepared>();
    std::string reason;
    if (pxrom::CPreparedModel::Prepare(model->combinations, named, made->model, &reason,
                                       {limit->operations, limit->bytes}) != 0) {
      throw Refusal{PXROM_REFUSED, reason};
    }
    NoteErrorUnits(*model, RankedValues(*model, named), *made);
    *prepared = made.release();
  });
}

void pxrom_prepared_free(pxrom_prepared* prepared) { delete prepared; }

size_t pxrom_prepared_input_count(const pxrom_prepared* prepared) {
  return prepared != nullptr ? prepared->model.InputIDs().size() : 0;
}

size_t pxrom_prepared_output_count(const pxrom_prepared* prepared) {
  return prepared != nullptr ? prepared->model.OutputIDs().size() : 0;
}

int32_t pxrom_prepared_error_in_unit(const pxrom_prepared* prepared, size_t output) {
  if (prepared == nullptr || output >= prepared->error_in_unit.size()) return 0;
  return prepared->error_in_unit[output] ? 1 : 0;
}

int32_t pxrom_prepared_error_origin(const pxrom_prepared* prepared, size_t output, size_t* surface,
                                    int32_t* first_order) {
  pxrom::CErrorOrigin found;
  if (prepared != nullptr) found = prepared->model.ErrorOrigin(output);
  if (surface != nullptr) *surface = found.surface;
  if (first_order != nullptr) *first_order = found.firstOrder ? 1 : 0;
  return found.origin;
}

pxrom_status pxrom_prepared_evaluate(const pxrom_prepared* prepared, const double* points,
                                     size_t rows, int32_t mode, double* values, double* errors,
                                     int32_t* statuses, char* message, size_t message_size) {
  return AtTheBorder(message, message_size, [&] {
    RequireArgument(prepared, "prepared");
    const pxrom::E_PrecisionMode precision = PrecisionOf(mode);
    RequirePoints(*prepared, points, rows);
    if (rows > 0 && !prepared->model.OutputIDs().empty()) RequireArgument(values, "values");
    if (prepared->model.Evaluate(points, rows, precision, values, errors, statuses) != 0) {
      throw Refusal{PXROM_REFUSED, "the evaluation is refused"};
    }
  });
}

pxrom_status pxrom_prepared_evaluate_with_units(const pxrom_prepared* prepared,
                                                const double* points, size_t rows, int32_t mode,
                                                double* values, double* errors, double* lower,
                                                double* upper, double* raw_errors,
                                                int32_t* statuses, char* message,
                                                size_t message_size) {
  return AtTheBorder(message, message_size, [&] {
    RequireArgument(prepared, "prepared");
    const pxrom::E_PrecisionMode precision = PrecisionOf(mode);
    RequirePoints(*prepared, points, rows);
    if (prepared->model.EvaluateWithUnits(
            points, rows, precision, {values, errors, lower, upper, raw_errors, statuses}) != 0) {
      throw Refusal{PXROM_REFUSED, "the evaluation is refused"};
    }
  });
}

pxrom_status pxrom_prepared_sample_ranges(const pxrom_prepared* prepared, size_t output,
                                          double* lower, double* upper, char* message,
                                          size_t message_size) {
  return AtTheBorder(message, message_size, [&] {
    RequireArgument(prepared, "prepared");
    RequireArgument(lower, "lower");
    RequireArgument(upper, "upper");
    std::vector<double> lowest;
    std::vector<double> highest;
    if (prepared->model.SampleRanges(output, lowest, highest) != 0) {
      throw Refusal{PXROM_REFUSED,
                    output < prepared->model.OutputIDs().size()
                        ? "the model holds no samples of the output"
                        : "there is no output " + std::to_string(output) + ", counted from 0"};
    }
    std::copy(lowest.begin(), lowest.end(), lower);
    std::copy(highest.begin(), highest.end(), upper);
  });
}

pxrom_status pxrom_prepared_locate(const pxrom_prepared* prepared, const double* points,
                                   size_t rows, int32_t* inside, double* distances,
                                   signed char* sides, char* message, size_t message_size) {
  return AtTheBorder(message, message_size, [&] {
    RequireArgument(prepared, "prepared");
    RequirePoints(*prepared, points, rows);
    std::string reason;
    if (prepared->model.LocatePoints(points, rows, {inside, distances, sides}, &reason) != 0) {
      throw Refusal{PXROM_REFUSED, reason.empty() ? "the evaluation is refused" : reason};
    }
  });
}

pxrom_status pxrom_prepared_gradients(const pxrom_prepared* prepared, const double* points,
                                      size_t rows, double* gradients, int32_t* statuses,
                                      char* message, size_t message_size) {
  return AtTheBorder(message, message_size, [&] {
    RequireArgument(prepared, "prepared");
    RequirePoints(*prepared, points, rows);
    if (rows > 0 && !prepared->model.InputIDs().empty()) RequireArgument(gradients, "gradients");
    std::string reason;
    if (prepared->model.EvaluateGradients(points, rows, gradients, statuses, &reason) != 0) {
      throw Refusal{PXROM_REFUSED, reason.empty() ? "the evaluation is refused" : reason};
    }
  });
}
