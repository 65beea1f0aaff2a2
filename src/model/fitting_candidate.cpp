#include "pxrom/fitting_candidate.h"

#include <algorithm>

#include "records/samples.h"
#include "records/scaling.h"

namespace Tarvane::Plexura::PXROM {

namespace {

using Matrix = std::vector<std::vector<double>>;
using Surfaces = std::vector<std::shared_ptr<CRSData>>;

std::shared_ptr<CRSData> CloneOf(const CRSData& surface) {
  return std::shared_ptr<CRSData>(surface.Clone());
}

Surfaces ClonesOf(const Surfaces& surfaces) {
  Surfaces clones;
  clones.reserve(surfaces.size());
  for (const auto& surface : surfaces) clones.push_back(CloneOf(*surface));
  return clones;
}

const CRSData* At(const Surfaces& surfaces, int i) {
  // A negative index widens to a huge one.
  const auto index = static_cast<std::size_t>(i);
  return index < surfaces.size() ? surfaces[index].get() : nullptr;
}

}  // namespace

CFittingCandidate::CFittingCandidate() = default;

CFittingCandidate::CFittingCandidate(const CFittingCandidate& other)
    : Version(other.Version),
      RSList(ClonesOf(other.RSList)),
      SubRSList(ClonesOf(other.SubRSList)),
      Weights(other.Weights),
      NumberOfInputVariables(other.NumberOfInputVariables),
      NumberOfSamples(other.NumberOfSamples),
      InputSamples(other.InputSamples),
      OutputSamples(other.OutputSamples),
      InputScaleSlopes(other.InputScaleSlopes),
      InputScaleIntercepts(other.InputScaleIntercepts),
      OutputScaleSlope(other.OutputScaleSlope),
      OutputScaleIntercept(other.OutputScaleIntercept),
      // SubRSPerRS is not copied: no evaluation reads it.
      bIsErrPredRequired(other.bIsErrPredRequired),
      viNumPtsPerFold(other.viNumPtsPerFold),
      vvdScSortedInput(other.vvdScSortedInput),
      DPMinDist(other.DPMinDist) {}

CFittingCandidate& CFittingCandidate::operator=(const CFittingCandidate&) = default;

CFittingCandidate* CFittingCandidate::Clone() const { return new CFittingCandidate(*this); }

CFittingCandidate::~CFittingCandidate() = default;

int CFittingCandidate::ResetData() {
  Version = FittingCandidateVersion192;
  RSList.clear();
  SubRSList.clear();
  Weights.clear();
  NumberOfInputVariables = 0;
  NumberOfSamples = 0;
  InputSamples.clear();
  OutputSamples.clear();
  InputScaleSlopes.clear();
  InputScaleIntercepts.clear();
  OutputScaleSlope = 0.0;
  OutputScaleIntercept = 0.0;
  bIsErrPredRequired = false;
  viNumPtsPerFold.clear();
  vvdScSortedInput.clear();
  return 0;
}

E_DataType CFittingCandidate::DataType() const { return DT_FittingCandidate; }

int CFittingCandidate::AddRSAndWeight(const CRSData* rs, double weight) {
  if (rs == nullptr) return 1;
  RSList.push_back(CloneOf(*rs));
  try {
    Weights.push_back(weight);
  } catch (...) {
    RSList.pop_back();
    throw;
  }
  return 0;
}

int CFittingCandidate::AddSubRS(const CRSData* rs) {
  if (rs == nullptr) return 1;
  SubRSList.push_back(CloneOf(*rs));
  return 0;
}

int CFittingCandidate::SetRSAndWeights(const std::vector<CRSData*>& surfaces,
                                       const std::vector<double>& weights, bool errorPrediction) {
  // First, since a call that is refused below changes the flag too.
  bIsErrPredRequired = errorPrediction;
  const std::size_t count = surfaces.size();
  if (errorPrediction ? weights.empty() || count % weights.size() != 0 : count != weights.size()) {
    return 1;
  }
  if (std::find(surfaces.begin(), surfaces.end(), nullptr) != surfaces.end()) return 1;

  // Each surface comes before its sub surfaces; without error prediction it has no sub surfaces.
  // The clones are made before anything is released, since the surfaces may be this candidate's
  // own.
  const std::size_t stride = errorPrediction ? count / weights.size() : 1;
  Surfaces ensemble;
  Surfaces subSurfaces;
  for (std::size_t i = 0; i < count; ++i) {
    (i % stride == 0 ? ensemble : subSurfaces).push_back(CloneOf(*surfaces[i]));
  }
  std::vector<double> newWeights(weights);
  if (errorPrediction) {
    // No reset here: the new surfaces are appended.
    SubRSPerRS = static_cast<int>(stride) - 1;
    RSList.reserve(RSList.size() + ensemble.size());
    SubRSList.reserve(SubRSList.size() + subSurfaces.size());
  } else {
    ResetData();
  }
  RSList.insert(RSList.end(), ensemble.begin(), ensemble.end());
  SubRSList.insert(SubRSList.end(), subSurfaces.begin(), subSurfaces.end());
  Weights = std::move(newWeights);
  return 0;
}

std::size_t CFittingCandidate::GetRSCount() const { return RSList.size(); }

std::size_t CFittingCandidate::GetSubRSCounts() const { return SubRSList.size(); }

const CRSData* CFittingCandidate::GetRSPtr(int i) const { return At(RSList, i); }

const CRSData* CFittingCandidate::GetSubRSPtr(int i) const { return At(SubRSList, i); }

double CFittingCandidate::GetRSWeight(int i) const { return Weights[static_cast<std::size_t>(i)]; }

int CFittingCandidate::SetCrossValidationData(Matrix& scaledSortedInput,
                                              std::vector<int>& numPtsPerFold) {
  vvdScSortedInput = scaledSortedInput;
  viNumPtsPerFold = numPtsPerFold;
  bIsErrPredRequired = true;
  return 0;
}

int CFittingCandidate::SetbIsErrPredRequired(bool required) {
  bIsErrPredRequired = required;
  return 0;
}

bool CFittingCandidate::GetIsErrPredRequired() const { return bIsErrPredRequired; }

int CFittingCandidate::SetDPMinDist(double& distance) {
  DPMinDist = distance;
  return 0;
}

double CFittingCandidate::GetDPMinDist() const { return DPMinDist; }

std::vector<int> CFittingCandidate::GetviNumPtsPerFold() const { return viNumPtsPerFold; }

Matrix CFittingCandidate::GetvvdScSortedInput() const { return vvdScSortedInput; }

int CFittingCandidate::GetNumberOfInputVariables(int& count) const {
  count = NumberOfInputVariables;
  return 0;
}

int CFittingCandidate::SetNumberOfInputVariables(int count) {
  NumberOfInputVariables = count;
  return 0;
}

int CFittingCandidate::GetNumberOfSamples(int& count) const {
  count = NumberOfSamples;
  return 0;
}

int CFittingCandidate::SetNumberOfSamples(int count) {
  NumberOfSamples = count;
  return 0;
}

int CFittingCandidate::GetInputSamples(Matrix& rows) const {
  rows = InputSamples;
  return 0;
}

int CFittingCandidate::SetInputSamples(const Matrix& rows) {
  InputSamples = rows;
  return 0;
}

int CFittingCandidate::GetOutputSamples(std::vector<double>& ys) const {
  ys = OutputSamples;
  return 0;
}

int CFittingCandidate::SetOutputSamples(const std::vector<double>& ys) {
  OutputSamples = ys;
  return 0;
}

int CFittingCandidate::GetInputScaleSlopes(std::vector<double>& slopes) const {
  slopes = InputScaleSlopes;
  return 0;
}

int CFittingCandidate::SetInputScaleSlopes(const std::vector<double>& slopes) {
  InputScaleSlopes = slopes;
  return 0;
}

int CFittingCandidate::GetInputScaleIntercepts(std::vector<double>& intercepts) const {
  intercepts = InputScaleIntercepts;
  return 0;
}

int CFittingCandidate::SetInputScaleIntercepts(const std::vector<double>& intercepts) {
  InputScaleIntercepts = intercepts;
  return 0;
}

int CFittingCandidate::GetOutputScaleSlope(double& slope) const {
  slope = OutputScaleSlope;
  return 0;
}

int CFittingCandidate::SetOutputScaleSlope(double slope) {
  OutputScaleSlope = slope;
  return 0;
}

int CFittingCandidate::GetOutputScaleIntercept(double& intercept) const {
  intercept = OutputScaleIntercept;
  return 0;
}

int CFittingCandidate::SetOutputScaleIntercept(double intercept) {
  OutputScaleIntercept = intercept;
  return 0;
}

E_FittingCandidateVersion CFittingCandidate::DataVersion() const { return Version; }

void CFittingCandidate::setDataVersion(E_FittingCandidateVersion& version) { Version = version; }

int CFittingCandidate::GetInputSampleWrtSampleIndex(int i, std::vector<double>& out) const {
  out = InputSamples[static_cast<std::size_t>(i)];
  return 0;
}

int CFittingCandidate::GetInputSampleWrtInputIndex(int j, std::vector<double>& out) const {
  out.clear();
  for (int s = 0; s < NumberOfSamples; ++s) {
    out.push_back(InputSamples[static_cast<std::size_t>(s)][static_cast<std::size_t>(j)]);
  }
  return 0;
}

int CFittingCandidate::GetOutputSampleWrtSampleIndex(int i, double& out) const {
  out = OutputSamples[static_cast<std::size_t>(i)];
  return 0;
}

int CFittingCandidate::ScaleAndOverwriteInputSample(std::vector<double>& x) const {
  return ScaleSample(InputScaleSlopes, InputScaleIntercepts, x);
}

int CFittingCandidate::ScaleAndOverwriteInputSamples(Matrix& rows) const {
  for (std::vector<double>& row : rows) {
    if (ScaleAndOverwriteInputSample(row) != 0) return 1;
  }
  return 0;
}

int CFittingCandidate::ScaleAndOverwriteOutputSample(double& y) const {
  y = OutputScaleSlope * y + OutputScaleIntercept;
  return 0;
}

int CFittingCandidate::ScaleAndOverwriteOutputSamples(std::vector<double>& y) const {
  for (double& value : y) ScaleAndOverwriteOutputSample(value);
  return 0;
}

int CFittingCandidate::BackscaleAndOverwriteOutputSample(double& y) const {
  if (OutputScaleSlope == 0.0) return 1;
  y = (y - OutputScaleIntercept) / OutputScaleSlope;
  return 0;
}

int CFittingCandidate::BackscaleAndOverwriteOutputSamples(std::vector<double>& y) const {
  for (double& value : y) {
    if (BackscaleAndOverwriteOutputSample(value) != 0) return 1;
  }
  return 0;
}

int CFittingCandidate::SetStatusStopped() {
  for (const auto& surface : RSList) surface->Stopped = true;
  return 0;
}

int CFittingCandidate::computeMinDist() {
  // Counts are limited to the existing rows and columns.
  const std::size_t rows =
      std::min(static_cast<std::size_t>(std::max(NumberOfSamples, 0)), vvdScSortedInput.size());
  std::size_t columns = static_cast<std::size_t>(std::max(NumberOfInputVariables, 0));
  for (std::size_t i = 0; i < rows; ++i) columns = std::min(columns, vvdScSortedInput[i].size());
  double result = 0.0;
  for (std::size_t i = 0; i < rows; ++i) {
    double best = 0.0;
    for (std::size_t j = 0; j < rows; ++j) {
      if (j == i) continue;
      const double distance = SquaredDistance(vvdScSortedInput[i], vvdScSortedInput[j], columns);
      // Deliberate (first-sample-not-counted): row 0 never meets j == 0, so its distance stays 0.0
      // and it contributes nothing.
      if (distance < best || j == 0) best = distance;
    }
    result = std::max(result, best);
  }
  DPMinDist = result;
  return 0;
}

}  // namespace Tarvane::Plexura::PXROM
