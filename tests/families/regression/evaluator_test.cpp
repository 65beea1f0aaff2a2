#include "families/regression/test_records.h"

namespace Tarvane::Plexura::PXROM {
namespace {

TEST(QRSEvaluator, RecordsThatCannotBeHonouredAreRefused) {
  const CQRSData sound = ConstantRecord(-1e100);
  ExpectEachRefused<CQRSData>(kEvaluator, sound, {0.0}, {}, true);
  // The form with an error writes it even for these.
  const Damage<CQRSData> damages[] = {
      {"no intercepts", [](CQRSData& r) { r.InputScaleIntercepts.clear(); }},
      {"no way back", [](CQRSData& r) { Take(-1, r.OutputTransformType); }},
      {"no way forward", [](CQRSData& r) { Take(11, r.InputTransformType); }},
      {"no lambda", [](CQRSData& r) { r.InputTransformType = TransformBox; }},
  };
  for (const auto& damage : damages) {
    CQRSData record = sound;
    damage.apply(record);
    ExpectRefused(kEvaluator, &record, {0.0}, damage.why);
  }
}

TEST(QRSEvaluator, RefusedOutputNotInterpolated) {
  CQRSData record = ConstantRecord(-1e100);
  record.InputSamples = {{-1.0}, {2.0}};
  record.OutputTransformType = TransformYeo;
  record.OutputLambda = 2.0;
  ExpectRefused(kEvaluator, &record, {0.0}, "a failed back-transformation");
}

TEST(QRSEvaluator, ErrorBeforeValue) {
  CQRSData record = ConstantRecord(300.0);
  record.OutputTransformType = TransformLogE;
  double y = kUntouched;
  double error = kUntouched;
  EXPECT_EQ(kEvaluator.EvaluateResponseSurface(&record, {0.0}, y, error), 1);
  EXPECT_EQ(y, kUntouched);
  EXPECT_NEAR(error, kConstantsError, 1e-4);
  record.InvXtX.clear();
  ExpectRefused(kEvaluator, &record, {0.0}, "no matrix, no error", true);
}

TEST(QRSEvaluator, RegressionLightDerivative) {
  CQRSData record = PlainRecord(2, {{FuncTypeLinear, {0}, 0.25}, {FuncTypeCrossQuad, {0, 1}, 2.0}});
  const auto derivative = [&](const CRSData* data, const Vector& x, const Vector& want = {}) {
    Vector gradient;
    const int status =
        kEvaluator.EvaluateResponseSurfaceDerivativeWrtInputVariables(data, x, gradient);
    EXPECT_EQ(gradient, want);
    return status;
  };
  record.Stopped = true;
  record.InputTransformType = TransformLogE;  // the inputs are not transformed
  EXPECT_EQ(derivative(&record, {1.0, 2.0}, {4.25, 2.0}), 0);
  Take(10, record.OutputTransformType);  // no way back, no slope
  EXPECT_EQ(derivative(&record, {1.0, 2.0}, {0.0, 0.0}), 0);
  EXPECT_GE(derivative(&record, {1.0}), 1);
  EXPECT_GE(derivative(&record, {}), 1);
  EXPECT_EQ(derivative(&record, {1.0, 2.0, 3.0}), 1);
  LinearTerm bare;
  RegTerm* terms[] = {&bare};
  record.SetRegTerm(terms, 1);
  record.OutputTransformType = TransformSquare;
  EXPECT_EQ(derivative(&record, {1.0, 2.0}), 1);
  EXPECT_EQ(derivative(&record, {1.0}), 2);  // statuses add up
  record.ReadyForEvaluation = false;
  EXPECT_EQ(derivative(&record, {1.0, 2.0}), 1);
  EXPECT_EQ(derivative(nullptr, {1.0}), 1);
  CRSData other;
  other.ReadyForEvaluation = true;
  EXPECT_EQ(derivative(&other, {}), 1);
}

TEST(PredictorError, OneSidedRegressionError) {
  const auto reference = ReferenceData("regression/reference.json");
  for (const auto& each : reference["errors"]) {
    std::vector<TermSpec> specs;
    for (const auto& indices : each["terms"]) {
      const E_FuncType types[] = {FuncTypeConst, FuncTypeLinear, FuncTypeCrossQuad};
      specs.push_back({types[indices.size()], indices, 1.0, false});
    }
    for (const int k : each["active"]) specs[static_cast<std::size_t>(k)].isActive = true;
    CQRSData record = PlainRecord(each["inputs"], specs);
    record.NumberOfSamples = each["samples"];
    record.RegTermFilterConfVal = each["level"];
    record.Sigma2 = each["sigma2"];
    record.OutputScaleSlope = each["slope"];
    record.InvXtX = each["inverse"].get<Matrix>();
    record.SavePredictorError = true;
    Matrix points = each["points"].get<Matrix>();
    Vector errors;
    EXPECT_EQ(record.EvalErrorPredictions(points, errors), 1);  // not as many points as samples
    ASSERT_EQ(errors.size(), points.size());
    for (std::size_t i = 0; i < points.size(); ++i) {
      const double want = each["errors"][i];
      // From 500 degrees of freedom on the quantile is an approximation by the Gauss distribution.
      const double tolerance = record.NumberOfSamples > 500 ? 5e-6 : 2e-6;
      EXPECT_NEAR(errors[i], want, tolerance * want) << record.NumberOfSamples;
      double alone = 0.0;
      EXPECT_EQ(record.GetPredictorError(points[i], alone), 0);
      EXPECT_EQ(alone, errors[i]);
    }
  }
}

TEST(PredictorError, RefusesWithoutTheDataOfAnError) {
  const Matrix one = {{0.25}};
  const Matrix two = {{1.0, 0.0}, {0.0, 1.0}};
  // The status for a point, with one term active or both, a matrix, samples and a level.
  const std::tuple<int, Vector, bool, Matrix, int, double> cases[] = {
      {0, {3.0}, true, two, 11, 0.95},
      {1, {3.0}, true, one, 11, 0.95},
      {1, {3.0}, true, {{1.0, 0.0}, {1.0}}, 11, 0.95},
      {1, {}, true, two, 11, 0.95},
      {1, {3.0}, false, one, 1, 0.95},  // no degrees of freedom
      {3, {3.0}, false, one, 11, 1.0},
      {2, {3.0}, false, one, 11, 0.0},
  };
  for (auto [status, x, allActive, matrix, samples, level] : cases) {
    CQRSData record = ConstantRecord(5.0);
    if (allActive) record.SetAllRegTermActive();
    record.InvXtX = matrix;
    record.NumberOfSamples = samples;
    record.RegTermFilterConfVal = level;
    double error = kUntouched;
    EXPECT_EQ(record.GetPredictorError(x, error), status) << testing::PrintToString(matrix);
    EXPECT_EQ(error == kUntouched, status != 0);
  }
}

TEST(PredictorError, RelativeErrorAppends) {
  const CQRSData record;
  Vector out = {9.0};
  EXPECT_EQ(
      record.GetRelativePredictorError({0.0001, -0.001, 4.0, 1.0}, {2.0, 1.0, 2.0, 1.0}, 3, out),
      0);
  EXPECT_EQ(out, (Vector{9.0, 2.0, 1.0 / 0.001, 0.5}));
  EXPECT_EQ(record.GetRelativePredictorError({1.0}, {1.0, 1.0}, 2, out), 1);
  EXPECT_EQ(out.size(), 4U);
}

TEST(PredictorError, ABatchFillsTheErrorsWhateverItsStatus) {
  CQRSData record = ConstantRecord(5.0);
  Matrix points(11, Vector{3.0});
  Vector errors;
  EXPECT_EQ(record.EvalErrorPredictions(points, errors), 0);
  EXPECT_TRUE(errors.empty());  // nothing saved
  record.SavePredictorError = true;
  EXPECT_EQ(record.EvalErrorPredictions(points, errors), 0);
  points.push_back({4.0});
  points[1].clear();
  errors = {kUntouched};
  EXPECT_EQ(record.EvalErrorPredictions(points, errors), 1);
  ASSERT_EQ(errors.size(), 12U);
  EXPECT_NEAR(errors[0], kConstantsError, 1e-4);
  EXPECT_EQ(errors[1], errors[0]);  // the active constant reads no input
  SetTerms(record, {{FuncTypeLinear, {0}, 1.0}});
  EXPECT_EQ(record.EvalErrorPredictions(points, errors), 1);
  EXPECT_EQ(errors[1], 0.0);
  EXPECT_GT(errors[11], errors[0]);
  points.clear();
  EXPECT_EQ(record.EvalErrorPredictions(points, errors), 1);
  EXPECT_TRUE(errors.empty());
  CQRSData none = PlainRecord(1, {});
  points = {{3.0}};
  none.NumberOfSamples = 1;
  EXPECT_EQ(none.EvalErrorPredictions(points, errors), 0);
}

}  // namespace
}  // namespace Tarvane::Plexura::PXROM
