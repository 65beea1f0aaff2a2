// The combinations of discrete values and the evaluation by names.

#include "pxrom/discrete_combinations.h"

#include <algorithm>
#include <cmath>

namespace Tarvane::Plexura::PXROM {

namespace {

using NamedValues = std::vector<std::pair<std::string, double>>;

// Ascending by rank and by value on equal ranks, with NaN behind every number so that the order
// stays strict.
template <class Value>
bool ComesBefore(const std::pair<std::int32_t, Value>& a, const std::pair<std::int32_t, Value>& b) {
  if (a.first != b.first) return a.first < b.first;
  if constexpr (std::is_floating_point_v<Value>) {
    if (std::isnan(a.second) || std::isnan(b.second)) {
      return !std::isnan(a.second) && std::isnan(b.second);
    }
  }
  return a.second < b.second;
}

template <class Value>
int PickAndSort(const std::map<std::string, std::int32_t>& ranks,
                const std::vector<std::pair<std::string, Value>>& named,
                std::vector<Value>& sorted) {
  sorted.clear();
  std::vector<std::pair<std::int32_t, Value>> ranked;
  ranked.reserve(named.size());
  for (const auto& [id, value] : named) {
    const auto rank = ranks.find(id);
    if (rank == ranks.end()) return 1;
    ranked.emplace_back(rank->second, value);
  }
  std::sort(ranked.begin(), ranked.end(), ComesBefore<Value>);
  sorted.reserve(ranked.size());
  for (const auto& entry : ranked) sorted.push_back(entry.second);
  return 0;
}

}  // namespace

CDiscreteCombinations::CDiscreteCombinations() = default;

CDiscreteCombinations::CDiscreteCombinations(const CDiscreteCombinations& other)
    : Version(other.Version),
      RegistrationRank(other.RegistrationRank),
      Parameters(other.Parameters),
      NameToImmutableID(other.NameToImmutableID),
      Infos(other.Infos),
      DiscreteCombinationsIndexing(other.DiscreteCombinationsIndexing),
      OutputsWrtDiscComb(other.OutputsWrtDiscComb) {
  for (OutputsByID& outputs : OutputsWrtDiscComb) {
    for (auto& output : outputs) {
      std::unique_ptr<CFittingCandidates> clone(output.second->Clone());
      auto box = std::make_shared<std::unique_ptr<CFittingCandidates>>(std::move(clone));
      output.second = box->get();
      Owned.emplace(output.second, std::move(box));
    }
  }
}

CDiscreteCombinations& CDiscreteCombinations::operator=(const CDiscreteCombinations& other) {
  // Copied aside first: pointers without their owner must not stay behind when memory runs out.
  auto ranks = other.RegistrationRank;
  auto parameters = other.Parameters;
  auto names = other.NameToImmutableID;
  auto infos = other.Infos;
  auto indexing = other.DiscreteCombinationsIndexing;
  auto outputs = other.OutputsWrtDiscComb;
  auto owned = other.Owned;
  Version = other.Version;
  RegistrationRank.swap(ranks);
  Parameters.swap(parameters);
  NameToImmutableID.swap(names);
  Infos.swap(infos);
  DiscreteCombinationsIndexing.swap(indexing);
  OutputsWrtDiscComb.swap(outputs);
  Owned.swap(owned);
  return *this;
}

CDiscreteCombinations::~CDiscreteCombinations() = default;

int CDiscreteCombinations::ResetData() {
  RegistrationRank.clear();
  Parameters.clear();
  NameToImmutableID.clear();
  Infos.clear();
  DiscreteCombinationsIndexing.clear();
  // The emptied maps stay on purpose: positions keep counting behind them.
  for (OutputsByID& outputs : OutputsWrtDiscComb) outputs.clear();
  Owned.clear();
  return 0;
}

E_DiscreteCombinationVersion CDiscreteCombinations::DataVersion() const { return Version; }

int CDiscreteCombinations::PickAndSortValuesWrtParameterRegistrationRank(
    const std::vector<std::pair<std::string, int>>& named, std::vector<int>& sorted) const {
  return PickAndSort(RegistrationRank, named, sorted);
}

int CDiscreteCombinations::PickAndSortValuesWrtParameterRegistrationRank(
    const std::vector<std::pair<std::string, double>>& named, std::vector<double>& sorted) const {
  return PickAndSort(RegistrationRank, named, sorted);
}

int CDiscreteCombinations::RegisterDiscreteCombination(
    const std::vector<std::pair<std::string, int>>& discreteValues,
    const std::vector<std::pair<std::string, CFittingCandidates*>>& outputs) {
  if (discreteValues.size() != Count(CausalityInput, DiscreteParameter, true) ||
      outputs.size() != Count(CausalityOutput, ContinuousNotManufacturable, true)) {
    return 1;
  }
  const auto isNull = [](const auto& output) { return output.second == nullptr; };
  if (std::any_of(outputs.begin(), outputs.end(), isNull)) return 1;
  std::vector<int> key;
  if (PickAndSortValuesWrtParameterRegistrationRank(discreteValues, key) != 0) return 1;

  // Everything that may run out of memory works on empty boxes. The pointers change hands at the
  // end, where nothing can fail, so that an exception leaves them with the caller.
  OutputsByID byID(outputs.begin(), outputs.end());
  Boxes fresh;
  for (const auto& output : outputs) {
    if (Owned.count(output.second) == 0 && fresh.count(output.second) == 0) {
      fresh.emplace(output.second, std::make_shared<std::unique_ptr<CFittingCandidates>>());
    }
  }
  OutputsWrtDiscComb.emplace_back();
  try {
    DiscreteCombinationsIndexing[key] = static_cast<std::int32_t>(OutputsWrtDiscComb.size() - 1);
  } catch (...) {
    OutputsWrtDiscComb.pop_back();
    throw;
  }
  OutputsWrtDiscComb.back().swap(byID);
  for (auto& [candidates, box] : fresh) box->reset(candidates);
  Owned.merge(fresh);
  return 0;
}

const CDiscreteCombinations::CombinationIndexing*
CDiscreteCombinations::GetDiscreteCombinationsIndexingPtr() const {
  return &DiscreteCombinationsIndexing;
}

const std::vector<CDiscreteCombinations::OutputsByID>*
CDiscreteCombinations::GetOutputsWrtDiscCombPtr() const {
  return &OutputsWrtDiscComb;
}

// The outputs of the combination that `discreteValues` names, and the point of the continuous
// values by rank; null when a count, a name or the combination doesn't fit.
const CDiscreteCombinations::OutputsByID* CDiscreteCombinations::FindOutputs(
    const std::vector<std::pair<std::string, int>>& discreteValues,
    const NamedValues& continuousValues, std::vector<double>& point) const {
  if (discreteValues.size() != Count(CausalityInput, DiscreteParameter, true) ||
      continuousValues.size() != Count(CausalityInput, ContinuousManufacturable, true) +
                                     Count(CausalityInput, ContinuousNotManufacturable, true)) {
    return nullptr;
  }
  std::vector<int> key;
  if (PickAndSortValuesWrtParameterRegistrationRank(discreteValues, key) != 0 ||
      PickAndSortValuesWrtParameterRegistrationRank(continuousValues, point) != 0) {
    return nullptr;
  }
  const auto combination = DiscreteCombinationsIndexing.find(key);
  if (combination == DiscreteCombinationsIndexing.end()) return nullptr;
  return &OutputsWrtDiscComb[static_cast<std::size_t>(combination->second)];
}

int CDiscreteCombinations::Evaluate(const std::vector<std::pair<std::string, int>>& discreteValues,
                                    const NamedValues& continuousValues, NamedValues& outputs,
                                    NamedValues& errors) const {
  std::vector<double> point;
  const OutputsByID* const candidates = FindOutputs(discreteValues, continuousValues, point);
  if (candidates == nullptr) return 1;
  // `errors` is not emptied, on purpose: a caller collects over several calls.
  outputs.clear();
  int result = 0;
  const CFittingCandidatesEvaluator evaluator;
  for (const auto& [id, list] : *candidates) {
    double value = 0.0;
    double error = 0.0;
    const int status = evaluator.EvaluateResponseSurfaceCandidate(*list, point, value, error);
    if (status == 1) return 1;
    outputs.emplace_back(id, value);
    if (status == -2) {
      result = -2;
    } else {
      errors.emplace_back(id, error);
    }
  }
  return result;
}

int CDiscreteCombinations::Evaluate(const std::vector<std::pair<std::string, int>>& discreteValues,
                                    const NamedValues& continuousValues,
                                    NamedValues& outputs) const {
  std::vector<double> point;
  const OutputsByID* const candidates = FindOutputs(discreteValues, continuousValues, point);
  if (candidates == nullptr) return 1;
  outputs.clear();
  const CFittingCandidatesEvaluator evaluator;
  for (const auto& [id, list] : *candidates) {
    double value = 0.0;
    if (evaluator.EvaluateResponseSurfaceCandidate(*list, point, value) != 0) return 1;
    outputs.emplace_back(id, value);
  }
  return 0;
}

std::vector<int> CDiscreteCombinations::ListRegisteredValuesForDiscreteParameter(
    const std::string& id) const {
  const std::vector<std::string> ids = ListEnabledDiscreteParameterWrtRegistrationRank();
  // An unknown ID means the first parameter, on purpose.
  const auto found = std::find(ids.begin(), ids.end(), id);
  const auto position = found == ids.end() ? 0 : static_cast<std::size_t>(found - ids.begin());
  std::vector<int> values;
  for (const auto& combination : DiscreteCombinationsIndexing) {
    // Keys can be shorter where parameters were registered after combinations.
    if (position < combination.first.size()) values.push_back(combination.first[position]);
  }
  std::sort(values.begin(), values.end());
  values.erase(std::unique(values.begin(), values.end()), values.end());
  return values;
}

}  // namespace Tarvane::Plexura::PXROM
