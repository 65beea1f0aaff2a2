#include "regression/test_records.h"

namespace Tarvane::Plexura::PXROM {
namespace {

TEST(PredictorError, AgreesWithScipy) {
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

TEST(PredictorError, RefusesWhatCannotBeTold) {
  const struct {
    int status;
    void (*apply)(CQRSData&, Vector& x);
  } cases[] = {
      {1, [](CQRSData& r, Vector&) { r.SetAllRegTermActive(); }},  // now the matrix is too small
      {1,
       [](CQRSData& r, Vector&) {
         r.SetAllRegTermActive(), r.InvXtX = {{1.0, 0.0}, {1.0}};
       }},
      {1,
       [](CQRSData& r, Vector& x) {
         r.SetAllRegTermActive(), r.InvXtX = {{1.0, 0.0}, {0.0, 1.0}}, x = {};
       }},
      {1, [](CQRSData& r, Vector&) { r.NumberOfSamples = 1; }},  // no degrees of freedom
      {3, [](CQRSData& r, Vector&) { r.RegTermFilterConfVal = 1.0; }},
      {2, [](CQRSData& r, Vector&) { r.RegTermFilterConfVal = 0.0; }},
  };
  for (const auto& each : cases) {
    CQRSData record = ConstantRecord(5.0);
    Vector x = {3.0};
    double error = kUntouched;
    each.apply(record, x);
    EXPECT_EQ(record.GetPredictorError(x, error), each.status) << &each - cases;
    EXPECT_EQ(error, kUntouched);
  }
}

TEST(PredictorError, RelativeErrorsAreAppended) {
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
