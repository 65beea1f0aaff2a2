#include <algorithm>
#include <cstdint>
#include <limits>
#include <map>
#include <memory>
#include <string>
#include <string_view>

#include "batch/prepared_model_access.h"
#include "batch/prepared_output.h"
#include "model/candidate_access.h"
#include "model/ensemble_cost.h"
#include "numerics/nan_last.h"
#include "pxrom/batch.h"

namespace Tarvane::Plexura::PXROM {

using batch::kBlock;
using batch::PreparedOutput;
using kernels::LoopTable;

/// Copies with other loops or fewer outputs share the outputs.
struct CPreparedModel::Parts {
  /// Inputs of one rank. Their values are sorted, as Evaluate sorts them.
  struct Tie {
    std::size_t first;
    std::size_t last;
  };

  std::vector<std::string> inputIDs;
  std::vector<std::string> outputIDs;
  std::vector<Tie> ties;
  std::vector<EnsembleCost> costs;
  CEvaluationLimit limit;
  std::vector<std::shared_ptr<const PreparedOutput>> outputs;
  /// For each output the first one that has the same prepared output, and so the same results.
  std::vector<std::size_t> firstSame;
  std::vector<std::size_t> centreCounts;  ///< by the slots of batch::Sharing
  std::size_t errorSlotCount = 0;
  /// How many surfaces take the values of each slot, without and with errors; empty if none are
  /// taken twice.
  std::vector<std::size_t> uses[2];
  const LoopTable* exact = nullptr;
  const LoopTable* fast = nullptr;

  bool IsRepeated(std::size_t output) const { return firstSame[output] != output; }
  void FindRepeated();
  void CountUses();
  EnsembleCost Cost() const;
  std::vector<std::size_t> Order(const double* row) const;
  void FillBlock(const double* points, std::size_t count, double* x) const;
};

namespace {

using DiscreteValues = std::vector<std::pair<std::string, int>>;

int Refuse(std::string* reason, std::string sentence) {
  if (reason != nullptr) *reason = std::move(sentence);
  return 1;
}

std::string Listed(const std::vector<int>& values) {
  std::string text;
  for (const int value : values) text += (text.empty() ? "" : ", ") + std::to_string(value);
  return text;
}

/// The values by rank, and by value where ranks are equal: the key of a combination.
int KeyOf(const CDiscreteCombinations& model, const DiscreteValues& values, std::vector<int>& key,
          std::string* reason) {
  const std::size_t expected = model.Count(CausalityInput, DiscreteParameter, true);
  if (values.size() != expected) {
    return Refuse(reason, "The model has " + std::to_string(expected) +
                              " enabled discrete inputs, but " + std::to_string(values.size()) +
                              " discrete values are given.");
  }
  const auto& ranks = *model.GetRegistrationRank();
  std::vector<std::pair<std::int32_t, int>> ranked;
  for (const auto& [id, value] : values) {
    const auto rank = ranks.find(id);
    if (rank == ranks.end()) return Refuse(reason, "The model has no parameter '" + id + "'.");
    ranked.emplace_back(rank->second, value);
  }
  std::sort(ranked.begin(), ranked.end());
  for (const auto& entry : ranked) key.push_back(entry.second);
  return 0;
}

/// The outputs of the combination that `values` name, or null.
const CDiscreteCombinations::OutputsByID* FindCombination(const CDiscreteCombinations& model,
                                                          const DiscreteValues& values,
                                                          std::string* reason) {
  std::vector<int> key;
  if (KeyOf(model, values, key, reason) != 0) return nullptr;
  const auto combination = model.GetDiscreteCombinationsIndexingPtr()->find(key);
  if (combination == model.GetDiscreteCombinationsIndexingPtr()->end()) {
    Refuse(reason, key.empty() ? "The model has no combination without discrete values."
                               : "The model has no combination of the discrete values " +
                                     Listed(key) + ".");
    return nullptr;
  }
  return &(*model.GetOutputsWrtDiscCombPtr())[static_cast<std::size_t>(combination->second)];
}

/// The enabled continuous inputs by rank.
std::vector<std::pair<std::int32_t, std::string>> RankedInputs(const CDiscreteCombinations& model) {
  const auto& ranks = *model.GetRegistrationRank();
  std::vector<std::pair<std::int32_t, std::string>> inputs;
  for (const std::string& id : model.ListParameterImmutableID(CausalityInput, true)) {
    const auto rank = ranks.find(id);
    if (model.IsContinuous(id) && rank != ranks.end()) inputs.emplace_back(rank->second, id);
  }
  std::sort(inputs.begin(), inputs.end());
  return inputs;
}

/// A working area whose parts start at cache lines.
class AlignedArea {
 public:
  explicit AlignedArea(std::size_t count) : values_(count + kLine) {
    const auto at = reinterpret_cast<std::uintptr_t>(values_.data());
    const std::uintptr_t over = at % (kLine * sizeof(double));
    if (over != 0) offset_ = kLine - over / sizeof(double);
  }
  double* Start() { return values_.data() + offset_; }

