#include "c_interface/model.h"

#include <algorithm>
#include <memory>
#include <utility>

#include "c_interface/border.h"
#include "pxrom/inspection.h"

namespace Tarvane::Plexura::PXROM::c_interface {
namespace {

/// The only value in the result of a query for one ID.
template <class Value>
Value Only(const std::vector<std::pair<std::string, Value>>& named) {
  return named.empty() ? Value() : named.front().second;
}

pxrom_model::Parameter Describe(const CDiscreteCombinations& model, const std::string& id,
                                std::int32_t rank) {
  pxrom_model::Parameter parameter;
  parameter.id = id;
  parameter.unit = Only(model.ListParameterUnit({id}));
  parameter.caption = Only(model.ListParameterCaption({id}));
  pxrom_parameter& shown = parameter.shown;
  shown.causality = model.ListParameterCausality({id}).front();
  shown.type = model.ListParameterType({id}).front();
  shown.enabled = model.IsEnabled(id) ? 1 : 0;
  shown.rank = rank;
  shown.lower_bound = Only(model.ListLowerBound({id}));
  shown.upper_bound = Only(model.ListUpperBound({id}));
  shown.has_bounds = shown.lower_bound < shown.upper_bound ? 1 : 0;
  if (model.IsInput(id) && model.IsDiscrete(id) && model.IsEnabled(id)) {
    const std::vector<int> values = model.ListRegisteredValuesForDiscreteParameter(id);
    parameter.values.assign(values.begin(), values.end());
  }
  return parameter;
}

void Describe(pxrom_model& model) {
  const CDiscreteCombinations& combinations = model.combinations;
  for (const auto& [id, rank] : *combinations.GetRegistrationRank()) {
    if (!combinations.IsRegistered(id)) continue;
    model.parameters.push_back(Describe(combinations, id, rank));
  }
  for (pxrom_model::Parameter& parameter : model.parameters) {
    parameter.shown.id = parameter.id.c_str();
    parameter.shown.unit = parameter.unit.c_str();
    parameter.shown.caption = parameter.caption.c_str();
    parameter.shown.values = parameter.values.empty() ? nullptr : parameter.values.data();
    parameter.shown.value_count = parameter.values.size();
  }
  for (std::size_t i = 0; i < model.parameters.size(); ++i) {
    const pxrom_parameter& shown = model.parameters[i].shown;
    const bool input = shown.causality == CausalityInput;
    const bool continuous =
        shown.type == ContinuousNotManufacturable || shown.type == ContinuousManufacturable;
    model.lists[PXROM_ALL_PARAMETERS].push_back(i);
    if (shown.enabled == 0) continue;
    if (input && continuous) model.lists[PXROM_INPUTS].push_back(i);
    if (input && shown.type == DiscreteParameter) model.lists[PXROM_DISCRETE_INPUTS].push_back(i);
    if (!input && shown.type == ContinuousNotManufacturable) {
      model.lists[PXROM_OUTPUTS].push_back(i);
    }
  }
  // Parameters are ordered by ID. Outputs keep this order, and so do inputs of equal rank.
  for (const pxrom_list list : {PXROM_ALL_PARAMETERS, PXROM_INPUTS, PXROM_DISCRETE_INPUTS}) {
    std::stable_sort(model.lists[static_cast<std::size_t>(list)].begin(),
                     model.lists[static_cast<std::size_t>(list)].end(),
                     [&model](std::size_t a, std::size_t b) {
                       return model.parameters[a].shown.rank < model.parameters[b].shown.rank;
                     });
  }
  for (const auto& [values, position] : *combinations.GetDiscreteCombinationsIndexingPtr()) {
    model.keys.emplace_back(values.begin(), values.end());
  }
}

const std::vector<std::size_t>& ListOf(const pxrom_model& model, int32_t list) {
  if (list < PXROM_ALL_PARAMETERS || list > PXROM_OUTPUTS) {
    throw Refusal{PXROM_REFUSED,
                  "there is no list " + std::to_string(list) + ": lists are numbered from 0 to 3"};
  }
  return model.lists[static_cast<std::size_t>(list)];
}

void RequireIndex(std::size_t index, std::size_t count, const char* what) {
  if (index < count) return;
  throw Refusal{PXROM_REFUSED, std::string("there is no ") + what + ' ' + std::to_string(index) +
                                   ": they are " + std::to_string(count) + ", numbered from 0"};
}

}  // namespace
}  // namespace Tarvane::Plexura::PXROM::c_interface

namespace pxrom = Tarvane::Plexura::PXROM;
using namespace Tarvane::Plexura::PXROM::c_interface;

pxrom_status pxrom_model_read(const char* text, size_t length, pxrom_model** model, char* message,
                              size_t message_size) {
  return AtTheBorder(message, message_size, [&] {
    std::string copy = RequireText(text, length);
    RequireArgument(model, "model");
    auto read = std::make_unique<pxrom_model>();
    std::string reason;
    if (pxrom::ReadExplainedPXROMDatabase(std::move(copy), read->combinations, reason) != 0) {
      throw Refusal{PXROM_REFUSED, reason};
    }
    Describe(*read);
    *model = read.release();
  });
}

void pxrom_model_free(pxrom_model* model) { delete model; }

pxrom_status pxrom_model_count(const pxrom_model* model, int32_t list, size_t* count, char* message,
                               size_t message_size) {
  return AtTheBorder(message, message_size, [&] {
    RequireArgument(model, "model");
    RequireArgument(count, "count");
    *count = ListOf(*model, list).size();
  });
}

pxrom_status pxrom_model_parameter(const pxrom_model* model, int32_t list, size_t index,
                                   pxrom_parameter* parameter, char* message, size_t message_size) {
  return AtTheBorder(message, message_size, [&] {
    RequireArgument(model, "model");
    RequireArgument(parameter, "parameter");
    const std::vector<std::size_t>& places = ListOf(*model, list);
    RequireIndex(index, places.size(), "parameter");
    *parameter = model->parameters[places[index]].shown;
  });
}

pxrom_status pxrom_model_combination_count(const pxrom_model* model, size_t* count, char* message,
                                           size_t message_size) {
  return AtTheBorder(message, message_size, [&] {
    RequireArgument(model, "model");
    RequireArgument(count, "count");
    *count = model->keys.size();
  });
}

pxrom_status pxrom_model_combination(const pxrom_model* model, size_t index, const int32_t** values,
                                     char* message, size_t message_size) {
  return AtTheBorder(message, message_size, [&] {
    RequireArgument(model, "model");
    RequireArgument(values, "values");
    RequireIndex(index, model->keys.size(), "combination");
    const std::vector<std::int32_t>& key = model->keys[index];
    *values = key.empty() ? nullptr : key.data();
  });
}
