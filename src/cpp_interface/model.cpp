#include "pxrom/model.h"

#include <atomic>
#include <cmath>
#include <limits>
#include <utility>

#include "pxrom/discrete_combinations.h"
#include "pxrom/inspection.h"

namespace pxrom {

namespace library = Tarvane::Plexura::PXROM;

namespace {

constexpr double kNone = std::numeric_limits<double>::quiet_NaN();

/// A combination, prepared when it is first used. Threads that come at the same time each prepare
/// it, and one of the results stays.
class Slot {
 public:
  Slot() = default;
  Slot(const Slot&) = delete;
  Slot& operator=(const Slot&) = delete;
  ~Slot() { delete made_.load(std::memory_order_acquire); }

  const library::CPreparedModel* Get() const { return made_.load(std::memory_order_acquire); }
  const library::CPreparedModel& Set(const library::CPreparedModel& model) const {
    auto own = std::make_unique<const library::CPreparedModel>(model);
    const library::CPreparedModel* first = nullptr;
    if (made_.compare_exchange_strong(first, own.get(), std::memory_order_acq_rel)) {
      return *own.release();
    }
    return *first;
  }

 private:
  mutable std::atomic<const library::CPreparedModel*> made_{nullptr};
};

std::string Named(const std::string& id) { return "'" + library::VisibleText(id) + "'"; }

}  // namespace

struct Model::Content {
  library::CDiscreteCombinations combinations;
  Limit limit;
  /// By the values of the discrete inputs.
  std::map<Discrete, Slot> slots;

  const library::CPreparedModel& At(const Discrete& discrete) const;
};

const library::CPreparedModel& Model::Content::At(const Discrete& discrete) const {
  const auto slot = slots.find(discrete);
  if (slot != slots.end() && slot->second.Get() != nullptr) return *slot->second.Get();
  library::CPreparedModel made;
  std::string reason;
  const std::vector<std::pair<std::string, int>> values(discrete.begin(), discrete.end());
  if (library::CPreparedModel::Prepare(combinations, values, made, &reason, limit) != 0) {
    throw Error(reason);
  }
  if (slot == slots.end()) throw Error("A discrete input has no value, and another one is named.");
  return slot->second.Set(made);
}

Error::~Error() = default;

Answer::Answer(std::map<std::string, Prediction> outputs) : outputs_(std::move(outputs)) {}

const Prediction& Answer::operator[](const std::string& id) const {
  const auto found = outputs_.find(id);
  if (found == outputs_.end()) throw Error("There is no output " + Named(id) + ".");
  return found->second;
}

Model::Model(std::shared_ptr<const Content> content) : content_(std::move(content)) {}

Model Model::parse(std::string text, const Limit& limit) {
  auto content = std::make_shared<Content>();
  std::string reason;
  if (library::ReadExplainedPXROMDatabase(std::move(text), content->combinations, reason) != 0) {
    throw Error(reason);
  }
  content->limit = limit;
  const auto ids = content->combinations.ListEnabledDiscreteParameterWrtRegistrationRank();
  for (const auto& [key, place] : *content->combinations.GetDiscreteCombinationsIndexingPtr()) {
    Discrete discrete;
    for (std::size_t i = 0; i < ids.size() && i < key.size(); ++i) discrete[ids[i]] = key[i];
    content->slots.try_emplace(std::move(discrete));
  }
  return Model(std::move(content));
}

Answer Model::predict(const Discrete& discrete, const Continuous& point) const {
  const library::CPreparedModel& model = content_->At(discrete);
  std::vector<double> x;
  for (const std::string& id : model.InputIDs()) {
    const auto value = point.find(id);
    if (value == point.end()) throw Error("The input " + Named(id) + " has no value.");
    x.push_back(value->second);
  }
  if (point.size() > x.size()) {
    Continuous others = point;
    for (const std::string& id : model.InputIDs()) others.erase(id);
    throw Error("There is no continuous input " + Named(others.begin()->first) + ".");
  }

  const std::size_t count = model.OutputIDs().size();
  std::vector<double> values(count), errors(count), lower(count), upper(count), distances(count);
  std::vector<int> statuses(count), inside(count);
  model.EvaluateWithUnits(
      x.data(), 1, library::PrecisionExact,
      {values.data(), errors.data(), lower.data(), upper.data(), nullptr, statuses.data()});
  std::string reason;
  if (model.LocatePoints(x.data(), 1, {inside.data(), distances.data(), nullptr}, &reason) != 0) {
    throw Error(reason);
  }
  std::map<std::string, Prediction> outputs;
  for (std::size_t o = 0; o < count; ++o) {
    const std::string& id = model.OutputIDs()[o];
    if (statuses[o] == 1) {
      throw Error("The output " + Named(id) +
                  " can't be evaluated: one of its surfaces is damaged, stopped or not ready, or "
                  "refuses the point.");
    }
    outputs[id] = {values[o],      errors[o],   lower[o], upper[o], model.ErrorOrigin(o),
                   inside[o] == 1, distances[o]};
  }
  return Answer(std::move(outputs));
}

Table Model::predictRows(const Discrete& discrete, const std::vector<double>& points) const {
  const library::CPreparedModel& model = content_->At(discrete);
  const std::size_t inputs = model.InputIDs().size();
  if (inputs == 0 || points.size() % inputs != 0) {
    throw Error("There are " + std::to_string(points.size()) +
                " values, which is no number of points of " + std::to_string(inputs) +
                " inputs each.");
  }
  const std::size_t rows = points.size() / inputs;
  Table table;
  table.outputs = model.OutputIDs();
  table.values.assign(rows * table.outputs.size(), kNone);
  table.errors = table.values;
  library::CResultsInUnits results;
  results.values = table.values.data();
  results.errors = table.errors.data();
  model.EvaluateWithUnits(points.data(), rows, library::PrecisionExact, results);
  return table;
}

std::vector<std::string> Model::inputs(const Discrete& discrete) const {
  return content_->At(discrete).InputIDs();
}

library::CPreparedModel Model::prepared(const Discrete& discrete) const {
  return content_->At(discrete);
}

}  // namespace pxrom