 private:
  static constexpr std::size_t kLine = 8;

  std::vector<double> values_;
  std::size_t offset_ = 0;
};

}  // namespace

/// What an evaluation has in common for several surfaces.
class CPreparedModel::SharedArea {
 public:
  SharedArea(const Parts& parts, bool withErrors, std::size_t blocks) {
    const std::vector<std::size_t>& uses = parts.uses[withErrors ? 1 : 0];
    if (uses.empty()) return;
    values_.resize(uses.size());
    if (withErrors && parts.errorSlotCount <= kMostErrors) errors_.resize(parts.errorSlotCount);
    std::vector<std::size_t> starts;
    std::size_t total = 0;
    for (std::size_t slot = 0; slot < uses.size(); ++slot) {
      const std::size_t size = parts.centreCounts[slot] * blocks * kBlock;
      const bool isShared = uses[slot] > 1 && size <= kMostShared - total;
      starts.push_back(isShared ? total : kMostShared);
      if (isShared) total += size;
    }
    // Not filled with zeros: only what was written is read.
    area_.reset(new double[total]);
    for (std::size_t slot = 0; slot < uses.size(); ++slot) {
      if (starts[slot] < kMostShared) values_[slot].values = area_.get() + starts[slot];
    }
  }

  batch::SharedValues* Values() { return values_.empty() ? nullptr : values_.data(); }
  batch::SharedErrors* Errors() { return errors_.empty() ? nullptr : errors_.data(); }

  /// Other points follow.
  void Clear() {
    using Form = batch::SharedValues::Form;
    for (auto& each : values_) std::fill(std::begin(each.forms), std::end(each.forms), Form::None);
    for (auto& each : errors_) {
      std::fill(std::begin(each.areFilled), std::end(each.areFilled), false);
    }
  }

 private:
  // Beyond this, values would come from far away, and one evaluation could take much memory.
  static constexpr std::size_t kMostShared = std::size_t{1} << 21U;
  static constexpr std::size_t kMostErrors = 256;

