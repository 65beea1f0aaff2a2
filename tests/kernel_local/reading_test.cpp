// Reading of the three families' attributes, and models that independent tools fitted.

#include <sstream>

#include "kernel_local/test_records.h"
#include "pxrom/database_reader.h"
#include "pxrom/linear_basis.h"
#include "pxrom/moving_least_squares.h"
#include "pxrom/support_vector.h"

namespace Tarvane::Plexura::PXROM {
namespace {

class Reader : public CReaderPXROMDatabase {
 public:
  explicit Reader(std::string text) { ReadDataStream(text); }
  using CReaderPXROMDatabase::ResumeLBFData;
  using CReaderPXROMDatabase::ResumeMLSData;
  using CReaderPXROMDatabase::ResumeSVRData;

  int Resume(CRSData& record) const {
    const auto resume = record.DataType() == DT_SVRData   ? &Reader::ResumeSVRData
                        : record.DataType() == DT_MLSData ? &Reader::ResumeMLSData
                                                          : &Reader::ResumeLBFData;
    std::size_t lower = 0;
    std::size_t upper = 0;
    SearchBoundsOfTaggedGroup(DataStream, "Genome", 0, lower, upper);
    return (this->*resume)(&record, lower, upper);
  }

  // The names of the inputs and, last, of the output.
  std::vector<std::string> Names() const {
    std::vector<std::string> names;
    CatchKeyValue(DataStream, "IDs=", names, 0, std::string::npos);
    return names;
  }
};

TEST(KernelLocalReading, FittedModelsPredictWhatTheirToolsPredict) {
  const struct {
    const char* folder;
    std::unique_ptr<CRSData> record;
    std::unique_ptr<CRSEvaluator> evaluator;
  } models[] = {
      {"svr_sk_eps_rbf", std::make_unique<CSVRData>(), std::make_unique<CSVREvaluator>()},
      {"svr_sk_version170", std::make_unique<CSVRData>(), std::make_unique<CSVREvaluator>()},
      {"mls_np_franke_linear_gauss", std::make_unique<CMLSData>(),
       std::make_unique<CMLSEvaluator>()},
      {"lbf_scipy_gauss_linear", std::make_unique<CLBFData>(), std::make_unique<CLBFEvaluator>()},
  };
  for (const auto& model : models) {
    const std::string folder = std::string(PXROM_TEST_DATA "/kernel_local/models/") + model.folder;
    std::stringstream text;
    text << std::ifstream(folder + "/model.pxdb", std::ios::binary).rdbuf();
    const Reader reader(text.str());
    ASSERT_EQ(reader.Resume(*model.record), 0) << model.folder;
    const std::vector<std::string> names = reader.Names();
    const auto cases = nlohmann::json::parse(std::ifstream(folder + "/cases.json"));
    ASSERT_FALSE(cases.empty());
    for (const auto& item : cases) {
      Vector x;
      for (std::size_t i = 0; i + 1 < names.size(); ++i) x.push_back(item["continuous"][names[i]]);
      const double want = item["outputs"][names.back()];
      EXPECT_NEAR(Value(*model.evaluator, *model.record, x), want,
                  item["tolerance"].get<double>() * std::fmax(1.0, std::fabs(want)))
          << model.folder;
    }
  }
}

const std::string kBase =
    "<Genome ID=0>\nNumberOfInputVariables=1\nNumberOfSamples=2\nInputSamples=1,2\n"
    "OutputSamples=3,4\nInputScaleSlopes=2\nInputScaleIntercepts=0\nOutputScaleSlope=1\n"
    "OutputScaleIntercept=0\nIsReadyForSolve=1\nIsReadyForEvaluation=1\nIsStopped=0\n";

template <class Record>
Record Resumed(const std::string& attributes, const std::string& base = kBase) {
  Record record;
  EXPECT_EQ(Reader(base + attributes + "</Genome>\n").Resume(record), 0);
  return record;
}

TEST(KernelLocalReading, SupportVectorKeepsDefaultsForValuesOutOfRange) {
  auto record = Resumed<CSVRData>(
      "SVRVersion=171\nSVRKernType=9\nSVRKernCompType=2\nSVRLossFuncType=4\nSVREpsilonValue=1\n"
      "SVRNuValue=0\nSVRConstantValue=-3\nSVRAlphas=1,2\nSVRAlphasStar=3,4\nSVRBetas=5,6\n"
      "SVRConstantCoeffcient=7.5\nSVRKernelArray=8\n");
  EXPECT_TRUE(record.EpsilonValue == 0.2 && record.NuValue == 0.5 && record.ConstantValue == 1e6);
  EXPECT_EQ(record.SVRKernType, SVRKernEpanechnikov);
  EXPECT_EQ(record.SVRKernCompType, 2);
  EXPECT_EQ(record.SVRLossFuncType, 4);
  EXPECT_EQ(record.Alphas, (Vector{1, 2}));
  EXPECT_EQ(record.AlphasStar, (Vector{3, 4}));
  EXPECT_EQ(record.Betas, (Vector{5, 6}));
  EXPECT_EQ(record.ConstantCoefficient, 7.5);
  EXPECT_EQ(record.KernelArray, Vector{8});
  record = Resumed<CSVRData>("SVREpsilonValue=0.25\nSVRNuValue=0.75\nSVRConstantValue=20\n");
  EXPECT_TRUE(record.EpsilonValue == 0.25 && record.NuValue == 0.75 && record.ConstantValue == 20);
}

TEST(KernelLocalReading, OlderSupportVectorsComputeTheirWidthsFromTheScaledSamples) {
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
  const std::string rest =
      "MLSVersion=162\nMLSWeightFunction=4\nMLSPolynomialType=1\nMLSNumberOfBasisFunctions=1\n"
      "MLSNumberOfUsedPoints=2\n";
  const auto percent = [&](const std::string& option, const std::string& value) {
    return Resumed<CMLSData>(rest + "MLSUsedPointsOption=" + option +
                             "\nMLSExtraPointPercent=" + value + "\n")
        .ExtraPointPercent;
  };
  EXPECT_EQ(percent("3", "12.5"), 12.5);
  EXPECT_EQ(percent("3", "-1.0"), 0.0);
  EXPECT_EQ(percent("2", "12.5"), 0.0);
  const auto record = Resumed<CMLSData>(rest);
  EXPECT_EQ(record.MLSDataVersion(), MLSDataVersion162);
  EXPECT_EQ(record.WeightFunction, WeightInverse);
  EXPECT_EQ(record.PolynomialType, PolyConstant);
  EXPECT_TRUE(record.NumberOfBasisFunctions == 1 && record.NumberOfUsedPoints == 2);
}

TEST(KernelLocalReading, RefusedRecordsAreToldAndOtherFamiliesLeftAlone) {
  const Reader reader(kBase + "</Genome>\n");
  CSVRData svr;
  CMLSData mls;
  EXPECT_EQ(reader.ResumeSVRData(&mls, 0, std::string::npos), 1);
  EXPECT_EQ(reader.ResumeMLSData(&svr, 0, std::string::npos), 1);
  EXPECT_EQ(reader.ResumeLBFData(&svr, 0, std::string::npos), 1);
  EXPECT_EQ(reader.ResumeLBFData(nullptr, 0, std::string::npos), 1);
  EXPECT_TRUE(svr.NumberOfSamples == 0 && mls.NumberOfSamples == 0);
  CLBFData lbf;
  std::string tooMany = kBase;
  tooMany.replace(tooMany.find("Samples=2"), 9, "Samples=3");
  EXPECT_EQ(Reader(tooMany).Resume(lbf), 1);
}

}  // namespace
}  // namespace Tarvane::Plexura::PXROM
