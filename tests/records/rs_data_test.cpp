#include "pxrom/rs_data.h"

#include <limits>

#include "support/surfaces.h"

namespace Tarvane::Plexura::PXROM {
namespace {

CRSData FilledRecord() {
  CRSData data;
  data.NumberOfInputVariables = 2;
  data.NumberOfSamples = 3;
  data.InputSamples = {{1, 10}, {2, 30}, {4, 20}};
  data.OutputSamples = {5, -7, 6};
  data.InputScaleSlopes = {2, 0.5};
  data.InputScaleIntercepts = {1, -1};
  data.OutputScaleSlope = 4;
  data.OutputScaleIntercept = 3;
  data.ReadyForSolve = data.ReadyForEvaluation = data.Stopped = true;
  return data;
}

TEST(RSData, ANewOrResetRecordIsEmptyAndNotRight) {
  CRSData reset = FilledRecord();
  EXPECT_TRUE(reset.IsAllRight());
  EXPECT_EQ(reset.ResetData(), 0);
  CRSData fresh;
  for (CRSData* data : {&reset, &fresh}) {
    EXPECT_EQ(data->NumberOfInputVariables, 0);
    EXPECT_EQ(data->NumberOfSamples, 0);
    EXPECT_TRUE(data->InputSamples.empty());
    EXPECT_TRUE(data->OutputSamples.empty());
    EXPECT_TRUE(data->InputScaleSlopes.empty());
    EXPECT_TRUE(data->InputScaleIntercepts.empty());
    EXPECT_EQ(data->OutputScaleSlope, 0.0);
    EXPECT_EQ(data->OutputScaleIntercept, 0.0);
    EXPECT_FALSE(data->IsReadyForSolve());
    EXPECT_FALSE(data->IsReadyForEvaluation());
    EXPECT_FALSE(data->IsStopped());
    EXPECT_EQ(data->RSDataVersion(), RSDataVersion162);
    EXPECT_FALSE(data->IsSamplingCorrect());
    EXPECT_FALSE(data->IsScalingCorrect());
  }
}

TEST(RSData, SamplingIsCorrectOnlyWhenEveryCountAndShapeAgrees) {
  const auto broken = [](auto change) {
    CRSData data = FilledRecord();
    change(data);
    return !data.IsSamplingCorrect();
  };
  EXPECT_TRUE(broken([](CRSData& d) { d.NumberOfSamples = 2; }));
  EXPECT_TRUE(broken([](CRSData& d) { d.NumberOfSamples = -1; }));
  EXPECT_TRUE(broken([](CRSData& d) { d.OutputSamples.pop_back(); }));
  EXPECT_TRUE(broken([](CRSData& d) { d.InputSamples.pop_back(); }));
  EXPECT_TRUE(broken([](CRSData& d) { d.InputSamples[2].push_back(0); }));
  EXPECT_TRUE(broken([](CRSData& d) { d.NumberOfInputVariables = 3; }));
}

TEST(RSData, ScalingComparesSlopesWithZeroExactly) {
  CRSData data = FilledRecord();
  data.InputScaleSlopes[1] = std::numeric_limits<double>::denorm_min();
  EXPECT_TRUE(data.IsScalingCorrect());
  data.InputScaleSlopes[1] = std::nan("");
  EXPECT_TRUE(data.IsScalingCorrect());
  data.InputScaleSlopes[1] = -0.0;
  EXPECT_FALSE(data.IsScalingCorrect());
  data = FilledRecord();
  data.InputScaleIntercepts.push_back(0);
  EXPECT_FALSE(data.IsScalingCorrect());
  CRSData withoutInputs;
  withoutInputs.OutputScaleSlope = 1;
  EXPECT_TRUE(withoutInputs.IsScalingCorrect());
}

TEST(RSData, ScalingGoesForwardForInputsAndBothWaysForOutputs) {
  const CRSData data = FilledRecord();
  Vector x = {3, 4};
  EXPECT_EQ(data.ScaleAndOverwriteInputSample(x), 0);
  EXPECT_EQ(x, (Vector{7, 1}));

  Matrix rows = {{3, 4}, {3}, {3, 4}};
  EXPECT_EQ(data.ScaleAndOverwriteInputSamples(rows), 1);
  EXPECT_EQ(rows, (Matrix{{7, 1}, {3}, {3, 4}}));

  Vector ys = {1, 2};
  EXPECT_EQ(data.ScaleAndOverwriteOutputSamples(ys), 0);
  EXPECT_EQ(ys, (Vector{7, 11}));
  EXPECT_EQ(data.BackscaleAndOverwriteOutputSamples(ys), 0);
  EXPECT_EQ(ys, (Vector{1, 2}));

  Vector none;
  EXPECT_EQ(CRSData().ScaleAndOverwriteInputSample(none), 0);
}

TEST(RSData, ShapeChecks) {
  const CRSData data;
  const std::tuple<Matrix, bool, bool, bool> cases[] = {
      {{}, false, false, false},
      {{{}}, true, false, false},
      {{{1, 2}, {3}}, false, false, false},
      {{{1, 2, 3}, {4, 5, 6}}, true, false, false},
      {{{7}}, true, true, true},
      {{{1, 0}, {1, 1}}, true, true, true},
  };
  for (const auto& [m, rectangular, square, symmetric] : cases) {
    EXPECT_EQ(data.IsThisRectangularMatrix(m), rectangular);
    EXPECT_EQ(data.IsThisSquareMatrix(m), square);
    EXPECT_EQ(data.IsThisSymmetricMatrix(m), symmetric);
  }
}

TEST(RSData, SymmetryCheckSigned) {
  for (const auto& [below, isSymmetric] :
       {std::pair(0.0, false), std::pair(-1.0, false), std::pair(1e-10, true),
        std::pair(0.99e-10, false), std::pair(std::nan(""), true)}) {
    EXPECT_EQ(CRSData().IsThisSymmetricMatrix({{1, 0}, {below, 1}}), isSymmetric) << below;
  }
}

TEST(RSData, Statistics) {
  const CRSData data = FilledRecord();
  EXPECT_EQ(data.ComputeOutputSamplesMax(), 6);
  EXPECT_EQ(data.ComputeOutputSamplesMin(), -7);
  EXPECT_EQ(data.ComputeOutputSamplesNormInf(), 7);
  EXPECT_EQ(data.ComputeOutputSamplesMean(), (5.0 - 7.0 + 6.0) / 3.0);
  EXPECT_EQ(data.ComputeOutputSamplesNorm2(), std::sqrt(110.0));
  EXPECT_EQ(data.ComputeInputSamplesWrtInputVariableMax(1), 30);
  EXPECT_EQ(data.ComputeInputSamplesWrtInputVariableMean(1), 20);
  EXPECT_EQ(data.ComputeInputSamplesWrtInputVariableStandardDeviation(1), 10);
  EXPECT_EQ(data.ComputeNorm2({}), 0.0);
  EXPECT_TRUE(std::isnan(data.ComputeMean({})));
  EXPECT_TRUE(std::isnan(data.ComputeStandardDeviation({3})));
  EXPECT_EQ(data.ComputeOutputSamplesStandardDeviation(),
            data.ComputeStandardDeviation({5, -7, 6}));
  EXPECT_EQ(data.ComputeInputSamplesWrtInputVariableNorm2(0), std::sqrt(21.0));
  EXPECT_EQ(data.ComputeInputSamplesWrtInputVariableNormInf(1), 30);
  EXPECT_EQ(data.ComputeEuclideanDistance({0, 0}, {3, 4}), 5);
  EXPECT_EQ(data.ComputeEuclideanDistance({1}, {3, 4}), 0);
  Vector column;
  data.GetInputSampleWrtInputIndex(1, column);
  EXPECT_EQ(column, data.GetColumn(data.InputSamples, 1));
  EXPECT_EQ(data.GetInputSampleWrtSampleIndex(1, column), 0);
  EXPECT_EQ(column, (Vector{2, 30}));
  double y = 0.0;
  EXPECT_EQ(data.GetOutputSampleWrtSampleIndex(1, y), 0);
  EXPECT_EQ(y, -7);
}

TEST(RSData, ColumnDeviationRows) {
  // Five rows, three outputs: the sum takes three rows, mean and divisor take all five.
  const Matrix five = {{0}, {1}, {2}, {3}, {9}};
  EXPECT_EQ(FilledRecord().ComputeColumnStandardDeviation(five, 0),
            std::sqrt((9.0 + 4.0 + 1.0) / 4.0));
}

TEST(RSData, AccessorsCheckNothing) {
  CRSData data = FilledRecord();
  EXPECT_EQ(data.SetInputSamples({{1}}), 0);
  EXPECT_EQ(data.NumberOfSamples, 3);
  EXPECT_EQ(data.NumberOfInputVariables, 2);
  EXPECT_EQ(data.SetNumberOfSamples(-4), 0);
  EXPECT_EQ(data.NumberOfSamples, -4);
}

TEST(RSData, Covariance) {
  const CRSData data;
  EXPECT_EQ(data.GetVarianceCovarianceMatrix({{1, 2}, {3, 6}}), (Matrix{{2, 4}, {4, 8}}));
  EXPECT_EQ(data.GetDiagVarianceCovarianceMatrix({{1, 2}, {3, 6}}), (Vector{2, 8}));
  EXPECT_TRUE(data.GetVarianceCovarianceMatrix({{1, 2}, {3}}).empty());
  EXPECT_TRUE(data.GetDiagVarianceCovarianceMatrix({}).empty());
  EXPECT_TRUE(std::isnan(data.GetVarianceCovarianceMatrix({{1}})[0][0]));
}

}  // namespace
}  // namespace Tarvane::Plexura::PXROM
