#include "pxrom/kriging.h"
#include "support/surfaces.h"

namespace Tarvane::Plexura::PXROM {
namespace {

int Read(const std::string& text, CRSData* record) {
  return OpenReader(text).ResumeKrigingData(record, 0, std::string::npos);
}

int ReadError(const std::string& text, CRSData* record) {
  return OpenReader(text).ResumeKrigingDataPredictorError(record, 0, std::string::npos);
}

// Texts of surfaces, with independent values and errors. A line that is put before a text counts.
nlohmann::json Surfaces() { return ReferenceData("kriging/predictions.json"); }

TEST(KrigingReading, SurfacesFromTextAgreeWithADenseSolve) {
  for (const auto& each : Surfaces()) {
    CKrigingData record;
    ASSERT_EQ(Read(each["text"], &record), 0);
    EXPECT_EQ(record.NumberOfPolyCoeff, int(record.PolynomialCoefficients.size()));
    for (std::size_t i = 0; i < each["x"].size(); ++i) {
      double y = 0.0;
      double error = 0.0;
      ASSERT_EQ(CKrigingEvaluator().EvaluateResponseSurface(&record, each["x"][i], y, error), 0);
      EXPECT_NEAR(y, each["y"][i], 1e-10);
      EXPECT_NEAR(error, each["error"][i], 1e-10);
    }
  }
}

TEST(KrigingReading, ShortErrorDataDropped) {
  const std::string text = Surfaces()[0]["text"];
  for (const std::string first :
       {"KrigingInverseOfC=1,2,3", "KrigingInverseOfG=", "KrigingFTilde=6",
        "KrigingNumberOfPolynomialCoefficients=-1",
        "KrigingNumberOfPolynomialCoefficients=2147483647", "KrigingVersion=191"}) {
    CKrigingData record;
    EXPECT_EQ(Read(first + "\n" + text, &record), 0) << first;
    const bool old = record.KrigingDataVersion() == 191;
    EXPECT_EQ(record.SavePredictorError, !old) << first;
    EXPECT_TRUE(record.InvC.empty()) << first;
    EXPECT_TRUE(record.InvG.empty()) << first;
    EXPECT_TRUE(record.Ft.empty()) << first;
    EXPECT_EQ(record.Sigma2, 0.0);
    EXPECT_EQ(record.NumberOfPolyCoeff, 0) << first;
    EXPECT_EQ(ReadError(first + "\n" + text, &record), old ? 0 : 1) << first;
  }
}

TEST(KrigingReading, RefusesOtherRecordsAndBadSamples) {
  const std::string text = Surfaces()[0]["text"];
  CRSData other;
  CKrigingData record;
  EXPECT_EQ(Read("InputSamples=1\n" + text, &record), 1);
  EXPECT_EQ(Read(text, nullptr), 1);
  EXPECT_EQ(Read(text, &other), 1);
  EXPECT_EQ(ReadError(text, &other), 1);
  EXPECT_EQ(other.NumberOfSamples, 0);
}

TEST(KrigingReading, ErrorDataThatNobodyAsksForAreNotRead) {
  std::string text = Surfaces()[0]["text"];
  CKrigingData record;
  EXPECT_EQ(Read(text.replace(text.find("KrigingSave"), 11, "Save"), &record), 0);
  EXPECT_FALSE(record.SavePredictorError);
  EXPECT_TRUE(record.InvC.empty());
}

}  // namespace
}  // namespace Tarvane::Plexura::PXROM
