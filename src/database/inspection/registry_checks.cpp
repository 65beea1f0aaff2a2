// The parameters, and the combinations that name them.

#include <algorithm>
#include <cstdint>
#include <map>
#include <set>

#include "database/inspection/context.h"
#include "database/inspection/key_tables.h"
#include "pxrom/database_labels.h"
#include "text/inspection/suggestion.h"

namespace Tarvane::Plexura::PXROM::inspection {

namespace {

using Labels = CPXROMDatabaseLabels;
using Ids = std::vector<std::string>;

/// The attributes of the registry while they are checked.
class RegistryCheck {
 public:
  RegistryCheck(Context& context, const Group& group)
      : context_(context),
        in_(context.text, context.outline, group, {&RegistryKeys()}, FormatVocabulary(),
            context.findings) {}

  void Run() {
    in_.Require(RegistryKeys());
    in_.Finish();
    ids_ = in_.Strings(Labels::attParameterIDs());
    if (CheckLengths()) {
      CheckRoles();
      CheckIds();
    }
    // Without the parameters, the lists of pairs can't be checked.
    if (context_.registry.isKnown) {
      CheckRanks();
      CheckNames(Labels::attParameterUnits(), SeverityWarning);
      CheckNames(Labels::attParameterCaptions(), SeverityWarning);
      CheckNames(Labels::attParameterDiscreteIndexing(), SeverityWarning);
      CheckNames(Labels::attParameterLowerBound(), SeverityError);
      CheckNames(Labels::attParameterUpperBound(), SeverityError);
      CheckBounds();
    }
    FillOverview();
  }

 private:
  bool CheckLengths() {
    bool isKnown = !ids_.empty();
    if (ids_.empty() && in_.Has(Labels::attParameterIDs())) {
      in_.Report(SeverityError, FindingNothingToPredict, Labels::attParameterIDs(), "", "",
                 Quoted(Labels::attParameterIDs()) + " names no parameter");
    }
    const auto count = static_cast<std::int64_t>(ids_.size());
    for (const std::string* label :
         {&Labels::attParameterCausalities(), &Labels::attParameterTypes(),
          &Labels::attParameterAvailability()}) {
      if (ids_.empty() || !in_.ExpectLength(*label, count, Counted(ids_.size(), "ID")) ||
          !in_.Has(*label)) {
        isKnown = false;
      }
    }
    return isKnown;
  }

  void CheckIds() {
    const std::string& label = Labels::attParameterIDs();
    const std::vector<int> causalities = in_.Ints(Labels::attParameterCausalities());
    std::map<std::string, std::size_t> first;
    for (std::size_t i = 0; i < ids_.size(); ++i) {
      const auto [entry, isNew] = first.emplace(ids_[i], i);
      if (isNew && !ids_[i].empty()) continue;
      context_.registry.isKnown = false;
      const E_FindingCode code = ids_[i].empty() ? FindingValueMissing : FindingParameterTwice;
      const std::size_t offset = ElementOffset(code, label, i);
      if (ids_[i].empty()) {
        in_.ReportAt(offset, SeverityError, code, label, "", "an ID",
                     "ID " + std::to_string(i + 1) + " of " + Quoted(label) + " is blank");
      } else {
        const bool isBoth = causalities[i] != causalities[entry->second];
        in_.ReportAt(offset, SeverityError, code, label, Shortened(ids_[i]), "",
                     "the ID " + Quoted(ids_[i]) + " is given twice" +
                         (isBoth ? ", as an input and as an output, of which one is lost" : ""));
      }
    }
  }

  void CheckRoles() {
    const std::vector<int> causalities = in_.Ints(Labels::attParameterCausalities());
    const std::vector<int> types = in_.Ints(Labels::attParameterTypes());
    const std::vector<int> availability = in_.Ints(Labels::attParameterAvailability());
    RegistryFacts& facts = context_.registry;
    facts.isKnown = true;
    facts.offset = in_.OffsetOf(Labels::attParameterIDs());
    for (std::size_t i = 0; i < ids_.size(); ++i) {
      CheckRole(Labels::attParameterCausalities(), i, causalities[i], CausalityOutput);
      CheckRole(Labels::attParameterTypes(), i, types[i], DerivedParameter);
      if (availability[i] != 0 && availability[i] != 1) {
        const std::string& label = Labels::attParameterAvailability();
        in_.ReportAt(ElementOffset(FindingValueOutOfRange, label, i), SeverityNote,
                     FindingValueOutOfRange, label, std::to_string(availability[i]), "0 or 1",
                     Quoted(ids_[i]) + " has the availability " + std::to_string(availability[i]) +
                         "; only 1 makes it available");
      }
      facts.parameters[ids_[i]] = {causalities[i], types[i], availability[i] == 1};
    }
    for (const auto& [id, parameter] : facts.parameters) {
      if (!parameter.isEnabled) continue;
      const bool isContinuous = parameter.type == ContinuousNotManufacturable ||
                                parameter.type == ContinuousManufacturable;
      if (parameter.causality == CausalityInput) {
        if (parameter.type == DiscreteParameter) facts.discreteInputs.push_back(id);
        if (isContinuous) facts.continuousInputs.push_back(id);
      } else if (parameter.type == ContinuousNotManufacturable) {
        facts.outputs.push_back(id);
      } else {
        in_.Report(SeverityWarning, FindingValueOutOfRange, Labels::attParameterTypes(),
                   std::to_string(parameter.type), "0",
                   "the output " + Quoted(id) + " is never predicted, since its type is not 0");
      }
    }
    if (facts.outputs.empty()) {
      in_.Report(SeverityError, FindingNothingToPredict, Labels::attParameterCausalities(), "", "",
                 "no parameter is an enabled output of type 0");
    }
  }

