#pragma once

#include "model/candidate_access.h"
#include "text/fields.h"

namespace Tarvane::Plexura::PXROM {

/// The attributes of a candidate that describe its parts.
struct CandidateHead {
  int version = 0;
  int surfaces = 0;
  int subSurfaces = 0;
  bool hasCrossValidation = false;
};

template <class Visitor, class Head>
void CandidateVersionField(Visitor& visit, Head& head) {
  visit(fields::Key(&fields::Labels::attCandidateVersion)
            .Version(FittingCandidateVersion170, FittingCandidateVersion192),
        "Version", head.version);
}

template <class Visitor, class Head>
void CrossValidationFlagField(Visitor& visit, Head& head) {
  visit(fields::Key(&fields::Labels::GARSExportPredictionOfError).Optional(), "HasCrossValidation",
        head.hasCrossValidation);
}

/// The samples and the scaling. A text begins with the version and ends with the flag of the
/// cross-validation data; reading needs both only after it has read the surfaces.
template <class Visitor, class Candidate, class Head>
int CandidateFields(Visitor& visit, Candidate& candidate, Head& head) {
  using Access = CandidateAccess;
  using fields::Key;
  using fields::Labels;
  auto& inputs = Access::NumberOfInputVariables(candidate);
  auto& samples = Access::NumberOfSamples(candidate);
  if constexpr (!Visitor::kReads) CandidateVersionField(visit, head);
  visit(Key(&Labels::attCandidateNumberOfInputVariables).Count(), "NumberOfInputVariables", inputs);
  visit(Key(&Labels::attCandidateNumberOfSamples).Count(), "NumberOfSamples", samples);
  if (visit.Matrix(Key(&Labels::attCandidateInputSamples), "InputSamples",
                   Access::InputSamples(candidate), samples, inputs) != 0) {
    return 1;
  }
  visit(Key(&Labels::attCandidateOutputSamples), "OutputSamples", Access::OutputSamples(candidate));
  visit(Key(&Labels::attCandidateInputScaleSlopes), "InputScaleSlopes",
        Access::InputScaleSlopes(candidate));
  visit(Key(&Labels::attCandidateInputScaleIntercepts), "InputScaleIntercepts",
        Access::InputScaleIntercepts(candidate));
  visit(Key(&Labels::attCandidateOutputScaleSlope), "OutputScaleSlope",
        Access::OutputScaleSlope(candidate));
  visit(Key(&Labels::attCandidateOutputScaleIntercept), "OutputScaleIntercept",
        Access::OutputScaleIntercept(candidate));
  visit(Key(&Labels::attCandidateRSCardinality).Count(), "Surfaces", head.surfaces);
  if constexpr (!Visitor::kReads) CrossValidationFlagField(visit, head);
  return 0;
}

template <class Visitor, class Candidate, class Head>
int CrossValidationFields(Visitor& visit, Candidate& candidate, Head& head) {
  using Access = CandidateAccess;
  using fields::Key;
  using fields::Labels;
  const auto subSurfaces = [&] {
    visit(Key(&Labels::attCandidateSubRSCardinality).Count(), "SubSurfaces", head.subSurfaces);
  };
  // Written beside the number of surfaces.
  if constexpr (Visitor::kWrites) subSurfaces();
  visit(Key(&Labels::CardinalOfEachFold), "FoldCounts", Access::FoldCounts(candidate));
  visit(Key(&Labels::WeightingRho), "DistanceScale", Access::DistanceScale(candidate));
  if (visit.Matrix(Key(&Labels::attScInputPoints), "SortedInput", Access::SortedInput(candidate),
                   Access::NumberOfSamples(candidate),
                   Access::NumberOfInputVariables(candidate)) != 0) {
    return 1;
  }
  if constexpr (!Visitor::kWrites) subSurfaces();
  return 0;
}

/// The attributes of a `Genome` group before the record of its surface.
struct SurfaceHead {
  E_DataType type = static_cast<E_DataType>(0);
  double weight = 0.0;
  /// Sub surfaces have no weight.
  bool hasWeight = true;
};

template <class Visitor, class Head>
void SurfaceHeadFields(Visitor& visit, Head& head) {
  visit(fields::Key(&fields::Labels::attType), "DataType", head.type);
  if (!head.hasWeight) return;
  visit(fields::Key(&fields::Labels::tagGenomeWeight).Optional(), "Weight", head.weight);
}

}  // namespace Tarvane::Plexura::PXROM
