#include "pxrom/explanation.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <map>
#include <optional>

#include "batch/prepared_model_access.h"
#include "families/family.h"
#include "model/candidate_access.h"
#include "model/candidate_evaluation.h"

namespace Tarvane::Plexura::PXROM {

namespace {

using Access = CandidateAccess;

const double kNoNumber = std::numeric_limits<double>::quiet_NaN();

/// The point of the caller, input by input.
int TakePoint(const std::vector<std::string>& inputs,
              const std::vector<std::pair<std::string, double>>& named, std::vector<double>& point,
              std::string& reason) {
  std::map<std::string, double> values;
  for (const auto& [name, value] : named) values.emplace(name, value);
  if (named.size() != inputs.size() || values.size() != inputs.size()) {
    reason = "a point names each of its " + std::to_string(inputs.size()) + " inputs once";
    return 1;
  }
  for (const std::string& input : inputs) {
    const auto found = values.find(input);
    if (found == values.end()) {
      reason = "the point has no value for \"" + input + "\"";
      return 1;
    }
    point.push_back(found->second);
  }
  return 0;
}

/// The prediction of one surface in the scaled space of its ensemble; NaN when it refuses.
double PredictionOf(const CRSData& surface, const std::vector<double>& scaled) {
  const Family* const family = FindFamily(surface.DataType());
  double value = 0.0;
  if (family == nullptr ||
      family->evaluator().EvaluateResponseSurface(&surface, scaled, value) == 1) {
    return kNoNumber;
  }
  return value;
}

double InUnit(const CFittingCandidate& candidate, double value) {
  return candidate.BackscaleAndOverwriteOutputSample(value) == 0 ? value : kNoNumber;
}

void ExplainSurfaces(const CFittingCandidate& candidate, const std::vector<double>& scaled,
                     COutputExplanation& out) {
  const auto& surfaces = Access::Surfaces(candidate);
  const auto& weights = Access::Weights(candidate);
  for (std::size_t i = 0; i < std::min(surfaces.size(), weights.size()); ++i) {
    CSurfaceExplanation one;
    one.type = surfaces[i]->DataType();
    const Family* const family = FindFamily(one.type);
    if (family != nullptr) one.family = family->name;
    one.weight = weights[i];
    one.value = InUnit(candidate, PredictionOf(*surfaces[i], scaled));
    one.share = one.weight * one.value;
    out.surfaces.push_back(std::move(one));
  }
}

void ExplainFolds(const CFittingCandidate& candidate, const std::vector<double>& scaled,
                  COutputExplanation& out) {
  if (!candidate.GetIsErrPredRequired()) return;
  const std::optional<CrossValidation> validation = ValidationOf(candidate, scaled.size());
  const auto& subSurfaces = Access::SubSurfaces(candidate);
  const auto& weights = Access::Weights(candidate);
  if (!validation || validation->folds == 0) return;
  // In the order of their surfaces, and for each surface in that of the folds.
  std::vector<double> sums(validation->folds, 0.0);
  for (std::size_t k = 0; k < subSurfaces.size(); ++k) {
    const std::size_t surface = k / validation->folds;
    if (surface >= weights.size()) return;
    sums[k % validation->folds] += weights[surface] * PredictionOf(*subSurfaces[k], scaled);
  }
  for (const double sum : sums) out.folds.push_back(InUnit(candidate, sum));
}

/// The Euclidean distance in units of the widths of the ranges, as LocatePoints measures it; inputs
/// whose samples are all equal do not count.
double DistanceBetween(const std::vector<double>& a, const std::vector<double>& b,
                       const std::vector<CInputExplanation>& inputs) {
  double sum = 0.0;
  for (std::size_t k = 0; k < inputs.size(); ++k) {
    const double width = inputs[k].highest - inputs[k].lowest;
    if (!(width > 0.0)) continue;
    const double part = (a[k] - b[k]) / width;
    sum += part * part;
  }
  return std::sqrt(sum);
}

/// The samples of an ensemble with their distances from a point, the nearest first.
class Neighbours {
 public:
  Neighbours(const CFittingCandidate& candidate, const std::vector<CInputExplanation>& inputs)
      : rows_(Access::InputSamples(candidate)),
        measured_(Access::OutputSamples(candidate)),
        inputs_(inputs) {}

  using Order = std::vector<std::pair<double, std::size_t>>;

  Order Nearest(const std::vector<double>& point, std::size_t most) const {
    Order order;
    for (std::size_t i = 0; i < std::min(rows_.size(), measured_.size()); ++i) {
      if (rows_[i].size() != point.size()) continue;
      const double distance = DistanceBetween(rows_[i], point, inputs_);
      if (!std::isnan(distance)) order.emplace_back(distance, i);
    }
    const std::size_t count = std::min(most, order.size());
    std::partial_sort(order.begin(), order.begin() + static_cast<std::ptrdiff_t>(count),
                      order.end());
    order.resize(count);
    return order;
  }
  CSampleExplanation At(std::size_t i) const { return {rows_[i], measured_[i], kNoNumber}; }

