#include "pxrom/fitting_candidate.h"

#include <algorithm>

#include "model/candidate_content.h"
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

std::unique_ptr<CFittingCandidate::Content> CFittingCandidate::Content::Clone() const {
  auto clone = std::make_unique<Content>(*this);
  clone->RSList = ClonesOf(RSList);
  clone->SubRSList = ClonesOf(SubRSList);
  // Not copied: no evaluation reads it.
  clone->SubRSPerRS = 0;
  return clone;
}

// The content that may change. Of several threads that make a copy at once, the first one counts.
CFittingCandidate::Content& CFittingCandidate::OwnContent() const {
  Content* own = Own.load(std::memory_order_acquire);
  if (own != nullptr) return *own;
  std::unique_ptr<Content> clone = Shared->Clone();
  if (!Own.compare_exchange_strong(own, clone.get(), std::memory_order_acq_rel)) return *own;
  return *clone.release();
}

void CFittingCandidate::Replace(Content content) {
  if (Content* const own = Own.load(std::memory_order_acquire)) {
    *own = std::move(content);
  } else {
    Own.store(new Content(std::move(content)), std::memory_order_release);
  }
  Shared.reset();
}

CFittingCandidate::CFittingCandidate() : Own(new Content) {}

CFittingCandidate::CFittingCandidate(const CFittingCandidate& other) : Own(nullptr) {
  const Content* const own = other.Own.load(std::memory_order_acquire);
  if (own != nullptr) {
    Own.store(own->Clone().release(), std::memory_order_relaxed);
  } else {
    Shared = other.Shared;
  }
}

CFittingCandidate& CFittingCandidate::operator=(const CFittingCandidate& other) {
  // Both hold the same surfaces from now on, so the other's have to be its own.
  if (this != &other) Replace(other.OwnContent());
  return *this;
}

CFittingCandidate* CFittingCandidate::Clone() const { return new CFittingCandidate(*this); }

CFittingCandidate::~CFittingCandidate() { delete Own.load(std::memory_order_relaxed); }

int CFittingCandidate::ResetData() {
  Content empty;
  empty.OutputScaleSlope = 0.0;
  empty.SubRSPerRS = Read().SubRSPerRS;
  empty.DPMinDist = Read().DPMinDist;
  Replace(std::move(empty));
  return 0;
}

E_DataType CFittingCandidate::DataType() const { return DT_FittingCandidate; }

int CFittingCandidate::AddRSAndWeight(const CRSData* rs, double weight) {
  if (rs == nullptr) return 1;
  Content& content = OwnContent();
  content.RSList.push_back(CloneOf(*rs));
  try {
    content.Weights.push_back(weight);
  } catch (...) {
    content.RSList.pop_back();
    throw;
  }
  return 0;
}

int CFittingCandidate::AddSubRS(const CRSData* rs) {
  if (rs == nullptr) return 1;
  OwnContent().SubRSList.push_back(CloneOf(*rs));
  return 0;
}

int CFittingCandidate::SetRSAndWeights(const std::vector<CRSData*>& surfaces,
                                       const std::vector<double>& weights, bool errorPrediction) {
  Content& content = OwnContent();
  // First, since a call that is refused below changes the flag too.
  content.bIsErrPredRequired = errorPrediction;
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
    content.SubRSPerRS = static_cast<int>(stride) - 1;
    content.RSList.reserve(content.RSList.size() + ensemble.size());
    content.SubRSList.reserve(content.SubRSList.size() + subSurfaces.size());
  } else {
    ResetData();
  }
  content.RSList.insert(content.RSList.end(), ensemble.begin(), ensemble.end());
  content.SubRSList.insert(content.SubRSList.end(), subSurfaces.begin(), subSurfaces.end());
  content.Weights = std::move(newWeights);
  return 0;
}

std::size_t CFittingCandidate::GetRSCount() const { return Read().RSList.size(); }

std::size_t CFittingCandidate::GetSubRSCounts() const { return Read().SubRSList.size(); }

const CRSData* CFittingCandidate::GetRSPtr(int i) const { return At(OwnContent().RSList, i); }

const CRSData* CFittingCandidate::GetSubRSPtr(int i) const { return At(OwnContent().SubRSList, i); }

double CFittingCandidate::GetRSWeight(int i) const {
  return Read().Weights[static_cast<std::size_t>(i)];
}

int CFittingCandidate::SetCrossValidationData(Matrix& scaledSortedInput,
                                              std::vector<int>& numPtsPerFold) {
  Content& content = OwnContent();
  content.vvdScSortedInput = scaledSortedInput;
  content.viNumPtsPerFold = numPtsPerFold;
  content.bIsErrPredRequired = true;
  return 0;
}

int CFittingCandidate::SetbIsErrPredRequired(bool required) {
  OwnContent().bIsErrPredRequired = required;
  return 0;
}

bool CFittingCandidate::GetIsErrPredRequired() const { return Read().bIsErrPredRequired; }

int CFittingCandidate::SetDPMinDist(double& distance) {
  OwnContent().DPMinDist = distance;
  return 0;
}

double CFittingCandidate::GetDPMinDist() const { return Read().DPMinDist; }

std::vector<int> CFittingCandidate::GetviNumPtsPerFold() const { return Read().viNumPtsPerFold; }

Matrix CFittingCandidate::GetvvdScSortedInput() const { return Read().vvdScSortedInput; }

int CFittingCandidate::GetNumberOfInputVariables(int& count) const {
  count = Read().NumberOfInputVariables;
  return 0;
}

int CFittingCandidate::SetNumberOfInputVariables(int count) {
  OwnContent().NumberOfInputVariables = count;
  return 0;
}

