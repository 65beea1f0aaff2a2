// The combinations of discrete values and the evaluation by names.

#include "pxrom/discrete_combinations.h"

#include <algorithm>
#include <cstring>
#include <type_traits>

#include "model/candidate_evaluation.h"
#include "numerics/nan_last.h"

namespace Tarvane::Plexura::PXROM {

namespace {

using NamedValues = std::vector<std::pair<std::string, double>>;

template <class Value>
struct Ranked {
  std::int32_t rank;
  Value value;
};

// Ascending by rank, and by value on equal ranks.
template <class Value>
bool ComesBefore(const Ranked<Value>& a, const Ranked<Value>& b) {
  if (a.rank != b.rank) return a.rank < b.rank;
  if constexpr (std::is_floating_point_v<Value>) {
    return IsLessNaNLast(a.value, b.value);
  } else {
    return a.value < b.value;
  }
}

// Whether two names are equal. Most names differ in their last character, and for a short name a
// call would cost more than the comparison of the others.
bool IsSame(const std::string& a, const std::string& b) {
  constexpr std::size_t kShort = 8;
  const std::size_t size = a.size();
  if (size != b.size()) return false;
  if (size > kShort) {
    return a[size - 1] == b[size - 1] && std::memcmp(a.data(), b.data(), size) == 0;
  }
  for (std::size_t i = size; i-- > 0;) {
    if (a[i] != b[i]) return false;
  }
  return true;
}

// Finds the ranks of names. A caller mostly lists them by rank or by ID, so both orders are tried
// before a search: through the list of the expected names while it is short, else through the map.
class RankFinder {
 public:
  using Ranks = std::map<std::string, std::int32_t>;
  using ByRank = std::vector<std::pair<std::string, std::int32_t>>;

  RankFinder(const Ranks& ranks, const ByRank* byRank)
      : ranks_(ranks), byRank_(byRank), nextByID_(ranks.begin()) {}

  /// The rank of the name at `place` of the caller's list; null when it is not registered.
  const std::int32_t* Find(const std::string& id, std::size_t place) {
    if (byRank_ != nullptr && place < byRank_->size() && IsSame((*byRank_)[place].first, id)) {
      return &(*byRank_)[place].second;
    }
    if (nextByID_ != ranks_.end() && IsSame(nextByID_->first, id)) return &(nextByID_++)->second;
    if (byRank_ != nullptr && byRank_->size() <= kFewNames) {
      for (const auto& expected : *byRank_) {
        if (IsSame(expected.first, id)) return &expected.second;
      }
    }
    nextByID_ = ranks_.find(id);
    if (nextByID_ == ranks_.end()) return nullptr;
    return &(nextByID_++)->second;
  }

 private:
  static constexpr std::size_t kFewNames = 24;

  const Ranks& ranks_;
  const ByRank* byRank_;
  Ranks::const_iterator nextByID_;
};

// A working array: a few values need no allocation, more need one.
template <class Value>
class FewValues {
 public:
  explicit FewValues(std::size_t size) : size_(size) {
    if (size > kFew) many_.resize(size);
  }
  Value* data() { return size_ > kFew ? many_.data() : few_; }
  std::size_t size() const { return size_; }

 private:
  static constexpr std::size_t kFew = 32;
  std::size_t size_;
  Value few_[kFew];
  std::vector<Value> many_;
};

// Calls `append` with the values of `named` by rank. 1 at a name without a rank, before any call.
template <class Value, class Append>
int PickAndSort(RankFinder finder, const std::vector<std::pair<std::string, Value>>& named,
                Append append) {
  FewValues<Ranked<Value>> buffer(named.size());
  Ranked<Value>* const ranked = buffer.data();
  bool inOrder = true;
  for (std::size_t i = 0; i < named.size(); ++i) {
    const std::int32_t* const rank = finder.Find(named[i].first, i);
    if (rank == nullptr) return 1;
    ranked[i] = {*rank, named[i].second};
    inOrder = inOrder && (i == 0 || ComesBefore<Value>(ranked[i - 1], ranked[i]));
  }
  if (!inOrder) std::sort(ranked, ranked + named.size(), ComesBefore<Value>);
  for (std::size_t i = 0; i < named.size(); ++i) append(ranked[i].value);
  return 0;
}

template <class Value>
int PickAndSortInto(const RankFinder& finder,
                    const std::vector<std::pair<std::string, Value>>& named,
                    std::vector<Value>& sorted) {
  sorted.clear();
  sorted.reserve(named.size());
  return PickAndSort(finder, named, [&](Value value) { sorted.push_back(value); });
}

}  // namespace

CDiscreteCombinations::CDiscreteCombinations() = default;

CDiscreteCombinations::CDiscreteCombinations(const CDiscreteCombinations& other)
    : Version(other.Version),
      RegistrationRank(other.RegistrationRank),
      Parameters(other.Parameters),
      NameToImmutableID(other.NameToImmutableID),
      Infos(other.Infos),
      Expected(other.Expected),
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
  // Copied first: if memory runs out, no pointer must remain without its owner.
  auto ranks = other.RegistrationRank;
  auto parameters = other.Parameters;
  auto names = other.NameToImmutableID;
  auto infos = other.Infos;
  auto expected = other.Expected;
  auto indexing = other.DiscreteCombinationsIndexing;
  auto outputs = other.OutputsWrtDiscComb;
  auto owned = other.Owned;
  Version = other.Version;
  RegistrationRank.swap(ranks);
  Parameters.swap(parameters);
  NameToImmutableID.swap(names);
  Infos.swap(infos);
  Expected = std::move(expected);
  DiscreteCombinationsIndexing.swap(indexing);
  OutputsWrtDiscComb.swap(outputs);
  Owned.swap(owned);
  return *this;
}

