#include <climits>
#include <cmath>

#include "families/regression/test_records.h"

namespace Tarvane::Plexura::PXROM {
namespace {

const std::vector<TermSpec> kThreeTerms = {
    {FuncTypeConst, {}, 1.5}, {FuncTypeLinear, {0}, 2.0, false}, {FuncTypeCrossQuad, {0, 1}, 0.5}};

double ValueAt(const CQRSData& record, Vector x) {
  double y = 0.0;
  return record.EvaluateRegTerm(x, y) == 0 ? y : -7.0;
}

/// A host's own term with the number of another class.
class HostTerm : public LinearTerm {
 public:
  int EvaluateValue(const int&, const double*, double* value) const override {
    *value = 100.0;
    return 0;
  }
};

TEST(QRSData, CopiesAndAssignmentsShareNoTerms) {
  CQRSData record = PlainRecord(2, kThreeTerms);
  CQRSData assigned = PlainRecord(2, {{FuncTypeConst, {}, 9.0}});
  assigned = record;
  const CQRSData& itself = assigned;
  assigned = itself;
  const std::unique_ptr<CQRSData> clone(record.Clone());
  record.SetAllRegTermActive();
  EXPECT_EQ(ValueAt(record, {2.0, 3.0}), 8.5);
  EXPECT_EQ(ValueAt(assigned, {2.0, 3.0}), 4.5);
  EXPECT_EQ(ValueAt(*clone, {2.0, 3.0}), 4.5);
  EXPECT_EQ(clone->QryRegTermIsActive(1), 0);
}

TEST(QRSData, ResetKeepsTheErrorDataOnPurpose) {
  CQRSData record = PlainRecord(2, kThreeTerms);
  record.InvXtX = {{3.0}};
  record.Sigma2 = 4.0;
  record.SavePredictorError = true;
  record.RegTermFilterConfVal = 0.5;
  record.SetQRSDataVersion(static_cast<E_CQRSDataVersion>(170));
  record.InputTransformType = TransformBox;
  record.OutputLambda = 1.0;
  EXPECT_EQ(record.ResetData(), 0);
  EXPECT_EQ(record.RegTerms, nullptr);
  EXPECT_EQ(record.NumberOfRegTerms, 0);
  EXPECT_FALSE(record.SavePredictorError);
  EXPECT_EQ(record.RegTermFilterConfVal, 0.95);
  EXPECT_EQ(record.InputTransformType, TransformNone);
  EXPECT_EQ(record.OutputLambda, 0.0);
  EXPECT_EQ(record.QRSDataVersion(), QRSDataVersion192);
  EXPECT_EQ(record.Sigma2, 4.0);
  EXPECT_EQ(record.InvXtX, Matrix{{3.0}});
}

TEST(QRSData, SetRegTermCopiesAlsoItsOwnTermsAndToleratesGaps) {
  CQRSData record = PlainRecord(2, kThreeTerms);
  EXPECT_EQ(record.SetRegTerm(record.RegTerms, 3), 0);
  EXPECT_EQ(ValueAt(record, {2.0, 3.0}), 4.5);

  LinearTerm bare;  // neither indices nor a coefficient: its copies have none either
  RegTerm* terms[] = {&bare, nullptr};
  record.SetRegTerm(terms, 1);
  EXPECT_EQ(ValueAt(record, {2.0, 3.0}), -7.0);
  double c = 0.0;
  EXPECT_EQ(record.GetRegTermParamVal(0, &c), 1);
  record.SetRegTerm(terms, 2);
  EXPECT_EQ(record.SetAllRegTermActive(), 1);

  for (const int count : {5, 0, -3, INT_MIN, INT_MAX}) {
    record.SetRegTerm(nullptr, count);
    EXPECT_EQ(record.NumberOfRegTerms, count);
    EXPECT_EQ(record.CloneRegTerm(), nullptr);
    EXPECT_EQ(ValueAt(record, {2.0, 3.0}), count > 0 ? -7.0 : 0.0);
    EXPECT_EQ(CQRSData(record).NumberOfRegTerms, count);
    E_FuncType type{};
    EXPECT_EQ(record.GetRegTermFuncType(0, type), 1);
    Matrix points = {{2.0, 3.0}};
    Vector errors;
    EXPECT_EQ(record.EvalErrorPredictions(points, errors), 1);
  }
}

TEST(QRSData, AProductOfAnyListLosesItsListInACopy) {
  CQRSData record;
  SetTerms(record, {{FuncTypeCrossPoly, {1, 1, 0}, 2.0}});
  std::vector<int> indices(3, -1);
  EXPECT_EQ(record.GetRegTermUsedInpVarIdx(0, indices.data()), 0);
  EXPECT_EQ(indices, std::vector<int>(3));
  // A product of no variables has no list to lose and stays a constant.
  SetTerms(record, {{FuncTypeCrossPoly, {}, 2.0}});
  Vector nowhere;
  double y = -7.0;
  EXPECT_EQ(record.EvaluateRegTerm(nowhere, y), 0);
  EXPECT_EQ(y, 2.0);
  CrossPolyTerm fresh;  // of -99 indices
  RegTerm* terms[] = {&fresh};
  record.SetRegTerm(terms, 1);
  int count = 0;
  EXPECT_EQ(record.GetRegTermNumUsedInpVar(0, count), 0);
  EXPECT_EQ(count, -99);
}

TEST(QRSData, AHostsOwnTermIsAskedItself) {
  CQRSData record = PlainRecord(1, {{FuncTypeConst, {}, 1.0}, {FuncTypeLinear, {0}, 1.0}});
  delete record.RegTerms[1];
  record.RegTerms[1] = new HostTerm;
  EXPECT_EQ(ValueAt(record, {3.0}), 101.0);
}

TEST(QRSData, SumStopsAtTheFirstTermThatRefusesWithThePartialSum) {
  CQRSData record = PlainRecord(
      1, {{FuncTypeConst, {}, 1.5}, {FuncTypeLinear, {1}, 1.0}, {FuncTypeConst, {}, 9.0}});
  Vector x = {3.0, 4.0};
  double y = -7.0;
  EXPECT_EQ(record.EvaluateRegTerm(x, y), 1);
  EXPECT_EQ(y, 1.5);
  Vector g;
  EXPECT_EQ(record.EvaluateRegTermDerivativeWrtInputVariables(x, g), 1);
  record.NumberOfInputVariables = 2;
  EXPECT_EQ(ValueAt(record, x), 14.5);
  // Neither a point that is too short nor the slopes are read beyond their ends.
  EXPECT_EQ(ValueAt(record, {3.0}), -7.0);
  record.NumberOfInputVariables = INT_MAX;
  EXPECT_EQ(record.EvaluateRegTermDerivativeWrtInputVariables(x, g), 1);
}

TEST(QRSData, EveryEntryOfAGradientCounts) {
  CQRSData record = PlainRecord(2, {{FuncTypeLinear, {1}, 3.0}});
  record.InputScaleSlopes = {HUGE_VAL, -4.0};
  Vector g;
  EXPECT_EQ(record.EvaluateRegTermDerivativeWrtInputVariables({3.0, 7.0}, g), 0);
  EXPECT_TRUE(std::isnan(g[0]));
  EXPECT_EQ(g[1], -12.0);
}

TEST(QRSData, DesignMatrixInBothForms) {
  CQRSData record = PlainRecord(2, kThreeTerms);
  record.NumberOfSamples = 2;
  const Matrix points = {{2.0, 3.0}, {5.0, 7.0}, {0.0, 0.0}};
  Matrix design(2, Vector(3, -7.0));
  EXPECT_EQ(record.BuildDesignMtx(points, 3, record.RegTerms, design), 0);
  EXPECT_EQ(design, (Matrix{{1, 0, 6}, {1, 0, 35}}));
  DRecMtx blockPoints(2, 2);
  blockPoints.SetRow(0, points[0].data());
  blockPoints.SetRow(1, points[1].data());
  DRecMtx block(2, 3);
  EXPECT_EQ(record.BuildDesignMtx(blockPoints, 3, record.RegTerms, block), 0);
  EXPECT_EQ(Vector(block.ElementPtr(0, 0), block.ElementPtr(0, 0) + 6),
            (Vector{1, 0, 6, 1, 0, 35}));
  // Whatever does not fit is refused and nothing is written.
  const Matrix bad[] = {{}, {{1, 2}}, {{1, 2}, {3}}, {{1, 2}, {}}};
  for (const Matrix& each : bad) {
    EXPECT_EQ(record.BuildDesignMtx(each, 3, record.RegTerms, design), 1);
  }
  for (Matrix wrong : {Matrix{}, Matrix{{1, 2, 3}}, Matrix{{1, 2, 3, 4}, {1, 2, 3, 4}},
                       Matrix{{1, 2, 3}, {1, 2}}}) {
    const Matrix before = wrong;
    EXPECT_EQ(record.BuildDesignMtx(points, 3, record.RegTerms, wrong), 1);
    EXPECT_EQ(wrong, before);
  }
  EXPECT_EQ(record.BuildDesignMtx(points, 3, nullptr, design), 1);
  DRecMtx shaped;
  shaped.SetDimensions(2, 3);  // a shape without storage
  EXPECT_EQ(record.BuildDesignMtx(blockPoints, 3, record.RegTerms, shaped), 1);
  DRecMtx wide(2, 4);
  EXPECT_EQ(record.BuildDesignMtx(blockPoints, 3, record.RegTerms, wide), 1);
  EXPECT_EQ(record.BuildDesignMtx(DRecMtx(3, 2), 3, record.RegTerms, block), 1);
}

CQRSData BoxCoxOfTwoInputs() {
  CQRSData record;
  record.InputTransformType = TransformBox;
  record.InputTransformValues = {0.0, 0.0};
  record.InputLambdas = {2.0, 2.0};
  return record;
}

TEST(QRSData, RefusedInputStays) {
  const CQRSData record = BoxCoxOfTwoInputs();
  Vector x = {3.0, -1.0};
  EXPECT_EQ(record.TransformAndOverwriteInputSample(x), 0);
  EXPECT_EQ(x, (Vector{4.0, -1.0}));
}

TEST(QRSData, TransformsInputsAndOutputs) {
  CQRSData record = BoxCoxOfTwoInputs();
  Vector x = {3.0, 3.0};
  Matrix rows = {{3.0}, {3.0, 3.0, 3.0}, {3.0}};
  EXPECT_EQ(record.TransformAndOverwriteInputSamples(rows), 1);  // longer than the lambdas
  EXPECT_EQ(rows, (Matrix{{4.0}, {3.0, 3.0, 3.0}, {3.0}}));
  record.OutputTransformType = TransformBox;
  record.OutputLambda = 2.0;
  Vector ys = {3.0, -1.0, 3.0};
  EXPECT_EQ(record.TransformAndOverwriteOutputSamples(ys), 1);
  EXPECT_EQ(ys, (Vector{4.0, -1.0, 3.0}));
  ys[2] = 4.0;
  EXPECT_EQ(record.BacktransformAndOverwriteOutputSample(ys), 1);
  EXPECT_EQ(ys, (Vector{3.0, -1.0, 4.0}));
  record.InputTransformType = record.OutputTransformType = static_cast<E_QRSTransformationType>(10);
  EXPECT_EQ(record.TransformAndOverwriteInputSample(x), 1);
  EXPECT_EQ(record.TransformAndOverwriteOutputSample(ys[0]), 1);
  EXPECT_EQ(record.BacktransformAndOverwriteOutputSample(ys[0]), 1);
}

TEST(QRSData, FailedCheckStops) {
  CQRSData record = PlainRecord(1, kThreeTerms, {{1.0}}, {2.0});
  record.InputTransformValues = {0.0};
  record.InputTransformType = TransformBox;
  EXPECT_FALSE(record.IsAllRight());
  record.InputLambdas = {2.0};
  EXPECT_TRUE(record.IsAllRight());
  EXPECT_TRUE(record.Stopped);
  record.InputTransformType = TransformNone;
  record.InputLambdas.clear();
  record.Stopped = false;
  EXPECT_TRUE(record.IsAllRight());
  EXPECT_FALSE(record.Stopped);
}

TEST(QRSData, NoAbsoluteValue) {
  const CQRSData record;
  double out = -7.0;
  EXPECT_EQ(record.GetMaxMagnitude({-5.0, -1.0}, 2, out), 0);
  EXPECT_EQ(out, 0.0);
  EXPECT_EQ(record.GetMaxMagnitude({-5.0, 3.0, 4.0}, 2, out), 0);
  EXPECT_EQ(out, 3.0);
  EXPECT_EQ(record.GetMaxMagnitude({-5.0}, 2, out), 1);
}

TEST(QRSData, SmallOddities) {
  CQRSData record;
  record.SetRegTermFilterConfVal(0.75);
  double out = -7.0;
  for (const int type : {0, 4, -1, 1, 2, 3}) {
    record.SetRegTermFilterType(static_cast<E_RegTermFilterType>(type));
    const bool hasValue = type >= 1 && type <= 3;
    EXPECT_EQ(record.GetRegTermFilterConfVal(out), hasValue ? 0 : 1);
    EXPECT_EQ(out, hasValue ? 0.75 : -7.0);
  }
  record = PlainRecord(2, kThreeTerms);
  int count = 0;
  EXPECT_EQ(record.GetNumberOfRegTerms(count), 0);
  EXPECT_EQ(count, 3);
  EXPECT_EQ(record.GetRegTermNumParam(2, count), 0);
  EXPECT_EQ(count, 1);
  EXPECT_EQ(record.GetRegTermNumParam(3, count), 1);
  Vector status(3, -7.0);
  Vector values(3, -7.0);
  EXPECT_EQ(record.GetAllParamStatusAndVal(2, status.data(), values.data()), 1);
  EXPECT_EQ(status, Vector(3, -7.0));
  EXPECT_EQ(record.GetAllParamStatusAndVal(3, status.data(), values.data()), 0);
  EXPECT_EQ(status, (Vector{1, 0, 1}));
  EXPECT_EQ(values, (Vector{1.5, 2.0, 0.5}));
  record.ReadyForEvaluation = false;
  EXPECT_EQ(record.GetAllParamStatusAndVal(3, status.data(), values.data()), 1);
}

}  // namespace
}  // namespace Tarvane::Plexura::PXROM
