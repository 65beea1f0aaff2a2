// Gaussian processes: numbers from 50 digits, records that don't fit together, and the text.

#include "pxrom/gaussian_process.h"

#include <limits>

#include "families/gaussian_process/fast_covariance.h"
#include "families/gaussian_process/gaussian_process_fields.h"
#include "support/surfaces.h"

namespace Tarvane::Plexura::PXROM {
namespace {

using Record = CGaussianProcessData;
constexpr double kInfinity = std::numeric_limits<double>::infinity();

const CGaussianProcessEvaluator kEvaluator;

int ReadProcess(const std::string& text, CRSData* record) {
  reading::DatabaseText whole(text);
  reading::AttributeRange range(whole, {0, text.size() - 1});
  return FamilyOf<Record>::family.resume(range, record);
}

nlohmann::json Surfaces() { return ReferenceData("gaussian_process/predictions.json"); }

Record SurfaceAt(std::size_t index) {
  Record record;
  EXPECT_EQ(ReadProcess(Surfaces()[index]["text"], &record), 0);
  return record;
}

void ExpectNear(const Vector& got, const Vector& want, double tolerance) {
  ASSERT_EQ(got.size(), want.size());
  for (std::size_t i = 0; i < got.size(); ++i) {
    EXPECT_NEAR(got[i], want[i], tolerance * std::max(1.0, std::fabs(want[i]))) << "at " << i;
  }
}

TEST(GaussianProcess, ValuesErrorsAndGradientsAreThoseOfFiftyDigits) {
  for (const auto& each : Surfaces()) {
    Record record;
    ASSERT_EQ(ReadProcess(each["text"], &record), 0);
    SCOPED_TRACE(record.FactorFunctions[0]);
    EXPECT_TRUE(record.IsAllRight());
    for (std::size_t i = 0; i < each["x"].size(); ++i) {
      const Vector x = each["x"][i];
      double y = 0.0;
      double error = kUntouched;
      Vector gradient;
      EXPECT_EQ(kEvaluator.EvaluateResponseSurface(&record, x, y, error),
                record.SavePredictorError ? 0 : -2);
      EXPECT_NEAR(y, each["y"][i], 1e-11);
      EXPECT_EQ(Value(kEvaluator, record, x), y);
      EXPECT_EQ(kEvaluator.EvaluateResponseSurfaceDerivativeWrtInputVariables(&record, x, gradient),
                0);
      ExpectNear(gradient, each["gradient"][i], 1e-10);
      if (!record.SavePredictorError) continue;
      // The root of what rounding leaves of the variance at a sample.
      EXPECT_NEAR(error, each["error"][i], error < 1e-6 ? 1e-6 : 1e-11);
      EXPECT_EQ(kEvaluator.EvaluatePredictorErrorDerivativeWrtInputVariables(&record, x, gradient),
                0);
      ExpectNear(gradient, each["error_gradient"][i], error < 1e-6 ? 1e-6 : 1e-10);
    }
  }
}

TEST(GaussianProcess, RefusesWhatDoesNotFitTogether) {
  // Three terms, factors that drop an input, a trend with monomials.
  const Record sound = SurfaceAt(7);
  ExpectEachRefused<Record>(
      kEvaluator, sound, {2.5, 1.5},
      {{"version",
        [](Record& r) { r.GaussianProcessDataVersion_ = E_CGaussianProcessDataVersion(2); }},
       {"fewer rows", [](Record& r) { r.InputSamples.pop_back(); }},
       {"a short row", [](Record& r) { r.InputSamples[3].pop_back(); }},
       {"fewer weights", [](Record& r) { r.Weights.pop_back(); }},
       {"no term", [](Record& r) { r.TermAmplitudes.clear(); }},
       {"a factor of no term", [](Record& r) { r.FactorTerms.back() = 3; }},
       {"factors out of order", [](Record& r) { r.FactorTerms[0] = 1; }},
       {"fewer terms of factors", [](Record& r) { r.FactorTerms.pop_back(); }},
       {"no such function", [](Record& r) { r.FactorFunctions[1] = 15; }},
       {"function 0", [](Record& r) { r.FactorFunctions[1] = 0; }},
       {"fewer parameters", [](Record& r) { r.FactorParameters.pop_back(); }},
       {"alpha of 0", [](Record& r) { r.FactorParameters[2] = 0.0; }},
       {"fewer lengths", [](Record& r) { r.FactorLengths.pop_back(); }},
       {"a length of 0", [](Record& r) { r.FactorLengths[2] = 0.0; }},
       {"a length that is no number", [](Record& r) { r.FactorLengths[2] = std::nan(""); }},
       {"no such trend", [](Record& r) { r.PolynomialType = E_PolynomialType(5); }},
       {"fewer coefficients", [](Record& r) { r.PolynomialCoefficients.pop_back(); }},
       {"half a monomial", [](Record& r) { r.Monomials.pop_back(); }},
       {"a negative exponent", [](Record& r) { r.Monomials[1] = -1; }},
       {"fewer slopes", [](Record& r) { r.InputScaleSlopes.pop_back(); }}},
      true);
}

TEST(GaussianProcess, HasNoErrorWithoutItsData) {
  void (*const damages[])(Record&) = {
      [](Record& r) { r.SavePredictorError = false; },
      [](Record& r) { r.InverseFactor.pop_back(); },
      [](Record& r) { r.TrendInverseFactor.pop_back(); },
      [](Record& r) { r.TrendInverseFactor.clear(); },
      [](Record& r) { r.TrendAtSamples.pop_back(); },
      [](Record& r) { r.TrendAtSamples[1].pop_back(); },
      [](Record& r) { r.NoiseVariance = -0.5; },
  };
  for (const auto damage : damages) {
    Record record = SurfaceAt(7);
    damage(record);
    double y = kUntouched;
    double error = kUntouched;
    EXPECT_EQ(kEvaluator.EvaluateResponseSurface(&record, {2.5, 1.5}, y, error), -2);
    EXPECT_EQ(y, Value(kEvaluator, record, {2.5, 1.5}));
    EXPECT_EQ(error, kUntouched);
    Vector gradient = {kUntouched};
    EXPECT_EQ(
        kEvaluator.EvaluatePredictorErrorDerivativeWrtInputVariables(&record, {2.5, 1.5}, gradient),
        -2);
    EXPECT_EQ(gradient, Vector{kUntouched});
  }
}

TEST(GaussianProcess, WithoutSamplesIsItsTrend) {
  Record record;
  MakeReady(record, 2);
  record.PolynomialType = PolyConstant;
  record.Monomials = {3, 1};
  record.PolynomialCoefficients = {5.0, 2.0};
  EXPECT_EQ(Value(kEvaluator, record, {2.0, 0.5}), 13.0);
}

TEST(GaussianProcess, VanishesFarFromItsSamples) {
  Record record = SurfaceAt(2);
  record.PolynomialType = PolyNone;
  record.PolynomialCoefficients.clear();
  EXPECT_EQ(Value(kEvaluator, record, {1e200, 0.0}), (0.0 - 0.25) / -0.5);
}

// Each factor keeps the centres once more.
TEST(GaussianProcess, HasAFastFormOfSixteenFactorsAtMost) {
  const auto isFast = [](std::size_t factors, int function) {
    Record record;
    MakeReady(record, 1);
    record.TermAmplitudes = {1.0};
    record.FactorTerms.assign(factors, 0);
    record.FactorFunctions.assign(factors, function);
    record.FactorParameters.assign(factors, 0.0);
    record.FactorLengths.assign(factors, 2.0);
    const gaussian_process::Covariance covariance(record);
    return gaussian_process::FastCovariance(covariance, {0.5}, {1.0}).IsThere();
  };
  EXPECT_TRUE(isFast(16, CovMatern52));
  EXPECT_FALSE(isFast(17, CovMatern52));
  EXPECT_FALSE(isFast(1, CovThinPlateSpline));
}

TEST(GaussianProcess, TextCarriesInfiniteLengthsAndRefusesOtherVersions) {
  const std::string text = Surfaces()[7]["text"];
  EXPECT_EQ(SurfaceAt(7).FactorLengths[1], kInfinity);
  Record record;
  EXPECT_EQ(ReadProcess("GPVersion=2\n" + text, &record), 1);
  EXPECT_EQ(ReadProcess("GPTrendAtSamples=1\n" + text, &record), 1);
  CRSData other;
  EXPECT_EQ(ReadProcess(text, &other), 1);
}

}  // namespace
}  // namespace Tarvane::Plexura::PXROM