  // The place of an element is not needed if the finding is only counted.
  std::size_t ElementOffset(E_FindingCode code, const std::string& label, std::size_t i) const {
    return context_.findings.IsFull(code) ? in_.OffsetOf(label) : in_.OffsetOfElement(label, i);
  }

  void CheckRole(const std::string& label, std::size_t i, int value, int most) {
    if (value >= 0 && value <= most) return;
    context_.registry.isKnown = false;
    in_.ReportAt(ElementOffset(FindingValueOutOfRange, label, i), SeverityError,
                 FindingValueOutOfRange, label, std::to_string(value),
                 "0 to " + std::to_string(most),
                 Quoted(ids_[i]) + " has " + std::to_string(value) + " in " + Quoted(label) +
                     ", it has to be 0 to " + std::to_string(most));
  }

  void CheckRanks() {
    const std::string& label = Labels::attParameterRegistrationRank();
    if (!in_.Has(label)) return;
    const std::vector<Pair> pairs = in_.Pairs(label);
    const bool hasWrongNames = CheckNames(label, SeverityError);
    std::map<std::string, int> ranks;
    for (const Pair& pair : pairs) ranks.emplace(pair.key, pair.integer);
    std::string missing;
    for (const auto& [id, parameter] : context_.registry.parameters) {
      if (ranks.count(id) == 0 && missing.size() < 200) missing += ' ' + Quoted(id);
    }
    if (!hasWrongNames && !missing.empty() && pairs.size() == *in_.Length(label)) {
      in_.Report(SeverityError, FindingRankIncomplete, label, "", "one pair for each ID",
                 Quoted(label) + " has no rank for" + missing);
    }
    CheckEqualRanks(label, pairs, context_.registry.continuousInputs);
    CheckEqualRanks(label, pairs, context_.registry.discreteInputs);
  }

  void CheckEqualRanks(const std::string& label, const std::vector<Pair>& pairs, const Ids& ids) {
    const std::set<std::string> ordered(ids.begin(), ids.end());
    std::map<int, std::string> byRank;
    for (const Pair& pair : pairs) {
      if (ordered.count(pair.key) == 0) continue;
      const auto [entry, isNew] = byRank.emplace(pair.integer, pair.key);
      if (isNew || entry->second == pair.key) continue;
      in_.ReportAt(pair.offset, SeverityError, FindingRankEqual, label, Shortened(pair.text), "",
                   Quoted(pair.key) + " and " + Quoted(entry->second) +
                       " have the same rank: their values are ordered by size");
    }
  }

  // Reports names that are not registered or occur twice. True when there is such a name.
  bool CheckNames(const std::string& label, E_FindingSeverity severity) {
    const RegistryFacts& facts = context_.registry;
    if (facts.parameters.empty()) return false;
    bool isWrong = false;
    std::set<std::string> seen;
    for (const Pair& pair : in_.Pairs(label)) {
      if (facts.parameters.count(pair.key) == 0) {
        isWrong = true;
        const bool isFull = context_.findings.IsFull(FindingParameterUnknown);
        in_.ReportAt(pair.offset, severity, FindingParameterUnknown, label, Shortened(pair.key), "",
                     isFull ? ""
                            : Quoted(pair.key) + " in " + Quoted(label) + " is no ID" +
                                  facts.DidYouMean(pair.key));
      } else if (!seen.insert(pair.key).second) {
        isWrong = true;
        in_.ReportAt(pair.offset, severity, FindingParameterTwice, label, Shortened(pair.key), "",
                     Quoted(pair.key) + " appears twice in " + Quoted(label));
      }
    }
    return isWrong;
  }

