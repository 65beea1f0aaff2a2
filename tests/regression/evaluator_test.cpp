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
  double y = kUntouched;
  double error = kUntouched;
  EXPECT_EQ(kEvaluator.EvaluateResponseSurface(&record, {0.0}, y, error), 1);
  EXPECT_EQ(y, kUntouched);
  EXPECT_NEAR(error, kConstantsError, 1e-4);
  record.InvXtX.clear();
  ExpectRefused(kEvaluator, &record, {0.0}, "no matrix, no error", true);
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

}  // namespace
}  // namespace Tarvane::Plexura::PXROM
