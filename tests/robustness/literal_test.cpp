// The library gives the results of the literal programs, which take no shortcut, to the last bit:
// for whole databases from their text, and for surfaces of each family with guards and refusals.

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <sstream>

#include "pxrom/writer.h"
#include "reference/evaluate_literal.h"
#include "reference/gaussian_process_literal.h"
#include "reference/kernel_local_literal.h"
#include "reference/kriging_literal.h"
#include "reference/polynomial_literal.h"
#include "reference/reading_literal.h"
#include "reference/regression_literal.h"
#include "support/rounds.h"
#include "support/surfaces.h"
#include "testing/random_models.h"
#include "text/database_text.h"

namespace Tarvane::Plexura::PXROM::tests {
namespace {

using PXROM::SameBits;
using NamedValues = std::vector<std::pair<std::string, double>>;

bool SameBits(const NamedValues& a, const NamedValues& b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](const auto& p, const auto& q) {
    return p.first == q.first && SameBits(p.second, q.second);
  });
}

// Compares every group that the reader's index finds in `text`, and every attribute of its range.
void ExpectLiteralReading(const std::string& text) {
  reading::DatabaseText indexed(text);
  indexed.Index();
  const CReader reader;
  reading::Bounds group;
  std::size_t at = 0;
  std::istringstream lines(text);
  for (std::string line; std::getline(lines, line); at += line.size() + 1) {
    SCOPED_TRACE(line);
    const std::size_t equalSign = line.find('=');
    if (line[0] == '<' && line[1] != '/') {
      const std::string closing = "</" + line.substr(1, line.find_first_of(" >") - 1) + ">";
      std::size_t start = 0;
      std::size_t end = 0;
      ASSERT_EQ(indexed.SearchBounds(line, closing, at, group),
                literal::SearchBounds(text, line, closing, at, start, end));
      ASSERT_EQ(std::make_pair(group.lower, group.upper), std::make_pair(start, end));
    } else if (line[0] != '<' && equalSign != std::string::npos) {
      const std::string key = line.substr(0, equalSign + 1);
      std::string_view found;
      std::string value;
      ASSERT_EQ(reading::AttributeRange(indexed, group).Find(key, found),
                literal::CatchKeyValue(text, key, value, group.lower, group.upper));
      ASSERT_EQ(found, value);
      ASSERT_TRUE(SameBits(reader.TokenizeDouble(value, ','), literal::TokenizeDouble(value, ',')));
      ASSERT_EQ(reader.TokenizeInt(value, ','), literal::TokenizeInt(value, ','));
      ASSERT_EQ(reader.TokenizeString(value, ','), literal::TokenizeString(value, ','));
    }
  }
}

// Values that a host may pass too.
const Vector kOddValues = {std::nan(""), HUGE_VAL, -HUGE_VAL, 1.7e308, -1e200, 5e-324, -0.0};

void ExpectLiteralValues(const CDiscreteCombinations& model, double oddFraction) {
  const literal::Combinations slow(model);
  for (const double fraction : {0.1, 1.3, oddFraction}) {
    for (const Question& question : QuestionsFor(model, fraction)) {
      NamedValues got;
      NamedValues want;
      ASSERT_EQ(model.Evaluate(question.discrete, question.continuous, got),
                slow.Evaluate(question.discrete, question.continuous, want));
      ASSERT_TRUE(SameBits(got, want));
      // The form with errors may write Kriging records, so each call gets its own copy.
      const CDiscreteCombinations fresh(model);
      const CDiscreteCombinations other(model);
      NamedValues gotErrors;
      NamedValues wantErrors;
      ASSERT_EQ(fresh.Evaluate(question.discrete, question.continuous, got, gotErrors),
                literal::Combinations(other).Evaluate(question.discrete, question.continuous, want,
                                                      wantErrors));
      ASSERT_TRUE(SameBits(got, want));
      ASSERT_TRUE(SameBits(gotErrors, wantErrors));
    }
  }
}