 private:
  const std::vector<std::vector<double>>& rows_;
  const std::vector<double>& measured_;
  const std::vector<CInputExplanation>& inputs_;
};

/// The width of the range of each input: of its bounds, or 0 without bounds.
std::vector<double> WidthsOf(const CDiscreteCombinations& model,
                             const std::vector<std::string>& inputs) {
  std::vector<double> widths;
  for (const std::string& id : inputs) {
    const auto lower = model.ListLowerBound({id});
    const auto upper = model.ListUpperBound({id});
    const bool isBound = !lower.empty() && !upper.empty() && lower[0].second < upper[0].second;
    widths.push_back(isBound ? upper[0].second - lower[0].second : 0.0);
  }
  return widths;
}

/// The outputs of a combination that was prepared.
const CDiscreteCombinations::OutputsByID& OutputsOf(
    const CDiscreteCombinations& model,
    const std::vector<std::pair<std::string, int>>& discreteValues) {
  const auto& ranks = *model.GetRegistrationRank();
  std::vector<std::pair<std::int32_t, int>> ranked;
  ranked.reserve(discreteValues.size());
  for (const auto& [name, value] : discreteValues) ranked.emplace_back(ranks.at(name), value);
  std::sort(ranked.begin(), ranked.end());
  std::vector<int> key;
  key.reserve(ranked.size());
  for (const auto& [rank, value] : ranked) key.push_back(value);
  const std::int32_t position = model.GetDiscreteCombinationsIndexingPtr()->at(key);
  return (*model.GetOutputsWrtDiscCombPtr())[static_cast<std::size_t>(position)];
}

/// What a prepared model says about one point, output by output.
struct Results {
  Results(const CPreparedModel& prepared, const std::vector<double>& point)
      : outputs(prepared.OutputIDs().size()), inputs(point.size()) {
    CResultsInUnits results;
    results.values = values.data();
    results.errors = errors.data();
    results.lower = lower.data();
    results.upper = upper.data();
    results.statuses = statuses.data();
    prepared.EvaluateWithUnits(point.data(), 1, PrecisionExact, results);
    // Where the limit refuses one of these, its numbers stay NaN.
    prepared.EvaluateGradients(point.data(), 1, gradients.data(), nullptr);
    CLocations locations;
    locations.inside = inside.data();
    locations.distances = distances.data();
    locations.sides = sides.data();
    prepared.LocatePoints(point.data(), 1, locations);
  }

  std::size_t outputs;
  std::size_t inputs;
  std::vector<double> values = std::vector<double>(outputs, kNoNumber);
  std::vector<double> errors = values;
  std::vector<double> lower = values;
  std::vector<double> upper = values;
  std::vector<double> distances = values;
  std::vector<int> statuses = std::vector<int>(outputs, 1);
  std::vector<int> inside = std::vector<int>(outputs, -1);
  std::vector<double> gradients = std::vector<double>(outputs * inputs, kNoNumber);
  std::vector<signed char> sides = std::vector<signed char>(outputs * inputs, 0);
};

COutputExplanation OutputOf(const CPreparedModel& prepared, const Results& results, std::size_t o,
                            const std::vector<double>& widths) {
  COutputExplanation output;
  output.id = prepared.OutputIDs()[o];
  output.status = results.statuses[o];
  output.value = results.values[o];
  output.error = results.errors[o];
  output.lower = results.lower[o];
  output.upper = results.upper[o];
  output.origin = prepared.ErrorOrigin(o);
  output.inside = results.inside[o];
  output.distance = results.distances[o];
  std::vector<double> lowest(results.inputs, kNoNumber);
  std::vector<double> highest(results.inputs, kNoNumber);
  prepared.SampleRanges(o, lowest, highest);
  constexpr double kOnePercent = 0.01;
  for (std::size_t k = 0; k < results.inputs; ++k) {
    CInputExplanation input;
    input.gradient = results.gradients[o * results.inputs + k];
    const signed char side = results.sides[o * results.inputs + k];
    input.side = (side > 0 ? 1 : 0) - (side < 0 ? 1 : 0);
    input.lowest = lowest[k];
    input.highest = highest[k];
    const double width = widths[k] > 0.0 ? widths[k] : highest[k] - lowest[k];
    input.onePercent = input.gradient * (kOnePercent * width);
    output.inputs.push_back(input);
  }
  return output;
}

}  // namespace

int ExplainPoint(const CDiscreteCombinations& model,
                 const std::vector<std::pair<std::string, int>>& discreteValues,
                 const std::vector<std::pair<std::string, double>>& continuousValues,
                 std::size_t samples, CExplanation& out, std::string& reason,
                 const CEvaluationLimit& limit) {
  CPreparedModel prepared;
  CExplanation made;
  if (CPreparedModel::Prepare(model, discreteValues, prepared, &reason, limit) != 0 ||
      TakePoint(prepared.InputIDs(), continuousValues, made.point, reason) != 0) {
    return 1;
  }
  made.inputs = prepared.InputIDs();
  const auto& outputs = OutputsOf(model, discreteValues);
  const std::vector<double> widths = WidthsOf(model, made.inputs);
  const Results results(prepared, made.point);
  for (std::size_t o = 0; o < results.outputs; ++o) {
    COutputExplanation output = OutputOf(prepared, results, o, widths);
    const CFittingCandidates& list = *outputs.at(output.id);
    const CFittingCandidate* const candidate = list.GetEvaluationCandidatePtr();
    EvaluationPoint point(made.point.data(), made.point.size());
    if (candidate != nullptr && point.TurnTo(*candidate)) {
      ExplainSurfaces(*candidate, point.Scaled(), output);
      ExplainFolds(*candidate, point.Scaled(), output);
      const Neighbours neighbours(*candidate, output.inputs);
      // Without a distance it may be too expensive.
      const double spacing =
          std::isnan(output.distance) ? kNoNumber : PreparedModelAccess::Spacing(prepared, o);
      for (const auto& [distance, i] : neighbours.Nearest(made.point, samples)) {
        output.nearest.push_back(neighbours.At(i));
        output.nearest.back().distance = distance / spacing;
      }
    }
    made.outputs.push_back(std::move(output));
  }
  out = std::move(made);
  return 0;
}

}  // namespace Tarvane::Plexura::PXROM
