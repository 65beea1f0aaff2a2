#include <memory>
#include <set>
#include <string_view>
#include <vector>

#include "families/family.h"
#include "model/candidate_access.h"
#include "model_inputs.h"
#include "pxrom/discrete_combinations.h"
#include "targets.h"

namespace fuzz {

namespace {

using namespace Tarvane::Plexura::PXROM;

void EvaluateSurface(const CRSData& surface, const std::vector<double>& x) {
  const Family* const family = FindFamily(surface.DataType());
  Require(family != nullptr, "a surface that was read has a family");
  std::vector<double> gradient = {8.25};
  const int status =
      family->evaluator().EvaluateResponseSurfaceDerivativeWrtInputVariables(&surface, x, gradient);
  // The regression family adds statuses up.
  Require(status >= 0 && status <= 4, "a derivative's status is 0, or 1 or a little more");
  int inputs = 0;
  surface.GetNumberOfInputVariables(inputs);
  if (status == 0 && family->derivative == Derivative::OfValue) {
    Require(gradient.size() == static_cast<std::size_t>(inputs), "an element for each input");
  }
  double value = 0.0;
  const int valueStatus = family->evaluator().EvaluateResponseSurface(&surface, x, value);
  Require(valueStatus == 0 || valueStatus == 1, "a value's status is 0 or 1");
}

void EvaluateSurfaces(const std::vector<std::shared_ptr<CRSData>>& surfaces,
                      const ModelInputs& inputs) {
  for (const auto& surface : surfaces) {
    int count = 0;
    surface->GetNumberOfInputVariables(count);
    // A text of the lengths that are tried can't mean more inputs.
    if (count < 0 || count > 4096) continue;
    EvaluateSurface(*surface, inputs.Values(count));
    EvaluateSurface(*surface, inputs.Values(count + 1));
  }
}

}  // namespace

void RunEvaluate(std::string_view data) {
  const ModelInputs inputs(data);
  CDiscreteCombinations model;
  if (!inputs.Read(model)) return;
  std::size_t tried = 0;
  for (const auto& combination : *model.GetDiscreteCombinationsIndexingPtr()) {
    if (++tried > inputs.MostCombinations()) break;
    const NamedInts discrete = inputs.DiscreteOf(model, combination.first);
    const NamedValues continuous = inputs.ContinuousOf(model);
    NamedValues outputs;
    const int status = model.Evaluate(discrete, continuous, outputs);
    Require(status == 0 || status == 1, "the form without errors gives 0 or 1");
    NamedValues again;
    Require(model.Evaluate(discrete, continuous, again) == status && SameBits(outputs, again),
            "evaluating twice gives the same");

    // The form with errors may write a Kriging record.
    const CDiscreteCombinations copy(model);
    NamedValues errors;
    const int statusWithErrors = copy.Evaluate(discrete, continuous, again, errors);
    Require(statusWithErrors == 0 || statusWithErrors == 1 || statusWithErrors == -2,
            "the form with errors gives 0, 1 or -2");
    // -2 hides that a value could not be scaled back.
    if (statusWithErrors == 0) Require(status == 0, "where there is an error there is a value");
    if (statusWithErrors == 0 || (statusWithErrors == -2 && status == 0)) {
      Require(again.size() == outputs.size() && errors.size() <= outputs.size(),
              "one value per output, at most one error");
    }
    const auto& lists =
        (*model.GetOutputsWrtDiscCombPtr())[static_cast<std::size_t>(combination.second)];
    // Outputs can share a candidate until its surfaces are handed out, which copies them.
    std::set<const void*> known;
    for (const auto& list : lists) {
      const CFittingCandidate* const candidate = list.second->GetEvaluationCandidatePtr();
      if (candidate == nullptr || !known.insert(CandidateAccess::Identity(*candidate)).second) {
        continue;
      }
      EvaluateSurfaces(CandidateAccess::Surfaces(*candidate), inputs);
      EvaluateSurfaces(CandidateAccess::SubSurfaces(*candidate), inputs);
    }
  }
}

}  // namespace fuzz
