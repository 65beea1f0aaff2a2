#include <functional>
#include <random>

#include "model/cross_validation.h"
#include "model/test_candidates.h"
#include "pxrom/linear_basis.h"
#include "pxrom/regression.h"
#include "support/rounds.h"

namespace Tarvane::Plexura::PXROM {
namespace {

struct Answer {
  int status;
  double value;
  double error;
};

Answer Evaluate(const CFittingCandidate& candidate, const Vector& x, bool withError = true) {
  CFittingCandidates list;
  list.AddFittingCandidate(candidate);
  const CFittingCandidatesEvaluator evaluator;
  Answer a{0, -1, -2};
  a.status = withError ? evaluator.EvaluateResponseSurfaceCandidate(list, x, a.value, a.error)
                       : evaluator.EvaluateResponseSurfaceCandidate(list, x, a.value);
  return a;
}

Answer EvaluateValue(const CFittingCandidate& candidate, const Vector& x) {
  return Evaluate(candidate, x, false);
}

void ExpectAnswer(const Answer& answer, int status, double value, double error) {
  EXPECT_EQ(answer.status, status);
  EXPECT_EQ(answer.value, value);
  EXPECT_EQ(answer.error, error);
}

// Two constants of one input, with output slope 2 and intercept 1.
CFittingCandidate Ensemble(int inputs = 1) {
  CFittingCandidate candidate;
  for (const double value : {7.0, 3.0}) {
    const CConstantData constant = Constant(value, inputs);
    candidate.AddRSAndWeight(&constant, value == 7.0 ? 0.5 : 0.25);
  }
  candidate.SetInputScaleSlopes(Vector(static_cast<std::size_t>(inputs), 1));
  candidate.SetInputScaleIntercepts(Vector(static_cast<std::size_t>(inputs), 0));
  candidate.SetOutputScaleSlope(2);
  candidate.SetOutputScaleIntercept(1);
  return candidate;
}

const double kEnsembleValue = (0.5 * 7 + 0.25 * 3 - 1) / 2;

TEST(CandidateEvaluator, AddsByWeightAndBackscalesOnce) {
  ExpectAnswer(EvaluateValue(Ensemble(), {0}), 0, kEnsembleValue, -2);
  ExpectAnswer(Evaluate(Ensemble(0), {}), 0, kEnsembleValue, 0);
}

TEST(CandidateEvaluator, ValueWithoutError) {
  ExpectAnswer(Evaluate(Ensemble(), {0}), -2, kEnsembleValue, -2);
}

TEST(CandidateEvaluator, ErrorFormCanFail) {
  CFittingCandidate candidate = Ensemble();
  CLBFData single;
  MakeReady(single, 1, {{0}}, {5});
  candidate.AddRSAndWeight(&single, 1);
  EXPECT_EQ(EvaluateValue(candidate, {0}).status, 0);
  EXPECT_EQ(Evaluate(candidate, {0}).status, 1);
}

// A regression of one constant. Its error depends on its variance alone.
CQRSData Regression(double variance) {
  CQRSData record;
  MakeReady(record, 1);
  ConstTerm one;
  const double value = 3;
  one.SetParamVal(1, &value);
  RegTerm* terms[] = {&one};
  record.SetRegTerm(terms, 1);
  record.NumberOfSamples = 11;
  record.InvXtX = {{0.25}};
  record.Sigma2 = variance;
  return record;
}

TEST(CandidateEvaluator, TwoErrorUnits) {
  CFittingCandidate candidate = Ensemble();
  candidate.ResetData();
  for (const double variance : {9.0, 4.0}) {
    const CQRSData surface = Regression(variance);
    candidate.AddRSAndWeight(&surface, 0.5);
  }
  candidate.SetInputScaleSlopes({1});
  candidate.SetInputScaleIntercepts({0});
  candidate.SetOutputScaleSlope(2);
  double value = 0;
  double last = 0;
  EXPECT_EQ(CQRSEvaluator().EvaluateResponseSurface(candidate.GetRSPtr(1), {0}, value, last), 0);
  // The error of the last surface, neither weighted nor scaled back.
  ExpectAnswer(Evaluate(candidate, {0}), 0, 1.5, last);
}

TEST(CandidateEvaluator, ErrorFormNotVirtual) {
  struct Own : CFittingCandidatesEvaluator {
    int EvaluateResponseSurfaceCandidate(const CFittingCandidates&, const Vector&,
                                         double& value) const override {
      value = 42;
      return 0;
    }
    // Only hides the form of the base.
    int EvaluateResponseSurfaceCandidate(const CFittingCandidates&, const Vector&, double&,
                                         double&) const {
      return 1;
    }
  };
  const Own own;
  const CFittingCandidatesEvaluator& evaluator = own;
  const CFittingCandidates list = OneConstant(5, 0);
  double value = -1;
  double error = -2;
  EXPECT_EQ(evaluator.EvaluateResponseSurfaceCandidate(list, {}, value), 0);
  EXPECT_EQ(value, 42);
  EXPECT_EQ(evaluator.EvaluateResponseSurfaceCandidate(list, {}, value, error), 0);
  EXPECT_EQ(value, 5);
}

TEST(CandidateEvaluator, WithoutASlopeTheValueStaysScaled) {
  CFittingCandidate candidate = Ensemble();
  candidate.SetOutputScaleSlope(0);
  ExpectAnswer(EvaluateValue(candidate, {0}), 1, 4.25, -2);
  // The status of a missing error has precedence.
  ExpectAnswer(Evaluate(candidate, {0}), -2, 4.25, -2);
  CFittingCandidate withoutInputs = Ensemble(0);
  withoutInputs.SetOutputScaleSlope(0);
  ExpectAnswer(Evaluate(withoutInputs, {}), 1, 4.25, 0);
  candidate.SetOutputScaleSlope(std::nan(""));
  EXPECT_EQ(EvaluateValue(candidate, {0}).status, 0);
}

TEST(CandidateEvaluator, RefusalsLeaveThePartialSum) {
  ExpectAnswer(EvaluateValue(Ensemble(), {0, 0}), 1, -1, -2);
  ExpectAnswer(Evaluate(Ensemble(), {}), 1, -1, -2);
  double value = 5;
  EXPECT_EQ(CFittingCandidatesEvaluator().EvaluateResponseSurfaceCandidate({}, {0}, value), 1);
  EXPECT_EQ(value, 5);
  // A surface that refuses, or of no family, leaves the partial sum.
  CConstantData stopped = Constant(1, 1);
  stopped.Stopped = true;
  struct Unknown : CRSData {
    CRSData* Clone() const override { return new Unknown(*this); }
    E_DataType DataType() const override { return static_cast<E_DataType>(99); }
  };
  const Unknown unknown;
  for (const CRSData* const surface : std::initializer_list<const CRSData*>{&stopped, &unknown}) {
    CFittingCandidate candidate = Ensemble();
    candidate.AddRSAndWeight(surface, 1);
    ExpectAnswer(EvaluateValue(candidate, {0}), 1, 4.25, -2);
    ExpectAnswer(Evaluate(candidate, {0}), 1, 4.25, -2);
  }
}

void AddFold(CFittingCandidate& candidate, double value, int inputs = 1) {
  const CConstantData constant = Constant(value, inputs);
  candidate.AddSubRS(&constant);
}

void SetFolds(CFittingCandidate& candidate, Matrix rows, std::vector<int> folds, double rho = 0.5) {
  candidate.SetCrossValidationData(rows, folds);
  candidate.SetDPMinDist(rho);
}

const Matrix kRows = {{0}, {1}, {2}};

CFittingCandidate CrossValidated() {
  CFittingCandidate candidate = Ensemble();
  for (const double value : {6.0, 8.0, 2.0, 4.0}) AddFold(candidate, value);
  SetFolds(candidate, kRows, {2, 1});
  return candidate;
}

TEST(CandidateEvaluator, CrossValidatedErrorsAgreeWithAnIndependentCalculation) {
  const auto cases = ReferenceData("ensemble/cross_validation.json");
  ASSERT_EQ(cases.size(), 12u);
  for (const auto& c : cases) {
    CFittingCandidate candidate;
    const auto x = c["x"].get<Vector>();
    const auto inputs = static_cast<int>(x.size());
    for (std::size_t i = 0; i < c["values"].size(); ++i) {
      const CConstantData constant = Constant(c["values"][i], inputs);
      candidate.AddRSAndWeight(&constant, c["weights"][i]);
      for (const double value : c["foldValues"][i]) AddFold(candidate, value, inputs);
    }
    SetFolds(candidate, c["rows"], c["folds"], c["rho"]);
    candidate.SetInputScaleSlopes(c["inputSlopes"]);
    candidate.SetInputScaleIntercepts(c["inputIntercepts"]);
    candidate.SetOutputScaleSlope(c["slope"]);
    candidate.SetOutputScaleIntercept(c["intercept"]);
    const Answer answer = Evaluate(candidate, x);
    EXPECT_EQ(answer.status, 0);
    EXPECT_NEAR(answer.value, c["value"], 1e-13 * std::fabs(c["value"].get<double>()));
    const double error = c["error"];
    EXPECT_NEAR(answer.error, error, 1e-11 * std::fabs(error) + 1e-15);
  }
}

TEST(CandidateEvaluator, AtASampleTheErrorIsZeroWithTheSlopesSign) {
  CFittingCandidate candidate = CrossValidated();
  Answer answer = Evaluate(candidate, {1});
  ExpectAnswer(answer, 0, (4.25 - 1) / 2, 0.0);
  EXPECT_FALSE(std::signbit(answer.error));
  candidate.SetOutputScaleSlope(-2);
  EXPECT_TRUE(std::signbit(Evaluate(candidate, {1}).error));
}

// Squared distances of 1e-12 and 4e-12 in one fold. Where the sort distinguishes them, their order
// does not matter.
TEST(CandidateEvaluator, TheSortsToleranceGrowsWithTheInputsThatTheCandidateStates) {
  const auto errorOf = [](int statedInputs, double first, double second) {
    CFittingCandidate candidate = Ensemble();
    for (const double value : {6.0, 8.0, 2.0, 4.0}) AddFold(candidate, value);
    SetFolds(candidate, {{first}, {second}, {3e-6}}, {2, 1}, 1e-11);
    candidate.SetNumberOfInputVariables(statedInputs);
    const Answer answer = Evaluate(candidate, {0});
    EXPECT_EQ(answer.status, 0);
    return answer.error;
  };
  // 2e-12 for one input, 4e-12 for four; for a negative number nothing is exchanged.
  for (const int inputs : {0, 1}) EXPECT_EQ(errorOf(inputs, 2e-6, 1e-6), errorOf(1, 1e-6, 2e-6));
  for (const int inputs : {4, -1}) EXPECT_NE(errorOf(inputs, 2e-6, 1e-6), errorOf(1, 1e-6, 2e-6));
}

TEST(CandidateEvaluator, SquaredDistances) {
  CFittingCandidate candidate = Ensemble();
  SetFolds(candidate, {{0}, {1}}, {}, 100);
  const double damping = std::log(1.0 + 10.0 * 0.25 / (100 + 0.0001));
  ExpectAnswer(Evaluate(candidate, {0.5}), 0, 1.625, ((0.005 * 0.25 + 0.0) * damping / 2) * 3);
}

TEST(CandidateEvaluator, CrossValidationShapesThatDoNotFitAreRefused) {
  using Candidate = CFittingCandidate;
  const std::function<void(Candidate&)> damages[] = {
      [](Candidate& c) {
        SetFolds(c, kRows, {2, 2});
      },
      [](Candidate& c) {
        SetFolds(c, kRows, {3, 0});
      },
      [](Candidate& c) {
        SetFolds(c, kRows, {4, -1});
      },
      [](Candidate& c) { SetFolds(c, kRows, {3}); },
      [](Candidate& c) {
        SetFolds(c, {{0}, {}, {1}}, {2, 1});
      },
      [](Candidate& c) { AddFold(c, 1); },
  };
  for (const auto& damage : damages) {
    CFittingCandidate candidate = CrossValidated();
    damage(candidate);
    const Answer answer = Evaluate(candidate, {0.5});
    EXPECT_EQ(answer.status, 1) << &damage - damages;
    EXPECT_EQ(answer.error, -2) << &damage - damages;
    // The form without an error works.
    EXPECT_EQ(EvaluateValue(candidate, {0.5}).status, 0);
  }
  CFittingCandidate empty;
  SetFolds(empty, kRows, {2, 1});
  EXPECT_EQ(Evaluate(empty, {}).status, 1);
}

// The first value after the tolerant bubble sort.
double FirstOfBubbleSort(Vector values, double threshold) {
  for (std::size_t pass = values.size() - 1; pass > 0; --pass) {
    for (std::size_t i = 0; i < pass; ++i) {
      if (values[i] - values[i + 1] > threshold) std::swap(values[i], values[i + 1]);
    }
  }
  return values[0];
}

TEST(TolerantSort, FindsWhatTheWholeSortPutsInFront) {
  std::mt19937 random(17);
  for (int round = 0; round < Rounds(20000); ++round) {
    // Steps of a quarter of the threshold, so that most neighbours are close to it.
    const double spread = round % 2 == 0 ? 40 : 4000;
    Vector values(1 + random() % 12);
    for (double& value : values) {
      value = 0.25 * std::floor(static_cast<double>(random() % 1000) * spread / 1000);
      if (random() % 50 == 0) value = std::nan("");
    }
    const double expected = FirstOfBubbleSort(values, 1.0);
    double first = -1;
    EXPECT_EQ(FirstAfterTolerantSort(values.data(), values.size(), 1.0, first), 0);
    EXPECT_PRED2([](double a, double b) { return SameBits(a, b); }, first, expected);
  }
}

TEST(TolerantSort, GivesUpAfterTooManyComparisons) {
  Vector values(200000);
  for (std::size_t i = 0; i < values.size(); ++i) {
    values[i] = 10.0 * static_cast<double>(values.size() - i);
  }
  values.back() = values[values.size() - 2] - 0.5;
  double first = -1;
  EXPECT_EQ(FirstAfterTolerantSort(values.data(), values.size(), 1.0, first), 1);
}

}  // namespace
}  // namespace Tarvane::Plexura::PXROM
