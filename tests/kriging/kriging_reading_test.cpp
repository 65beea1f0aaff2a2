#include <gtest/gtest.h>

#include <string>

#include "kriging/test_records.h"
#include "pxrom/database_reader.h"

namespace Tarvane::Plexura::PXROM {
namespace {

// Gives a test the protected operations.
class Reader : public CReaderPXROMDatabase {
 public:
  int Read(std::string text, CRSData* record) {
    ReadDataStream(text);
    return ResumeKrigingData(record, 0, std::string::npos);
  }
  int ReadError(CRSData* record) const {
    return ResumeKrigingDataPredictorError(record, 0, std::string::npos);
  }
};

const char* const kText =
    "NumberOfInputVariables=1\nNumberOfSamples=2\nInputSamples=1,2\nOutputSamples=3,4\n"
    "InputScaleSlopes=1\nInputScaleIntercepts=0\nOutputScaleSlope=2\nIsReadyForEvaluation=1\n"
    "IsStopped=0\nKrigingPolynomialType=1\nKrigingPolynomialCoefficients=5\n"
    "KrigingCorrelationFunctionType=11\nKrigingCorrelationCoefficients=6,7\n"
    "KrigingCorrelationKernels=8\nKrigingSavePredictorError=1\n"
    "KrigingNumberOfPolynomialCoefficients=1\nKrigingSigmaSquare=9\n"
    "KrigingInverseOfC=1,2,3,4\nKrigingInverseOfG=5\nKrigingFTilde=6,7\n";

TEST(KrigingReading, FillsTheRecordAndItsErrorDataFromVersion192On) {
  for (const int version : {191, 192}) {
    CKrigingData record;
    EXPECT_EQ(Reader().Read(kText + ("KrigingVersion=" + std::to_string(version)), &record), 0);
    EXPECT_EQ(record.KrigingDataVersion(), version);
    EXPECT_EQ(record.PolynomialType, PolyConstant);
    EXPECT_EQ(record.PolynomialCoefficients, Vector{5.0});
    EXPECT_EQ(record.CorrelationFunctionType, CorrSinc);
    EXPECT_EQ(record.CorrelationCoefficients, (Vector{6.0, 7.0}));
    EXPECT_EQ(record.CorrelationKernels, Vector{8.0});
    const bool saved = version == 192;
    EXPECT_EQ(record.SavePredictorError, saved);
    EXPECT_EQ(record.NumberOfPolyCoeff, saved ? 1 : 0);
    EXPECT_EQ(record.Sigma2, saved ? 9.0 : 0.0);
    EXPECT_EQ(record.InvC, saved ? (Matrix{{1, 2}, {3, 4}}) : Matrix{});
    EXPECT_EQ(record.InvG, saved ? Matrix{{5}} : Matrix{});
    EXPECT_EQ(record.Ft, saved ? (Matrix{{6, 7}}) : Matrix{});
  }
}

TEST(KrigingReading, ShortErrorDataLeaveTheErrorUnavailableNotHalfFilled) {
  for (const std::string cut : {"KrigingInverseOfC=1,2,3", "KrigingInverseOfG=", "KrigingFTilde=6",
                                "KrigingNumberOfPolynomialCoefficients=-1",
                                "KrigingNumberOfPolynomialCoefficients=2147483647"}) {
    CKrigingData record;
    Reader reader;
    EXPECT_EQ(reader.Read(cut + "\nKrigingVersion=192\n" + kText, &record), 0) << cut;
    EXPECT_EQ(reader.ReadError(&record), 1) << cut;
    EXPECT_TRUE(record.InvC.empty() && record.InvG.empty() && record.Ft.empty()) << cut;
    EXPECT_EQ(record.Sigma2, 0.0);
    double y = 0.0;
    double error = 0.0;
    EXPECT_EQ(CKrigingEvaluator().EvaluateResponseSurface(&record, {1.0}, y, error), -2);
  }
}

TEST(KrigingReading, RefusesOtherRecordsAndBadSamples) {
  Reader reader;
  CRSData other;
  EXPECT_EQ(reader.Read(kText, &other), 1);
  EXPECT_EQ(other.NumberOfSamples, 0);
  EXPECT_EQ(reader.Read(kText, nullptr), 1);
  EXPECT_EQ(reader.ReadError(&other), 1);
  CKrigingData record;
  EXPECT_EQ(reader.Read(std::string("InputSamples=1\n") + kText, &record), 1);
  EXPECT_TRUE(record.CorrelationKernels.empty());
}

}  // namespace
}  // namespace Tarvane::Plexura::PXROM
