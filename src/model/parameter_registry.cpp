// The registry of parameters: the entries of CDiscreteCombinations for each ID.

#include <algorithm>

#include "pxrom/discrete_combinations.h"

namespace Tarvane::Plexura::PXROM {

namespace {

template <class Map>
const typename Map::mapped_type* Find(const Map& map, const std::string& id) {
  const auto entry = map.find(id);
  return entry == map.end() ? nullptr : &entry->second;
}

// One `value(id, entry)` for each ID that the map holds; the others are skipped.
template <class Result, class Map, class Value>
std::vector<Result> ListKnown(const Map& map, const std::vector<std::string>& ids, Value value) {
  std::vector<Result> list;
  for (const std::string& id : ids) {
    if (const auto* const entry = Find(map, id)) list.push_back(value(id, *entry));
  }
  return list;
}

bool IsContinuousType(E_ParameterType type) {
  return type == ContinuousNotManufacturable || type == ContinuousManufacturable;
}

}  // namespace

template <class Predicate>
std::size_t CDiscreteCombinations::CountIf(Predicate predicate) const {
  return static_cast<std::size_t>(
      std::count_if(Parameters.begin(), Parameters.end(),
                    [&](const auto& parameter) { return predicate(parameter.second); }));
}

template <class Predicate>
std::vector<std::string> CDiscreteCombinations::ListIf(Predicate predicate) const {
  std::vector<std::string> ids;
  for (const auto& [id, parameter] : Parameters) {
    if (predicate(parameter)) ids.push_back(id);
  }
  return ids;
}

int CDiscreteCombinations::RegisterParameter(const std::string& id, E_ParameterCausality causality,
                                             E_ParameterType type, bool enabled) {
  // Deliberate (repeated-rank): the rank is the number of entries before this call, also for an ID
  // that is registered already, so its new rank can repeat that of another ID.
  const auto rank = static_cast<std::int32_t>(RegistrationRank.size());
  Expected = {};
  RegistrationRank[id] = rank;
  Parameters[id] = {causality, type, enabled};
  return 0;
}

int CDiscreteCombinations::RegisterParameterExtraInfos(const std::string& id,
                                                       const std::string& name,
                                                       const std::string& unit,
                                                       const std::string& caption,
                                                       double upperBound, double lowerBound) {
  if (id.empty()) return 1;
  if (!name.empty()) NameToImmutableID[name] = id;
  Infos[id] = {unit, caption, upperBound, lowerBound};
  return 0;
}

int CDiscreteCombinations::SetRegistrationRank(
    const std::vector<std::pair<std::string, int>>& ranks) {
  if (ranks.size() != RegistrationRank.size()) return 1;
  Expected = {};
  for (const auto& [id, rank] : ranks) {
    const auto entry = RegistrationRank.find(id);
    if (entry == RegistrationRank.end()) return 1;
    entry->second = rank;
  }
  return 0;
}

const std::map<std::string, std::int32_t>* CDiscreteCombinations::GetRegistrationRank() const {
  return &RegistrationRank;
}

bool CDiscreteCombinations::IsRegistered(const std::string& id) const {
  return Find(RegistrationRank, id) != nullptr;
}

bool CDiscreteCombinations::IsInput(const std::string& id) const {
  const Parameter* const parameter = Find(Parameters, id);
  return parameter != nullptr && parameter->causality == CausalityInput;
}

bool CDiscreteCombinations::IsOutput(const std::string& id) const {
  const Parameter* const parameter = Find(Parameters, id);
  return parameter != nullptr && parameter->causality == CausalityOutput;
}

bool CDiscreteCombinations::IsContinuous(const std::string& id) const {
  const Parameter* const parameter = Find(Parameters, id);
  return parameter != nullptr && IsContinuousType(parameter->type);
}

bool CDiscreteCombinations::IsDiscrete(const std::string& id) const {
  const Parameter* const parameter = Find(Parameters, id);
  return parameter != nullptr && parameter->type == DiscreteParameter;
}

bool CDiscreteCombinations::IsDerived(const std::string& id) const {
  const Parameter* const parameter = Find(Parameters, id);
  return parameter != nullptr && parameter->type == DerivedParameter;
}

bool CDiscreteCombinations::IsEnabled(const std::string& id) const {
  const Parameter* const parameter = Find(Parameters, id);
  return parameter != nullptr && parameter->enabled;
}

std::size_t CDiscreteCombinations::ParameterCount() const { return Parameters.size(); }

std::size_t CDiscreteCombinations::EnabledParameterCount() const {
  return CountIf([](const Parameter& p) { return p.enabled; });
}

std::size_t CDiscreteCombinations::InputParameterCount() const {
  return CountIf([](const Parameter& p) { return p.causality == CausalityInput; });
}

std::size_t CDiscreteCombinations::InputParameterCount(bool enabled) const {
  return CountIf([enabled](const Parameter& p) {
    return p.causality == CausalityInput && p.enabled == enabled;
  });
}

std::size_t CDiscreteCombinations::OutputParameterCount() const {
  return CountIf([](const Parameter& p) { return p.causality == CausalityOutput; });
}

std::size_t CDiscreteCombinations::OutputParameterCount(bool enabled) const {
  return CountIf([enabled](const Parameter& p) {
    return p.causality == CausalityOutput && p.enabled == enabled;
  });
}

std::size_t CDiscreteCombinations::ContinuousCount() const {
  return CountIf([](const Parameter& p) { return IsContinuousType(p.type); });
}

std::size_t CDiscreteCombinations::ContinuousCount(bool enabled) const {
  return CountIf(
      [enabled](const Parameter& p) { return IsContinuousType(p.type) && p.enabled == enabled; });
}

std::size_t CDiscreteCombinations::DiscreteCount() const {
  return CountIf([](const Parameter& p) { return p.type == DiscreteParameter; });
}

std::size_t CDiscreteCombinations::DiscreteCount(bool enabled) const {
  return CountIf([enabled](const Parameter& p) {
    return p.type == DiscreteParameter && p.enabled == enabled;
  });
}

std::size_t CDiscreteCombinations::DerivedCount() const {
  return CountIf([](const Parameter& p) { return p.type == DerivedParameter; });
}

std::size_t CDiscreteCombinations::ContinuousManufacturableCount() const {
  return CountIf([](const Parameter& p) { return p.type == ContinuousManufacturable; });
}

std::size_t CDiscreteCombinations::ContinuousNotManufacturableCount() const {
  return CountIf([](const Parameter& p) { return p.type == ContinuousNotManufacturable; });
}

std::size_t CDiscreteCombinations::Count(E_ParameterCausality causality,
                                         E_ParameterType type) const {
  return CountIf([=](const Parameter& p) { return p.causality == causality && p.type == type; });
}

std::size_t CDiscreteCombinations::Count(E_ParameterCausality causality, E_ParameterType type,
                                         bool enabled) const {
  return CountIf([=](const Parameter& p) {
    return p.causality == causality && p.type == type && p.enabled == enabled;
  });
}

std::vector<std::string> CDiscreteCombinations::ListParameterImmutableID() const {
  return ListIf([](const Parameter&) { return true; });
}

std::vector<std::string> CDiscreteCombinations::ListParameterImmutableID(bool enabled) const {
  return ListIf([enabled](const Parameter& p) { return p.enabled == enabled; });
}

std::vector<std::string> CDiscreteCombinations::ListParameterImmutableID(
    E_ParameterCausality causality, bool enabled) const {
  return ListIf(
      [=](const Parameter& p) { return p.causality == causality && p.enabled == enabled; });
}

std::vector<std::string> CDiscreteCombinations::ListParameterImmutableID(E_ParameterType type,
                                                                         bool enabled) const {
  return ListIf([=](const Parameter& p) { return p.type == type && p.enabled == enabled; });
}

std::vector<bool> CDiscreteCombinations::ListParameterAvailability(
    std::vector<std::string> ids) const {
  return ListKnown<bool>(Parameters, ids,
                         [](const std::string&, const Parameter& p) { return p.enabled; });
}

std::vector<E_ParameterCausality> CDiscreteCombinations::ListParameterCausality(
    std::vector<std::string> ids) const {
  return ListKnown<E_ParameterCausality>(
      Parameters, ids, [](const std::string&, const Parameter& p) { return p.causality; });
}

std::vector<E_ParameterType> CDiscreteCombinations::ListParameterType(
    std::vector<std::string> ids) const {
  return ListKnown<E_ParameterType>(Parameters, ids,
                                    [](const std::string&, const Parameter& p) { return p.type; });
}

std::vector<std::pair<std::string, std::string>> CDiscreteCombinations::ListParameterUnit(
    std::vector<std::string> ids) const {
  return ListKnown<std::pair<std::string, std::string>>(
      Infos, ids,
      [](const std::string& id, const ExtraInfos& infos) { return std::pair(id, infos.unit); });
}

std::vector<std::pair<std::string, std::string>> CDiscreteCombinations::ListParameterCaption(
    std::vector<std::string> ids) const {
  return ListKnown<std::pair<std::string, std::string>>(
      Infos, ids,
      [](const std::string& id, const ExtraInfos& infos) { return std::pair(id, infos.caption); });
}

std::vector<std::pair<std::string, double>> CDiscreteCombinations::ListLowerBound(
    std::vector<std::string> ids) const {
  return ListKnown<std::pair<std::string, double>>(
      Infos, ids, [](const std::string& id, const ExtraInfos& infos) {
        return std::pair(id, infos.lowerBound);
      });
}

std::vector<std::pair<std::string, double>> CDiscreteCombinations::ListUpperBound(
    std::vector<std::string> ids) const {
  return ListKnown<std::pair<std::string, double>>(
      Infos, ids, [](const std::string& id, const ExtraInfos& infos) {
        return std::pair(id, infos.upperBound);
      });
}

std::vector<std::string> CDiscreteCombinations::ListEnabledDiscreteParameterWrtRegistrationRank()
    const {
  std::vector<std::pair<std::int32_t, std::string>> ranked;
  for (const auto& [id, parameter] : Parameters) {
    if (parameter.type == DiscreteParameter && parameter.enabled) {
      ranked.emplace_back(RegistrationRank.at(id), id);
    }
  }
  std::sort(ranked.begin(), ranked.end());
  std::vector<std::string> ids;
  ids.reserve(ranked.size());
  for (auto& entry : ranked) ids.push_back(std::move(entry.second));
  return ids;
}

}  // namespace Tarvane::Plexura::PXROM
