// The estimated cost of an evaluation before it runs, and the limit that a host may set.

#include <gtest/gtest.h>

#include <climits>
#include <limits>
#include <set>

#include "batch/batch_cases.h"
#include "pxrom/constant.h"
#include "pxrom/gaussian_process.h"
#include "pxrom/kriging.h"
#include "pxrom/linear_basis.h"
#include "pxrom/moving_least_squares.h"
#include "pxrom/polynomial.h"
#include "pxrom/regression.h"
#include "pxrom/regression_terms.h"
#include "pxrom/support_vector.h"

namespace Tarvane::Plexura::PXROM::tests {
namespace {

constexpr std::uint64_t kLargest = std::numeric_limits<std::uint64_t>::max();

Matrix Rows(int rows, int columns) {
  return Matrix(static_cast<std::size_t>(rows), Vector(static_cast<std::size_t>(columns), 0.5));
}

template <class Record>
Record RecordOf(int samples, int inputs) {
  Record record;
  MakeReady(record, inputs, Rows(samples, inputs), Vector(static_cast<std::size_t>(samples), 1.0));
  return record;
}

CKrigingData Kriging(int samples, int inputs, bool withErrors) {
  auto record = RecordOf<CKrigingData>(samples, inputs);
  record.CorrelationFunctionType = CorrGaussian;
  record.CorrelationKernels = {1.0};
  record.CorrelationCoefficients.assign(record.InputSamples.size(), 1.0);
  record.SavePredictorError = withErrors;
  if (withErrors) record.InvC = Rows(samples, samples);
  return record;
}

CGaussianProcessData GaussianProcess(int samples, int inputs, int factors, bool withErrors) {
  auto record = RecordOf<CGaussianProcessData>(samples, inputs);
  const auto count = static_cast<std::size_t>(factors);
  record.TermAmplitudes = {1.0};
  record.FactorTerms.assign(count, 0);
  record.FactorFunctions.assign(count, CovMatern52);
  record.FactorParameters.assign(count, 0.0);
  record.FactorLengths.assign(count, 1.0);
  record.Weights.assign(record.InputSamples.size(), 1.0);
  record.SavePredictorError = withErrors;
  if (withErrors)
    record.InverseFactor.assign(record.Weights.size() * (record.Weights.size() + 1) / 2, 1.0);
  return record;
}

CSVRData SupportVector(int samples, int inputs) {
  auto record = RecordOf<CSVRData>(samples, inputs);
  record.SVRLossFuncType = E_SVRLossFuncType{};
  record.Betas.assign(record.InputSamples.size(), 1.0);
  return record;
}

CLBFData LinearBasis(int samples, int inputs) {
  auto record = RecordOf<CLBFData>(samples, inputs);
  record.KernelCoefficients.assign(record.InputSamples.size(), 1.0);
  return record;
}

CMLSData MovingLeastSquares(int samples, int inputs) {
  auto record = RecordOf<CMLSData>(samples, inputs);
  record.PolynomialType = PolyFullQuadratic;
  record.NumberOfBasisFunctions = (inputs + 1) * (inputs + 2) / 2;
  record.NumberOfUsedPoints = samples;
  return record;
}

CQRSData Regression(int terms, int variables, double coefficient, bool withErrors = false) {
  auto record = RecordOf<CQRSData>(3, 6);
  std::vector<CrossPolyTerm> all(static_cast<std::size_t>(terms));
  std::vector<RegTerm*> pointers;
  const std::vector<int> indices(static_cast<std::size_t>(variables), 0);
  for (CrossPolyTerm& term : all) {
    // Twice: a product of any list takes its indices the second time.
    term.SetUsedInpVarIdx(variables, indices.data());
    term.SetUsedInpVarIdx(variables, indices.data());
    term.SetParamVal(1, &coefficient);
    pointers.push_back(&term);
  }
  record.SetRegTerm(pointers.data(), terms);
  if (withErrors) record.InvXtX = Rows(terms, terms);
  return record;
}

CPolynomialData Polynomial(std::size_t terms, int degree, bool withErrors = false) {
  auto record = RecordOf<CPolynomialData>(0, 2);
  record.VariableInputs = {0, 1};
  record.VariableBases = {PolyBasisHermite, PolyBasisHermite};
  record.Degrees.assign(2 * terms, degree);
  record.Coefficients.assign(terms, 1.0);
  record.SavePredictorError = withErrors;
  if (withErrors) record.Covariance = Matrix(terms, Vector(terms, 0.5));
  return record;
}

CEvaluationCost CostOf(const CDiscreteCombinations& model) {
  CEvaluationCost cost;
  EXPECT_EQ(CPreparedModel::EstimateCost(model, {}, cost), 0);
  return cost;
}

/// The operations of `large`, divided by those of `small`.
double Growth(const CRSData& small, const CRSData& large) {
  return static_cast<double>(CostOf(ModelOf(large)).operations) /
         static_cast<double>(CostOf(ModelOf(small)).operations);
}

TEST(EvaluationCost, GrowsWithWhatEachFamilyEvaluates) {
  EXPECT_NEAR(Growth(Kriging(500, 5, false), Kriging(2000, 5, false)), 4.0, 0.1);
  EXPECT_NEAR(Growth(Kriging(500, 50, false), Kriging(500, 200, false)), 4.0, 0.4);
  EXPECT_NEAR(Growth(Kriging(500, 5, true), Kriging(2000, 5, true)), 16.0, 1.5);
  EXPECT_NEAR(Growth(GaussianProcess(500, 5, 1, false), GaussianProcess(2000, 5, 4, false)), 16.0,
              1.0);
  EXPECT_NEAR(Growth(GaussianProcess(500, 5, 1, true), GaussianProcess(2000, 5, 1, true)), 16.0,
              3.0);
  EXPECT_NEAR(Growth(SupportVector(500, 5), SupportVector(2000, 5)), 4.0, 0.1);
  EXPECT_NEAR(Growth(LinearBasis(500, 5), LinearBasis(2000, 5)), 4.0, 0.1);
  // Each sample adds to the matrix of 231 functions; the factorisation does not depend on them.
  EXPECT_NEAR(Growth(MovingLeastSquares(2000, 20), MovingLeastSquares(8000, 20)), 4.0, 0.2);
  // 66 and 861 functions: the sixth power of the inputs.
  EXPECT_NEAR(Growth(MovingLeastSquares(66, 10), MovingLeastSquares(861, 40)), 2000.0, 700.0);
  EXPECT_NEAR(Growth(Regression(1000, 3, 1.0), Regression(4000, 3, 1.0)), 4.0, 0.1);
  EXPECT_NEAR(Growth(Regression(200, 3, 1.0, true), Regression(800, 3, 1.0, true)), 16.0, 2.0);
  EXPECT_NEAR(Growth(Polynomial(1000, 2), Polynomial(4000, 2)), 4.0, 0.2);
  EXPECT_NEAR(Growth(Polynomial(1, 200), Polynomial(1, 800)), 4.0, 0.1);
  EXPECT_NEAR(Growth(Polynomial(200, 2, true), Polynomial(800, 2, true)), 16.0, 0.5);
  EXPECT_LT(CostOf(ModelOf(RecordOf<CConstantData>(500, 5))).operations, 1000U);

  // A sum that reaches the mark of a hole is interpolated over thousands of corners.
  EXPECT_GT(Growth(Regression(1000, 2, 1.0), Regression(1000, 2, -9e99)), 10000.0);
  // A gradient takes the products of a long term variable by variable.
  CQRSData product = Regression(1, 1000, 1.0);
  product.InputScaleSlopes.assign(6, 0.001);  // so that nothing overflows
  EXPECT_GT(Prepared(ModelOf(product)).GradientCost().operations,
            500U * CostOf(ModelOf(product)).operations);
}

// Operations and bytes of an evaluation and of a gradient: each formula of a cost shows here.
TEST(EvaluationCost, IsThatOfTheTable) {
  std::multiset<std::string> lines;
  const auto add = [&lines](const CDiscreteCombinations& model) {
    const auto ids = model.ListEnabledDiscreteParameterWrtRegistrationRank();
    for (const auto& [key, place] : *model.GetDiscreteCombinationsIndexingPtr()) {
      DiscreteValues values;
      for (std::size_t i = 0; i < ids.size(); ++i) values.emplace_back(ids[i], key[i]);
      const CPreparedModel prepared = Prepared(model, values);
      std::string line;
      for (const CEvaluationCost& cost : {prepared.Cost(), prepared.GradientCost()}) {
        line += std::to_string(cost.operations) + ' ' + std::to_string(cost.bytes) + ' ';
      }
      lines.insert(line + std::to_string(prepared.InputIDs().size()) + '\n');
    }
  };
  ForEachFittedModel(add);
  add(ModelOf(RecordOf<CConstantData>(30, 3)));
  add(ModelOf(SupportVector(30, 3)));
  add(ModelOf(LinearBasis(30, 3)));
  add(ModelOf(MovingLeastSquares(30, 3)));
  for (const bool withErrors : {false, true}) {
    add(ModelOf(Kriging(30, 3, withErrors)));
    add(ModelOf(GaussianProcess(30, 3, 2, withErrors)));
    add(ModelOf(Regression(4, 3, 1.0, withErrors)));
    add(ModelOf(Polynomial(4, 5, withErrors)));
  }
  std::string table;
  for (const std::string& line : lines) table += line;
  EXPECT_EQ(table, ContentOf(SourcePath("tests/data/batch/costs.txt")));
}

TEST(EvaluationCost, AddsSurfacesAndThoseOfEachFold) {
  CSVRData surface = SupportVector(500, 5);
  const auto alone = static_cast<double>(CostOf(ModelOf(surface)).operations);
  CFittingCandidate candidate;
  candidate.SetInputScaleSlopes(Vector(5, 1.0));
  candidate.SetInputScaleIntercepts(Vector(5, 0.0));
  // The surface, and one for each of four folds.
  ASSERT_EQ(candidate.SetRSAndWeights(std::vector<CRSData*>(5, &surface), {1.0}, true), 0);
  Matrix rows = Rows(500, 5);
  std::vector<int> counts(4, 125);
  candidate.SetCrossValidationData(rows, counts);
  const auto validated = static_cast<double>(CostOf(ModelOf(candidate, 5)).operations);
  EXPECT_NEAR(validated / alone, 6.0, 0.5);
}

TEST(EvaluationCost, BelievesNoCountBeyondWhatIsThere) {
  const CKrigingData sound = Kriging(20, 2, true);
  CKrigingData hostile = sound;
  hostile.NumberOfSamples = INT_MAX;
  EXPECT_LT(Growth(sound, hostile), 1.01);
  hostile.NumberOfSamples = 0;
  const auto withoutSamples = CostOf(ModelOf(hostile)).operations;
  hostile.NumberOfSamples = 1;
  EXPECT_GT(CostOf(ModelOf(hostile)).operations, withoutSamples);
  CMLSData basis = MovingLeastSquares(20, 2);
  basis.NumberOfUsedPoints = INT_MAX;
  basis.NumberOfBasisFunctions = INT_MAX;
  EXPECT_LT(Growth(MovingLeastSquares(20, 2), basis), 1.01);
  CSVRData multipliers = SupportVector(20, 2);
  multipliers.Betas.assign(2000, 1.0);
  EXPECT_LT(Growth(SupportVector(20, 2), multipliers), 1.01);
  // Numbers out of range become the largest ones.
  EXPECT_EQ(CheckEvaluationCost({kLargest, kLargest}, CEvaluationLimit()), 0);
  std::string reason;
  EXPECT_EQ(CheckEvaluationCost({kLargest, 0}, {kLargest - 1, 0}, &reason), 1);
  EXPECT_NE(reason.find("18446744073709551615 operations"), std::string::npos) << reason;
}

TEST(EvaluationCost, PreparesWithinItsLimitOnly) {
  const CDiscreteCombinations large = ModelOf(MovingLeastSquares(1891, 60));
  const CEvaluationCost cost = CostOf(large);
  EXPECT_EQ(cost.operations / 100'000'000, 90U);
  EXPECT_EQ(cost.bytes / 1'000'000, 31U);

  CPreparedModel prepared = Prepared(ModelOf(RecordOf<CConstantData>(1, 1)));
  std::string reason;
  EXPECT_EQ(CPreparedModel::Prepare(large, {}, prepared, &reason, {2'000'000'000, kLargest}), 1);
  EXPECT_EQ(reason,
            "An evaluation takes about 9.1e9 floating-point operations at each point, and the "
            "limit is 2e9: the model is evaluated with a limit of 9.1e9 operations or more, or "
            "with none.");
  EXPECT_EQ(CPreparedModel::Prepare(large, {}, prepared, &reason, {kLargest, 1234567}), 1);
  EXPECT_EQ(
      reason,
      "An evaluation takes about 3.2e7 bytes of memory, and the limit is 1234567: the model is "
      "evaluated with a limit of 3.2e7 bytes or more, or with none.");
  EXPECT_EQ(prepared.InputIDs().size(), 1U);  // what was there before
  EXPECT_EQ(CPreparedModel::Prepare(large, {}, prepared, &reason, {9'100'000'000, kLargest}), 0);
  EXPECT_EQ(prepared.Cost().operations, cost.operations);

  // A gradient that costs more is refused when it is called.
  double gradient = kUntouched;
  const Vector point(60, 0.5);
  EXPECT_EQ(prepared.EvaluateGradients(point.data(), 1, &gradient, nullptr, &reason), 1);
  EXPECT_EQ(reason.find("An evaluation takes about 2.8e10 floating"), 0U) << reason;
  EXPECT_EQ(gradient, kUntouched);
}

}  // namespace
}  // namespace Tarvane::Plexura::PXROM::tests