int CFittingCandidate::GetNumberOfSamples(int& count) const {
  count = Read().NumberOfSamples;
  return 0;
}

int CFittingCandidate::SetNumberOfSamples(int count) {
  OwnContent().NumberOfSamples = count;
  return 0;
}

int CFittingCandidate::GetInputSamples(Matrix& rows) const {
  rows = Read().InputSamples;
  return 0;
}

int CFittingCandidate::SetInputSamples(const Matrix& rows) {
  OwnContent().InputSamples = rows;
  return 0;
}

int CFittingCandidate::GetOutputSamples(std::vector<double>& ys) const {
  ys = Read().OutputSamples;
  return 0;
}

int CFittingCandidate::SetOutputSamples(const std::vector<double>& ys) {
  OwnContent().OutputSamples = ys;
  return 0;
}

int CFittingCandidate::GetInputScaleSlopes(std::vector<double>& slopes) const {
  slopes = Read().InputScaleSlopes;
  return 0;
}

int CFittingCandidate::SetInputScaleSlopes(const std::vector<double>& slopes) {
  OwnContent().InputScaleSlopes = slopes;
  return 0;
}

int CFittingCandidate::GetInputScaleIntercepts(std::vector<double>& intercepts) const {
  intercepts = Read().InputScaleIntercepts;
  return 0;
}

int CFittingCandidate::SetInputScaleIntercepts(const std::vector<double>& intercepts) {
  OwnContent().InputScaleIntercepts = intercepts;
  return 0;
}

int CFittingCandidate::GetOutputScaleSlope(double& slope) const {
  slope = Read().OutputScaleSlope;
  return 0;
}

int CFittingCandidate::SetOutputScaleSlope(double slope) {
  OwnContent().OutputScaleSlope = slope;
  return 0;
}

int CFittingCandidate::GetOutputScaleIntercept(double& intercept) const {
  intercept = Read().OutputScaleIntercept;
  return 0;
}

int CFittingCandidate::SetOutputScaleIntercept(double intercept) {
  OwnContent().OutputScaleIntercept = intercept;
  return 0;
}

E_FittingCandidateVersion CFittingCandidate::DataVersion() const { return Read().Version; }

void CFittingCandidate::setDataVersion(E_FittingCandidateVersion& version) {
  OwnContent().Version = version;
}

int CFittingCandidate::GetInputSampleWrtSampleIndex(int i, std::vector<double>& out) const {
  out = Read().InputSamples[static_cast<std::size_t>(i)];
  return 0;
}

int CFittingCandidate::GetInputSampleWrtInputIndex(int j, std::vector<double>& out) const {
  const Content& content = Read();
  out.clear();
  for (int s = 0; s < content.NumberOfSamples; ++s) {
    out.push_back(content.InputSamples[static_cast<std::size_t>(s)][static_cast<std::size_t>(j)]);
  }
  return 0;
}

int CFittingCandidate::GetOutputSampleWrtSampleIndex(int i, double& out) const {
  out = Read().OutputSamples[static_cast<std::size_t>(i)];
  return 0;
}

int CFittingCandidate::ScaleAndOverwriteInputSample(std::vector<double>& x) const {
  const Content& content = Read();
  return ScaleSample(content.InputScaleSlopes, content.InputScaleIntercepts, x);
}

int CFittingCandidate::ScaleAndOverwriteInputSamples(Matrix& rows) const {
  for (std::vector<double>& row : rows) {
    if (ScaleAndOverwriteInputSample(row) != 0) return 1;
  }
  return 0;
}

int CFittingCandidate::ScaleAndOverwriteOutputSample(double& y) const {
  const Content& content = Read();
  y = content.OutputScaleSlope * y + content.OutputScaleIntercept;
  return 0;
}

int CFittingCandidate::ScaleAndOverwriteOutputSamples(std::vector<double>& y) const {
  for (double& value : y) ScaleAndOverwriteOutputSample(value);
  return 0;
}

int CFittingCandidate::BackscaleAndOverwriteOutputSample(double& y) const {
  const Content& content = Read();
  if (content.OutputScaleSlope == 0.0) return 1;
  y = (y - content.OutputScaleIntercept) / content.OutputScaleSlope;
  return 0;
}

int CFittingCandidate::BackscaleAndOverwriteOutputSamples(std::vector<double>& y) const {
  for (double& value : y) {
    if (BackscaleAndOverwriteOutputSample(value) != 0) return 1;
  }
  return 0;
}

int CFittingCandidate::SetStatusStopped() {
  for (const auto& surface : OwnContent().RSList) surface->Stopped = true;
  return 0;
}

int CFittingCandidate::computeMinDist() {
  Content& content = OwnContent();
  // Counts are limited to the existing rows and columns.
  const std::size_t rows = std::min(static_cast<std::size_t>(std::max(content.NumberOfSamples, 0)),
                                    content.vvdScSortedInput.size());
  std::size_t columns = static_cast<std::size_t>(std::max(content.NumberOfInputVariables, 0));
  for (std::size_t i = 0; i < rows; ++i)
    columns = std::min(columns, content.vvdScSortedInput[i].size());
  double result = 0.0;
  for (std::size_t i = 0; i < rows; ++i) {
    double best = 0.0;
    for (std::size_t j = 0; j < rows; ++j) {
      if (j == i) continue;
      const double distance =
          SquaredDistance(content.vvdScSortedInput[i], content.vvdScSortedInput[j], columns);
      // Deliberate (first-sample-not-counted): row 0 never meets j == 0, so its distance stays 0.0
      // and it contributes nothing.
      if (distance < best || j == 0) best = distance;
    }
    result = std::max(result, best);
  }
  content.DPMinDist = result;
  return 0;
}

}  // namespace Tarvane::Plexura::PXROM