TEST(Literal, RandomDatabasesReadAndEvaluateTheSame) {
  for (int round = 0; round < Rounds(200); ++round) {
    const auto seed = static_cast<std::uint32_t>(1000 + round);
    SCOPED_TRACE("seed " + std::to_string(seed));
    CDiscreteCombinations made;
    FillRandomModel(seed, {}, made);
    std::string text;
    ASSERT_EQ(CWriterPXROMDatabase().WriteDiscreteCombinations(made, text), 0);
    ASSERT_NO_FATAL_FAILURE(ExpectLiteralReading(text));
    CReaderPXROMDatabase reader;
    reader.ReadDataStream(text);
    CDiscreteCombinations model;
    ASSERT_EQ(reader.ResumeDiscreteCombinations(model), 0);
    ASSERT_NO_FATAL_FAILURE(ExpectLiteralValues(model, kOddValues[seed % kOddValues.size()]));
  }
}

// Changes a sound surface so that its types, shapes and guards may refuse it.
void Distort(Draw& draw, CKrigingData& record) {
  // Factors are triangular, but nothing checks this.
  if (draw.Chance(30)) return;
  for (std::size_t k = 0; k < record.InvC.size(); ++k) {
    std::fill(record.InvC[k].begin() + static_cast<std::ptrdiff_t>(k) + 1, record.InvC[k].end(),
              0.0);
  }
  if (draw.Chance(30)) std::reverse(record.InvC.begin(), record.InvC.end());
}

void Distort(Draw& draw, CQRSData& record) {
  const Vector lambdas = {-1.5, -1e-7, 0.0, 1e-6, 0.5, 1.0, 2.0, 2.0 - 1e-7};
  for (double& lambda : record.InputLambdas) lambda = draw.OneOf(lambdas);
  for (double& value : record.InputTransformValues) value = draw.Real(0.4, 2);
  record.OutputLambda = draw.OneOf(lambdas);
  record.OutputTransformValue = draw.Real(0.4, 2);
  for (double& slope : record.InputScaleSlopes) slope = draw.Real(-1, 2);
  for (int k = 0; k < record.NumberOfRegTerms; ++k) {
    const double coefficient = draw.Real(-0.6, 1);
    record.RegTerms[k]->SetParamVal(1, &coefficient);
  }
  // The literal program needs degrees of freedom.
  record.NumberOfSamples = record.NumberOfRegTerms + 100;
}

void Distort(Draw& draw, CSVRData& record) {
  record.SVRKernType = static_cast<E_SVRKernType>(draw.Int(0, 10));
  record.SVRLossFuncType = static_cast<E_SVRLossFuncType>(draw.Int(1, 5));
  // Lists that are too short end the sum.
  record.AlphasStar = draw.Reals(draw.Int(0, record.NumberOfSamples), 0, 3);
  record.Betas = draw.Reals(draw.Int(0, record.NumberOfSamples), -3, 3);
  record.NumberOfSamples = draw.Int(-1, 40);
}

// Adds values after the inputs of a row.
void Lengthen(Draw& draw, CRSData& record) {
  const int row = draw.Int(0, static_cast<int>(record.InputSamples.size()) - 1);
  if (draw.Chance(30)) record.InputSamples[static_cast<std::size_t>(row)].push_back(0.25);
}

void Distort(Draw& draw, CMLSData& record) {
  record.WeightFunction = static_cast<E_WeightFunction>(draw.Int(0, 5));
  if (draw.Chance(5)) ++record.NumberOfBasisFunctions;
  const int fewest = std::max(1, record.NumberOfBasisFunctions - 1);
  record.NumberOfUsedPoints =
      draw.Int(std::min(record.NumberOfSamples, fewest), record.NumberOfSamples);
  Lengthen(draw, record);
}

void Distort(Draw& draw, CLBFData& record) {
  record.BasisFunctionType = static_cast<E_LinearBasisFunction>(draw.Int(0, 6));
  record.PolynomialType = static_cast<E_PolynomialType>(draw.Int(0, 5));
  const int most = record.PolynomialType < PolyLinear ? 1 : record.NumberOfInputVariables + 1;
  record.PolynomialCoefficients = draw.Reals(draw.Int(0, most), -3, 3);
  record.KernelCoefficients = draw.Reals(draw.Int(0, record.NumberOfSamples), -3, 3);
  Lengthen(draw, record);
}

