// Reading of a whole database: the registry, then one combination per "DiscreteSet=" line.

#include <memory>
#include <string_view>
#include <unordered_map>

#include "database/reader/candidate_reading.h"
#include "model/candidate_access.h"
#include "model/registry_fields.h"
#include "pxrom/database_reader.h"
#include "pxrom/discrete_combinations.h"

namespace Tarvane::Plexura::PXROM {

namespace reading {

namespace {

// Pairs by name; of several pairs with one name the first counts. The pairs must outlive it.
template <class Value>
class FirstByName {
 public:
  explicit FirstByName(const std::vector<std::pair<std::string, Value>>& pairs) {
    for (const auto& [name, value] : pairs) values_.emplace(name, &value);
  }
  Value Get(const std::string& name) const {
    const auto entry = values_.find(name);
    return entry == values_.end() ? Value{} : *entry->second;
  }

 private:
  std::unordered_map<std::string_view, const Value*> values_;
};

int ReadParameterRegistry(DatabaseText& text, CDiscreteCombinations& out) {
  Bounds bounds;
  if (text.SearchBounds(OpeningTag(Labels::tagParameterRegistry()),
                        ClosingTag(Labels::tagParameterRegistry()), 0, bounds) != 0) {
    return 1;
  }
  AttributeRange in(text, bounds);
  fields::FieldReader reader(in);
  RegistryText registry;
  RoleFields(reader, registry);
  const std::vector<std::string>& ids = registry.ids;
  // Deliberate (registry-list-lengths): these three lists may be longer than "IDs=" but not
  // shorter, whereas SetRegistrationRank below needs exactly one pair per parameter.
  if (ids.empty() || registry.causalities.size() < ids.size() ||
      registry.types.size() < ids.size() || registry.availability.size() < ids.size()) {
    return 1;
  }
  // Deliberate (only-one-is-available): any number but 1 registers a disabled parameter.
  for (std::size_t i = 0; i < ids.size(); ++i) {
    out.RegisterParameter(ids[i], static_cast<E_ParameterCausality>(registry.causalities[i]),
                          static_cast<E_ParameterType>(registry.types[i]),
                          registry.availability[i] == 1);
  }

  InfoFields(reader, registry);
  const FirstByName<std::string> unitOf(registry.units);
  const FirstByName<std::string> captionOf(registry.captions);
  const FirstByName<double> lowerBoundOf(registry.lowerBounds);
  const FirstByName<double> upperBoundOf(registry.upperBounds);
  for (const std::string& id : ids) {
    // Deliberate (discrete-without-bounds): discrete and derived parameters get no unit and no
    // bounds, whatever the text holds for them.
    const bool continuous = out.IsContinuous(id);
    out.RegisterParameterExtraInfos(id, std::string(), continuous ? unitOf.Get(id) : std::string(),
                                    captionOf.Get(id), continuous ? upperBoundOf.Get(id) : 0.0,
                                    continuous ? lowerBoundOf.Get(id) : 0.0);
  }
  return out.SetRegistrationRank(registry.ranks) == 1 ? 1 : 0;
}

// The lists of candidates of a text. A group that is used again is not read again: all its lists
// hold one content together.
class CandidateLists {
 public:
  // A group takes two tags, and each of its surfaces two.
  explicit CandidateLists(DatabaseText& text) : text_(text) {
    firstOfGroup_.reserve(text.AllMarks()->brackets.size() / 4);
  }

  // A list with the candidate of group `id`; null when the group is refused. The lists that were
  // made before have to live.
  std::unique_ptr<CFittingCandidates> Make(int id) {
    auto list = std::make_unique<CFittingCandidates>();
    if (!text_.Charge(WorkOfList())) return nullptr;
    const auto [first, isNew] = firstOfGroup_.emplace(id, list.get());
    if (isNew) {
      if (ReadFittingCandidates(text_, id, *list) != 0) return nullptr;
    } else {
      CandidateAccess::Share(*first->second, *list);
    }
    return list;
  }

 private:
  DatabaseText& text_;
  std::unordered_map<int, CFittingCandidates*> firstOfGroup_;
};

// Reads the groups that one "DiscreteSet=" line names and registers its combination: first a pair
// per discrete input with its value, then a pair per output with its group.
int ReadCombination(std::string_view line, std::size_t discreteInputs, CandidateLists& candidates,
                    CDiscreteCombinations& out) {
  std::vector<std::pair<std::string, int>> pairs;
  TokenizePairs(line, Labels::strSep()[0], Labels::strSubSep()[0], pairs);
  if (pairs.size() < discreteInputs) return 1;
  const auto firstOutput = pairs.begin() + static_cast<std::ptrdiff_t>(discreteInputs);

  std::vector<std::unique_ptr<CFittingCandidates>> lists;
  std::vector<std::pair<std::string, CFittingCandidates*>> outputs;
  for (auto output = firstOutput; output != pairs.end(); ++output) {
    lists.push_back(candidates.Make(output->second));
    if (lists.back() == nullptr) return 1;
    outputs.emplace_back(output->first, lists.back().get());
  }
  if (out.RegisterDiscreteCombination({pairs.begin(), firstOutput}, outputs) != 0) return 1;
  for (auto& list : lists) static_cast<void>(list.release());
  return 0;
}

int ReadDiscreteCombinations(DatabaseText& text, CDiscreteCombinations& out) {
  if (ReadParameterRegistry(text, out) != 0) return 1;
  Bounds bounds;
  if (text.SearchBounds(OpeningTag(Labels::tagDiscreteSets()),
                        ClosingTag(Labels::tagDiscreteSets()), 0, bounds) != 0) {
    return 1;
  }
  const std::size_t discreteInputs = out.Count(CausalityInput, DiscreteParameter, true);
  const std::string_view all = text.View();
  const std::string& key = Labels::attDiscreteSet();
  CandidateLists candidates(text);
  std::size_t lines = CountLinesWith(ViewOf(all, bounds.lower, bounds.upper), key);
  for (std::size_t at = all.find(key, bounds.lower); lines > 0; --lines) {
    const std::string_view line = RestOfLine(all, at + key.size());
    if (ReadCombination(line, discreteInputs, candidates, out) != 0) return 1;
    at = all.find(key, at + key.size() + line.size());
  }
  return 0;
}

}  // namespace

}  // namespace reading

int CReaderPXROMDatabase::ResumeParameterRegistry(CDiscreteCombinations& out, std::size_t,
                                                  std::size_t) const {
  reading::DatabaseText text(DataStream);
  return reading::ReadParameterRegistry(text, out);
}

int CReaderPXROMDatabase::ResumeDiscreteCombinations(CDiscreteCombinations& out) const {
  reading::DatabaseText text(DataStream);
  text.Index();
  return reading::ReadDiscreteCombinations(text, out);
}

}  // namespace Tarvane::Plexura::PXROM
