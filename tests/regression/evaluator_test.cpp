#include <gtest/gtest.h>

#include <cmath>
#include <random>

#include "literal/regression_literal.h"
#include "regression/test_records.h"

namespace Tarvane::Plexura::PXROM {
namespace {

const CQRSEvaluator kEvaluator;

bool SameBits(double a, double b) {
  return (std::isnan(a) && std::isnan(b)) || (a == b && std::signbit(a) == std::signbit(b));
}

// ------------------------------------------------------------------ against the literal program

CQRSData RandomRecord(std::mt19937& random, int inputs, int inputType, int outputType) {
  std::uniform_real_distribution<double> uniform(-0.6, 1.0);
  std::bernoulli_distribution mostly(0.8);
  std::vector<TermSpec> specs = {{FuncTypeConst, {}, 1.0}};
  for (int i = 0; i < inputs; ++i) {
    specs.push_back({FuncTypeLinear, {i}, uniform(random), mostly(random)});
    for (int j = 0; j < inputs; ++j) {
      specs.push_back(
          {i == j ? FuncTypePureQuad : FuncTypeCrossQuad, {i, j}, uniform(random), mostly(random)});
    }
  }
  specs.push_back({FuncTypeCrossQuad, {0, 0}, uniform(random)});
  std::shuffle(specs.begin(), specs.end(), random);
  CQRSData record = PlainRecord(inputs, specs);
  record.NumberOfSamples = static_cast<int>(specs.size()) + 100;
  const double lambdas[] = {-1.5, -1e-7, 0.0, 1e-6, 0.5, 1.0, 2.0, 2.0 - 1e-7};
  for (int i = 0; i < inputs; ++i) {
    record.InputScaleSlopes[static_cast<std::size_t>(i)] = 2.0 * uniform(random);
    record.InputScaleIntercepts[static_cast<std::size_t>(i)] = uniform(random);
    record.InputTransformValues.push_back(uniform(random) + 1.0);
    record.InputLambdas.push_back(lambdas[random() % 8]);
  }
  record.OutputScaleSlope = uniform(random);
  record.OutputScaleIntercept = uniform(random);
  record.InputTransformType = static_cast<E_QRSTransformationType>(inputType);
  record.OutputTransformType = static_cast<E_QRSTransformationType>(outputType);
  record.OutputTransformValue = uniform(random) + 1.0;
  record.OutputLambda = lambdas[random() % 8];
  record.Sigma2 = 0.25;
  record.InvXtX.assign(specs.size(), Vector(specs.size()));
  for (Vector& row : record.InvXtX) {
    for (double& entry : row) entry = uniform(random);
  }
  return record;
}

// All transformations in and out, inactive terms, points inside and outside the guards, and more
// inputs than a working point holds without an allocation.
TEST(QRSEvaluator, EqualsTheLiteralProgramToTheLastBit) {
  std::mt19937 random(3U);
  std::uniform_real_distribution<double> uniform(-1.0, 3.0);
  int refused = 0;
  for (int round = 0; round < 10 * 10 * 6; ++round) {
    const int inputs = round % 97 == 0 ? 33 : 1 + round % 7;
    const CQRSData record = RandomRecord(random, inputs, round % 10, round / 10 % 10);
    const literal::Surface surface(record);
    Vector x(static_cast<std::size_t>(inputs));
    for (double& value : x) value = uniform(random);
    double y[4] = {-7.0, -7.0, -7.0, -7.0};
    double error[2] = {-7.0, -7.0};
    Vector gradient[2];
    const int status = kEvaluator.EvaluateResponseSurface(&record, x, y[0]);
    refused += status;
    EXPECT_EQ(status, literal::EvaluateRegression(surface, x, y[1])) << "round " << round;
    EXPECT_TRUE(SameBits(y[0], y[1])) << "round " << round << ": " << y[0] << ", " << y[1];
    EXPECT_EQ(kEvaluator.EvaluateResponseSurface(&record, x, y[2], error[0]),
              literal::EvaluateRegression(surface, x, y[3], error[1]));
    EXPECT_TRUE(SameBits(y[2], y[3]) && SameBits(error[0], error[1])) << "round " << round;
    EXPECT_EQ(
        kEvaluator.EvaluateResponseSurfaceDerivativeWrtInputVariables(&record, x, gradient[0]),
        literal::EvaluateRegressionDerivative(surface, x, gradient[1]));
    ASSERT_EQ(gradient[0].size(), gradient[1].size());
    for (std::size_t i = 0; i < gradient[0].size(); ++i) {
      EXPECT_TRUE(SameBits(gradient[0][i], gradient[1][i])) << "round " << round << ", " << i;
    }
  }
  EXPECT_TRUE(refused > 50 && refused < 300) << refused;
}

// ------------------------------------------------------------------------------------- values

TEST(QRSEvaluator, ValueScalesTransformsSumsAndGoesBack) {
  CQRSData record = PlainRecord(1, {{FuncTypeConst, {}, 5.0}});
  record.OutputScaleSlope = 2.0;
  record.OutputScaleIntercept = 1.0;
  double y = -7.0;
  EXPECT_EQ(kEvaluator.EvaluateResponseSurface(&record, {0.0}, y), 0);
  EXPECT_EQ(y, 2.0);
  record = PlainRecord(2, {{FuncTypeLinear, {0}, 2.0}, {FuncTypeLinear, {1}, 10.0}});
  record.InputScaleSlopes = {3.0, 1.0};
  record.InputTransformType = TransformBox;
  record.InputTransformValues = {0.0, 0.0};
  record.InputLambdas = {2.0, 2.0};
  // The second component is outside the guard and goes on as it is.
  EXPECT_EQ(kEvaluator.EvaluateResponseSurface(&record, {1.0, -1.0}, y), 0);
  EXPECT_EQ(y, 2.0 * 4.0 - 10.0);
  record.InputLambdas = {2.0};
  EXPECT_EQ(kEvaluator.EvaluateResponseSurface(&record, {1.0, -1.0}, y), 1);
}

TEST(QRSEvaluator, RefusalsLeaveTheValueAlone) {
  const CQRSData good = PlainRecord(1, {{FuncTypeConst, {}, -1e100}});
  const CRSData other;
  double y = -7.0;
  double error = -7.0;
  const auto refuses = [&](const CRSData* data, const Vector& x) {
    return kEvaluator.EvaluateResponseSurface(data, x, y) == 1 &&
           kEvaluator.EvaluateResponseSurface(data, x, y, error) == 1 && y == -7.0;
  };
  EXPECT_TRUE(refuses(nullptr, {0.0}));
  EXPECT_TRUE(refuses(&other, {}));
  EXPECT_TRUE(refuses(&good, {0.0, 0.0}));
  CQRSData bad = good;
  bad.Stopped = true;
  EXPECT_TRUE(refuses(&bad, {0.0}));
  bad = good;
  bad.ReadyForEvaluation = false;
  EXPECT_TRUE(refuses(&bad, {0.0}));
  bad = good;
  bad.InputScaleIntercepts.clear();
  EXPECT_TRUE(refuses(&bad, {0.0}));
  bad = good;
  bad.OutputTransformType = static_cast<E_QRSTransformationType>(-1);
  EXPECT_TRUE(refuses(&bad, {0.0}));
  bad = good;
  bad.InputTransformType = static_cast<E_QRSTransformationType>(11);
  EXPECT_TRUE(refuses(&bad, {0.0}));
  EXPECT_EQ(error, -7.0);
  // A failed way back leaves the value of a hole, but is refused and not interpolated.
  bad = good;
  SetSamples(bad, {{-1.0}, {2.0}}, {0.0, 0.0});
  bad.OutputTransformType = TransformYeo;
  bad.OutputLambda = 2.0;
  EXPECT_TRUE(refuses(&bad, {0.0}));
}

TEST(QRSEvaluator, TheErrorIsWrittenBeforeTheValueIsKnownToBeGood) {
  CQRSData record = PlainRecord(1, {{FuncTypeConst, {}, 300.0}});
  record.NumberOfSamples = 11;
  record.OutputTransformType = TransformLogE;
  double y = -7.0;
  double error = -7.0;
  EXPECT_EQ(kEvaluator.EvaluateResponseSurface(&record, {0.0}, y, error), 1);
  EXPECT_EQ(error, -7.0);  // no matrix, no error
  record.InvXtX = {{0.25}};
  record.Sigma2 = 4.0;
  EXPECT_EQ(kEvaluator.EvaluateResponseSurface(&record, {0.0}, y, error), 1);
  EXPECT_EQ(y, -7.0);
  EXPECT_NEAR(error, 4.0528, 1e-4);
  SetTerms(record, {{FuncTypeConst, {}, 2.0}});
  EXPECT_EQ(kEvaluator.EvaluateResponseSurface(&record, {0.0}, y, error), 0);
  EXPECT_EQ(y, std::exp(2.0));
  record.NumberOfSamples = 1;  // no degrees of freedom
  EXPECT_EQ(kEvaluator.EvaluateResponseSurface(&record, {0.0}, y, error), 1);
}

// --------------------------------------------------------------------------------- derivatives

/// A surface of two inputs whose sum is about 2 at (1, 2).
CQRSData Quadratic(int type, double value, double lambda) {
  CQRSData record = PlainRecord(2, {{FuncTypeConst, {}, 0.5},
                                    {FuncTypeLinear, {0}, 0.25},
                                    {FuncTypePureQuad, {1, 1}, 0.5},
                                    {FuncTypeCrossQuad, {0, 1}, 0.125}});
  record.InputScaleSlopes = {0.5, 0.75};
  record.OutputScaleSlope = 0.5;
  record.OutputTransformType = static_cast<E_QRSTransformationType>(type);
  record.OutputTransformValue = value;
  record.OutputLambda = lambda;
  return record;
}

TEST(QRSEvaluator, GradientIsThatOfTheValueWhereTheTableHoldsTheWayBack) {
  const struct {
    int type;
    double lambda;
  } cases[] = {{0, 0}, {7, 0}, {7, 0.5}, {7, -0.25}, {8, 0}};
  const Vector x = {1.0, 2.0};
  for (const auto& each : cases) {
    const CQRSData record = Quadratic(each.type, 2.0, each.lambda);
    Vector gradient = {-7.0};
    EXPECT_EQ(kEvaluator.EvaluateResponseSurfaceDerivativeWrtInputVariables(&record, x, gradient),
              0);
    ASSERT_EQ(gradient.size(), 2U);
    for (std::size_t i = 0; i < 2; ++i) {
      const double h = 1e-5;
      Vector left = x;
      Vector right = x;
      left[i] -= h;
      right[i] += h;
      double y[2];
      EXPECT_EQ(kEvaluator.EvaluateResponseSurface(&record, left, y[0]), 0);
      EXPECT_EQ(kEvaluator.EvaluateResponseSurface(&record, right, y[1]), 0);
      const double difference = (y[1] - y[0]) / (2.0 * h);
      EXPECT_NEAR(gradient[i], difference, 1e-7 * std::fabs(difference))
          << each.type << ", " << each.lambda;
    }
  }
}

TEST(QRSEvaluator, GradientFactorByTypeOfTheOutput) {
  // The sum is s everywhere and the gradient of the sum is 1: what comes out is the factor.
  const double e = 2.718281828459045;
  const struct {
    int type;
    double s, value, lambda;
    int status;
    double factor;
  } cases[] = {
      {1, 2.0, 3.0, 0, 0, std::exp(2.0) * 2.0},
      {2, 2.0, 3.0, 0, 0, (std::log10(e) * 2.0) / (std::log10(3.0) * 2.0)},
      {3, 2.0, 3.0, 0, 0, 1.0},
      {4, 2.0, 3.0, 0, 0, (std::log10(e) * 2.0) / 2.0},
      {5, 4.0, 3.0, 0, 0, 0.5},
      {5, -4.0, 3.0, 0, 1, 0.0},
      {6, 2.0, 3.0, 0, 0, 24.0},
      {6, -2.0, 3.0, 0, 1, 0.0},
      {7, 4.0, 0.0, 2.0, 0, std::pow(9.0, -0.5) * 2.0},
      {7, -1.0, 0.0, 2.0, 1, 0.0},
      {8, 4.0, 0.0, 2.0, 0, std::exp(3.0) * 2.0 * std::pow(9.0, -0.5)},
      {8, 5.5, 0.0, 0.0, 1, 0.0},
      {8, -1.0, 0.0, 2.0, 1, 0.0},
      {9, 2.0, 3.0, 1.0, 0, 0.0},
      {10, 2.0, 3.0, 1.0, 0, 0.0},
  };
  for (const auto& each : cases) {
    CQRSData record = PlainRecord(1, {{FuncTypeConst, {}, each.s}, {FuncTypeLinear, {0}, 1.0}});
    record.OutputScaleSlope = 0.5;
    record.OutputTransformType = static_cast<E_QRSTransformationType>(each.type);
    record.OutputTransformValue = each.value;
    record.OutputLambda = each.lambda;
    Vector gradient = {-7.0};
    EXPECT_EQ(
        kEvaluator.EvaluateResponseSurfaceDerivativeWrtInputVariables(&record, {0.0}, gradient),
        each.status);
    EXPECT_EQ(gradient, Vector{each.status == 0 ? each.factor : -7.0})
        << each.type << ", " << each.s;
  }
}

TEST(QRSEvaluator, DerivativeAsksOnlyWhetherTheRecordIsReady) {
  CQRSData record = Quadratic(0, 0.0, 0.0);
  const auto derivative = [&](const CRSData* data, const Vector& x) {
    Vector gradient;
    return kEvaluator.EvaluateResponseSurfaceDerivativeWrtInputVariables(data, x, gradient);
  };
  Vector plain;
  Vector transformed;
  kEvaluator.EvaluateResponseSurfaceDerivativeWrtInputVariables(&record, {1.0, 2.0}, plain);
  record.Stopped = true;
  record.InputTransformType = TransformLogE;  // the inputs are not transformed
  EXPECT_EQ(kEvaluator.EvaluateResponseSurfaceDerivativeWrtInputVariables(&record, {1.0, 2.0},
                                                                          transformed),
            0);
  EXPECT_EQ(plain, transformed);
  EXPECT_GE(derivative(&record, {1.0}), 1);
  EXPECT_GE(derivative(&record, {}), 1);
  EXPECT_EQ(derivative(&record, {1.0, 2.0, 3.0}), 1);
  LinearTerm bare;
  RegTerm* terms[] = {&bare};
  record.SetRegTerm(terms, 1);
  record.OutputTransformType = TransformSquare;
  EXPECT_EQ(derivative(&record, {1.0, 2.0}), 1);
  EXPECT_EQ(derivative(&record, {1.0}), 2);  // statuses add up
  record.ReadyForEvaluation = false;
  EXPECT_EQ(derivative(&record, {1.0, 2.0}), 1);
  EXPECT_EQ(derivative(nullptr, {1.0}), 1);
  CRSData other;
  other.ReadyForEvaluation = true;
  EXPECT_EQ(derivative(&other, {}), 1);
}

}  // namespace
}  // namespace Tarvane::Plexura::PXROM
