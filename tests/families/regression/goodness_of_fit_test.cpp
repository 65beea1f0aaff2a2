#include <cmath>

#include "families/regression/test_records.h"

namespace Tarvane::Plexura::PXROM {
namespace {

Vector ValuesOf(const DMtx& matrix) {
  int size = 0;
  matrix.GetSize(size);
  Vector values(static_cast<std::size_t>(size));
  if (size > 0) matrix.CopyDataTo(values.data());
  return values;
}

/// Stores its arguments.
class Recorder : public Core::GOFMeasr {
 public:
  int ComputeAllMeasures(const DRecMtx& design, const DRowVec& paramStatus,
                         const DColVec& paramValues, const DColVec& outputs,
                         const DColVec& transformedOutputs, const DColVec& predictions,
                         const DColVec& transformedPredictions) override {
    ++calls;
    for (const DMtx* each : std::initializer_list<const DMtx*>{
             &design, &paramStatus, &paramValues, &outputs, &transformedOutputs, &predictions,
             &transformedPredictions}) {
      got.push_back(ValuesOf(*each));
    }
    return status;
  }
  int ComputeR2(const DColVec& outputs, const DColVec& predictions) override {
    ++calls;
    got = {ValuesOf(outputs), ValuesOf(predictions)};
    return status;
  }

  int status = 0;
  int calls = 0;
  Matrix got;
};

/// exp(1 + u0 u1) in the space of logarithms, with a linear term that the fit dropped.
CQRSData LogRecord() {
  CQRSData record = PlainRecord(2,
                                {{FuncTypeConst, {}, 1.0},
                                 {FuncTypeLinear, {1}, 8.0, false},
                                 {FuncTypeCrossQuad, {0, 1}, 1.0}},
                                {{2.0, 9.0}, {0.5, 4.0}}, {12.0, 16.0});
  record.InputScaleSlopes = {2.0, 1.0};
  record.InputTransformType = TransformSquare;
  record.InputTransformValues = record.InputLambdas = {0.0, 0.0};
  record.OutputTransformType = TransformLogE;
  record.OutputScaleSlope = 0.5;
  record.OutputScaleIntercept = 1.0;
  return record;
}

TEST(GoodnessOfFit, HandsOverExactlyTheColumns) {
  const CQRSData record = LogRecord();
  Recorder gof;
  CQRSEvaluator evaluator;
  EXPECT_EQ(evaluator.EvalGoodnessOfFit(&record, gof), 0);
  const Vector predictions = {(std::exp(7.0) - 1.0) / 0.5, (std::exp(3.0) - 1.0) / 0.5};
  const Matrix expected = {
      {1, 3, 6, 1, 2, 2},  // all terms, active or not
      {1, 0, 1},
      {1, 8, 1},
      {12, 16},
      {std::log(7.0), std::log(9.0)},
      predictions,
      {std::log(0.5 * predictions[0] + 1.0), std::log(0.5 * predictions[1] + 1.0)}};
  EXPECT_EQ(gof.got, expected);
  EXPECT_EQ(record.QryRegTermIsActive(1), 0);
  gof.status = 5;
  EXPECT_EQ(evaluator.EvalGoodnessOfFit(&record, gof), 5);
}

TEST(GoodnessOfFit, R2EmptyColumns) {
  const CQRSData record = LogRecord();
  Recorder gof;
  gof.status = 5;
  EXPECT_EQ(CQRSEvaluator().EvalR2Only(&record, gof), 5);
  EXPECT_EQ(gof.got, (Matrix{{}, {}}));
}

TEST(GoodnessOfFit, RefusalsDoNotTouchTheMeasure) {
  Recorder gof;
  CQRSEvaluator evaluator;
  const auto refused = [&](const CQRSData* record) {
    return evaluator.EvalGoodnessOfFit(record, gof) == 1 &&
           evaluator.EvalR2Only(record, gof) == 1 && gof.calls == 0;
  };
  EXPECT_TRUE(refused(nullptr));
  void (*const damages[])(CQRSData&) = {
      [](CQRSData& r) { r.ReadyForEvaluation = false; },
      [](CQRSData& r) { r.Stopped = true; },
      [](CQRSData& r) { r.InputSamples.pop_back(); },
      [](CQRSData& r) { r.InputSamples[1].pop_back(); },
      [](CQRSData& r) { r.SetRegTerm(nullptr, 3); },
  };
  for (const auto damage : damages) {
    CQRSData record = LogRecord();
    damage(record);
    EXPECT_TRUE(refused(&record)) << &damage - damages;
  }
  CQRSData record = LogRecord();
  record.OutputTransformType = TransformBox;  // which refuses a sample
  record.OutputSamples[1] = -100.0;
  EXPECT_EQ(evaluator.EvalGoodnessOfFit(&record, gof), 1);
  record = LogRecord();
  record.OutputSamples.pop_back();
  EXPECT_EQ(evaluator.EvalGoodnessOfFit(&record, gof), 1);
}

}  // namespace
}  // namespace Tarvane::Plexura::PXROM
