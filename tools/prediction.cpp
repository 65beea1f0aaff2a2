#include "prediction.h"

#include <cstddef>
#include <memory>
#include <utility>

#include "pxrom/batch.h"
#include "refusal.h"
#include "wording.h"

namespace pxrom_command {

namespace pxrom = Tarvane::Plexura::PXROM;

namespace {

using Values = std::vector<std::pair<std::string, double>>;

/// The library does not name the output that fails, but it stops there: the first output without a
/// value.
[[noreturn]] void RefuseOutput(const Model::OutputsByID& outputs, const Values& done,
                               const Point& point) {
  std::string culprit;
  for (const auto& [id, candidates] : outputs) {
    culprit = id;
    if (done.empty() || id > done.back().first) break;
  }
  const std::string combination = point.CombinationText();
  throw Refusal("the library can't evaluate the output " + Quoted(culprit) +
                (combination.empty() ? "" : " of " + combination) +
                ": one of its surfaces is damaged, stopped or not ready");
}

std::optional<double> ErrorAt(const pxrom::CFittingCandidates& candidates, const Point& point) {
  std::vector<double> x;
  for (const auto& [name, value] : point.continuous) x.push_back(value);
  // A Kriging surface can write its record when it computes an error, so this works on a copy.
  const std::unique_ptr<pxrom::CFittingCandidates> copy(candidates.Clone());
  double value = 0.0;
  double error = 0.0;
  const int status =
      pxrom::CFittingCandidatesEvaluator().EvaluateResponseSurfaceCandidate(*copy, x, value, error);
  if (status != 0) return std::nullopt;
  return error;
}

}  // namespace

const Model::OutputsByID& OutputsAt(const Model& model, const Point& point) {
  const auto position = model.GetDiscreteCombinationsIndexingPtr()->at(point.Combination());
  return model.GetOutputsWrtDiscCombPtr()->at(static_cast<std::size_t>(position));
}

ErrorSpace ErrorSpaceOf(const pxrom::CFittingCandidates& candidates) {
  const pxrom::CFittingCandidate* candidate = candidates.GetEvaluationCandidatePtr();
  const bool physical = candidate != nullptr && candidate->GetIsErrPredRequired();
  return physical ? ErrorSpace::Physical : ErrorSpace::Scaled;
}

void RequireWithin(const pxrom::CEvaluationLimit& limit, const Model& model, const Point& point) {
  pxrom::CEvaluationCost cost;
  std::string reason;
  const bool isKnown =
      pxrom::CPreparedModel::EstimateCost(model, point.discrete, cost, &reason) == 0;
  if (isKnown && CheckEvaluationCost(cost, limit, &reason) == 0) return;
  throw Refusal(reason + " --limit sets it.");
}

std::vector<PredictedOutput> Predict(const Model& model, const Point& point,
                                     const pxrom::CEvaluationLimit& limit) {
  RequireWithin(limit, model, point);
  const Model::OutputsByID& outputs = OutputsAt(model, point);
  Values values;
  if (model.Evaluate(point.discrete, point.continuous, values) != 0) {
    RefuseOutput(outputs, values, point);
  }

  std::vector<PredictedOutput> predicted;
  for (const auto& [id, value] : values) {
    const pxrom::CFittingCandidates& candidates = *outputs.at(id);
    predicted.push_back({id, value, ErrorAt(candidates, point), ErrorSpaceOf(candidates)});
  }
  return predicted;
}

}  // namespace pxrom_command