void Distort(Draw& draw, CGaussianProcessData& record) {
  for (int& function : record.FactorFunctions) {
    if (draw.Chance(10)) function = draw.OneOf<int>({-1, 0, 15, 1000});
  }
}

void Distort(Draw& draw, CPolynomialData& record) {
  const Vector lambdas = {-1.5, 0.0, 1e-6, 0.5, 2.0};
  for (double& lambda : record.VariableLambdas) lambda = draw.OneOf(lambdas);
  for (double& slope : record.InputScaleSlopes) slope = draw.Real(-1, 2);
  for (double& coefficient : record.Coefficients) coefficient = draw.Real(-2, 2);
  if (draw.Chance(5)) record.VariableInputs.back() = draw.Int(-1, record.NumberOfInputVariables);
  if (draw.Chance(5)) record.Degrees.push_back(1);
  if (draw.Chance(5)) record.VariableAlphas.push_back(0.5);
  if (draw.Chance(5)) record.Degrees[0] = draw.OneOf(std::vector<int>{-1, 40, 1000, 1001});
  if (draw.Chance(10)) record.Covariance.pop_back();
}

void ExpectSame(const Vector& got, const Vector& want) {
  EXPECT_TRUE(SameBits(got, want))
      << testing::PrintToString(got) << " " << testing::PrintToString(want);
}

// Compares everything that the literal program of a family gives; returns the value's status.
template <class Record>
int ExpectSame(const CRSEvaluator& evaluator, const Record& record, const Vector& x,
               int (*literal)(const Record&, const Vector&, double&)) {
  double got = -7.0;
  double want = -7.0;
  const int status = evaluator.EvaluateResponseSurface(&record, x, got);
  EXPECT_EQ(status, literal(record, x, want));
  EXPECT_TRUE(SameBits(got, want)) << got << " " << want;
  return status;
}

int ExpectLiteral(const CSVRData& record, const Vector& x) {
  return ExpectSame(CSVREvaluator(), record, x, &literal::EvaluateSupportVector);
}

int ExpectLiteral(const CMLSData& record, const Vector& x) {
  return ExpectSame(CMLSEvaluator(), record, x, &literal::EvaluateMovingLeastSquares);
}

int ExpectLiteral(const CLBFData& record, const Vector& x) {
  return ExpectSame(CLBFEvaluator(), record, x, &literal::EvaluateLinearBasis);
}

int ExpectLiteral(const CPolynomialData& record, const Vector& x) {
  const CPolynomialEvaluator evaluator;
  Vector got(2, -7.0);
  Vector want(2, -7.0);
  EXPECT_EQ(evaluator.EvaluateResponseSurface(&record, x, got[0], got[1]),
            literal::EvaluatePolynomial(record, x, want[0], want[1]));
  ExpectSame(got, want);
  return ExpectSame(evaluator, record, x, &literal::EvaluatePolynomial);
}

int ExpectLiteral(const CQRSData& record, const Vector& x) {
  const CQRSEvaluator evaluator;
  const literal::Surface slow(record);
  Vector got(3, -7.0);
  Vector want(3, -7.0);
  const int status = evaluator.EvaluateResponseSurface(&record, x, got[0]);
  EXPECT_EQ(status, literal::EvaluateRegression(slow, x, want[0]));
  if (record.SavePredictorError) {
    EXPECT_EQ(evaluator.EvaluateResponseSurface(&record, x, got[1], got[2]),
              literal::EvaluateRegression(slow, x, want[1], want[2]));
  }
  ExpectSame(got, want);
  EXPECT_EQ(evaluator.EvaluateResponseSurfaceDerivativeWrtInputVariables(&record, x, got),
            literal::EvaluateRegressionDerivative(slow, x, want));
  ExpectSame(got, want);
  return status;
}

