#include <tuple>

#include "reference/kriging_literal.h"
#include "support/surfaces.h"

namespace Tarvane::Plexura::PXROM {
namespace {

using Change = void (*)(CKrigingData&);

const CKrigingEvaluator kEvaluator;

// One input, two samples, a constant trend; all of the error's data.
CKrigingData SmallRecord() {
  std::mt19937 random(4U);
  return literal::RandomKriging(random, CorrExponential, PolyConstant, 2, 1, true);
}

void SetTrend(CKrigingData& record, int type, const Vector& coefficients) {
  Take(type, record.PolynomialType);
  record.PolynomialCoefficients = coefficients;
}

// Only a complete call leaves the samples. Without an error, or with a trend that does not fit,
// they are left scaled and cut to NumberOfSamples; what fails before leaves them.
enum Outcome { kComplete, kNoError, kTrendFails, kRefused };

TEST(KrigingEvaluator, KrigingErrorWritesRecord) {
  const std::pair<Outcome, Change> cases[] = {
      {kComplete, [](CKrigingData&) {}},
      {kComplete, [](CKrigingData& r) { r.NumberOfSamples = 0, r.CorrelationCoefficients = {}; }},
      {kNoError, [](CKrigingData& r) { r.SavePredictorError = false; }},
      {kNoError, [](CKrigingData& r) { r.KrigingDataVersion_ = E_CKrigingDataVersion(191); }},
      {kNoError, [](CKrigingData& r) { r.PolynomialType = PolyNone, r.Ft.clear(); }},
      {kNoError, [](CKrigingData& r) { r.InvC.pop_back(); }},
      {kNoError, [](CKrigingData& r) { r.InvC[1].pop_back(); }},
      {kNoError, [](CKrigingData& r) { r.Ft[0].pop_back(); }},
      {kNoError, [](CKrigingData& r) { r.InvG[0].clear(); }},
      {kNoError, [](CKrigingData& r) { r.PolynomialType = PolyNone, r.InvG.clear(); }},
      {kNoError,
       [](CKrigingData& r) {
         SetTrend(r, PolyLinear, {3, 0});
       }},
      {kNoError, [](CKrigingData& r) { SetTrend(r, 9, {}); }},
      {kTrendFails, [](CKrigingData& r) { r.PolynomialType = E_PolynomialType(9); }},
      {kTrendFails, [](CKrigingData& r) { r.PolynomialCoefficients.push_back(1.0); }},
      {kRefused, [](CKrigingData& r) { r.Stopped = true; }},
      {kRefused, [](CKrigingData& r) { r.NumberOfInputVariables = 2; }},
      {kRefused, [](CKrigingData& r) { r.InputScaleSlopes.push_back(1.0); }},
      {kRefused,
       [](CKrigingData& r) { r.CorrelationCoefficients.resize(9), r.NumberOfSamples = 9; }},
      {kRefused, [](CKrigingData& r) { r.InputSamples[1].push_back(1.0); }},
      {kRefused, [](CKrigingData& r) { r.CorrelationCoefficients.pop_back(); }},
      {kRefused, [](CKrigingData& r) { r.CorrelationKernels.clear(); }},
      {kRefused, [](CKrigingData& r) { r.CorrelationFunctionType = CorrNone; }},
  };
  const int statuses[] = {0, -2, 1, 1};
  for (const auto& [outcome, change] : cases) {
    CKrigingData record = SmallRecord();
    change(record);
    record.InputSamples.push_back({8.0});
    Matrix samples = record.InputSamples;
    double last = -9.0;
    for (int call = 0; call < 3; ++call) {
      double plain = -9.0;
      double y = -9.0;
      double error = -9.0;
      EXPECT_EQ(kEvaluator.EvaluateResponseSurface(&record, {1.5}, plain), outcome >= kTrendFails);
      EXPECT_EQ(record.InputSamples, samples);
      EXPECT_EQ(kEvaluator.EvaluateResponseSurface(&record, {1.5}, y, error), statuses[outcome]);
      EXPECT_EQ(y, plain);
      EXPECT_EQ(error == -9.0, outcome != kComplete);
      EXPECT_EQ(y == last, outcome >= kTrendFails || (outcome == kComplete && call > 0));
      last = y;
      if (outcome == kNoError || outcome == kTrendFails) {
        samples.resize(2);
        record.ScaleAndOverwriteInputSamples(samples);
      }
      EXPECT_EQ(record.InputSamples, samples) << "case " << &change - &cases[0].second;
    }
  }
  ExpectEachRefused<CKrigingData>(kEvaluator, SmallRecord(), {1.5}, {}, true);
}

TEST(KrigingEvaluator, KrigingDerivativeEmpty) {
  Vector gradient = {4.0};
  EXPECT_EQ(kEvaluator.EvaluateResponseSurfaceDerivativeWrtInputVariables(nullptr, {}, gradient),
            0);
  EXPECT_EQ(gradient, Vector{4.0});
}

TEST(KrigingEvaluator, KrigingErrorScaled) {
  const auto errorOf = [](double slope, double sign) {
    CKrigingData record = SmallRecord();
    record.OutputScaleSlope = slope;
    record.Sigma2 *= sign;
    double y = 0.0;
    double error = 0.0;
    EXPECT_EQ(kEvaluator.EvaluateResponseSurface(&record, {1.5}, y, error), 0);
    return error;
  };
  EXPECT_GT(errorOf(1.0, 1.0), 0.0);
  EXPECT_EQ(errorOf(8.0, 1.0), errorOf(1.0, 1.0));
  EXPECT_EQ(errorOf(1.0, -1.0), errorOf(1.0, 1.0));
}

TEST(KrigingEvaluator, ANegativeNumberOfSamplesLeavesTheTrend) {
  CKrigingData record = SmallRecord();
  record.NumberOfSamples = -1;
  const double trend = (record.PolynomialCoefficients[0] - 0.25) / 0.5;
  EXPECT_EQ(Value(kEvaluator, record, {1.5}), trend);
  double y = -9.0;
  double error = -9.0;
  EXPECT_EQ(kEvaluator.EvaluateResponseSurface(&record, {1.5}, y, error), -2);
  EXPECT_EQ(y, trend);
  EXPECT_EQ(error, -9.0);
  EXPECT_TRUE(record.InputSamples.empty());
}

TEST(KrigingPredictorError, RefusesShortMatrices) {
  const Matrix R = {{1.0, 1.0}, {0.0, 0.0, 7.0}};
  const Matrix F = {{1.0, 7.0}, {2.0}};
  const std::tuple<int, int, int, Matrix, Matrix> cases[] = {
      {0, 2, 1, R, F},           {1, 3, 1, R, F}, {1, -1, 1, R, F},
      {1, 2, -1, R, F},          {1, 1, 2, R, F}, {1, 2, 1, {{1.0, 1.0}, {1.0}}, F},
      {1, 2, 1, R, {{1.0}, {}}},
  };
  for (auto [status, m, p, r, f] : cases) {
    Vector out = {-9.0};
    EXPECT_EQ(SmallRecord().GetPredictorError(r, f, m, p, out), status);
    EXPECT_EQ(out == Vector{-9.0}, status == 1);
  }
}

TEST(KrigingPredictorError, SumsTheStatusesOfItsSteps) {
  const std::tuple<int, Matrix, Change> cases[] = {
      {0, {{3.0}, {4.0}}, [](CKrigingData&) {}},
      {0, {{3.0}}, [](CKrigingData& r) { r.PolynomialType = PolyNone; }},
      {1, {}, [](CKrigingData&) {}},
      {1, {{3.0}}, [](CKrigingData& r) { Take(5, r.PolynomialType), r.SavePredictorError = 0; }},
      {1, {{3.0}}, [](CKrigingData& r) { r.InputSamples[0].clear(); }},
      {1, {{3.0}}, [](CKrigingData& r) { r.InputSamples.pop_back(); }},
      {1, {{3.0}}, [](CKrigingData& r) { r.NumberOfSamples = -1; }},
      {1, {{3.0}}, [](CKrigingData& r) { r.NumberOfInputVariables = -1; }},
      {4, {{3.0}, {4.0}}, [](CKrigingData& r) { r.CorrelationKernels.clear(); }},
      // Two pairs of unlike lengths, a ragged matrix, and no trend rows for the error.
      {4, {{3.0}, {4.0, 5.0}}, [](CKrigingData&) {}},
      {3, {{3.0}, {4.0, 5.0}}, [](CKrigingData& r) { r.SavePredictorError = false; }},
  };
  for (auto [status, rows, change] : cases) {
    CKrigingData record = SmallRecord();
    change(record);
    Vector out;
    EXPECT_EQ(record.EvalErrorPredictions(rows, out), status);
  }
}

}  // namespace
}  // namespace Tarvane::Plexura::PXROM