CDiscreteCombinations::~CDiscreteCombinations() = default;

int CDiscreteCombinations::ResetData() {
  Expected = {};
  RegistrationRank.clear();
  Parameters.clear();
  NameToImmutableID.clear();
  Infos.clear();
  DiscreteCombinationsIndexing.clear();
  // Deliberate (reset-keeps-empty-maps): the emptied maps stay, and the positions of new
  // combinations count from their end. A caller finds a combination through the index.
  for (OutputsByID& outputs : OutputsWrtDiscComb) outputs.clear();
  Owned.clear();
  return 0;
}

E_DiscreteCombinationVersion CDiscreteCombinations::DataVersion() const { return Version; }

int CDiscreteCombinations::PickAndSortValuesWrtParameterRegistrationRank(
    const std::vector<std::pair<std::string, int>>& named, std::vector<int>& sorted) const {
  return PickAndSortInto(RankFinder(RegistrationRank, nullptr), named, sorted);
}

int CDiscreteCombinations::PickAndSortValuesWrtParameterRegistrationRank(
    const std::vector<std::pair<std::string, double>>& named, std::vector<double>& sorted) const {
  return PickAndSortInto(RankFinder(RegistrationRank, nullptr), named, sorted);
}

int CDiscreteCombinations::RegisterDiscreteCombination(
    const std::vector<std::pair<std::string, int>>& discreteValues,
    const std::vector<std::pair<std::string, CFittingCandidates*>>& outputs) {
  NoteExpectedInputs();
  if (discreteValues.size() != Expected.discrete.size() || outputs.size() != Expected.outputs) {
    return 1;
  }
  const auto isNull = [](const auto& output) { return output.second == nullptr; };
  if (std::any_of(outputs.begin(), outputs.end(), isNull)) return 1;
  std::vector<int> key;
  if (PickAndSortValuesWrtParameterRegistrationRank(discreteValues, key) != 0) return 1;

  // Everything that may run out of memory works on empty boxes. The object takes the pointers at
  // the end, where nothing can fail, so an exception leaves them with the caller.
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

void CDiscreteCombinations::NoteExpectedInputs() {
  if (Expected.known) return;
  ExpectedInputs expected;
  for (const auto& [id, parameter] : Parameters) {
    if (!parameter.enabled) continue;
    if (parameter.causality == CausalityOutput && parameter.type == ContinuousNotManufacturable) {
      ++expected.outputs;
    }
    if (parameter.causality != CausalityInput) continue;
    if (parameter.type == DiscreteParameter) {
      expected.discrete.emplace_back(id, RegistrationRank.at(id));
    } else if (parameter.type == ContinuousNotManufacturable ||
               parameter.type == ContinuousManufacturable) {
      expected.continuous.emplace_back(id, RegistrationRank.at(id));
    }
  }
  const auto byRank = [](const auto& a, const auto& b) { return a.second < b.second; };
  std::sort(expected.discrete.begin(), expected.discrete.end(), byRank);
  std::sort(expected.continuous.begin(), expected.continuous.end(), byRank);
  const std::vector<std::string> ids = ListEnabledDiscreteParameterWrtRegistrationRank();
  for (std::size_t i = 0; i < ids.size(); ++i) expected.discretePlaces.emplace(ids[i], i);
  expected.known = true;
  Expected = std::move(expected);
}

// The outputs of the combination that `discreteValues` names, with the continuous values by rank in
// `point`, which has room for them; null when a count, a name or the combination doesn't fit.
const CDiscreteCombinations::OutputsByID* CDiscreteCombinations::FindOutputs(
    const std::vector<std::pair<std::string, int>>& discreteValues,
    const NamedValues& continuousValues, double* point) const {
  // Deliberate (disabled-left-out): disabled and derived parameters do not count. A caller that
  // names one is refused.
  const bool known = Expected.known;
  const std::size_t discreteInputs =
      known ? Expected.discrete.size() : Count(CausalityInput, DiscreteParameter, true);
  const std::size_t continuousInputs =
      known ? Expected.continuous.size()
            : Count(CausalityInput, ContinuousManufacturable, true) +
                  Count(CausalityInput, ContinuousNotManufacturable, true);
  if (discreteValues.size() != discreteInputs || continuousValues.size() != continuousInputs) {
    return nullptr;
  }
  std::vector<int> key;
  const auto finder = [&](const auto& byRank) {
    return RankFinder(RegistrationRank, known ? &byRank : nullptr);
  };
  if (PickAndSortInto(finder(Expected.discrete), discreteValues, key) != 0 ||
      PickAndSort(finder(Expected.continuous), continuousValues,
                  [&](double value) { *point++ = value; }) != 0) {
    return nullptr;
  }
  // Deliberate (no-neighbour-combination): an unknown combination is refused. Discrete values need
  // not have an order, so no other combination can replace it.
  const auto combination = DiscreteCombinationsIndexing.find(key);
  if (combination == DiscreteCombinationsIndexing.end()) return nullptr;
  return &OutputsWrtDiscComb[static_cast<std::size_t>(combination->second)];
}

int CDiscreteCombinations::Evaluate(const std::vector<std::pair<std::string, int>>& discreteValues,
                                    const NamedValues& continuousValues, NamedValues& outputs,
                                    NamedValues& errors) const {
  FewValues<double> values(continuousValues.size());
  const OutputsByID* const candidates =
      FindOutputs(discreteValues, continuousValues, values.data());
  if (candidates == nullptr) return 1;
  // Deliberate (evaluate-appends-errors): `errors` is not emptied, so that a caller can collect
  // the errors of several calls. A caller that uses the list again empties it first.
  outputs.clear();
  int result = 0;
  EvaluationPoint point(values.data(), values.size());
  for (const auto& [id, list] : *candidates) {
    double value = 0.0;
    double error = 0.0;
    const int status = EvaluateCandidate(*list, point, value, error);
    // Deliberate (failed-output-ends-evaluation): the first output that fails ends the evaluation.
    // `outputs` then holds the outputs before it, in the order of their IDs.
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
  FewValues<double> values(continuousValues.size());
  const OutputsByID* const candidates =
      FindOutputs(discreteValues, continuousValues, values.data());
  if (candidates == nullptr) return 1;
  outputs.clear();
  EvaluationPoint point(values.data(), values.size());
  for (const auto& [id, list] : *candidates) {
    double value = 0.0;
    if (EvaluateCandidate(*list, point, value) != 0) return 1;
    outputs.emplace_back(id, value);
  }
  return 0;
}

// The place of an ID in ListEnabledDiscreteParameterWrtRegistrationRank.
//
// Deliberate (unknown-id-means-first): an unknown ID gives the place of the first parameter. A
// caller checks the ID with IsRegistered and IsDiscrete.
std::size_t CDiscreteCombinations::PlaceOfDiscrete(const std::string& id) const {
  if (Expected.known) {
    const auto place = Expected.discretePlaces.find(id);
    return place == Expected.discretePlaces.end() ? 0 : place->second;
  }
  const std::vector<std::string> ids = ListEnabledDiscreteParameterWrtRegistrationRank();
  const auto found = std::find(ids.begin(), ids.end(), id);
  return found == ids.end() ? 0 : static_cast<std::size_t>(found - ids.begin());
}

std::vector<int> CDiscreteCombinations::ListRegisteredValuesForDiscreteParameter(
    const std::string& id) const {
  std::vector<int> values;
  // Before the first combination no places are known, and finding one goes through all parameters.
  if (DiscreteCombinationsIndexing.empty()) return values;
  const std::size_t position = PlaceOfDiscrete(id);
  for (const auto& combination : DiscreteCombinationsIndexing) {
    // Keys are shorter if parameters were registered after combinations.
    if (position < combination.first.size()) values.push_back(combination.first[position]);
  }
  std::sort(values.begin(), values.end());
  values.erase(std::unique(values.begin(), values.end()), values.end());
  return values;
}

}  // namespace Tarvane::Plexura::PXROM