int ExpectLiteral(const CKrigingData& record, const Vector& x) {
  CKrigingData fast(record);
  CKrigingData slow(record);
  Vector got(3, -7.0);
  Vector want(3, -7.0);
  const int status = CKrigingEvaluator().EvaluateResponseSurface(&record, x, got[0]);
  EXPECT_EQ(status, literal::EvaluateKriging(record, x, want[0]));
  EXPECT_EQ(CKrigingEvaluator().EvaluateResponseSurface(&fast, x, got[1], got[2]),
            literal::EvaluateKriging(slow, x, want[1], want[2]));
  ExpectSame(got, want);
  EXPECT_EQ(fast.InputSamples.size(), slow.InputSamples.size());
  for (std::size_t s = 0; s < slow.InputSamples.size(); ++s) {
    EXPECT_TRUE(SameBits(fast.InputSamples[s], slow.InputSamples[s]));
  }
  if (status != 0 || record.InvG.empty() || record.NumberOfSamples == 0) return status;
  std::vector<Vector> points = {record.InputSamples[0], x};
  EXPECT_EQ(fast.EvalErrorPredictions(points, got),
            literal::EvalErrorPredictions(slow, points, want));
  ExpectSame(got, want);
  return status;
}

int ExpectLiteral(const CGaussianProcessData& record, const Vector& x) {
  const CGaussianProcessEvaluator evaluator;
  Vector got(2, -7.0);
  Vector want(2, -7.0);
  const int status = evaluator.EvaluateResponseSurface(&record, x, got[0], got[1]);
  EXPECT_EQ(status, literal::EvaluateGaussianProcess(record, x, want[0], want[1]));
  ExpectSame(got, want);
  return ExpectSame(evaluator, record, x, &literal::EvaluateGaussianProcess);
}

template <class Record>
void ExpectLiteralSurfaces(E_DataType family, int rounds) {
  Draw draw(99);
  int refused = 0;
  for (int round = 0; round < rounds && !testing::Test::HasFailure(); ++round) {
    SCOPED_TRACE("family " + std::to_string(family) + ", round " + std::to_string(round));
    // Every remainder of groups of samples, and more inputs than a working point holds in place.
    const int inputs = round % 97 == 96 && family == DT_QRSData ? 33 : draw.Int(1, 5);
    const bool canLackSamples = family == DT_KrigingData || family == DT_GaussianProcessData;
    const int samples = canLackSamples ? draw.Int(0, 40) : draw.Int(1, 30);
    const auto surface = RandomSurface(draw, family, inputs, samples, true);
    auto& record = dynamic_cast<Record&>(*surface);
    Distort(draw, record);
    for (Vector& sample : record.InputSamples) {
      for (double& value : sample) value = 4 * value - 2;
    }
    if (draw.Chance(10)) record.InputScaleSlopes.push_back(1.0);
    if (samples > 0 && draw.Chance(5)) record.InputSamples.back().back() = std::nan("");
    const bool onSample = samples > 0 && draw.Chance(20);
    Vector x = onSample ? record.InputSamples[0] : draw.Reals(inputs, -2, 2);
    x.resize(static_cast<std::size_t>(inputs));  // a sample may be longer
    if (draw.Chance(10)) x.back() = draw.OneOf(kOddValues);
    refused += ExpectLiteral(record, x) != 0;
  }
  EXPECT_GT(refused, rounds / 20) << refused << " of " << rounds;
  EXPECT_LT(refused, rounds * 2 / 3) << refused << " of " << rounds;
}

TEST(Literal, BitsAreDefined) {
  ExpectLiteralSurfaces<CKrigingData>(DT_KrigingData, 400);
  ExpectLiteralSurfaces<CQRSData>(DT_QRSData, 600);
  ExpectLiteralSurfaces<CSVRData>(DT_SVRData, 1000);
  ExpectLiteralSurfaces<CMLSData>(DT_MLSData, 1500);
  ExpectLiteralSurfaces<CLBFData>(DT_LBFData, 1000);
  ExpectLiteralSurfaces<CGaussianProcessData>(DT_GaussianProcessData, 1000);
  ExpectLiteralSurfaces<CPolynomialData>(DT_PolynomialData, 600);
}

}  // namespace
}  // namespace Tarvane::Plexura::PXROM::tests
