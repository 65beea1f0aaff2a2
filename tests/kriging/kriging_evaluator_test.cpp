#include <gtest/gtest.h>

#include <cmath>
#include <fstream>
#include <nlohmann/json.hpp>

#include "kriging/test_records.h"
#include "literal/kriging_literal.h"

namespace Tarvane::Plexura::PXROM {
namespace {

const CKrigingEvaluator kEvaluator;

// All functions, kernel forms and trends; sizes on both sides of whole groups of rows.
TEST(KrigingEvaluator, EqualsTheLiteralProgramToTheLastBit) {
  std::mt19937 random(2U);
  for (int round = 0; round < 11 * 5 * 2 * 3; ++round) {
    const int n = std::uniform_int_distribution<int>(0, 27)(random);
    const int d = std::uniform_int_distribution<int>(1, 5)(random);
    CKrigingData record =
        literal::RandomKriging(random, 1 + round % 11, round % 5, n, d, round % 2 == 0);
    CKrigingData twin = record;
    const Vector x(static_cast<std::size_t>(d), 0.1 * (round % 7));
    double y[3] = {-9.0, -9.0, -9.0};
    double error[2] = {-9.0, -9.0};
    EXPECT_EQ(kEvaluator.EvaluateResponseSurface(&record, x, y[0]), 0);
    EXPECT_EQ(kEvaluator.EvaluateResponseSurface(&record, x, y[1], error[0]),
              literal::EvaluateKriging(twin, x, y[2], error[1]));
    EXPECT_EQ(y[0], y[2]) << "round " << round << ", n " << n << ", d " << d;
    EXPECT_EQ(y[1], y[2]);
    EXPECT_EQ(error[0], error[1]) << "round " << round << ", n " << n << ", d " << d;
    EXPECT_EQ(record.InputSamples, twin.InputSamples);
    if (record.InvG.empty() || n == 0) continue;
    Matrix points = {record.InputSamples[0], x};
    Vector errors[2];
    EXPECT_EQ(record.EvalErrorPredictions(points, errors[0]), 0);
    EXPECT_EQ(literal::EvalErrorPredictions(twin, points, errors[1]), 0);
    EXPECT_EQ(errors[0], errors[1]);
  }
}

TEST(KrigingEvaluator, AgreesWithADenseSolve) {
  for (const auto& each :
       nlohmann::json::parse(std::ifstream(PXROM_TEST_DATA "/kriging/predictions.json"))) {
    CKrigingData record = SmallRecord();
    record.CorrelationFunctionType = each["correlation"];
    record.PolynomialType = each["trend"];
    record.NumberOfSamples = each["n"];
    record.NumberOfInputVariables = each["d"];
    const std::pair<const char*, Matrix*> matrices[] = {{"samples", &record.InputSamples},
                                                        {"inv_c", &record.InvC},
                                                        {"inv_g", &record.InvG},
                                                        {"ft", &record.Ft}};
    for (const auto& [key, field] : matrices) *field = each[key].get<Matrix>();
    const std::pair<const char*, Vector*> vectors[] = {
        {"slopes", &record.InputScaleSlopes},
        {"intercepts", &record.InputScaleIntercepts},
        {"kernels", &record.CorrelationKernels},
        {"beta", &record.PolynomialCoefficients},
        {"coefficients", &record.CorrelationCoefficients}};
    for (const auto& [key, field] : vectors) *field = each[key].get<Vector>();
    for (std::size_t i = 0; i < each["x"].size(); ++i) {
      double y = 0.0;
      double error = 0.0;
      EXPECT_EQ(kEvaluator.EvaluateResponseSurface(&record, each["x"][i], y, error), 0);
      EXPECT_NEAR(y, each["y"][i].get<double>(), 1e-10);
      EXPECT_NEAR(error, each["error"][i].get<double>(), 1e-10);
    }
  }
}

using Change = void (*)(CKrigingData&);

TEST(KrigingEvaluator, RefusesWithNothingWrittenNorScaled) {
  const Change changes[] = {
      [](CKrigingData& r) { r.ReadyForEvaluation = false; },
      [](CKrigingData& r) { r.Stopped = true; },
      [](CKrigingData& r) { r.NumberOfInputVariables = 2; },
      [](CKrigingData& r) { r.InputScaleSlopes.push_back(1.0); },
      [](CKrigingData& r) { r.NumberOfSamples = 3; },
      [](CKrigingData& r) { r.NumberOfSamples = -1; },
      [](CKrigingData& r) { r.InputSamples[1].push_back(1.0); },
      [](CKrigingData& r) { r.InputSamples[1].clear(); },
      [](CKrigingData& r) { r.InputSamples.pop_back(); },
      [](CKrigingData& r) { r.CorrelationCoefficients.pop_back(); },
      [](CKrigingData& r) { r.CorrelationKernels.clear(); },
      [](CKrigingData& r) { r.CorrelationFunctionType = CorrNone; },
  };
  for (const Change& change : changes) {
    CKrigingData record = SmallRecord();
    change(record);
    const Matrix samples = record.InputSamples;
    double y = -9.0;
    double error = -9.0;
    EXPECT_EQ(kEvaluator.EvaluateResponseSurface(&record, {1.5}, y), 1) << &change - changes;
    EXPECT_EQ(kEvaluator.EvaluateResponseSurface(&record, {1.5}, y, error), 1);
    EXPECT_EQ(y, -9.0);
    EXPECT_EQ(error, -9.0);
    EXPECT_EQ(record.InputSamples, samples);
  }
  const CRSData other;
  double y = -9.0;
  EXPECT_EQ(kEvaluator.EvaluateResponseSurface(&other, {}, y), 1);
  EXPECT_EQ(kEvaluator.EvaluateResponseSurface(nullptr, {}, y), 1);
  Vector gradient = {4.0};
  EXPECT_EQ(kEvaluator.EvaluateResponseSurfaceDerivativeWrtInputVariables(nullptr, {}, gradient),
            0);
  EXPECT_EQ(gradient, Vector{4.0});
}

TEST(KrigingEvaluator, TrendFollowsItsType) {
  CKrigingData record = SmallRecord();
  record.NumberOfSamples = 0;  // the trend alone
  record.CorrelationKernels.clear();
  record.PolynomialCoefficients = {3.0, 10.0};
  const std::pair<int, double> cases[] = {{0, -0.5}, {1, -9.0}, {2, 85.5}, {3, -9.0}, {5, -9.0}};
  for (const auto& [type, want] : cases) {
    record.PolynomialType = static_cast<E_PolynomialType>(type);
    double y = -9.0;
    EXPECT_EQ(kEvaluator.EvaluateResponseSurface(&record, {1.5}, y), want == -9.0 ? 1 : 0) << type;
    EXPECT_EQ(y, want) << type;
  }
  record.PolynomialCoefficients.clear();
  double y = -9.0;
  EXPECT_EQ(kEvaluator.EvaluateResponseSurface(&record, {1.5}, y), 0);
  EXPECT_EQ(y, -0.5);
}

// Only a complete call leaves the samples; every other one that got past them leaves them scaled,
// and cut to NumberOfSamples.
TEST(KrigingEvaluator, RepeatedCallsDriftUnlessTheErrorIsThere) {
  struct {
    int status;
    Change change;
  } const cases[] = {
      {0, [](CKrigingData&) {}},
      {-2, [](CKrigingData& r) { r.SavePredictorError = false; }},
      {-2, [](CKrigingData& r) { r.KrigingDataVersion_ = E_CKrigingDataVersion(191); }},
      {-2, [](CKrigingData& r) { r.Ft.clear(); }},
      {-2, [](CKrigingData& r) { r.InvC.pop_back(); }},
      {-2, [](CKrigingData& r) { r.InvC[1].pop_back(); }},
      {-2, [](CKrigingData& r) { r.Ft[0].pop_back(); }},
      {-2, [](CKrigingData& r) { r.InvG[0].clear(); }},
      {-2,
       [](CKrigingData& r) {  // more trend functions than stored rows
         r.PolynomialType = PolyLinear;
         r.PolynomialCoefficients = {3.0, 0.0};
       }},
      {-2,
       [](CKrigingData& r) {
         r.PolynomialType = PolyNone;
         r.InvG.clear();
       }},
      {-2,
       [](CKrigingData& r) {
         r.PolynomialType = E_PolynomialType(9);
         r.PolynomialCoefficients.clear();
       }},
      {1, [](CKrigingData& r) { r.PolynomialCoefficients.push_back(1.0); }},
  };
  for (const auto& each : cases) {
    CKrigingData record = SmallRecord();
    each.change(record);
    record.InputSamples.push_back({8.0});
    const auto place = &each - cases;
    Matrix samples = record.InputSamples;
    double last = 0.0;
    for (int call = 0; call < 3; ++call) {
      double plain = -9.0;
      double y = -9.0;
      double error = -9.0;
      EXPECT_EQ(kEvaluator.EvaluateResponseSurface(&record, {1.5}, plain),
                each.status == 1 ? 1 : 0);
      EXPECT_EQ(kEvaluator.EvaluateResponseSurface(&record, {1.5}, y, error), each.status) << place;
      EXPECT_EQ(y, plain);
      EXPECT_EQ(error == -9.0, each.status != 0) << place;
      if (each.status != 0) {
        samples.resize(2);
        for (Vector& row : samples) row[0] = 2.0 * row[0] + 1.0;
      }
      EXPECT_EQ(record.InputSamples, samples) << place;
      EXPECT_EQ(call > 0 && y == last, call > 0 && each.status != -2) << place;
      last = y;
    }
  }
}

TEST(KrigingPredictorError, FollowsItsStepsAndRefusesShortMatrices) {
  CKrigingData record = SmallRecord();
  Matrix R = {{1.0, 1.0}, {0.0, 0.0, 7.0}};
  Matrix F = {{1.0, 7.0}, {2.0}};
  int m = 2;
  int p = 1;
  Vector out = {-9.0};
  // v = (3, 4), w = 5 - 1, g = 3: 9 + 1 - 25 is negative. v = 0, w = -2, g = -1.5.
  EXPECT_EQ(record.GetPredictorError(R, F, m, p, out), 0);
  ASSERT_EQ(out, (Vector{std::sqrt(30.0), std::sqrt(6.5)}));
  EXPECT_EQ(record.GetPredictorError(R, F, m, p, R[0]), 0);  // its own argument
  EXPECT_EQ(R[0], out);
  R[0] = {1.0, 1.0};
  const auto refused = [&](int points, int functions, const Matrix& r, const Matrix& f) {
    Matrix rows = r;
    Matrix trend = f;
    Vector kept = {-9.0};
    return record.GetPredictorError(rows, trend, points, functions, kept) == 1 &&
           kept == Vector{-9.0};
  };
  EXPECT_TRUE(refused(3, 1, R, F));
  EXPECT_TRUE(refused(-1, 1, R, F));
  EXPECT_TRUE(refused(2, -1, R, F));
  EXPECT_TRUE(refused(1, 2, R, F));
  EXPECT_TRUE(refused(2, 1, {{1.0, 1.0}, {1.0}}, F));
  EXPECT_TRUE(refused(2, 1, R, {{1.0}, {}}));
  record.NumberOfSamples = -1;
  EXPECT_TRUE(refused(2, 1, R, F));
}

TEST(KrigingPredictorError, SumsTheStatusesOfItsSteps) {
  struct {
    int status;
    Matrix rows;
    Change change;
  } const cases[] = {
      {0, {{3.0}, {4.0}}, [](CKrigingData&) {}},
      {1, {}, [](CKrigingData&) {}},
      {1, {{3.0}}, [](CKrigingData& r) { r.PolynomialType = E_PolynomialType(5); }},
      {1, {{3.0}}, [](CKrigingData& r) { r.InvC.clear(); }},
      {1, {{3.0}}, [](CKrigingData& r) { r.InputSamples[1].clear(); }},
      {1, {{3.0}}, [](CKrigingData& r) { r.InputSamples.pop_back(); }},
      {1, {{3.0}}, [](CKrigingData& r) { r.NumberOfInputVariables = -1; }},
      {4, {{3.0}, {4.0}}, [](CKrigingData& r) { r.CorrelationKernels.clear(); }},
      // Two pairs of the wrong length, a ragged matrix, and no trend rows for the error.
      {4, {{3.0}, {4.0, 5.0}}, [](CKrigingData&) {}},
      {3, {{3.0}, {4.0, 5.0}}, [](CKrigingData& r) { r.SavePredictorError = false; }},
  };
  for (const auto& each : cases) {
    CKrigingData record = SmallRecord();
    each.change(record);
    Matrix rows = each.rows;
    Vector out;
    EXPECT_EQ(record.EvalErrorPredictions(rows, out), each.status) << &each - cases;
  }
}

}  // namespace
}  // namespace Tarvane::Plexura::PXROM
