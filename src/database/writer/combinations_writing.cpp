// Writing of a whole database: the registry, then one "DiscreteSet=" line per combination and the
// groups that the lines name.

#include <algorithm>
#include <cmath>
#include <map>

#include "database/fmu_fields.h"
#include "database/writer/candidate_writing.h"
#include "model/registry_fields.h"
#include "pxrom/discrete_combinations.h"
#include "pxrom/writer.h"
#include "text/database_text.h"
#include "text/number_text.h"

namespace Tarvane::Plexura::PXROM {

namespace writing {

namespace {

constexpr int kNoNumber = -1;

/// The keys of the registry in the order of the lines.
fields::KeyTable RegistryKeys() {
  fields::FieldLister lister;
  RegistryText registry;
  RoleFields(lister, registry);
  InfoFields(lister, registry);
  return lister.Keys();
}

/// The value in a list of at most one element: the result of the registry for one ID.
template <class Value>
Value Only(const std::vector<std::pair<std::string, Value>>& list) {
  return list.empty() ? Value{} : list.front().second;
}

/// Collects the attributes of the registry, checks their words, and puts them.
class Registry {
 public:
  Registry(AttributeSink& out, const CDiscreteCombinations& model) : out_(out), model_(model) {
    text_.ids = model.ListParameterImmutableID();
  }

  void Write() {
    if (text_.ids.empty()) return out_.Refuse("a database needs a parameter");
    if (text_.ids.size() == 1 && reading::EmptyIfBlank(text_.ids.front()).empty()) {
      return out_.Refuse("the ID of the only parameter is blank");
    }
    for (const std::string& id : text_.ids) Collect(id);
    if (out_.IsRefused()) return;
    out_.PutGroup(Labels::tagParameterRegistry(), kNoNumber, [&] {
      fields::FieldWriter writer(out_);
      RoleFields(writer, text_);
      InfoFields(writer, text_);
    });
  }

 private:
  void Collect(const std::string& id) {
    CheckWord("the ID " + Quoted(id), id, Labels::attParameterIDs());
    text_.causalities.push_back(model_.ListParameterCausality({id}).front());
    text_.types.push_back(model_.ListParameterType({id}).front());
    text_.availability.push_back(model_.IsEnabled(id) ? 1 : 0);
    text_.ranks.emplace_back(id, model_.GetRegistrationRank()->at(id));
    if (model_.IsDiscrete(id)) {
      text_.discreteIndexing.emplace_back(id, static_cast<int>(text_.discreteIndexing.size()));
    }
    const std::string caption = Only(model_.ListParameterCaption({id}));
    CheckWord("the caption of " + Quoted(id), caption, Labels::attParameterCaptions());
    text_.captions.emplace_back(id, caption);

    const std::string unit = Only(model_.ListParameterUnit({id}));
    const double lower = Only(model_.ListLowerBound({id}));
    const double upper = Only(model_.ListUpperBound({id}));
    if (!model_.IsContinuous(id)) {
      if (!unit.empty() || !IsUnset(lower) || !IsUnset(upper)) {
        out_.Refuse(Quoted(id) + " is not continuous, but has a unit or bounds");
      }
      return;
    }
    CheckWord("the unit of " + Quoted(id), unit, Labels::attParameterUnits());
    if (!std::isfinite(lower) || !std::isfinite(upper)) {
      out_.Refuse("a bound of " + Quoted(id) + " is not finite");
    }
    text_.units.emplace_back(id, unit);
    text_.lowerBounds.emplace_back(id, lower);
    text_.upperBounds.emplace_back(id, upper);
  }

  /// Refuses a word that can't follow `key`. A search for one of the later keys would find that key
  /// inside the word.
  void CheckWord(const std::string& what, const std::string& word, const std::string& key) {
    const std::string reason = ReasonAgainst(word);
    if (!reason.empty()) return out_.Refuse(what + " " + reason);
    auto below = std::find_if(keys_.begin(), keys_.end(),
                              [&](const fields::Key& fact) { return fact.label() == key; });
    for (++below; below != keys_.end(); ++below) {
      if (word.find(below->label()) != std::string::npos) {
        out_.Refuse(what + " holds the key " + Quoted(below->label()));
      }
    }
  }

  AttributeSink& out_;
  const CDiscreteCombinations& model_;
  const fields::KeyTable keys_ = RegistryKeys();
  RegistryText text_;
};

/// The discrete sets of a model and the groups that they name.
class DiscreteSets {
 public:
  DiscreteSets(AttributeSink& out, CandidateGroups& groups, const CDiscreteCombinations& model)
      : out_(out),
        groups_(groups),
        model_(model),
        expected_(model.Count(CausalityOutput, ContinuousNotManufacturable, true)) {
    for (const std::string& id : model.ListEnabledDiscreteParameterWrtRegistrationRank()) {
      if (model.IsInput(id)) inputs_.push_back(id);
    }
  }

