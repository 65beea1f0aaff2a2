#include <cmath>

#include "regression/test_records.h"

namespace Tarvane::Plexura::PXROM {
namespace {

const CQRSEvaluator kEvaluator;

TEST(QRSEvaluator, RecordsThatCannotBeHonouredAreRefused) {
  const CQRSData sound = ConstantRecord(-1e100);
  ExpectEachRefused<CQRSData>(kEvaluator, sound, {0.0}, {}, true);
  // These have an error all the same.
  const Damage<CQRSData> damages[] = {
      {"no intercepts", [](CQRSData& r) { r.InputScaleIntercepts.clear(); }},
      {"no way back", [](CQRSData& r) { Take(-1, r.OutputTransformType); }},
      {"no way forward", [](CQRSData& r) { Take(11, r.InputTransformType); }},
      {"no lambda", [](CQRSData& r) { r.InputTransformType = TransformBox; }},
      // A failed way back leaves the value of a hole, but is refused and not interpolated.
      {"a hole by failure",
       [](CQRSData& r) {
         r.InputSamples = {{-1.0}, {2.0}};
         SetOutputTransform(r, TransformYeo, 0.0, 2.0);
       }},
  };
  for (const auto& damage : damages) {
    CQRSData record = sound;
    damage.apply(record);
    ExpectRefused(kEvaluator, &record, {0.0}, damage.why);
  }
}

TEST(QRSEvaluator, TheErrorIsWrittenBeforeTheValueIsKnownToBeGood) {
  CQRSData record = ConstantRecord(300.0);
  record.OutputTransformType = TransformLogE;
  record.InvXtX.clear();
  ExpectRefused(kEvaluator, &record, {0.0}, "no matrix, no error", true);
  record.InvXtX = {{0.25}};
  double y = kUntouched;
  double error = kUntouched;
  EXPECT_EQ(kEvaluator.EvaluateResponseSurface(&record, {0.0}, y, error), 1);
  EXPECT_EQ(y, kUntouched);
  EXPECT_NEAR(error, kConstantsError, 1e-4);
  SetTerms(record, {{FuncTypeConst, {}, 2.0}});
  EXPECT_EQ(kEvaluator.EvaluateResponseSurface(&record, {0.0}, y, error), 0);
  EXPECT_EQ(y, std::exp(2.0));
  record.NumberOfSamples = 1;  // no degrees of freedom
  EXPECT_EQ(kEvaluator.EvaluateResponseSurface(&record, {0.0}, y, error), 1);
}

// The sum is s everywhere and the gradient of the sum is 1: what comes out is the factor.
TEST(QRSEvaluator, GradientFactorByTypeOfTheOutput) {
  const double e = 2.718281828459045;
  const struct {
    int type;
    double s, value, lambda;
    int status;
    double factor;
  } cases[] = {
      {1, 2.0, 3.0, 0, 0, std::exp(2.0) * 2.0},
      {2, 2.0, 3.0, 0, 0, (std::log10(e) * 2.0) / (std::log10(3.0) * 2.0)},
      {3, 2.0, 3.0, 0, 0, 1.0},
      {4, 2.0, 3.0, 0, 0, (std::log10(e) * 2.0) / 2.0},
      {5, 4.0, 3.0, 0, 0, 0.5},
      {5, -4.0, 3.0, 0, 1, 0.0},
      {6, 2.0, 3.0, 0, 0, 24.0},
      {6, -2.0, 3.0, 0, 1, 0.0},
      {7, 4.0, 0.0, 2.0, 0, std::pow(9.0, -0.5) * 2.0},
      {7, -1.0, 0.0, 2.0, 1, 0.0},
      {8, 4.0, 0.0, 2.0, 0, std::exp(3.0) * 2.0 * std::pow(9.0, -0.5)},
      {8, 5.5, 0.0, 0.0, 1, 0.0},
      {8, -1.0, 0.0, 2.0, 1, 0.0},
      {9, 2.0, 3.0, 1.0, 0, 0.0},
      {10, 2.0, 3.0, 1.0, 0, 0.0},
  };
  for (const auto& each : cases) {
    CQRSData record = PlainRecord(1, {{FuncTypeConst, {}, each.s}, {FuncTypeLinear, {0}, 1.0}});
    record.OutputScaleSlope = 0.5;
    SetOutputTransform(record, each.type, each.value, each.lambda);
    Vector gradient = {kUntouched};
    EXPECT_EQ(
        kEvaluator.EvaluateResponseSurfaceDerivativeWrtInputVariables(&record, {0.0}, gradient),
        each.status);
    EXPECT_EQ(gradient, Vector{each.status == 0 ? each.factor : kUntouched})
        << each.type << ", " << each.s;
  }
}

TEST(QRSEvaluator, DerivativeAsksOnlyWhetherTheRecordIsReady) {
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

}  // namespace
}  // namespace Tarvane::Plexura::PXROM
