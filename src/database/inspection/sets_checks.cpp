// The lines of the discrete sets: which combinations there are and which groups they use.

#include <algorithm>
#include <map>
#include <set>

#include "database/inspection/context.h"
#include "database/inspection/key_tables.h"
#include "pxrom/database_labels.h"
#include "text/tokens.h"

namespace Tarvane::Plexura::PXROM::inspection {

namespace {

using Labels = CPXROMDatabaseLabels;

/// One pair of a line.
struct SetPair {
  std::string name;
  int value = 0;
  std::size_t offset = 0;
};

/// One "DiscreteSet=" line.
struct SetLine {
  std::size_t offset = 0;
  std::vector<SetPair> pairs;
  bool isSound = true;
};

class SetsCheck {
 public:
  SetsCheck(Context& context, const Group& group)
      : context_(context),
        group_(group),
        path_(context.outline.PathOf(group)),
        key_(Labels::attDiscreteSet()) {}

  void Run() {
    GroupText in(context_.text, context_.outline, group_, {&SetsKeys()}, FormatVocabulary(),
                 context_.findings);
    in.Finish();
    std::size_t count = 0;
    std::size_t at = context_.text.find(key_, group_.lower);
    // The reader takes one key a line.
    while (at < group_.upper) {
      const std::size_t value = at + key_.size();
      const std::size_t end = std::min(context_.text.find('\n', value), group_.upper);
      CheckLine(value, context_.text.substr(value, end - value));
      ++count;
      at = context_.text.find(key_, end);
    }
    if (count > 0) return;
    Report(group_.tag, FindingNothingToPredict, key_, "",
           "there is no combination: " + path_ + " has no line " + Quoted(key_));
  }

 private:
  void Report(std::size_t offset, E_FindingCode code, const std::string& found,
              const std::string& expected, std::string sentence) {
    context_.findings.Add(SeverityError, code, {offset, path_, key_, found, expected},
                          std::move(sentence));
  }

  void CheckLine(std::size_t offset, std::string_view text) {
    const SetLine line = Split(offset, text);
    if (line.isSound && context_.registry.isKnown && CheckNames(line)) {
      CheckDiscrete(line);
      CheckOutputs(line);
    }
    for (const SetPair& pair : line.pairs) {
      if (!IsDiscrete(pair)) Use(pair);
    }
    AddToOverview(line);
  }

  SetLine Split(std::size_t offset, std::string_view text) {
    SetLine line;
    line.offset = offset;
    reading::ForEachToken(text, ',', [&](std::string_view token) {
      const PairText pair = SplitPair(token);
      SetPair split{std::string(pair.key), 0, offset};
      const Defect defect =
          pair.isSound ? CheckNumber(pair.value, split.value) : Defect::NotANumber;
      if (!pair.isSound) {
        Report(offset, FindingPairMalformed, Shortened(token), "{key;value}",
               Quoted(token) + " is no pair of the form {key;value}");
      } else if (defect != Defect::None) {
        Report(offset, defect == Defect::Missing ? FindingValueMissing : FindingValueNotANumber,
               Shortened(pair.value), "an integer",
               "the value of " + Quoted(pair.key) + ", " + Quoted(pair.value) + ", " +
                   WordsOf(defect));
      }
      if (defect == Defect::None) {
        line.pairs.push_back(std::move(split));
      } else {
        line.isSound = false;
      }
      offset += token.size() + 1;
    });
    return line;
  }

  bool IsDiscrete(const SetPair& pair) const {
    const auto& parameters = context_.registry.parameters;
    const auto parameter = parameters.find(pair.name);
    return parameter != parameters.end() && parameter->second.causality == CausalityInput;
  }

  // Reports names that are unknown or not allowed here. With such a name, a missing one is probably
  // what it was meant to be.
  bool CheckNames(const SetLine& line) {
    bool isRight = true;
    std::set<std::string> seen;
    for (const SetPair& pair : line.pairs) {
      const RegistryFacts& registry = context_.registry;
      const bool isFirst = seen.insert(pair.name).second;
      const std::string name = Quoted(pair.name);
      if (registry.parameters.count(pair.name) == 0) {
        const bool isFull = context_.findings.IsFull(FindingParameterUnknown);
        Report(pair.offset, FindingParameterUnknown, Shortened(pair.name), "",
               name + " is no ID of the registry" + (isFull ? "" : registry.DidYouMean(pair.name)));
      } else if (registry.IsDiscreteInput(pair.name)) {
        if (isFirst) continue;
        Report(pair.offset, FindingDiscreteInputWrong, Shortened(pair.name), "",
               "the discrete input " + name + " appears twice in this line");
      } else if (registry.IsOutput(pair.name)) {
        if (isFirst) continue;
        Report(pair.offset, FindingOutputUnexpected, Shortened(pair.name), "",
               "the output " + name + " appears twice in this line");
      } else if (IsDiscrete(pair)) {
        Report(pair.offset, FindingDiscreteInputWrong, Shortened(pair.name), "",
               name + " is no enabled discrete input");
      } else {
        Report(pair.offset, FindingOutputUnexpected, Shortened(pair.name), "",
               name + " is no enabled output of type 0");
      }
      isRight = false;
    }
    return isRight;
  }

