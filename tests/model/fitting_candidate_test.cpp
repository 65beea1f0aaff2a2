#include "pxrom/fitting_candidate.h"

#include "model/test_candidates.h"
#include "pxrom/fitting_candidates.h"

namespace Tarvane::Plexura::PXROM {
namespace {

class OpenCandidate : public CFittingCandidate {
 public:
  using CFittingCandidate::computeMinDist;
};

using At = const CRSData* (CFittingCandidate::*)(int) const;

Vector Values(const CFittingCandidate& candidate, At at = &CFittingCandidate::GetRSPtr) {
  Vector values;
  for (int i = 0; (candidate.*at)(i); ++i) values.push_back(ValueOf((candidate.*at)(i)));
  return values;
}

Vector SubValues(const CFittingCandidate& candidate) {
  return Values(candidate, &CFittingCandidate::GetSubRSPtr);
}

CFittingCandidate Filled() {
  CFittingCandidate candidate;
  const CConstantData constant = Constant(4, 1);
  EXPECT_EQ(candidate.AddRSAndWeight(&constant, 0.5), 0);
  EXPECT_EQ(candidate.AddSubRS(&constant), 0);
  EXPECT_EQ(candidate.SetNumberOfInputVariables(1), 0);
  EXPECT_EQ(candidate.SetNumberOfSamples(2), 0);
  EXPECT_EQ(candidate.SetInputSamples(Matrix{{1}, {2}}), 0);
  EXPECT_EQ(candidate.SetOutputSamples(Vector{3, 4}), 0);
  EXPECT_EQ(candidate.SetInputScaleSlopes({5}), 0);
  EXPECT_EQ(candidate.SetInputScaleIntercepts({6}), 0);
  EXPECT_EQ(candidate.SetOutputScaleSlope(7), 0);
  EXPECT_EQ(candidate.SetOutputScaleIntercept(8), 0);
  Matrix sorted = {{1}, {2}};
  std::vector<int> folds = {2};
  candidate.SetCrossValidationData(sorted, folds);
  double distance = 9;
  candidate.SetDPMinDist(distance);
  auto version = FittingCandidateVersion170;
  candidate.setDataVersion(version);
  return candidate;
}

template <class Out, class Get>
Out Got(const CFittingCandidate& candidate, Get get, Out out) {
  EXPECT_EQ((candidate.*get)(out), 0);
  return out;
}

void ExpectEmptyButForScaleAndDistance(const CFittingCandidate& c, double slope, double distance) {
  using C = CFittingCandidate;
  EXPECT_EQ(c.DataVersion(), FittingCandidateVersion192);
  EXPECT_EQ(c.GetRSCount(), 0u);
  EXPECT_EQ(c.GetSubRSCounts(), 0u);
  EXPECT_EQ(Got(c, &C::GetNumberOfInputVariables, -1), 0);
  EXPECT_EQ(Got(c, &C::GetNumberOfSamples, -1), 0);
  EXPECT_EQ(Got(c, &C::GetInputSamples, Matrix{{1}}), Matrix());
  for (const auto get :
       {&C::GetOutputSamples, &C::GetInputScaleSlopes, &C::GetInputScaleIntercepts}) {
    EXPECT_EQ(Got(c, get, Vector{1}), Vector());
  }
  EXPECT_EQ(Got(c, &C::GetOutputScaleSlope, -1.0), slope);
  EXPECT_EQ(Got(c, &C::GetOutputScaleIntercept, -1.0), 0.0);
  EXPECT_FALSE(c.GetIsErrPredRequired());
  EXPECT_TRUE(c.GetviNumPtsPerFold().empty());
  EXPECT_TRUE(c.GetvvdScSortedInput().empty());
  EXPECT_EQ(c.GetDPMinDist(), distance);
}

TEST(FittingCandidate, ResetSlopeIsZero) {
  CFittingCandidate candidate;
  ExpectEmptyButForScaleAndDistance(candidate, 1.0, 0.0);
  double y = 3.0;
  EXPECT_EQ(candidate.BackscaleAndOverwriteOutputSample(y), 0);
  candidate = Filled();
  EXPECT_EQ(candidate.ResetData(), 0);
  ExpectEmptyButForScaleAndDistance(candidate, 0.0, 9.0);
  EXPECT_EQ(candidate.BackscaleAndOverwriteOutputSample(y), 1);
  EXPECT_EQ(y, 3.0);
  Vector some = {2.0};
  EXPECT_EQ(candidate.BackscaleAndOverwriteOutputSamples(some), 1);
  EXPECT_EQ(some, (Vector{2.0}));
}

TEST(FittingCandidate, AssignmentShares) {
  auto source = std::make_unique<CFittingCandidate>(Filled());
  const CFittingCandidate copy(*source);
  CFittingCandidate first;
  CFittingCandidate second = Filled();
  first = *source;
  second = *source;
  EXPECT_NE(copy.GetRSPtr(0), source->GetRSPtr(0));
  EXPECT_EQ(first.GetRSPtr(0), source->GetRSPtr(0));
  EXPECT_EQ(first.GetSubRSPtr(0), second.GetSubRSPtr(0));
  EXPECT_EQ(first.DataVersion(), FittingCandidateVersion170);
  // Shared surfaces live until the last candidate is gone, in any order.
  source->ResetData();
  EXPECT_EQ(Values(first), (Vector{4}));
  source.reset();
  const CFittingCandidate& same = first;
  first = same;
  EXPECT_EQ(Values(first), (Vector{4}));
  first.ResetData();
  EXPECT_EQ(Values(second), (Vector{4}));
  EXPECT_EQ(SubValues(copy), (Vector{4}));
  // What is shared is stopped for all.
  CFittingCandidate third;
  third = second;
  third.SetStatusStopped();
  EXPECT_TRUE(second.GetRSPtr(0)->Stopped);
  EXPECT_FALSE(copy.GetRSPtr(0)->Stopped);
}

TEST(FittingCandidate, StopSkipsSubSurfaces) {
  CFittingCandidate candidate = Filled();
  EXPECT_EQ(candidate.SetStatusStopped(), 0);
  EXPECT_TRUE(candidate.GetRSPtr(0)->Stopped);
  EXPECT_FALSE(candidate.GetSubRSPtr(0)->Stopped);
}

TEST(FittingCandidate, PointersOutsideTheListsAreNull) {
  const CFittingCandidate candidate = Filled();
  for (const int i : {-1, 1, 1 << 30}) {
    EXPECT_EQ(candidate.GetRSPtr(i), nullptr);
    EXPECT_EQ(candidate.GetSubRSPtr(i), nullptr);
  }
}

struct Surfaces {
  std::vector<CConstantData> data;
  std::vector<CRSData*> pointers;
  explicit Surfaces(int count) {
    for (int i = 0; i < count; ++i) data.push_back(Constant(i, 1));
    for (CConstantData& d : data) pointers.push_back(&d);
  }
};

TEST(FittingCandidate, SetRsAppendsWithErrors) {
  CFittingCandidate candidate = Filled();
  Surfaces six(6);
  EXPECT_EQ(candidate.SetRSAndWeights(six.pointers, {0.1, 0.2}, true), 0);
  EXPECT_EQ(Values(candidate), (Vector{4, 0, 3}));
  EXPECT_EQ(SubValues(candidate), (Vector{4, 1, 2, 4, 5}));
  EXPECT_EQ(candidate.GetRSWeight(1), 0.2);
  EXPECT_EQ(Got(candidate, &CFittingCandidate::GetOutputScaleSlope, -1.0), 7.0);
}

TEST(FittingCandidate, SettingSurfacesWithoutErrorPredictionResetsFirst) {
  CFittingCandidate candidate = Filled();
  Surfaces two(2);
  EXPECT_EQ(candidate.SetRSAndWeights(two.pointers, {1, 2}, false), 0);
  EXPECT_EQ(Values(candidate), (Vector{0, 1}));
  EXPECT_EQ(candidate.GetSubRSCounts(), 0u);
  EXPECT_EQ(Got(candidate, &CFittingCandidate::GetOutputScaleSlope, -1.0), 0.0);
  // Its own surfaces are cloned before they are released.
  const std::vector<CRSData*> own = {const_cast<CRSData*>(candidate.GetRSPtr(1))};
  EXPECT_EQ(candidate.SetRSAndWeights(own, {3}, false), 0);
  EXPECT_EQ(Values(candidate), (Vector{1}));
}

TEST(FittingCandidate, RefusedSurfacesStillChangeTheFlagAndNothingElse) {
  Surfaces five(5);
  const std::tuple<std::vector<CRSData*>, Vector, bool> cases[] = {{five.pointers, {1, 2}, true},
                                                                   {five.pointers, {}, true},
                                                                   {{}, {}, true},
                                                                   {five.pointers, {1}, false},
                                                                   {{nullptr}, {1}, false},
                                                                   {{nullptr}, {1}, true},
                                                                   {{}, {1}, false}};
  for (const auto& [surfaces, weights, errorPrediction] : cases) {
    CFittingCandidate candidate = Filled();
    EXPECT_EQ(candidate.SetbIsErrPredRequired(!errorPrediction), 0);
    EXPECT_EQ(candidate.SetRSAndWeights(surfaces, weights, errorPrediction), 1);
    EXPECT_EQ(candidate.GetIsErrPredRequired(), errorPrediction);
    EXPECT_EQ(Values(candidate), (Vector{4}));
    EXPECT_EQ(candidate.GetRSWeight(0), 0.5);
  }
  EXPECT_EQ(CFittingCandidate().AddRSAndWeight(nullptr, 1), 1);
  EXPECT_EQ(CFittingCandidate().AddSubRS(nullptr), 1);
}

TEST(FittingCandidate, FirstSampleNotCounted) {
  std::tuple<Matrix, int, double> cases[] = {{{{0, 0}, {3, 4}}, 2, 25},
                                             {{{0, 0}}, 2, 0},
                                             {Matrix(), 2, 0},
                                             {{{0}, {3}}, 0, 0},
                                             // Row 0 is the farthest one and does not count.
                                             {{{9, 9}, {0, 0}, {0, 1}, {0, 3}}, 2, 4}};
  for (auto& [rows, inputs, scale] : cases) {
    OpenCandidate candidate;
    candidate.SetNumberOfInputVariables(inputs);
    candidate.SetNumberOfSamples(static_cast<int>(rows.size()));
    std::vector<int> folds;
    candidate.SetCrossValidationData(rows, folds);
    EXPECT_EQ(candidate.computeMinDist(), 0);
    EXPECT_EQ(candidate.GetDPMinDist(), scale);
  }
}

TEST(FittingCandidates, AssigningOverElementsSharesAndGrowingClones) {
  CFittingCandidates two = OneConstant(1, 1);
  const CRSData* const before = two.GetCandidatePtr(0)->GetRSPtr(0);
  CFittingCandidates target = OneConstant(5, 1);
  target = two;
  EXPECT_EQ(target.GetCandidatePtr(0)->GetRSPtr(0), before);
  CFittingCandidates empty;
  empty = two;
  EXPECT_NE(empty.GetCandidatePtr(0)->GetRSPtr(0), before);
  two.ResetData();
  EXPECT_EQ(ValueOf(target.GetCandidatePtr(0)->GetRSPtr(0)), 1);
  EXPECT_EQ(two.GetEvaluationCandidatePtr(), nullptr);
  EXPECT_EQ(two.GetCandidatePtr(0), nullptr);
  EXPECT_EQ(target.GetCandidatePtr(-1), nullptr);
  EXPECT_EQ(target.SetCandidateIdxForEvaluation(1), 0);
  EXPECT_EQ(target.GetEvaluationCandidatePtr(), nullptr);
  // After a reset the first one counts again.
  EXPECT_EQ(target.ResetData(), 0);
  EXPECT_EQ(target.AddFittingCandidate(*empty.GetCandidatePtr(0)), 0);
  EXPECT_NE(target.GetEvaluationCandidatePtr(), nullptr);
  CRSData negative;
  negative.NumberOfInputVariables = -2;
  EXPECT_EQ(target.GenerateCandidateFromCRSData(&negative), 1);
  EXPECT_EQ(target.GenerateCandidateFromCRSData(nullptr), 1);
  EXPECT_EQ(target.GetCandidateCount(), 1u);
}

}  // namespace
}  // namespace Tarvane::Plexura::PXROM
