#include "point_columns.h"

#include <algorithm>
#include <map>

#include "numbers.h"
#include "prediction.h"
#include "refusal.h"
#include "wording.h"

namespace pxrom_command {

namespace {

/// What stands in a file, fit for one line on a terminal.
std::string Excerpt(const std::string& text) {
  constexpr std::size_t kMost = 40;
  std::string shown = text.size() > kMost ? text.substr(0, kMost) + "..." : text;
  for (char& c : shown) {
    if (static_cast<unsigned char>(c) < 0x20 || c == 0x7F) c = '?';
  }
  return Quoted(shown);
}

std::string FaultOf(const Input& input, const std::string& text) {
  return "column " + input.id + ": found " + (text.empty() ? "nothing" : Excerpt(text)) +
         ", expected " +
         (input.discrete ? "an integer that selects a model: " : "a finite number: ") +
         input.Described();
}

std::string NamesOf(const std::vector<std::pair<std::string, int>>& named) {
  std::vector<std::string> names;
  names.reserve(named.size());
  for (const auto& [name, value] : named) names.push_back(name);
  return Listed(names, names.size());
}

void RequireNone(const std::vector<Input>& missing, const CsvRow& header, const std::string& name) {
  if (missing.empty()) return;
  std::vector<std::string> described;
  std::string suggestion;
  for (const Input& input : missing) {
    described.push_back(input.Described());
    if (suggestion.empty()) suggestion = Suggestion(input.id, header.fields);
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
  std::vector<Input> missing;
  for (const Input& input : inputs) {
    const auto begin = header.fields.begin();
    const auto at = std::find(begin, header.fields.end(), input.id);
    const auto text = texts.find(input.id);
    if (at != header.fields.end()) {
      if (std::find(at + 1, header.fields.end(), input.id) != header.fields.end()) {
        throw Refusal("the header of " + name + " has two columns " + Quoted(input.id));
      }
      if (text != texts.end()) {
        throw Refusal(Quoted(input.id) + " is given twice: as a column of " + name +
                      " and as NAME=VALUE");
      }
      columns_.push_back({static_cast<std::size_t>(at - begin), input});
    } else if (text != texts.end()) {
      Assign(fixed_, input, text->second);
    } else {
      missing.push_back(input);
    }
    if (!input.discrete && input.HasBounds()) bounded_.push_back(input);
  }
  RequireNone(missing, header, name);
  // Where no row chooses the combination, none can be wrong about it.
  if (std::none_of(columns_.begin(), columns_.end(),
                   [](const Column& column) { return column.input.discrete; })) {
    Point point = fixed_;
    SortByRank(model, point);
    RequireCombination(model, point);
  }
  // The first fault of a row is the one that a reader of the table comes to first.
  std::sort(columns_.begin(), columns_.end(),
            [](const Column& a, const Column& b) { return a.index < b.index; });

  for (const std::string& heading : HeadingsOf(OutputColumnsOf(model))) {
    if (std::find(header.fields.begin(), header.fields.end(), heading) == header.fields.end()) {
      continue;
    }
    throw Refusal("the header of " + name + " has a column " + Quoted(heading) +
                  " already, which the result would have twice; give it another name");
  }
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
         ": found " + point.CombinationText() +
         ", for which there is no model, expected one of: " + FittedCombinations(model);
}

bool PointColumns::IsOutsideBounds(const Point& point) const {
  return std::any_of(bounded_.begin(), bounded_.end(), [&point](const Input& input) {
    const auto at = std::find_if(point.continuous.begin(), point.continuous.end(),
                                 [&input](const auto& named) { return named.first == input.id; });
    return at->second < input.lower || at->second > input.upper;
  });
}

std::vector<OutputColumns> OutputColumnsOf(const Model& model) {
  std::map<std::string, OutputColumns> by_id;
  for (const auto& [values, position] : *model.GetDiscreteCombinationsIndexingPtr()) {
    const auto& outputs = model.GetOutputsWrtDiscCombPtr()->at(static_cast<std::size_t>(position));
    for (const auto& [id, candidates] : outputs) {
      OutputColumns& columns = by_id[id];
      columns.id = id;
      const bool physical = ErrorSpaceOf(*candidates) == ErrorSpace::Physical;
      (physical ? columns.has_error : columns.has_scaled_error) = true;
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
    if (output.has_error) headings.push_back(output.id + " error");
    if (output.has_scaled_error) headings.push_back(output.id + " scaled error");
  }
  return headings;
}

}  // namespace pxrom_command
