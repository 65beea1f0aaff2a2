#include "point_columns.h"

#include <algorithm>
#include <map>
#include <string_view>
#include <unordered_map>

#include "numbers.h"
#include "prediction.h"
#include "refusal.h"
#include "wording.h"

namespace pxrom_command {

namespace {

/// A text of a file, fit for one line on a terminal.
std::string Excerpt(const std::string& text) {
  constexpr std::size_t kMost = 40;
  return Quoted(Printed(Cut(text, kMost)));
}

std::string FaultOf(const Input& input, const std::string& text) {
  constexpr std::size_t kLongestName = 64;
  constexpr std::size_t kLongestInput = 400;
  return "column " + Cut(input.id, kLongestName) + ": found " +
         (text.empty() ? "nothing" : Excerpt(text)) + ", expected " +
         (input.discrete ? "an integer that selects a model: " : "a finite number: ") +
         Cut(input.Described(), kLongestInput);
}

// A table can have a fault in each of its rows: what is said of one must not grow with the number
// or the length of the names.
std::string NamesOf(const std::vector<std::pair<std::string, int>>& named) {
  constexpr std::size_t kMost = 12;
  constexpr std::size_t kLongest = 64;
  std::vector<std::string> names;
  names.reserve(named.size());
  for (const auto& [name, value] : named) {
    names.push_back(names.size() < kMost ? Cut(name, kLongest) : "");
  }
  return Listed(names, kMost);
}

/// The fields of a header by name: where the first of a name is, and how many there are.
class HeaderNames {
 public:
  explicit HeaderNames(const std::vector<std::string>& fields) {
    for (std::size_t i = 0; i < fields.size(); ++i) {
      ++names_.emplace(fields[i], Place{i, 0}).first->second.times;
    }
  }
  std::size_t Times(const std::string& name) const {
    const auto found = names_.find(name);
    return found == names_.end() ? 0 : found->second.times;
  }
  std::size_t First(const std::string& name) const { return names_.at(name).first; }

