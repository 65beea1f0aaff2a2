#include "families/regression/test_records.h"

namespace Tarvane::Plexura::PXROM {
namespace {

const std::string kBase =
    "NumberOfInputVariables=2\nNumberOfSamples=1\nInputSamples=1,2\nOutputSamples=3\n"
    "InputScaleSlopes=1,1\nInputScaleIntercepts=0,0\nOutputScaleSlope=2\nOutputScaleIntercept=1\n"
    "IsReadyForSolve=1\nIsReadyForEvaluation=1\nIsStopped=0\nInputTransformType=7\n"
    "InputTransformValues=4,5\nInputLambdas=6,7\nOutputTransformType=9\nOutputTransformValue=8\n"
    "OutputLambda=1\nRespSurfType=2\nRegTermFilterType=3\nRegTermFilterConfVal=0.75\n"
    "NumSelRegTerm=2\nQRSSigmaSquare=9\nQRSInvXtX=1,2,3,4\n";

std::string Group(int id, int type, const std::string& indices, const std::string& coefficients) {
  return "<RegTerm ID=" + std::to_string(id) + ">\nFuncType=" + std::to_string(type) +
         "\nisActive=1\nInputVariablesIndex=" + indices + "\ncoefficientValue=" + coefficients +
         "\n</RegTerm>\n";
}

std::string Counted(int count, const std::string& groups) {
  return kBase + "MaxRegTerm=" + std::to_string(count) + "\n" + groups;
}

/// Reads the text from `lower` to `upper`. It is far enough from the text's start that a missing
/// group is not found in it.
int Read(const std::string& body, CRSData* record, std::size_t lower = 0,
         std::size_t upper = std::string::npos) {
  const std::string before(64, '\n');
  upper = std::min(upper, body.size());
  return OpenReader(before + body)
      .ResumeQRSData(record, before.size() + lower, before.size() + upper);
}

int ReadError(const std::string& text, CRSData* record) {
  return OpenReader(text).ResumeQRSDataPredictorError(record, 0, std::string::npos);
}

const std::string kFour = Group(1, 2, "1", "20") + Group(0, 1, "", "10") +
                          Group(2, 3, "0,0", "30") + Group(3, 4, "0,1", "40");

TEST(QRSReading, FillsTheRecord) {
  CQRSData record;
  EXPECT_EQ(Read(Counted(4, kFour) + "QRSVersion=191\nQRSSavePredictorError=1\n", &record), 0);
  EXPECT_EQ(record.InputTransformType, 7);
  EXPECT_EQ(record.OutputTransformType, 9);
  EXPECT_EQ(record.InputTransformValues, (Vector{4, 5}));
  EXPECT_EQ(record.InputLambdas, (Vector{6, 7}));
  EXPECT_EQ(record.OutputTransformValue, 8.0);
  EXPECT_EQ(record.OutputLambda, 1.0);
  EXPECT_EQ(record.ResponseSurfaceType, 2);
  EXPECT_EQ(record.RegTermFilterType, 3);
  EXPECT_EQ(record.RegTermFilterConfVal, 0.75);
  EXPECT_EQ(record.NumberOfSelectedRegTerms, 2);
  EXPECT_EQ(record.NumberOfRegTerms, 4);
  EXPECT_EQ(record.QRSDataVersion(), 191);
  // Before version 192 there is no such attribute.
  EXPECT_FALSE(record.SavePredictorError);
  EXPECT_TRUE(record.InvXtX.empty());
  EXPECT_EQ(record.Sigma2, 0.0);
  Vector x = {2.0, 3.0};
  double y = 0.0;
  EXPECT_EQ(record.EvaluateRegTerm(x, y), 0);
  EXPECT_EQ(y, 10.0 + 60.0 + 120.0 + 240.0);
  EXPECT_EQ(Read(Counted(4, kFour) + "QRSVersion=192\nQRSSavePredictorError=1\n", &record), 0);
  EXPECT_TRUE(record.SavePredictorError);
  EXPECT_EQ(record.Sigma2, 9.0);
  EXPECT_EQ(record.InvXtX, (Matrix{{1, 2}, {3, 4}}));
}

TEST(QRSReading, WhatDoesNotFitATermIsLeftOutAndShowsInItsEvaluation) {
  const std::string bad[] = {
      Group(0, 2, "0,1", "5"), Group(0, 2, "", "5"),  Group(0, 4, "0", "5"), Group(0, 1, "", ""),
      Group(0, 2, "0", "5,6"), Group(0, 2, "2", "5"), Group(0, 2, "-1", "5")};
  for (const std::string& group : bad) {
    CQRSData read;
    EXPECT_EQ(Read(Counted(1, group), &read), 0) << group;
    const CQRSData copy = read;
    for (const CQRSData* record : {&static_cast<const CQRSData&>(read), &copy}) {
      double y = -7.0;
      EXPECT_EQ(CQRSEvaluator().EvaluateResponseSurface(record, {1.0, 2.0}, y), 1) << group;
      EXPECT_EQ(y, -7.0);
    }
  }
  // Anything but exactly 1 is not active.
  for (const char* flag : {"isActive=0\n", "isActive=2\n", "isActive=\n"}) {
    CQRSData record;
    EXPECT_EQ(
        Read(Counted(1, "<RegTerm ID=0>\n" + std::string(flag) + Group(7, 1, "", "5")), &record),
        0);
    EXPECT_EQ(record.QryRegTermIsActive(0), 0) << flag;
  }
}

TEST(QRSReading, RefusesBadTermListsAndKeepsTheTermsThatWere) {
  const std::string one = Group(0, 1, "", "5");
  const std::string bad[] = {Counted(-1, one),
                             Counted(2, one),
                             Counted(2147483647, one),
                             Counted(1, Group(1, 1, "", "5")),
                             Counted(1, Group(0, 5, "0,1", "5")),
                             Counted(1, Group(0, 0, "", "5")),
                             Counted(1, Group(0, 6, "", "5")),
                             Counted(1, Group(0, -1, "", "5")),
                             Counted(1, "<RegTerm ID=0></RegTerm>"),
                             "InputSamples=1\n" + Counted(1, one)};
  for (const std::string& text : bad) {
    CQRSData record = PlainRecord(1, {{FuncTypeConst, {}, 2.0}});
    EXPECT_EQ(Read(text, &record), 1) << text.substr(kBase.size());
    EXPECT_EQ(record.NumberOfRegTerms, 1);
    double c = 0.0;
    EXPECT_EQ(record.GetRegTermParamVal(0, &c), 0);
    EXPECT_EQ(c, 2.0);
  }
  CRSData other;
  EXPECT_EQ(Read(Counted(4, kFour), &other), 1);
  EXPECT_EQ(Read(Counted(4, kFour), nullptr), 1);
  EXPECT_EQ(ReadError(kBase, &other), 1);

  // A group that begins or ends outside the record's range does not belong to it.
  const std::string text = Counted(1, "") + one;
  CQRSData record;
  EXPECT_EQ(Read(text, &record), 0);
  EXPECT_EQ(Read(text, &record, 0, text.find("<RegTerm")), 1);
  EXPECT_EQ(Read(text, &record, 0, text.find("coefficientValue")), 1);
  EXPECT_EQ(Read(one + text, &record, one.size(), one.size() + text.find("<RegTerm")), 1);
}

TEST(QRSReading, ErrorDataThatDoNotFitLeaveTheMatrix) {
  for (const char* order :
       {"NumSelRegTerm=-1\n", "NumSelRegTerm=3\n", "NumSelRegTerm=2147483647\n"}) {
    CQRSData record;
    record.InvXtX = {{5.0}};
    EXPECT_EQ(ReadError(order + kBase, &record), 1) << order;
    EXPECT_EQ(record.InvXtX, Matrix{{5.0}});
    EXPECT_EQ(record.Sigma2, 9.0);
    // The record is read all the same, but it has no error.
    EXPECT_EQ(
        Read(order + Counted(4, kFour) + "QRSVersion=192\nQRSSavePredictorError=1\n", &record), 0);
    EXPECT_TRUE(record.SavePredictorError);
    EXPECT_EQ(record.InvXtX, Matrix{{5.0}});
  }
}

}  // namespace
}  // namespace Tarvane::Plexura::PXROM