  void CheckDiscrete(const SetLine& line) {
    std::map<std::string, int> values;
    std::size_t lastDiscrete = 0;
    for (std::size_t i = 0; i < line.pairs.size(); ++i) {
      if (!context_.registry.IsDiscreteInput(line.pairs[i].name)) continue;
      values.emplace(line.pairs[i].name, line.pairs[i].value);
      lastDiscrete = i;
    }
    std::vector<int> combination;
    for (const std::string& id : context_.registry.discreteInputs) {
      const auto value = values.find(id);
      if (value == values.end()) {
        Report(line.offset, FindingDiscreteInputWrong, "", Shortened(id),
               "this line has no value for the discrete input " + Quoted(id));
        return;
      }
      combination.push_back(value->second);
    }
    if (!values.empty() && lastDiscrete >= values.size()) {
      Report(line.pairs[lastDiscrete].offset, FindingDiscreteInputWrong, "", "",
             "the discrete input " + Quoted(line.pairs[lastDiscrete].name) +
                 " comes after an output; discrete inputs have to come first");
      return;
    }
    std::size_t here = 0;
    std::size_t column = 0;
    const LineTable& lines = context_.lines;
    lines.Locate(line.offset, here, column);
    const auto [first, isNew] = combinations_.emplace(std::move(combination), here);
    if (isNew) return;
    Report(line.offset, FindingCombinationTwice, "", "",
           "line " + std::to_string(first->second) +
               " has the same discrete values; the later line is used");
  }

  // Stops at the first missing output, so that short lines cost little.
  void CheckOutputs(const SetLine& line) {
    std::set<std::string> there;
    for (const SetPair& pair : line.pairs) {
      if (context_.registry.IsOutput(pair.name)) there.insert(pair.name);
    }
    const auto& outputs = context_.registry.outputs;
    const auto missing = std::find_if(outputs.begin(), outputs.end(),
                                      [&](const auto& id) { return there.count(id) == 0; });
    if (missing == outputs.end()) return;
    const std::size_t others = outputs.size() - there.size() - 1;
    Report(line.offset, FindingOutputMissing, "", Shortened(*missing),
           "this line has no pair for the output " + Quoted(*missing) +
               (others == 0 ? "" : " and " + Counted(others, "other output")));
  }

  void Use(const SetPair& pair) {
    const Group* const group = context_.outline.Find(Word::PlexuraData, pair.value);
    if (group != nullptr) {
      context_.used.emplace(pair.value, group);
      return;
    }
    // A group with a damaged tag exists, but its number is unknown.
    if (context_.outline.IsDamaged(Word::PlexuraData, 0, context_.text.size())) return;
    const std::string number = std::to_string(pair.value);
    Report(pair.offset, FindingGroupMissing, "", "<PlexuraData ID=" + number + ">",
           "the group PlexuraData " + number + ", which is to give " + Quoted(pair.name) +
               ", is not there");
  }

  void AddToOverview(const SetLine& line) {
    CCombinationOverview combination;
    std::size_t column = 0;
    context_.lines.Locate(line.offset, combination.line, column);
    for (const SetPair& pair : line.pairs) {
      (IsDiscrete(pair) ? combination.discreteValues : combination.outputs)
          .emplace_back(pair.name, pair.value);
    }
    context_.overview.combinations.push_back(std::move(combination));
  }

  Context& context_;
  const Group& group_;
  std::string path_;
  const std::string& key_;
  std::map<std::vector<int>, std::size_t> combinations_;
};

void FillDiscreteValues(CDatabaseOverview& overview) {
  std::map<std::string, std::set<int>> values;
  for (const CCombinationOverview& combination : overview.combinations) {
    for (const auto& [id, value] : combination.discreteValues) values[id].insert(value);
  }
  for (CParameterOverview& parameter : overview.parameters) {
    const auto& known = values[parameter.id];
    parameter.values.assign(known.begin(), known.end());
  }
}

}  // namespace

void CheckDiscreteSets(Context& context) {
  const Group* const group = context.outline.FindPlain(Word::DiscreteSets);
  if (group == nullptr) {
    if (context.outline.IsDamaged(Word::DiscreteSets, 0, context.text.size())) return;
    context.findings.Add(SeverityError, FindingGroupMissing,
                         {0, TextOf(Word::DiscreteSets), "", "", "<DiscreteSets>"},
                         "there is no DiscreteSets group, which holds the combinations");
    return;
  }
  if (!group->isSound) return;
  SetsCheck(context, *group).Run();
  FillDiscreteValues(context.overview);
  for (const std::size_t index : context.outline.Top()) {
    const Group& top = context.outline.At(index);
    if (top.word != Word::PlexuraData || !top.isSound || context.used.count(top.id) > 0) continue;
    const std::string path = context.outline.PathOf(top);
    context.findings.Add(SeverityWarning, FindingGroupUnused, {top.tag, path, "", "", ""},
                         "no line of the discrete sets uses " + path);
  }
}

}  // namespace Tarvane::Plexura::PXROM::inspection