 private:
  struct Place {
    std::size_t first;
    std::size_t times;
  };
  std::unordered_map<std::string_view, Place> names_;
};

void RequireNone(const std::vector<Input>& missing, const CsvRow& header, const std::string& name) {
  if (missing.empty()) return;
  constexpr std::size_t kMostTried = 12;
  std::vector<std::string> described;
  std::string suggestion;
  for (const Input& input : missing) {
    if (suggestion.empty() && described.size() < kMostTried) {
      suggestion = Suggestion(input.id, header.fields);
    }
    described.push_back(input.Described());
  }
  const bool other =
      header.fields.size() == 1 && header.fields.front().find_first_of(";\t") != std::string::npos;
  throw Refusal("the header of " + name + " has no column for " +
                Listed(described, described.size()) +
                (other                ? ": columns are separated by commas"
                 : suggestion.empty() ? "; a value for all rows is given as NAME=VALUE"
                                      : suggestion));
}

}  // namespace

PointColumns::PointColumns(const Model& model, const CsvRow& header,
                           const std::vector<std::string>& assignments, const std::string& name)
    : count_(header.fields.size()) {
  if (!header.fault.empty()) throw Refusal("the header of " + name + ": " + header.fault);
  const std::vector<Input> inputs = InputsOf(model);
  const std::map<std::string, std::string> texts = TextsByName(model, inputs, assignments);
  const HeaderNames names(header.fields);
  std::vector<Input> missing;
  for (const Input& input : inputs) {
    const std::size_t times = names.Times(input.id);
    const auto text = texts.find(input.id);
    if (times > 0) {
      if (times > 1) {
        throw Refusal("the header of " + name + " has two columns " + Quoted(input.id));
      }
      if (text != texts.end()) {
        throw Refusal(Quoted(input.id) + " is given twice: as a column of " + name +
                      " and as NAME=VALUE");
      }
      columns_.push_back({names.First(input.id), input});
    } else if (text != texts.end()) {
      Assign(fixed_, input, text->second);
    } else {
      missing.push_back(input);
    }
    if (!input.discrete && input.HasBounds()) {
      bounds_.emplace(input.id, std::pair(input.lower, input.upper));
    }
  }
  RequireNone(missing, header, name);
  // If no row chooses the combination, no row can report a wrong one.
  if (std::none_of(columns_.begin(), columns_.end(),
                   [](const Column& column) { return column.input.discrete; })) {
    Point point = fixed_;
    SortByRank(model, point);
    RequireCombination(model, point);
  }
  // A row reports its leftmost fault.
  std::sort(columns_.begin(), columns_.end(),
            [](const Column& a, const Column& b) { return a.index < b.index; });
}

std::string PointColumns::Read(const Model& model, const CsvRow& row, Point& point) const {
  if (!row.fault.empty()) return row.fault;
  if (row.fields.size() != count_) {
    return "found " + std::to_string(row.fields.size()) +
           (row.fields.size() == 1 ? " field" : " fields") + ", expected " +
           std::to_string(count_) + " as in the header";
  }
  point = fixed_;
  for (const auto& [index, input] : columns_) {
    const std::string& text = row.fields[index];
    if (input.discrete) {
      const std::optional<int> value = ParseInteger(text);
      if (!value.has_value()) return FaultOf(input, text);
      point.discrete.emplace_back(input.id, *value);
    } else {
      const std::optional<double> value = ParseReal(text);
      if (!value.has_value()) return FaultOf(input, text);
      point.continuous.emplace_back(input.id, *value);
    }
  }
  SortByRank(model, point);
  if (IsFitted(model, point)) return "";
  return (point.discrete.size() == 1 ? "column " : "columns ") + NamesOf(point.discrete) +
         ": found " + Cut(point.CombinationText(), kLongestCombination) +
         ", for which there is no model, expected one of: " + FittedCombinations(model);
}

bool PointColumns::IsOutsideBounds(const Point& point) const {
  return std::any_of(point.continuous.begin(), point.continuous.end(), [this](const auto& named) {
    const auto bounds = bounds_.find(named.first);
    return bounds != bounds_.end() &&
           (named.second < bounds->second.first || named.second > bounds->second.second);
  });
}

std::vector<OutputColumns> OutputColumnsOf(const Model& model) {
  std::map<std::string, OutputColumns> by_id;
  for (const auto& [values, position] : *model.GetDiscreteCombinationsIndexingPtr()) {
    const auto& outputs = model.GetOutputsWrtDiscCombPtr()->at(static_cast<std::size_t>(position));
    for (const auto& [id, candidates] : outputs) {
      OutputColumns& columns = by_id[id];
      columns.id = id;
      const auto* const candidate = candidates->GetEvaluationCandidatePtr();
      if (candidate == nullptr || !candidate->GetIsErrPredRequired()) columns.has_raw_error = true;
    }
  }
  std::vector<OutputColumns> outputs;
  outputs.reserve(by_id.size());
  for (auto& [id, columns] : by_id) outputs.push_back(std::move(columns));
  return outputs;
}

std::vector<std::string> HeadingsOf(const std::vector<OutputColumns>& outputs) {
  std::vector<std::string> headings;
  for (const OutputColumns& output : outputs) {
    headings.push_back(output.id);
    headings.push_back(output.id + " error");
    if (output.has_raw_error) headings.push_back(output.id + " raw error");
  }
  return headings;
}

void RequireNewHeadings(const Model& model, const CsvRow& header, const std::string& name) {
  const HeaderNames names(header.fields);
  std::vector<std::string> headings = HeadingsOf(OutputColumnsOf(model));
  headings.insert(headings.end(), std::begin(kLocationHeadings), std::end(kLocationHeadings));
  for (const std::string& heading : headings) {
    if (names.Times(heading) == 0) continue;
    throw Refusal("the header of " + name + " already has a column " + Quoted(heading) +
                  ", which the result adds; give it another name");
  }
}

}  // namespace pxrom_command