  void CheckBounds() {
    std::map<std::string, double> lower;
    for (const std::string* label :
         {&Labels::attParameterLowerBound(), &Labels::attParameterUpperBound()}) {
      const bool isLower = label == &Labels::attParameterLowerBound();
      std::set<std::string> there;
      for (const Pair& pair : in_.Pairs(*label)) {
        there.insert(pair.key);
        const auto parameter = context_.registry.parameters.find(pair.key);
        if (parameter == context_.registry.parameters.end() ||
            parameter->second.type > ContinuousManufacturable) {
          continue;
        }
        if (isLower) {
          lower.emplace(pair.key, pair.number);
        } else if (lower.count(pair.key) > 0 && pair.number < lower[pair.key]) {
          in_.ReportAt(pair.offset, SeverityError, FindingBoundsUnusable, *label,
                       Shortened(pair.text), NumberText(lower[pair.key]) + " or more",
                       "the upper bound of " + Quoted(pair.key) + " lies below the lower one, " +
                           NumberText(lower[pair.key]));
        }
      }
      for (const std::string& id : context_.registry.continuousInputs) {
        if (there.count(id) > 0) continue;
        in_.Report(SeverityWarning, FindingParameterMissing, *label, "", Shortened(id),
                   Quoted(*label) + " has no pair for the input " + Quoted(id) +
                       ", so that its bound reads as 0");
      }
    }
  }

  /// Each ID once, as it comes first: hardly any memory for a list of nothing but commas.
  void FillOverview() {
    const std::vector<int> causalities = in_.Ints(Labels::attParameterCausalities());
    const std::vector<int> types = in_.Ints(Labels::attParameterTypes());
    const std::vector<int> availability = in_.Ints(Labels::attParameterAvailability());
    std::map<std::string, std::size_t> places;
    auto& parameters = context_.overview.parameters;
    for (std::size_t i = 0; i < ids_.size(); ++i) {
      if (!places.emplace(ids_[i], parameters.size()).second) continue;
      CParameterOverview& parameter = parameters.emplace_back();
      parameter.id = ids_[i];
      parameter.rank = static_cast<int>(i);
      if (i < causalities.size()) {
        parameter.causality = static_cast<E_ParameterCausality>(causalities[i]);
      }
      if (i < types.size()) parameter.type = static_cast<E_ParameterType>(types[i]);
      parameter.enabled = i < availability.size() && availability[i] == 1;
    }
    const auto forEach = [&](const std::string& label, auto use) {
      for (const Pair& pair : in_.Pairs(label)) {
        const auto place = places.find(pair.key);
        if (place != places.end()) use(parameters[place->second], pair);
      }
    };
    forEach(Labels::attParameterRegistrationRank(),
            [](auto& p, const Pair& pair) { p.rank = pair.integer; });
    forEach(Labels::attParameterUnits(), [](auto& p, const Pair& pair) { p.unit = pair.text; });
    forEach(Labels::attParameterCaptions(),
            [](auto& p, const Pair& pair) { p.caption = pair.text; });
    std::set<CParameterOverview*> withLower;
    forEach(Labels::attParameterLowerBound(), [&](auto& p, const Pair& pair) {
      p.lowerBound = pair.number;
      withLower.insert(&p);
    });
    forEach(Labels::attParameterUpperBound(), [&](auto& p, const Pair& pair) {
      p.upperBound = pair.number;
      p.hasBounds = withLower.count(&p) > 0;
    });
  }

  Context& context_;
  GroupText in_;
  Ids ids_;
};

}  // namespace

std::string RegistryFacts::DidYouMean(std::string_view typed) const {
  constexpr std::size_t kMost = 64;
  constexpr std::size_t kMostIds = 1000;
  std::vector<const std::string*> ids;
  for (const auto& [id, parameter] : parameters) {
    if (id.size() <= kMost && ids.size() < kMostIds) ids.push_back(&id);
  }
  const std::string* const meant = Nearest(typed.substr(0, kMost), ids);
  return meant == nullptr ? "" : "; did you mean " + Quoted(*meant) + "?";
}

bool RegistryFacts::IsDiscreteInput(const std::string& id) const {
  return std::binary_search(discreteInputs.begin(), discreteInputs.end(), id);
}

bool RegistryFacts::IsOutput(const std::string& id) const {
  return std::binary_search(outputs.begin(), outputs.end(), id);
}

void CheckRegistry(Context& context) {
  const Group* const group = context.outline.FindPlain(Word::ParameterRegistry);
  if (group != nullptr) {
    if (group->isSound) RegistryCheck(context, *group).Run();
    return;
  }
  if (context.outline.IsDamaged(Word::ParameterRegistry, 0, context.text.size())) return;
  context.findings.Add(SeverityError, FindingGroupMissing,
                       {0, TextOf(Word::ParameterRegistry), "", "", "<ParameterRegistry>"},
                       "there is no ParameterRegistry group, which names the parameters");
}

}  // namespace Tarvane::Plexura::PXROM::inspection
