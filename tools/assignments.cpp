#include "assignments.h"

#include <algorithm>
#include <cstddef>
#include <map>
#include <string_view>
#include <unordered_set>

#include "numbers.h"
#include "refusal.h"
#include "wording.h"

namespace pxrom_command {

namespace {

using Texts = std::map<std::string, std::string>;

[[noreturn]] void RefuseInput(const Model& model, const std::vector<Input>& inputs,
                              const std::string& name) {
  std::vector<std::string> names;
  names.reserve(inputs.size());
  for (const Input& input : inputs) names.push_back(input.id);
  if (!model.IsRegistered(name)) {
    throw Refusal("the model has no parameter " + Quoted(name) + Suggestion(name, names));
  }
  throw Refusal(Quoted(name) + " takes no value: it is a parameter of kind " +
                Quoted(KindOf(model, name)));
}

void RequireAll(const std::vector<Input>& inputs, const Texts& texts) {
  std::vector<std::string> missing;
  std::vector<std::string> expected;
  for (const Input& input : inputs) {
    if (texts.count(input.id) == 0) missing.push_back(input.id);
    expected.push_back(input.Described());
  }
  if (missing.empty()) return;
  throw Refusal("no value for " + Listed(missing) + "; the model expects " +
                Listed(expected, expected.size()));
}

double RealOf(const std::string& name, const std::string& text) {
  const std::optional<double> value = ParseReal(text);
  if (!value.has_value()) {
    const bool comma = text.find(',') != std::string::npos;
    throw Refusal("the value of " + name + " is not a finite number: " + Quoted(text) +
                  (comma ? " (use a decimal point)" : ""));
  }
  return *value;
}

int IntegerOf(const Input& input, const std::string& text) {
  const std::optional<int> value = ParseInteger(text);
  if (!value.has_value()) {
    throw Refusal(input.Described() + " is a discrete input and takes an integer, not " +
                  Quoted(text));
  }
  return *value;
}

template <typename Value>
void SortNamed(const Model& model, std::vector<std::pair<std::string, Value>>& named) {
  const auto& rank = *model.GetRegistrationRank();
  const auto is_before = [&rank](const auto& a, const auto& b) {
    return std::make_pair(rank.at(a.first), a.second) < std::make_pair(rank.at(b.first), b.second);
  };
  // As in most tables. Sorting would allocate a buffer.
  if (std::is_sorted(named.begin(), named.end(), is_before)) return;
  std::stable_sort(named.begin(), named.end(), is_before);
}

}  // namespace

std::vector<int> Point::Combination() const {
  std::vector<int> values;
  for (const auto& [name, value] : discrete) values.push_back(value);
  return values;
}

std::string Point::CombinationText() const {
  std::string text;
  for (const auto& [name, value] : discrete) {
    text += (text.empty() ? "" : ", ") + name + '=' + std::to_string(value);
  }
  return text;
}

std::map<std::string, std::string> TextsByName(const Model& model, const std::vector<Input>& inputs,
                                               const std::vector<std::string>& assignments) {
  std::unordered_set<std::string_view> known;
  for (const Input& input : inputs) known.insert(input.id);
  Texts texts;
  for (const std::string& assignment : assignments) {
    // The last "=", since a name may hold one and a number can't.
    const std::size_t equals = assignment.rfind('=');
    if (equals == std::string::npos || equals == 0) {
      throw Refusal(Quoted(assignment) + " is not an assignment of the form NAME=VALUE");
    }
    const std::string name = assignment.substr(0, equals);
    if (known.count(name) == 0) RefuseInput(model, inputs, name);
    if (!texts.emplace(name, assignment.substr(equals + 1)).second) {
      throw Refusal(Quoted(name) + " is given twice");
    }
  }
  return texts;
}

void Assign(Point& point, const Input& input, const std::string& text) {
  if (input.discrete) {
    point.discrete.emplace_back(input.id, IntegerOf(input, text));
  } else {
    point.continuous.emplace_back(input.id, RealOf(input.id, text));
  }
}

void SortByRank(const Model& model, Point& point) {
  SortNamed(model, point.discrete);
  SortNamed(model, point.continuous);
}

bool IsFitted(const Model& model, const Point& point) {
  return model.GetDiscreteCombinationsIndexingPtr()->count(point.Combination()) > 0;
}

void RequireCombination(const Model& model, const Point& point) {
  if (IsFitted(model, point)) return;
  const std::string wanted = Cut(point.CombinationText(), kLongestCombination);
  throw Refusal("there is no model for the combination " +
                (wanted.empty() ? std::string("without discrete values") : wanted) +
                "; the fitted combinations are: " + FittedCombinations(model));
}

Point PointOf(const Model& model, const std::vector<std::string>& assignments) {
  const std::vector<Input> inputs = InputsOf(model);
  const Texts texts = TextsByName(model, inputs, assignments);
  RequireAll(inputs, texts);

  Point point;
  for (const Input& input : inputs) Assign(point, input, texts.at(input.id));
  SortByRank(model, point);
  RequireCombination(model, point);
  return point;
}

std::vector<Input> OutsideBounds(const Model& model, const Point& point) {
  const std::map<std::string, double> values(point.continuous.begin(), point.continuous.end());
  std::vector<Input> outside;
  for (const Input& input : InputsOf(model)) {
    if (input.discrete || !input.HasBounds()) continue;
    const double value = values.at(input.id);
    if (value < input.lower || value > input.upper) outside.push_back(input);
  }
  return outside;
}

}  // namespace pxrom_command