  void Write() {
    // By position, which is the order of registration.
    std::map<std::int32_t, const std::vector<int>*> keys;
    for (const auto& [key, position] : *model_.GetDiscreteCombinationsIndexingPtr()) {
      keys.emplace(position, &key);
    }
    out_.PutGroup(Labels::tagDiscreteSets(), kNoNumber, [&] {
      for (const auto& [position, key] : keys) {
        const auto index = static_cast<std::size_t>(position);
        WriteLine(*key, model_.GetOutputsWrtDiscCombPtr()->at(index));
        if (out_.IsRefused()) return;
      }
    });
  }

 private:
  void WriteLine(const std::vector<int>& key, const CDiscreteCombinations::OutputsByID& outputs) {
    if (key.size() != inputs_.size()) {
      return out_.Refuse("a combination has " + std::to_string(key.size()) +
                         " discrete values, but there are " + std::to_string(inputs_.size()) +
                         " enabled discrete inputs");
    }
    std::string place;
    for (std::size_t i = 0; i < key.size(); ++i) {
      place += (i == 0 ? " at " : ", ") + inputs_[i] + "=" + std::to_string(key[i]);
    }
    if (!IsReachable(key)) {
      return out_.Refuse("the combination" + place +
                         " can't be reached any more: inputs of equal rank need ascending values");
    }
    if (outputs.size() != expected_) {
      return out_.Refuse("the combination" + place + " has " + std::to_string(outputs.size()) +
                         " outputs, but " + std::to_string(expected_) + " are enabled");
    }
    std::vector<std::pair<std::string, int>> pairs;
    for (std::size_t i = 0; i < key.size(); ++i) pairs.emplace_back(inputs_[i], key[i]);
    for (const auto& [id, list] : outputs) {
      const std::string reason = ReasonAgainst(id);
      if (!reason.empty()) return out_.Refuse("the output " + Quoted(id) + " " + reason);
      pairs.emplace_back(id, groups_.NumberOf(*list));
      if (groups_.Sink().IsRefused()) {
        return out_.Refuse("output " + Quoted(id) + place + ": " + groups_.Sink().Reason());
      }
    }
    out_.Put(Labels::attDiscreteSet(), pairs);
  }

  // Whether an evaluation, and so a reader, can form this key: values of equal rank are sorted.
  bool IsReachable(const std::vector<int>& key) const {
    const auto& ranks = *model_.GetRegistrationRank();
    for (std::size_t i = 1; i < key.size(); ++i) {
      if (key[i] < key[i - 1] && ranks.at(inputs_[i]) == ranks.at(inputs_[i - 1])) return false;
    }
    return true;
  }

  AttributeSink& out_;
  CandidateGroups& groups_;
  const CDiscreteCombinations& model_;
  /// The number of outputs that a combination needs. Counting goes through all parameters.
  std::size_t expected_;
  /// The enabled discrete inputs in the order of a key.
  std::vector<std::string> inputs_;
};

/// Returns the text, or the reason of a refusal.
int Finish(AttributeSink& sink, std::string& out, std::string& reason) {
  if (sink.IsRefused()) {
    reason = sink.Reason();
    return 1;
  }
  out.swap(sink.Text());
  reason.clear();
  return 0;
}

}  // namespace

}  // namespace writing

int CWriterPXROMDatabase::WriteDiscreteCombinations(const CDiscreteCombinations& model,
                                                    std::string& out) const {
  std::string reason;
  return WriteDiscreteCombinations(model, out, reason);
}

int CWriterPXROMDatabase::WriteDiscreteCombinations(const CDiscreteCombinations& model,
                                                    std::string& out, std::string& reason) const {
  std::string text;
  writing::AttributeSink sink(text);
  writing::CandidateGroups groups;
  writing::Registry(sink, model).Write();
  if (!sink.IsRefused()) writing::DiscreteSets(sink, groups, model).Write();
  text += groups.Text();
  if (sink.Work() + groups.Work() > reading::WorkAllowedFor(text.size())) {
    sink.Refuse("reading the text would be more work than a reader grants it");
  }
  return writing::Finish(sink, out, reason);
}

int CWriterPXROMDatabase::WriteFMUDescriptionVariables(
    int reals, int integers, int booleans, int strings, int events,
    const std::vector<std::pair<std::string, int>>& references, std::string& out) const {
  std::string reason;
  return WriteFMUDescriptionVariables(reals, integers, booleans, strings, events, references, out,
                                      reason);
}

int CWriterPXROMDatabase::WriteFMUDescriptionVariables(
    int reals, int integers, int booleans, int strings, int events,
    const std::vector<std::pair<std::string, int>>& references, std::string& out,
    std::string& reason) const {
  std::string text;
  writing::AttributeSink sink(text);
  for (const auto& reference : references) {
    const std::string against = writing::ReasonAgainst(reference.first);
    if (!against.empty())
      sink.Refuse("the reference " + writing::Quoted(reference.first) + " " + against);
  }
  sink.PutGroup(writing::Labels::tagFMU(), writing::kNoNumber, [&] {
    const FmuText description = {reals, integers, booleans, strings, events, references};
    fields::FieldWriter writer(sink);
    FmuFields(writer, description);
  });
  return writing::Finish(sink, out, reason);
}

}  // namespace Tarvane::Plexura::PXROM
