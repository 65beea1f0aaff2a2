#include "pxrom/polynomial.h"

#include <gtest/gtest.h>

#include "batch/batch_cases.h"
#include "pxrom/inspection.h"

namespace Tarvane::Plexura::PXROM {
namespace {

const CPolynomialEvaluator kPolynomials;

/// 2 + x0 x1^2.
CPolynomialData CubicRecord() {
  CPolynomialData record;
  MakeReady(record, 2);
  record.VariableInputs = {0, 1};
  record.Degrees = {0, 0, 1, 2};
  record.Coefficients = {2, 1};
  record.SavePredictorError = true;
  record.Covariance = {{0.25, 0}, {0, 1}};
  return record;
}

template <class List>
void TakeList(const nlohmann::json& item, const char* name, List& list) {
  if (item.contains(name)) list = item[name].get<List>();
}

CPolynomialData RecordOf(const nlohmann::json& item) {
  CPolynomialData record;
  MakeReady(record, static_cast<int>(item["InputScaleSlopes"].size()));
  TakeList(item, "InputScaleSlopes", record.InputScaleSlopes);
  TakeList(item, "InputScaleIntercepts", record.InputScaleIntercepts);
  record.OutputScaleSlope = item["OutputScaleSlope"];
  record.OutputScaleIntercept = item["OutputScaleIntercept"];
  TakeList(item, "VariableInputs", record.VariableInputs);
  TakeList(item, "VariableTransformTypes", record.VariableTransformTypes);
  TakeList(item, "VariableTransformValues", record.VariableTransformValues);
  TakeList(item, "VariableLambdas", record.VariableLambdas);
  TakeList(item, "VariableSlopes", record.VariableSlopes);
  TakeList(item, "VariableIntercepts", record.VariableIntercepts);
  TakeList(item, "VariableBases", record.VariableBases);
  TakeList(item, "VariableAlphas", record.VariableAlphas);
  TakeList(item, "VariableBetas", record.VariableBetas);
  TakeList(item, "Recurrences", record.Recurrences);
  record.Orthonormal = item["Orthonormal"];
  TakeList(item, "Degrees", record.Degrees);
  TakeList(item, "Coefficients", record.Coefficients);
  Take(item["OutputTransformType"], record.OutputTransformType);
  record.OutputTransformValue = item["OutputTransformValue"];
  record.OutputLambda = item["OutputLambda"];
  record.SavePredictorError = true;
  TakeList(item, "Covariance", record.Covariance);
  return record;
}

void ExpectNear(const Vector& got, const Vector& want) {
  ASSERT_EQ(got.size(), want.size());
  for (std::size_t i = 0; i < got.size(); ++i) {
    EXPECT_NEAR(got[i], want[i], 5e-13 * std::max(1.0, std::fabs(want[i]))) << i;
  }
}

TEST(Polynomial, IsTheReferenceInEveryBasisThroughEveryTransformation) {
  int number = 0;
  for (const auto& item : ReferenceData("polynomial/reference.json")) {
    SCOPED_TRACE("record " + std::to_string(number++));
    const CPolynomialData record = RecordOf(item);
    const CPreparedModel prepared = tests::Prepared(tests::ModelOf(record));
    for (const auto& point : item["points"]) {
      const Vector x = point["x"];
      double y = kUntouched;
      double error = kUntouched;
      Vector gradient;
      EXPECT_EQ(kPolynomials.EvaluateResponseSurface(&record, x, y, error), 0);
      ExpectNear({y, error}, {point["value"], point["error"]});
      EXPECT_EQ(
          kPolynomials.EvaluateResponseSurfaceDerivativeWrtInputVariables(&record, x, gradient), 0);
      ExpectNear(gradient, point["gradient"]);
      EXPECT_EQ(prepared.EvaluateGradients(x.data(), 1, gradient.data(), nullptr), 0);
      ExpectNear(gradient, point["gradient"]);
      EXPECT_EQ(
          kPolynomials.EvaluatePredictorErrorDerivativeWrtInputVariables(&record, x, gradient), 0);
      ExpectNear(gradient, point["errorGradient"]);
    }
  }
  EXPECT_EQ(number, 34);
}

TEST(Polynomial, RefusesWhatItCannotHonour) {
  const CPolynomialData sound = CubicRecord();
  EXPECT_EQ(Value(kPolynomials, sound, {3, 2}), 14.0);
  ExpectEachRefused<CPolynomialData>(
      kPolynomials, sound, {3, 2},
      {{"another version", [](auto& r) { Take(2, r.PolynomialDataVersion_); }},
       {"no intercepts", [](auto& r) { r.InputScaleIntercepts.clear(); }},
       {"no terms", [](auto& r) { r.Coefficients.clear(); }},
       {"a degree too many", [](auto& r) { r.Degrees.push_back(0); }},
       {"a variable too many", [](auto& r) { r.VariableInputs.push_back(0); }},
       {"no such input", [](auto& r) { r.VariableInputs[1] = 2; }},
       {"a negative input", [](auto& r) { r.VariableInputs[1] = -1; }},
       {"a negative degree", [](auto& r) { r.Degrees[3] = -1; }},
       {"too large a degree", [](auto& r) { r.Degrees[3] = 1001; }},
       {"one slope for two variables", [](auto& r) { r.VariableSlopes = {1}; }},
       {"no such transformation",
        [](auto& r) {
          r.VariableTransformTypes = {0, 10};
        }},
       {"no such basis",
        [](auto& r) {
          r.VariableBases = {0, 6};
        }},
       {"Laguerre without a density",
        [](auto& r) {
          r.VariableBases = {0, PolyBasisLaguerre};
          r.VariableAlphas = {0, -1};
        }},
       {"Jacobi without a density",
        [](auto& r) {
          r.VariableBases = {0, PolyBasisJacobi};
          r.VariableBetas = {0, -1};
        }},
       {"a recurrence without its steps",
        [](auto& r) {
          r.VariableBases = {PolyBasisRecurrence, 0};
          r.Recurrences = {1, 0};
        }},
       {"steps of no recurrence",
        [](auto& r) {
          r.Recurrences = {1, 0, 0};
        }},
       {"no such way back", [](auto& r) { Take(10, r.OutputTransformType); }},
       {"a refused way forward",
        [](auto& r) {
          r.VariableTransformTypes = {TransformBox, 0};
          r.InputScaleSlopes[0] = -1;
        }},
       {"a refused way back",
        [](auto& r) {
          r.OutputTransformType = TransformLogE;
          r.Coefficients[0] = 300;
        }}},
      true);
  CPolynomialData most = sound;
  most.Degrees[3] = 1000;
  EXPECT_EQ(Value(kPolynomials, most, {3, 1}), 5.0);
}

TEST(Polynomial, LimitsTheSumOfTheLargestDegrees) {
  constexpr std::size_t kVariables = 66;
  CPolynomialData record = CubicRecord();
  record.Covariance.clear();
  record.VariableInputs.assign(kVariables, 0);
  record.Coefficients = {1};
  record.Degrees.assign(kVariables, 1000);
  record.Degrees[0] = 536;
  EXPECT_EQ(Value(kPolynomials, record, {1, 0}), 1.0);
  record.Degrees[0] = 537;
  ExpectRefused(kPolynomials, &record, {1, 0}, "the sum is 65537", true);
}

TEST(Polynomial, HasNoErrorWithoutItsCovariance) {
  CPolynomialData record = CubicRecord();
  double y = kUntouched;
  double error = kUntouched;
  EXPECT_EQ(kPolynomials.EvaluateResponseSurface(&record, {3, 0}, y, error), 0);
  EXPECT_EQ(error, 0.5);
  record.Covariance = {{-1, 0}, {0, 0}};  // a variance that rounds below 0
  EXPECT_EQ(kPolynomials.EvaluateResponseSurface(&record, {3, 0}, y, error), 0);
  EXPECT_EQ(error, 0.0);
  Vector gradient = {kUntouched};
  EXPECT_EQ(
      kPolynomials.EvaluatePredictorErrorDerivativeWrtInputVariables(&record, {3, 0}, gradient), 1);
  EXPECT_EQ(gradient, Vector{kUntouched});
  record.Covariance.pop_back();
  error = kUntouched;
  EXPECT_EQ(kPolynomials.EvaluateResponseSurface(&record, {3, 2}, y, error), -2);
  EXPECT_EQ(y, 14.0);
  EXPECT_EQ(error, kUntouched);
}

CDiscreteCombinations CubicModel() {
  CPolynomialData record = CubicRecord();
  record.NumberOfInputVariables = 1;
  record.InputScaleSlopes = {1};
  record.InputScaleIntercepts = {0};
  record.VariableInputs = {0, 0};
  record.VariableBases = {PolyBasisMonomial, PolyBasisLaguerre};
  record.VariableAlphas = {0, 0.5};
  CDiscreteCombinations model;
  FillWith(CandidateOf(record), model);
  return model;
}

std::string With(const std::string& what, const std::string& by) {
  std::string text = Written(CubicModel());
  return text.replace(text.find(what), what.size(), by);
}

TEST(Polynomial, IsReadAsItWasWritten) {
  const CDiscreteCombinations model = Again(CubicModel());
  EXPECT_EQ(SurfaceOf<CPolynomialData>(model).Degrees, (std::vector<int>{0, 0, 1, 2}));
  EXPECT_EQ(SurfaceOf<CPolynomialData>(model).Covariance, CubicRecord().Covariance);
  CDiscreteCombinations refused;
  EXPECT_EQ(Read(With("PolyVersion=1", "PolyVersion=2"), refused), 1);
  EXPECT_EQ(Read(With("PolyCovariance=0.25,0,0,1", "PolyCovariance=0.25,0,0"), refused), 1);
  CPolynomialData record = CubicRecord();
  record.SavePredictorError = false;
  CDiscreteCombinations hiding;
  FillWith(CandidateOf(record), hiding);
  std::string text;
  EXPECT_EQ(CWriterPXROMDatabase().WriteDiscreteCombinations(hiding, text), 1);
}

/// The errors and warnings that an inspection finds, by code and sentence.
std::vector<std::string> FindingsIn(const std::string& text) {
  std::vector<std::string> found;
  for (const CFinding& finding : InspectPXROMDatabase(text).findings) {
    if (finding.severity == SeverityNote) continue;
    found.push_back(std::string(FindingCodeName(finding.code)) + ": " + finding.sentence);
  }
  return found;
}

TEST(Polynomial, IsInspected) {
  using Found = std::vector<std::string>;
  EXPECT_EQ(FindingsIn(Written(CubicModel())), Found{});
  const auto expect = [](const char* what, const char* by, const char* finding) {
    EXPECT_EQ(FindingsIn(With(what, by)), Found{finding}) << by;
  };
  expect("PolyDegrees=0,0,1,2", "PolyDegrees=0,0,1",
         "count-mismatch: \"PolyDegrees=\" has 3 values, 2 terms of 2 variables need 4");
  expect("PolyDegrees=0,0,1,2", "PolyDegrees=0,0,1,1001",
         "value-out-of-range: degree 4 of \"PolyDegrees=\" is 1001, it has to be 0 to 1000");
  expect("PolyVariableInputs=0,0", "PolyVariableInputs=0,1",
         "value-out-of-range: input 2 of \"PolyVariableInputs=\" is 1, it has to be 0 to 0");
  expect("PolyVariableBases=0,3", "PolyVariableBases=0,6",
         "value-out-of-range: basis 2 of \"PolyVariableBases=\" is 6, it has to be 0 to 5");
  expect("PolyRecurrences=", "PolyRecurrences=1,0",
         "count-mismatch: \"PolyRecurrences=\" has 2 values, 0 steps of recurrences need 0");
  expect("PolyVariableAlphas=0,0.5", "PolyVariableAlphas=0,-1",
         "value-out-of-range: value 2 of \"PolyVariableAlphas=\" is -1, for which its basis has no "
         "density: it has to be above -1");
  expect("PolyVariableSlopes=", "PolyVariableSlopes=2",
         "count-mismatch: \"PolyVariableSlopes=\" has 1 value, 2 variables need 2");
  expect("PolyCovariance=0.25,0,0,1", "PolyCovariance=0.25,0,0",
         "count-mismatch: \"PolyCovariance=\" has 3 values, 2 terms need 4");
  expect("PolySavePredictorError=1", "PolySavePredictorError=0",
         "error-data-ignored: \"PolyCovariance=\" is not read, since \"PolySavePredictorError=\" "
         "is not 1");
  expect("PolyVersion=1", "PolyVersion=2", "version-unknown: \"PolyVersion=\" is 2, known is 1");
  expect("PolyCoefficients=", "PolyCoefficient=",
         "key-unknown: \"PolyCoefficient=\" is no key of this group; did you mean "
         "\"PolyCoefficients=\", which is missing?");
}

// Products of many factors that no two terms share would take too many rows of a block.
TEST(Polynomial, IsEvaluatedPointByPointWhereABlockWouldBeTooLarge) {
  constexpr int kVariables = 300;
  CPolynomialData record = CubicRecord();
  record.VariableInputs.clear();
  record.Degrees.clear();
  for (int v = 0; v < kVariables; ++v) record.VariableInputs.push_back(v % 2);
  for (int term = 0; term < 60; ++term) {
    for (int v = 0; v < kVariables; ++v) record.Degrees.push_back(v < term ? 0 : 1);
  }
  record.Coefficients.assign(60, 0.5);
  record.SavePredictorError = false;
  record.Covariance.clear();
  const CDiscreteCombinations model = tests::ModelOf(record);
  const CPreparedModel prepared = tests::Prepared(model);
  const Vector points = {1.01, 0.98, 0.97, 1.03};
  Vector values(2);
  EXPECT_EQ(prepared.Evaluate(points.data(), 2, PrecisionExact, values.data(), nullptr, nullptr),
            0);
  EXPECT_EQ(values[0], Value(kPolynomials, record, {1.01, 0.98}));
  EXPECT_EQ(values[1], Value(kPolynomials, record, {0.97, 1.03}));
}

}  // namespace
}  // namespace Tarvane::Plexura::PXROM
