#include "pxrom/fitting_candidates.h"

namespace Tarvane::Plexura::PXROM {

CFittingCandidates::CFittingCandidates() = default;
CFittingCandidates::CFittingCandidates(const CFittingCandidates&) = default;
CFittingCandidates& CFittingCandidates::operator=(const CFittingCandidates&) = default;
CFittingCandidates* CFittingCandidates::Clone() const { return new CFittingCandidates(*this); }
CFittingCandidates::~CFittingCandidates() = default;

int CFittingCandidates::ResetData() {
  Version = FittingCandidatesVersion170;
  std::vector<CFittingCandidate>().swap(Candidates);
  EvaluationIndex = 0;
  return 0;
}

E_DataType CFittingCandidates::DataType() const { return DT_FittingCandidates; }

E_FittingCandidatesVersion CFittingCandidates::DataVersion() const { return Version; }

int CFittingCandidates::AddFittingCandidate(const CFittingCandidate& candidate) {
  Candidates.push_back(candidate);
  return 0;
}

int CFittingCandidates::GenerateCandidateFromCRSData(const CRSData* rs) {
  if (rs == nullptr || rs->NumberOfInputVariables < 0) return 1;
  const auto inputs = static_cast<std::size_t>(rs->NumberOfInputVariables);
  CFittingCandidate candidate;
  candidate.AddRSAndWeight(rs, 1.0);
  candidate.SetNumberOfInputVariables(rs->NumberOfInputVariables);
  candidate.SetNumberOfSamples(rs->NumberOfSamples);
  candidate.SetInputSamples(rs->InputSamples);
  candidate.SetOutputSamples(rs->OutputSamples);
  candidate.SetInputScaleSlopes(std::vector<double>(inputs, 1.0));
  candidate.SetInputScaleIntercepts(std::vector<double>(inputs, 0.0));
  candidate.SetOutputScaleSlope(1.0);
  candidate.SetOutputScaleIntercept(0.0);
  return AddFittingCandidate(candidate);
}

int CFittingCandidates::SetCandidateIdxForEvaluation(unsigned int index) {
  EvaluationIndex = index;
  return 0;
}

const CFittingCandidate* CFittingCandidates::GetEvaluationCandidatePtr() const {
  return EvaluationIndex < Candidates.size() ? &Candidates[EvaluationIndex] : nullptr;
}

std::size_t CFittingCandidates::GetCandidateCount() const { return Candidates.size(); }

const CFittingCandidate* CFittingCandidates::GetCandidatePtr(int i) const {
  // A negative index widens to a huge one.
  const auto index = static_cast<std::size_t>(i);
  return index < Candidates.size() ? &Candidates[index] : nullptr;
}

int CFittingCandidates::SetStatusStopped() {
  for (CFittingCandidate& candidate : Candidates) candidate.SetStatusStopped();
  return 0;
}

}  // namespace Tarvane::Plexura::PXROM
