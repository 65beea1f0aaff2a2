#include <algorithm>

#include "families/family.h"
#include "model/candidate_access.h"
#include "model/candidate_evaluation.h"
#include "pxrom/fitting_candidates.h"
#include "records/evaluation_frame.h"

namespace Tarvane::Plexura::PXROM {

namespace {

using Surfaces = std::vector<std::shared_ptr<CRSData>>;
using Access = CandidateAccess;

// The value of one surface at the candidate's scaled point, starting from 0.0 for an evaluator that
// succeeds without writing. False when it refuses.
bool Predict(const CRSData& surface, EvaluationPoint& point, double& value) {
  value = 0.0;
  const Family* const family = FindFamily(surface.DataType());
  if (family == nullptr) return false;
  if (family->constantValue != nullptr) {
    // As the evaluator does, but without a scaled point.
    if (!IsReadyFor(surface, point.Size())) return false;
    family->constantValue(surface, value);
    return true;
  }
  return family->evaluator().EvaluateResponseSurface(&surface, point.Scaled(), value) != 1;
}

// Adds the weighted predictions of all surfaces to `sum`. False at the first that refuses.
bool AddPredictions(const Surfaces& surfaces, const std::vector<double>& weights,
                    EvaluationPoint& point, double& sum) {
  for (std::size_t i = 0; i < surfaces.size(); ++i) {
    double value = 0.0;
    if (!Predict(*surfaces[i], point, value)) return false;
    sum += weights[i] * value;
  }
  return true;
}

// The same with each surface's own predictor error, which it writes over `error`: errors are not
// combined, the last one remains. `hasError` becomes false when a surface has no error.
bool AddPredictionsWithErrors(const Surfaces& surfaces, const std::vector<double>& weights,
                              EvaluationPoint& point, double& sum, double& error, bool& hasError) {
  for (std::size_t i = 0; i < surfaces.size(); ++i) {
    const Family* const family = FindFamily(surfaces[i]->DataType());
    if (family == nullptr) return false;
    double value = 0.0;
    const int status = family->evaluator().EvaluateResponseSurface(surfaces[i].get(),
                                                                   point.Scaled(), value, error);
    if (status == 1) return false;
    if (status == -2) hasError = false;
    sum += weights[i] * value;
  }
  return true;
}

// The surfaces of `candidate` for the form with an error, which can write the record of a surface.
// The record must not be one that other candidates hold too.
const Surfaces& SurfacesForErrors(const CFittingCandidate& candidate) {
  const Surfaces& surfaces = Access::Surfaces(candidate);
  if (!Access::IsShared(candidate)) return surfaces;
  const bool isWritten = std::any_of(surfaces.begin(), surfaces.end(), [](const auto& surface) {
    const Family* const family = FindFamily(surface->DataType());
    return family != nullptr && family->changesRecordForError != nullptr &&
           family->changesRecordForError(*surface);
  });
  return isWritten ? Access::OwnSurfaces(candidate) : surfaces;
}

}  // namespace

bool EvaluationPoint::TurnTo(const CFittingCandidate& candidate) {
  candidate_ = &candidate;
  const void* const identity = Access::Identity(candidate);
  isScaled_ = isScaled_ && identity == identity_;
  identity_ = identity;
  const auto& content = Access::ContentOf(candidate);
  return size_ == content.InputScaleSlopes.size() && size_ == content.InputScaleIntercepts.size();
}

const std::vector<double>& EvaluationPoint::Scaled() {
  if (!isScaled_) {
    scaled_.assign(x_, x_ + size_);
    candidate_->ScaleAndOverwriteInputSample(scaled_);
    isScaled_ = true;
  }
  return scaled_;
}

std::optional<CrossValidation> ValidationOf(const CFittingCandidate& candidate,
                                            std::size_t inputs) {
  const std::size_t surfaces = Access::Surfaces(candidate).size();
  const std::size_t subSurfaces = Access::SubSurfaces(candidate).size();
  if (surfaces == 0 || subSurfaces % surfaces != 0) return std::nullopt;
  double outputSlope = 0.0;
  int statedInputs = 0;
  candidate.GetOutputScaleSlope(outputSlope);
  candidate.GetNumberOfInputVariables(statedInputs);
  const CrossValidation validation{Access::SortedInput(candidate),
                                   Access::FoldCounts(candidate),
                                   subSurfaces / surfaces,
                                   {candidate.GetDPMinDist(), outputSlope},
                                   statedInputs};
  if (!validation.Fits(inputs)) return std::nullopt;
  return validation;
}

int EvaluateCandidate(const CFittingCandidates& candidates, EvaluationPoint& point, double& value) {
  const CFittingCandidate* const candidate = candidates.GetEvaluationCandidatePtr();
  if (candidate == nullptr || !point.TurnTo(*candidate)) return 1;
  value = 0.0;
  const auto& content = Access::ContentOf(*candidate);
  if (content.Weights.size() < content.RSList.size() ||
      !AddPredictions(content.RSList, content.Weights, point, value)) {
    return 1;
  }
  return candidate->BackscaleAndOverwriteOutputSample(value);
}

int EvaluateCandidate(const CFittingCandidates& candidates, EvaluationPoint& point, double& value,
                      double& error) {
  const CFittingCandidate* const candidate = candidates.GetEvaluationCandidatePtr();
  if (candidate == nullptr || !point.TurnTo(*candidate)) return 1;
  value = 0.0;
  const Surfaces& surfaces = Access::Surfaces(*candidate);
  const Surfaces& subSurfaces = Access::SubSurfaces(*candidate);
  const std::vector<double>& weights = Access::Weights(*candidate);
  if (weights.size() < surfaces.size()) return 1;

  bool hasError = true;
  if (!candidate->GetIsErrPredRequired()) {
    if (!AddPredictionsWithErrors(SurfacesForErrors(*candidate), weights, point, value, error,
                                  hasError)) {
      return 1;
    }
  } else {
    const std::optional<CrossValidation> validation = ValidationOf(*candidate, point.Size());
    if (!validation) return 1;
    if (!AddPredictions(surfaces, weights, point, value)) return 1;
    // Sub surfaces are in the order of their surfaces, and for each surface in that of the folds.
    const std::size_t folds = validation->folds;
    std::vector<double> foldPredictions(folds, 0.0);
    for (std::size_t k = 0; k < subSurfaces.size(); ++k) {
      double prediction = 0.0;
      if (!Predict(*subSurfaces[k], point, prediction)) return 1;
      foldPredictions[k % folds] += weights[k / folds] * prediction;
    }
    if (validation->EvaluateError(point.Scaled(), foldPredictions, value, error) != 0) return 1;
  }

  const int status = candidate->BackscaleAndOverwriteOutputSample(value);
  return hasError ? status : -2;
}

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
  EvaluationPoint point(x.data(), x.size());
  return EvaluateCandidate(candidates, point, value);
}

int CFittingCandidatesEvaluator::EvaluateResponseSurfaceCandidate(
    const CFittingCandidates& candidates, const std::vector<double>& x, double& value,
    double& error) const {
  EvaluationPoint point(x.data(), x.size());
  return EvaluateCandidate(candidates, point, value, error);
}

}  // namespace Tarvane::Plexura::PXROM
