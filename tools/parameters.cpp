#include "parameters.h"

#include <algorithm>
#include <cstddef>
#include <utility>

#include "numbers.h"
#include "wording.h"

namespace pxrom_command {

namespace pxrom = Tarvane::Plexura::PXROM;

namespace {

/// The value that a query by ID gave for its one ID.
template <typename Value>
Value Only(const std::vector<std::pair<std::string, Value>>& named) {
  return named.empty() ? Value() : named.front().second;
}

}  // namespace

std::string Input::Bounds() const {
  if (!HasBounds()) return "";
  return Shown(lower) + " to " + Shown(upper) + (unit.empty() ? "" : " " + unit);
}

std::string Input::Described() const {
  std::string range;
  if (discrete) {
    constexpr std::size_t kMost = 20;
    for (std::size_t i = 0; i < std::min(values.size(), kMost); ++i) {
      if (i > 0) range += i + 1 == values.size() ? " or " : ", ";
      range += std::to_string(values[i]);
    }
    if (values.size() > kMost) range += " and " + std::to_string(values.size() - kMost) + " more";
  } else {
    range = HasBounds() ? Bounds() : unit;
  }
  return range.empty() ? id : id + " (" + range + ")";
}

std::vector<Input> InputsOf(const Model& model) {
  std::vector<Input> inputs;
  for (const std::string& id : model.ListParameterImmutableID(pxrom::CausalityInput, true)) {
    if (!model.IsDiscrete(id) && !model.IsContinuous(id)) continue;
    Input input;
    input.id = id;
    input.discrete = model.IsDiscrete(id);
    if (input.discrete) {
      input.values = model.ListRegisteredValuesForDiscreteParameter(id);
    } else {
      input.unit = UnitOf(model, id);
      input.lower = Only(model.ListLowerBound({id}));
      input.upper = Only(model.ListUpperBound({id}));
    }
    inputs.push_back(std::move(input));
  }
  const auto& rank = *model.GetRegistrationRank();
  std::stable_sort(inputs.begin(), inputs.end(), [&rank](const Input& a, const Input& b) {
    return rank.at(a.id) < rank.at(b.id);
  });
  return inputs;
}

std::string KindOf(const Model& model, const std::string& id) {
  std::string kind = model.IsOutput(id) ? "output" : "input";
  if (model.IsDerived(id)) {
    kind = "derived " + kind;
  } else if (model.IsDiscrete(id)) {
    kind = "discrete " + kind;
  } else if (model.IsInput(id)) {
    kind = "continuous " + kind;
  }
  return model.IsEnabled(id) ? kind : "disabled " + kind;
}

std::string CaptionOf(const Model& model, const std::string& id) {
  return Only(model.ListParameterCaption({id}));
}

std::string UnitOf(const Model& model, const std::string& id) {
  return Only(model.ListParameterUnit({id}));
}

std::string FittedCombinations(const Model& model) {
  constexpr std::size_t kMost = 20;
  const std::vector<std::string> names = model.ListEnabledDiscreteParameterWrtRegistrationRank();
  const auto& combinations = *model.GetDiscreteCombinationsIndexingPtr();
  std::string known;
  std::size_t shown = 0;
  for (auto entry = combinations.begin(); entry != combinations.end() && shown < kMost; ++entry) {
    const std::vector<int>& values = entry->first;
    std::string text;
    for (std::size_t i = 0; i < values.size() && i < names.size(); ++i) {
      if (text.size() > kLongestCombination) break;
      text += (i > 0 ? ", " : "") + names[i] + '=' + std::to_string(values[i]);
    }
    known += (shown++ > 0 ? "; " : "") + Cut(std::move(text), kLongestCombination);
  }
  if (combinations.size() > shown) {
    known += "; and " + std::to_string(combinations.size() - shown) + " more";
  }
  return known;
}

}  // namespace pxrom_command
