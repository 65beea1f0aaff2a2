#include <algorithm>
#include <cstdint>
#include <limits>
#include <map>
#include <memory>
#include <string>
#include <string_view>

#include "batch/prepared_model_access.h"
#include "batch/prepared_output.h"
#include "batch/sampled_region.h"
#include "model/candidate_access.h"
#include "model/ensemble_cost.h"
#include "model/fitted_samples.h"
#include "numerics/nan_last.h"
#include "pxrom/batch.h"

namespace Tarvane::Plexura::PXROM {

using batch::kBlock;
using batch::PreparedOutput;
using batch::SampledRegion;
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
  std::vector<std::shared_ptr<const SampledRegion>> regions;  ///< of the outputs
  /// For each output the first one that has the same prepared output, and so the same results, and
  /// the first one that has the same samples.
  std::vector<std::size_t> firstSame;
  std::vector<std::size_t> firstOfRegion;
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
  int FindSides(const SampledRegion& region, const double* row, signed char* sides) const;
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

batch::Sharing::Array SamplesOf(const CFittingCandidates& candidates, std::size_t inputs) {
  const CFittingCandidate* const candidate = candidates.GetEvaluationCandidatePtr();
  return std::make_shared<const std::vector<double>>(
      candidate != nullptr ? FittedSamples(*candidate, inputs) : std::vector<double>());
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

/// Values that stay where an output has no error.
void LeaveOutErrors(std::size_t count, const CResultsInUnits& results) {
  constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
  for (double* const numbers : {results.errors, results.lower, results.upper, results.rawErrors}) {
    std::fill_n(numbers, count, kNaN);
  }
  std::replace(results.statuses, results.statuses + count, 0, -2);
}

/// Copies the results of one output at `count` points to the places from `first` on, which are
/// `stride` apart, wherever they are asked for.
void Copy(const CResultsInUnits& from, std::size_t count, const CResultsInUnits& to,
          std::size_t first, std::size_t stride) {
  const auto copy = [&](auto* numbers, auto* places) {
    if (places == nullptr) return;
    for (std::size_t k = 0; k < count; ++k) places[first + k * stride] = numbers[k];
  };
  copy(from.values, to.values);
  copy(from.errors, to.errors);
  copy(from.lower, to.lower);
  copy(from.upper, to.upper);
  copy(from.rawErrors, to.rawErrors);
  copy(from.statuses, to.statuses);
}

/// Copies a column of a table, unless that is null, to another one.
template <class Number>
void RepeatColumn(Number* table, std::size_t rows, std::size_t columns, std::size_t from,
                  std::size_t to) {
  if (table == nullptr) return;
  for (std::size_t r = 0; r < rows; ++r) table[r * columns + to] = table[r * columns + from];
}

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
  const auto findFirst = [](const auto& list, std::vector<std::size_t>& first) {
    first.clear();
    std::map<const void*, std::size_t> places;
    for (std::size_t o = 0; o < list.size(); ++o) {
      first.push_back(places.emplace(list[o].get(), o).first->second);
    }
  };
  findFirst(outputs, firstSame);
  findFirst(regions, firstOfRegion);
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

/// 1 if the row is inside, 0 if not, -1 if that is unknown; with the side of each input in `sides`
/// unless it is null.
int CPreparedModel::Parts::FindSides(const SampledRegion& region, const double* row,
                                     signed char* sides) const {
  const std::size_t inputs = inputIDs.size();
  if (sides != nullptr) std::fill_n(sides, inputs, static_cast<signed char>(0));
  if (!region.IsKnown()) return -1;
  std::vector<std::size_t> order;
  if (!ties.empty()) order = Order(row);
  int inside = 1;
  for (std::size_t i = 0; i < inputs; ++i) {
    const std::size_t place = order.empty() ? i : order[i];
    const signed char side = region.SideOf(i, row[place]);
    if (side != 0) inside = 0;
    if (sides != nullptr) sides[place] = side;
  }
  return inside;
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
  // Many outputs of a short text may have the same large group, and outputs of different groups
  // usually have their samples in common.
  struct Made {
    std::shared_ptr<const PreparedOutput> output;
    std::shared_ptr<const SampledRegion> region;
  };
  std::map<const void*, Made> prepared;
  std::map<batch::Sharing::Array, std::shared_ptr<const SampledRegion>> regions;
  for (const auto& [id, candidates] : *candidatesByID) {
    Made& made = prepared[CandidateAccess::IdentityForEvaluation(*candidates)];
    if (made.output == nullptr) {
      made.output = std::make_shared<PreparedOutput>(*candidates, inputs.size(), sharing);
      const auto samples = sharing.Pooled(SamplesOf(*candidates, inputs.size()));
      auto& region = regions[samples];
      if (region == nullptr) region = std::make_shared<SampledRegion>(samples, inputs.size());
      made.region = region;
    }
    parts->outputIDs.push_back(id);
    parts->outputs.push_back(made.output);
    parts->regions.push_back(made.region);
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
  parts->regions.clear();
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
    parts->regions.push_back(parts_->regions[found->second]);
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

CErrorOrigin CPreparedModel::ErrorOrigin(std::size_t output) const {
  const bool isThere = parts_ != nullptr && output < parts_->outputs.size();
  return isThere ? parts_->outputs[output]->ErrorOrigin() : CErrorOrigin();
}

int CPreparedModel::Evaluate(const double* points, std::size_t rows, E_PrecisionMode mode,
                             double* values, double* errors, int* statuses) const {
  if (parts_ == nullptr || (mode != PrecisionExact && mode != PrecisionFast)) return 1;
  if (rows == 0 || parts_->outputIDs.empty()) return 0;
  if ((points == nullptr && !parts_->inputIDs.empty()) || values == nullptr) return 1;
  CResultsInUnits results;
  results.values = values;
  results.rawErrors = errors;
  results.statuses = statuses;
  Run(points, rows, mode, errors != nullptr ? Form::Errors : Form::Values, results);
  return 0;
}

int CPreparedModel::EvaluateWithUnits(const double* points, std::size_t rows, E_PrecisionMode mode,
                                      const CResultsInUnits& results) const {
  if (parts_ == nullptr || (mode != PrecisionExact && mode != PrecisionFast)) return 1;
  if (rows == 0 || parts_->outputIDs.empty()) return 0;
  if (points == nullptr && !parts_->inputIDs.empty()) return 1;
  const bool withErrors = results.errors != nullptr || results.lower != nullptr ||
                          results.upper != nullptr || results.rawErrors != nullptr;
  Run(points, rows, mode, withErrors ? Form::Units : Form::Values, results);
  return 0;
}

void CPreparedModel::Run(const double* points, std::size_t rows, E_PrecisionMode mode, Form form,
                         const CResultsInUnits& to) const {
  const std::size_t inputs = parts_->inputIDs.size();
  const std::size_t outputs = parts_->outputIDs.size();
  const bool withErrors = form != Form::Values;
  const auto areErrorsFor = [&](const PreparedOutput& output) {
    return form == Form::Errors || (form == Form::Units && output.HasErrors());
  };
  const auto blocksAtOnce = [&](const PreparedOutput& output) {
    return std::min(output.BlocksAtOnce(areErrorsFor(output)), (rows + kBlock - 1) / kBlock);
  };
  std::size_t blocks = 1;
  std::size_t workSize = 0;
  std::size_t questionCount = 0;
  for (const auto& output : parts_->outputs) {
    const std::size_t own = blocksAtOnce(*output);
    blocks = std::max(blocks, own);
    workSize = std::max(workSize, output->WorkSize(areErrorsFor(*output), own));
    questionCount = std::max(questionCount, output->QuestionCount());
  }
  const std::size_t size = blocks * kBlock;
  // Values, errors, the ends of the interval, raw errors.
  constexpr std::size_t kColumns = 5;
  AlignedArea area((inputs + kColumns) * size + workSize);
  const std::unique_ptr<batch::Question[]> questions(new batch::Question[questionCount]);
  std::vector<int> ownStatuses(size);
  double* const x = area.Start();
  double* const columns = x + inputs * size;
  SharedArea shared(*parts_, withErrors, blocks);
  const batch::Tools tools = {parts_->exact,   parts_->fast,    columns + kColumns * size,
                              questions.get(), shared.Values(), shared.Errors()};
  const CResultsInUnits own = {
      columns,           columns + size, columns + 2 * size, columns + 3 * size, columns + 4 * size,
      ownStatuses.data()};

  const auto evaluate = [&](std::size_t o, std::size_t first, std::size_t count,
                            batch::FastProgress& progress) {
    const PreparedOutput& output = *parts_->outputs[o];
    const std::size_t atOnce = blocksAtOnce(output) * kBlock;
    for (std::size_t done = 0; done < count; done += atOnce) {
      const batch::Points some = {x + done * inputs, std::min(atOnce, count - done), done / kBlock};
      batch::FastProgress* const fast = mode == PrecisionFast ? &progress : nullptr;
      if (form == Form::Units && output.HasErrors()) {
        output.EvaluateWithUnits(some, tools, own, fast);
      } else {
        double* const errors = form == Form::Errors ? own.rawErrors : nullptr;
        output.Evaluate(some, tools, {own.values, errors, own.statuses}, fast);
        if (form == Form::Units) LeaveOutErrors(some.count, own);
      }
      Copy(own, some.count, to, (first + done) * outputs + o, outputs);
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
    const std::size_t from = parts_->firstSame[o];
    RepeatColumn(to.values, rows, outputs, from, o);
    RepeatColumn(to.errors, rows, outputs, from, o);
    RepeatColumn(to.lower, rows, outputs, from, o);
    RepeatColumn(to.upper, rows, outputs, from, o);
    RepeatColumn(to.rawErrors, rows, outputs, from, o);
    RepeatColumn(to.statuses, rows, outputs, from, o);
  }
}

CEvaluationCost CPreparedModel::Cost() const {
  return parts_ != nullptr ? parts_->Cost().OfEvaluation() : CEvaluationCost();
}

CEvaluationCost CPreparedModel::GradientCost() const {
  return parts_ != nullptr ? parts_->Cost().OfGradients() : CEvaluationCost();
}

CEvaluationCost CPreparedModel::LocationCost() const {
  return parts_ != nullptr ? parts_->Cost().OfLocations() : CEvaluationCost();
}

int CPreparedModel::SampleRanges(std::size_t output, std::vector<double>& lower,
                                 std::vector<double>& upper) const {
  if (parts_ == nullptr || output >= parts_->regions.size()) return 1;
  const SampledRegion& region = *parts_->regions[output];
  if (!region.IsKnown()) return 1;
  lower = region.Lower();
  upper = region.Upper();
  return 0;
}

std::size_t CPreparedModel::FirstWithSamplesOf(std::size_t output) const {
  const bool isThere = parts_ != nullptr && output < parts_->firstOfRegion.size();
  return isThere ? parts_->firstOfRegion[output] : output;
}

int CPreparedModel::LocatePoints(const double* points, std::size_t rows,
                                 const CLocations& locations, std::string* reason) const {
  if (parts_ == nullptr) return 1;
  if (CheckEvaluationCost(LocationCost(), parts_->limit, reason) != 0) return 1;
  const std::size_t inputs = parts_->inputIDs.size();
  const std::size_t outputs = parts_->outputIDs.size();
  if (rows == 0 || outputs == 0) return 0;
  if (inputs > 0 && points == nullptr) return 1;

  std::size_t workSize = 0;
  for (const auto& region : parts_->regions) workSize = std::max(workSize, region->WorkSize());
  AlignedArea area((inputs + 1) * kBlock + workSize);
  double* const x = area.Start();
  double* const own = x + inputs * kBlock;
  for (std::size_t o = 0; o < outputs; ++o) {
    if (parts_->firstOfRegion[o] != o) continue;
    const SampledRegion& region = *parts_->regions[o];
    for (std::size_t first = 0; first < rows; first += kBlock) {
      const std::size_t count = std::min(kBlock, rows - first);
      const double* const block = points + first * inputs;
      if (locations.distances != nullptr) {
        std::fill_n(own, count, std::numeric_limits<double>::quiet_NaN());
        if (region.IsKnown()) {
          parts_->FillBlock(block, count, x);
          region.FindDistances({x, count, 0}, *parts_->exact, own + kBlock, own);
        }
      }
      for (std::size_t point = 0; point < count; ++point) {
        const std::size_t at = (first + point) * outputs + o;
        if (locations.distances != nullptr) locations.distances[at] = own[point];
        signed char* const sides =
            locations.sides != nullptr ? locations.sides + at * inputs : nullptr;
        const int inside = parts_->FindSides(region, block + point * inputs, sides);
        if (locations.inside != nullptr) locations.inside[at] = inside;
      }
    }
  }
  for (std::size_t o = 0; o < outputs; ++o) {
    const std::size_t from = parts_->firstOfRegion[o];
    if (from == o) continue;
    RepeatColumn(locations.inside, rows, outputs, from, o);
    RepeatColumn(locations.distances, rows, outputs, from, o);
    for (std::size_t r = 0; r < rows && locations.sides != nullptr; ++r) {
      signed char* const sides = locations.sides + r * outputs * inputs;
      std::copy_n(sides + from * inputs, inputs, sides + o * inputs);
    }
  }
  return 0;
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

double PreparedModelAccess::Spacing(const CPreparedModel& model, std::size_t output) {
  const SampledRegion& region = *model.parts_->regions[output];
  if (!region.IsKnown()) return std::numeric_limits<double>::quiet_NaN();
  return region.Spacing(*model.parts_->exact);
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
