#include "ensemble/cross_validation.h"
#include "ensemble/families.h"
#include "pxrom/fitting_candidates.h"

namespace Tarvane::Plexura::PXROM {

namespace {

using Surfaces = std::vector<std::shared_ptr<CRSData>>;

const CRSEvaluator* EvaluatorOf(const CRSData& surface) {
  const Family* const family = FindFamily(surface.DataType());
  return family == nullptr ? nullptr : &family->evaluator();
}

// The value of one surface at the candidate's scaled point, starting from 0.0 for an evaluator that
// succeeds without writing. False when it refuses.
bool Predict(const CRSData& surface, const std::vector<double>& point, double& value) {
  const CRSEvaluator* const evaluator = EvaluatorOf(surface);
  value = 0.0;
  return evaluator != nullptr && evaluator->EvaluateResponseSurface(&surface, point, value) != 1;
}

// Adds the weighted predictions of all surfaces to `sum`. False at the first that refuses.
bool AddPredictions(const Surfaces& surfaces, const std::vector<double>& weights,
                    const std::vector<double>& point, double& sum) {
  for (std::size_t i = 0; i < surfaces.size(); ++i) {
    double value = 0.0;
    if (!Predict(*surfaces[i], point, value)) return false;
    sum += weights[i] * value;
  }
  return true;
}

// The same with each surface's own predictor error, which it writes over `error`: the errors are
// not combined, the last one stands. `hasError` becomes false when a surface has none.
bool AddPredictionsWithErrors(const Surfaces& surfaces, const std::vector<double>& weights,
                              const std::vector<double>& point, double& sum, double& error,
                              bool& hasError) {
  for (std::size_t i = 0; i < surfaces.size(); ++i) {
    const CRSEvaluator* const evaluator = EvaluatorOf(*surfaces[i]);
    if (evaluator == nullptr) return false;
    double value = 0.0;
    const int status = evaluator->EvaluateResponseSurface(surfaces[i].get(), point, value, error);
    if (status == 1) return false;
    if (status == -2) hasError = false;
    sum += weights[i] * value;
  }
  return true;
}

}  // namespace

CFittingCandidatesEvaluator::CFittingCandidatesEvaluator() = default;
CFittingCandidatesEvaluator::CFittingCandidatesEvaluator(const CFittingCandidatesEvaluator&) =
    default;
CFittingCandidatesEvaluator& CFittingCandidatesEvaluator::operator=(
    const CFittingCandidatesEvaluator&) = default;
CFittingCandidatesEvaluator* CFittingCandidatesEvaluator::Clone() const {
  return new CFittingCandidatesEvaluator(*this);
}
CFittingCandidatesEvaluator::~CFittingCandidatesEvaluator() = default;

int CFittingCandidatesEvaluator::EvaluateResponseSurfaceCandidate(
    const CFittingCandidates& candidates, const std::vector<double>& x, double& value) const {
  const CFittingCandidate* const candidate = candidates.GetEvaluationCandidatePtr();
  if (candidate == nullptr) return 1;
  std::vector<double> point(x);
  if (candidate->ScaleAndOverwriteInputSample(point) != 0) return 1;
  value = 0.0;
  if (candidate->Weights.size() < candidate->RSList.size() ||
      !AddPredictions(candidate->RSList, candidate->Weights, point, value)) {
    return 1;
  }
  return candidate->BackscaleAndOverwriteOutputSample(value);
}

int CFittingCandidatesEvaluator::EvaluateResponseSurfaceCandidate(
    const CFittingCandidates& candidates, const std::vector<double>& x, double& value,
    double& error) const {
  const CFittingCandidate* const candidate = candidates.GetEvaluationCandidatePtr();
  if (candidate == nullptr) return 1;
  std::vector<double> point(x);
  if (candidate->ScaleAndOverwriteInputSample(point) != 0) return 1;
  value = 0.0;
  const Surfaces& surfaces = candidate->RSList;
  const Surfaces& subSurfaces = candidate->SubRSList;
  const std::vector<double>& weights = candidate->Weights;
  if (weights.size() < surfaces.size()) return 1;

  bool hasError = true;
  if (!candidate->bIsErrPredRequired) {
    if (!AddPredictionsWithErrors(surfaces, weights, point, value, error, hasError)) return 1;
  } else {
    if (surfaces.empty() || subSurfaces.size() % surfaces.size() != 0) return 1;
    const std::size_t folds = subSurfaces.size() / surfaces.size();
    const CrossValidation validation{candidate->vvdScSortedInput, candidate->viNumPtsPerFold,
                                     candidate->DPMinDist, candidate->OutputScaleSlope};
    if (!validation.Fits(folds, point.size())) return 1;
    if (!AddPredictions(surfaces, weights, point, value)) return 1;
    // Sub surfaces stand surface by surface, and within each fold by fold.
    std::vector<double> foldPredictions(folds, 0.0);
    for (std::size_t k = 0; k < subSurfaces.size(); ++k) {
      double prediction = 0.0;
      if (!Predict(*subSurfaces[k], point, prediction)) return 1;
      foldPredictions[k % folds] += weights[k / folds] * prediction;
    }
    if (validation.EvaluateError(point, foldPredictions, value, error) != 0) return 1;
  }

  const int status = candidate->BackscaleAndOverwriteOutputSample(value);
  return hasError ? status : -2;
}

}  // namespace Tarvane::Plexura::PXROM