  std::vector<batch::SharedValues> values_;
  std::vector<batch::SharedErrors> errors_;
  std::unique_ptr<double[]> area_;
};

void CPreparedModel::Parts::FindRepeated() {
  firstSame.clear();
  std::map<const PreparedOutput*, std::size_t> places;
  for (std::size_t o = 0; o < outputs.size(); ++o) {
    firstSame.push_back(places.emplace(outputs[o].get(), o).first->second);
  }
}

void CPreparedModel::Parts::CountUses() {
  FindRepeated();
  for (const bool withErrors : {false, true}) {
    std::vector<std::size_t>& counts = uses[withErrors ? 1 : 0];
    counts.assign(centreCounts.size(), 0);
    for (std::size_t o = 0; o < outputs.size(); ++o) {
      if (IsRepeated(o)) continue;
      for (const std::size_t slot : outputs[o]->Slots(withErrors)) ++counts[slot];
    }
    const auto isShared = [](std::size_t count) { return count > 1; };
    if (std::none_of(counts.begin(), counts.end(), isShared)) counts.clear();
  }
}

EnsembleCost CPreparedModel::Parts::Cost() const {
  EnsembleCost all;
  for (const EnsembleCost& cost : costs) all += cost;
  return all;
}

/// For each place of the sorted row its place in the caller's row.
std::vector<std::size_t> CPreparedModel::Parts::Order(const double* row) const {
  std::vector<std::size_t> order(inputIDs.size());
  for (std::size_t i = 0; i < order.size(); ++i) order[i] = i;
  for (const Tie& tie : ties) {
    std::sort(order.begin() + static_cast<std::ptrdiff_t>(tie.first),
              order.begin() + static_cast<std::ptrdiff_t>(tie.last),
              [&](std::size_t a, std::size_t b) { return IsLessNaNLast(row[a], row[b]); });
  }
  return order;
}

/// The first `count` of `points`, input by input, followed by copies of the last one.
void CPreparedModel::Parts::FillBlock(const double* points, std::size_t count, double* x) const {
  const std::size_t inputs = inputIDs.size();
  for (std::size_t i = 0; i < inputs; ++i) {
    double* const to = x + i * kBlock;
    for (std::size_t point = 0; point < count; ++point) to[point] = points[point * inputs + i];
  }
  for (std::size_t point = 0; point < count && !ties.empty(); ++point) {
    const double* const row = points + point * inputs;
    const std::vector<std::size_t> order = Order(row);
    for (std::size_t i = 0; i < inputs; ++i) x[i * kBlock + point] = row[order[i]];
  }
  for (std::size_t i = 0; i < inputs; ++i) {
    double* const to = x + i * kBlock;
    std::fill(to + count, to + kBlock, to[count - 1]);
  }
}

CPreparedModel::CPreparedModel() = default;
CPreparedModel::CPreparedModel(const CPreparedModel&) = default;
CPreparedModel::CPreparedModel(CPreparedModel&&) noexcept = default;
CPreparedModel& CPreparedModel::operator=(const CPreparedModel&) = default;
CPreparedModel& CPreparedModel::operator=(CPreparedModel&&) noexcept = default;
CPreparedModel::~CPreparedModel() = default;

int CPreparedModel::EstimateCost(const CDiscreteCombinations& model,
                                 const DiscreteValues& discreteValues, CEvaluationCost& cost,
                                 std::string* reason) {
  const auto* const outputs = FindCombination(model, discreteValues, reason);
  if (outputs == nullptr) return 1;
  cost = CostOf(*outputs).OfEvaluation();
  return 0;
}

int CPreparedModel::Prepare(const CDiscreteCombinations& model,
                            const DiscreteValues& discreteValues, CPreparedModel& out,
                            std::string* reason, const CEvaluationLimit& limit) {
  const auto* const candidatesByID = FindCombination(model, discreteValues, reason);
  if (candidatesByID == nullptr) return 1;
  auto parts = std::make_shared<Parts>();
  parts->costs = CostsOf(*candidatesByID);
  if (CheckEvaluationCost(parts->Cost().OfEvaluation(), limit, reason) != 0) return 1;

  parts->limit = limit;
  const auto inputs = RankedInputs(model);
  for (const auto& input : inputs) parts->inputIDs.push_back(input.second);
  for (std::size_t first = 0, last = 0; first < inputs.size(); first = last) {
    while (last < inputs.size() && inputs[last].first == inputs[first].first) ++last;
    if (last - first > 1) parts->ties.push_back({first, last});
  }
  batch::Sharing sharing;
  // Many outputs of a short text may have the same large group.
  std::map<const void*, std::shared_ptr<const PreparedOutput>> prepared;
  for (const auto& [id, candidates] : *candidatesByID) {
    auto& output = prepared[CandidateAccess::IdentityForEvaluation(*candidates)];
    if (output == nullptr) {
      output = std::make_shared<PreparedOutput>(*candidates, inputs.size(), sharing);
    }
    parts->outputIDs.push_back(id);
    parts->outputs.push_back(output);
  }
  parts->centreCounts = sharing.Counts();
  parts->errorSlotCount = sharing.ErrorSlotCount();
  parts->CountUses();
  parts->fast = kernels::FindLoops(kernels::BestInstructionSet());
  parts->exact = kernels::ExactLoops(kernels::BestInstructionSet());
  out.parts_ = std::move(parts);
  return 0;
}

int CPreparedModel::Select(const std::vector<std::string>& outputIDs, CPreparedModel& out,
                           std::string* reason) const {
  if (parts_ == nullptr) return Refuse(reason, "Nothing is prepared.");
  auto parts = std::make_shared<Parts>(*parts_);
  parts->outputIDs = outputIDs;
  parts->costs.clear();
  parts->outputs.clear();
  std::map<std::string_view, std::size_t> places;
  for (std::size_t o = 0; o < parts_->outputIDs.size(); ++o)
    places.emplace(parts_->outputIDs[o], o);
  for (const std::string& id : outputIDs) {
    const auto found = places.find(id);
    if (found == places.end()) {
      return Refuse(reason, "The combination has no output '" + id + "'.");
    }
    parts->costs.push_back(parts_->costs[found->second]);
    parts->outputs.push_back(parts_->outputs[found->second]);
  }
  parts->CountUses();
  out.parts_ = std::move(parts);
  return 0;
}

const std::vector<std::string>& CPreparedModel::InputIDs() const {
  static const std::vector<std::string> none;
  return parts_ != nullptr ? parts_->inputIDs : none;
}

const std::vector<std::string>& CPreparedModel::OutputIDs() const {
  static const std::vector<std::string> none;
  return parts_ != nullptr ? parts_->outputIDs : none;
}

int CPreparedModel::Evaluate(const double* points, std::size_t rows, E_PrecisionMode mode,
                             double* values, double* errors, int* statuses) const {
  if (parts_ == nullptr || (mode != PrecisionExact && mode != PrecisionFast)) return 1;
  const std::size_t inputs = parts_->inputIDs.size();
  const std::size_t outputs = parts_->outputIDs.size();
  if (rows == 0 || outputs == 0) return 0;
  if ((points == nullptr && inputs > 0) || values == nullptr) return 1;

  const bool withErrors = errors != nullptr;
  const auto blocksAtOnce = [&](const PreparedOutput& output) {
    return std::min(output.BlocksAtOnce(withErrors), (rows + kBlock - 1) / kBlock);
  };
  std::size_t blocks = 1;
  std::size_t workSize = 0;
  std::size_t questionCount = 0;
  for (const auto& output : parts_->outputs) {
    const std::size_t own = blocksAtOnce(*output);
    blocks = std::max(blocks, own);
    workSize = std::max(workSize, output->WorkSize(withErrors, own));
    questionCount = std::max(questionCount, output->QuestionCount());
  }
  const std::size_t size = blocks * kBlock;
  AlignedArea area((inputs + 2) * size + workSize);
  const std::unique_ptr<batch::Question[]> questions(new batch::Question[questionCount]);
  std::vector<int> ownStatuses(size);
  double* const x = area.Start();
  double* const ownValues = x + inputs * size;
  double* const ownErrors = ownValues + size;
  SharedArea shared(*parts_, withErrors, blocks);
  const batch::Tools tools = {parts_->exact,   parts_->fast,    ownErrors + size,
                              questions.get(), shared.Values(), shared.Errors()};
  const batch::Results results = {ownValues, withErrors ? ownErrors : nullptr, ownStatuses.data()};

  const auto evaluate = [&](std::size_t o, std::size_t first, std::size_t count,
                            batch::FastProgress& progress) {
    const PreparedOutput& output = *parts_->outputs[o];
    const std::size_t atOnce = blocksAtOnce(output) * kBlock;
    for (std::size_t done = 0; done < count; done += atOnce) {
      const std::size_t some = std::min(atOnce, count - done);
      output.Evaluate({x + done * inputs, some, done / kBlock}, tools, results,
                      mode == PrecisionFast ? &progress : nullptr);
      for (std::size_t point = 0; point < some; ++point) {
        const std::size_t at = (first + done + point) * outputs + o;
        values[at] = ownValues[point];
        if (withErrors) errors[at] = ownErrors[point];
        if (statuses != nullptr) statuses[at] = ownStatuses[point];
      }
    }
  };
  // Outputs that share values take turns. Others have all points one after the other, since a
  // processor keeps what it has just read.
  const std::size_t together = shared.Values() != nullptr ? outputs : 1;
  std::vector<batch::FastProgress> progress(outputs);
  for (std::size_t o = 0; o < outputs; o += together) {
    if (parts_->IsRepeated(o)) continue;
    for (std::size_t first = 0; first < rows; first += size) {
      const std::size_t count = std::min(size, rows - first);
      for (std::size_t block = 0; block < count && inputs > 0; block += kBlock) {
        parts_->FillBlock(points + (first + block) * inputs, std::min(kBlock, count - block),
                          x + block * inputs);
      }
      shared.Clear();
      for (std::size_t k = o; k < o + together; ++k) {
        if (!parts_->IsRepeated(k)) evaluate(k, first, count, progress[k]);
      }
    }
  }
  for (std::size_t o = 0; o < outputs; ++o) {
    if (!parts_->IsRepeated(o)) continue;
    for (std::size_t row = 0; row < rows; ++row) {
      const std::size_t to = row * outputs + o;
      const std::size_t from = row * outputs + parts_->firstSame[o];
      values[to] = values[from];
      if (withErrors) errors[to] = errors[from];
      if (statuses != nullptr) statuses[to] = statuses[from];
    }
  }
  return 0;
}

CEvaluationCost CPreparedModel::Cost() const {
  return parts_ != nullptr ? parts_->Cost().OfEvaluation() : CEvaluationCost();
}

CEvaluationCost CPreparedModel::GradientCost() const {
  return parts_ != nullptr ? parts_->Cost().OfGradients() : CEvaluationCost();
}

int CPreparedModel::EvaluateGradients(const double* points, std::size_t rows, double* gradients,
                                      int* statuses, std::string* reason) const {
  if (parts_ == nullptr) return 1;
  if (CheckEvaluationCost(GradientCost(), parts_->limit, reason) != 0) return 1;
  const std::size_t inputs = parts_->inputIDs.size();
  const std::size_t outputs = parts_->outputIDs.size();
  if (rows == 0 || outputs == 0) return 0;
  if (inputs > 0 && (points == nullptr || gradients == nullptr)) return 1;

  std::size_t workSize = 0;
  for (const auto& output : parts_->outputs) {
    workSize = std::max(workSize, output->GradientWorkSize());
  }
  std::vector<double> work(2 * inputs + workSize);
  double* const x = work.data();
  double* const gradient = x + inputs;
  for (std::size_t r = 0; r < rows; ++r) {
    std::vector<std::size_t> order;
    const double* const row = points + r * inputs;
    if (!parts_->ties.empty()) order = parts_->Order(row);
    for (std::size_t i = 0; i < inputs; ++i) x[i] = row[order.empty() ? i : order[i]];
    for (std::size_t o = 0; o < outputs; ++o) {
      const int status = parts_->outputs[o]->Gradient(x, gradient + inputs, gradient);
      double* const to = gradients + (r * outputs + o) * inputs;
      for (std::size_t i = 0; i < inputs; ++i) to[order.empty() ? i : order[i]] = gradient[i];
      if (statuses != nullptr) statuses[r * outputs + o] = status;
    }
  }
  return 0;
}

CPreparedModel PreparedModelAccess::With(const CPreparedModel& model, simd::InstructionSet set) {
  CPreparedModel other;
  const LoopTable* const loops = kernels::FindLoops(set);
  if (model.parts_ == nullptr || loops == nullptr) return other;
  auto parts = std::make_shared<CPreparedModel::Parts>(*model.parts_);
  parts->exact = kernels::ExactLoops(set);
  parts->fast = loops;
  other.parts_ = std::move(parts);
  return other;
}

}  // namespace Tarvane::Plexura::PXROM
