#include "families/kernel_records.h"
#include "pxrom/linear_basis.h"
#include "pxrom/moving_least_squares.h"
#include "pxrom/support_vector.h"

namespace Tarvane::Plexura::PXROM {
namespace {

const std::string kBase =
    "NumberOfInputVariables=1\nNumberOfSamples=2\nInputSamples=1,2\n"
    "OutputSamples=3,4\nInputScaleSlopes=2\nInputScaleIntercepts=0\nOutputScaleSlope=1\n"
    "OutputScaleIntercept=0\nIsReadyForSolve=1\nIsReadyForEvaluation=1\nIsStopped=0\n";

int Read(const std::string& text, CRSData* record) {
  const auto resume = record->DataType() == DT_SVRData   ? &OpenReader::ResumeSVRData
                      : record->DataType() == DT_MLSData ? &OpenReader::ResumeMLSData
                                                         : &OpenReader::ResumeLBFData;
  return (OpenReader(text).*resume)(record, 0, std::string::npos);
}

template <class Record>
Record Resumed(const std::string& attributes, const std::string& base = kBase) {
  Record record;
  EXPECT_EQ(Read(base + attributes, &record), 0);
  return record;
}

TEST(KernelLocalReading, SupportVectorKeepsDefaultsForValuesOutOfRange) {
  auto record = Resumed<CSVRData>(
      "SVRVersion=171\nSVRKernType=9\nSVRKernCompType=2\nSVRLossFuncType=4\nSVREpsilonValue=1\n"
      "SVRNuValue=0\nSVRConstantValue=-3\nSVRAlphas=1,2\nSVRAlphasStar=3,4\nSVRBetas=5,6\n"
      "SVRConstantCoeffcient=7.5\nSVRKernelArray=8\n");
  EXPECT_EQ(record.EpsilonValue, 0.2);
  EXPECT_EQ(record.NuValue, 0.5);
  EXPECT_EQ(record.ConstantValue, 1e6);
  EXPECT_EQ(record.SVRKernType, 9);
  EXPECT_EQ(record.SVRKernCompType, 2);
  EXPECT_EQ(record.SVRLossFuncType, 4);
  EXPECT_EQ(record.Alphas, (Vector{1, 2}));
  EXPECT_EQ(record.AlphasStar, (Vector{3, 4}));
  EXPECT_EQ(record.Betas, (Vector{5, 6}));
  EXPECT_EQ(record.KernelArray, Vector{8});
  record = Resumed<CSVRData>("SVREpsilonValue=0.25\nSVRNuValue=0.75\nSVRConstantValue=20\n");
  EXPECT_EQ(record.EpsilonValue, 0.25);
  EXPECT_EQ(record.NuValue, 0.75);
  EXPECT_EQ(record.ConstantValue, 20);
  EXPECT_EQ(record.ConstantCoefficient, 0.0);
}

TEST(KernelLocalReading, SvrOldScales) {
  auto record = Resumed<CSVRData>("SVRVersion=170\nSVRKernType=2\nSVRKernelArray=8\n");
  EXPECT_EQ(record.SVRDataVersion(), SVRDataVersion171);
  EXPECT_EQ(record.KernelArray, Vector{0.5 / 2.0});  // samples 2 and 4: variance 2
  // Samples without a spread: no widths, and no prediction.
  std::string flat = kBase;
  flat.replace(flat.find("=1,2"), 4, "=2,2");
  record = Resumed<CSVRData>("SVRVersion=170\nSVRKernType=2\nSVRKernelArray=8\n", flat);
  EXPECT_EQ(record.SVRDataVersion(), SVRDataVersion171);
  EXPECT_TRUE(record.KernelArray.empty());
  ExpectRefused(CSVREvaluator(), &record, {1}, "no widths");
}

TEST(KernelLocalReading, MovingLeastSquaresTakesThePercentageWithItsOptionAlone) {
  const auto percent = [&](const std::string& option, const std::string& value) {
    const auto record = Resumed<CMLSData>("MLSUsedPointsOption=" + option +
                                          "\nMLSExtraPointPercent=" + value + "\n");
    E_UsedPointsOption read{};
    double number = -1.0;
    EXPECT_EQ(record.GetUsedPointOption(read), 0);
    EXPECT_EQ(record.GetExtraPointPercent(number), 0);
    EXPECT_EQ(std::to_string(read), option);
    return number;
  };
  EXPECT_EQ(percent("3", "12.5"), 12.5);
  EXPECT_EQ(percent("3", "-1.0"), 0.0);
  EXPECT_EQ(percent("2", "12.5"), 0.0);
}

TEST(KernelLocalReading, RefusesBadRecordsAndLeavesOtherFamiliesAlone) {
  const OpenReader reader(kBase);
  CSVRData svr;
  CMLSData mls;
  EXPECT_EQ(reader.ResumeSVRData(&mls, 0, std::string::npos), 1);
  EXPECT_EQ(reader.ResumeMLSData(&svr, 0, std::string::npos), 1);
  EXPECT_EQ(reader.ResumeLBFData(&svr, 0, std::string::npos), 1);
  EXPECT_EQ(reader.ResumeLBFData(nullptr, 0, std::string::npos), 1);
  EXPECT_EQ(svr.NumberOfSamples, 0);
  EXPECT_EQ(mls.NumberOfSamples, 0);
  CLBFData lbf;
  std::string tooMany = kBase;
  tooMany.replace(tooMany.find("Samples=2"), 9, "Samples=3");
  EXPECT_EQ(Read(tooMany, &lbf), 1);
}

}  // namespace
}  // namespace Tarvane::Plexura::PXROM
