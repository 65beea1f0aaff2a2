// One prediction of a full quadratic in ten inputs (66 terms), plain and with its error, and its
// derivative, against the literal program in the same run. Ends with the ratios literal / library.

#include <benchmark/benchmark.h>

#include <random>
#include <string>
#include <vector>

#include "pxrom/regression.h"
#include "ratio_report.h"
#include "reference/regression_literal.h"

namespace {

using namespace Tarvane::Plexura::PXROM;

constexpr int kInputs = 10;
constexpr int kSamples = 200;

void AddTerm(std::vector<RegTerm*>& terms, RegTerm* term, std::vector<int> indices, double c) {
  term->SetUsedInpVarIdx(static_cast<int>(indices.size()), indices.data());
  term->SetParamVal(1, &c);
  terms.push_back(term);
}

CQRSData MakeRecord(E_QRSTransformationType input, E_QRSTransformationType output) {
  std::mt19937 random(7U);
  std::uniform_real_distribution<double> uniform(-0.1, 0.1);
  std::vector<RegTerm*> terms;
  AddTerm(terms, new ConstTerm, {}, 1.0);
  for (int i = 0; i < kInputs; ++i) AddTerm(terms, new LinearTerm, {i}, uniform(random));
  for (int i = 0; i < kInputs; ++i) {
    AddTerm(terms, new PureQuadTerm, {i, i}, uniform(random));
    for (int j = i + 1; j < kInputs; ++j) {
      AddTerm(terms, new CrossQuadTerm, {i, j}, uniform(random));
    }
  }
  CQRSData record;
  record.SetRegTerm(terms.data(), static_cast<int>(terms.size()));
  for (RegTerm* term : terms) delete term;
  record.NumberOfInputVariables = kInputs;
  record.NumberOfSamples = kSamples;
  record.InputScaleSlopes.assign(kInputs, 0.25);
  record.InputScaleIntercepts.assign(kInputs, 0.5);
  record.OutputScaleSlope = 2.0;
  record.OutputScaleIntercept = 0.5;
  record.ReadyForEvaluation = true;
  record.InputTransformType = input;
  record.InputTransformValues.assign(kInputs, 2.0);
  record.InputLambdas.assign(kInputs, 0.5);
  record.OutputTransformType = output;
  record.OutputTransformValue = 2.0;
  record.OutputLambda = 0.5;
  record.Sigma2 = 0.25;
  record.InvXtX.assign(terms.size(), std::vector<double>(terms.size()));
  for (auto& row : record.InvXtX) {
    for (double& value : row) value = uniform(random);
  }
  return record;
}

std::vector<double> MakePoint() {
  std::mt19937 random(11U);
  std::uniform_real_distribution<double> uniform(1.0, 3.0);
  std::vector<double> x(kInputs);
  for (double& value : x) value = uniform(random);
  return x;
}

void LiteralValue(benchmark::State& state, const CQRSData& record) {
  const literal::Surface surface(record);
  const std::vector<double> x = MakePoint();
  double y = 0.0;
  for (auto _ : state) {
    benchmark::DoNotOptimize(literal::EvaluateRegression(surface, x, y));
    benchmark::DoNotOptimize(y);
  }
}

void LibraryValue(benchmark::State& state, const CQRSData& record) {
  const CQRSEvaluator evaluator;
  const std::vector<double> x = MakePoint();
  double y = 0.0;
  for (auto _ : state) {
    benchmark::DoNotOptimize(evaluator.EvaluateResponseSurface(&record, x, y));
    benchmark::DoNotOptimize(y);
  }
}

void LiteralError(benchmark::State& state, const CQRSData& record) {
  const literal::Surface surface(record);
  const std::vector<double> x = MakePoint();
  double y = 0.0;
  double error = 0.0;
  for (auto _ : state) {
    benchmark::DoNotOptimize(literal::EvaluateRegression(surface, x, y, error));
    benchmark::DoNotOptimize(error);
  }
}

void LibraryError(benchmark::State& state, const CQRSData& record) {
  const CQRSEvaluator evaluator;
  const std::vector<double> x = MakePoint();
  double y = 0.0;
  double error = 0.0;
  for (auto _ : state) {
    benchmark::DoNotOptimize(evaluator.EvaluateResponseSurface(&record, x, y, error));
    benchmark::DoNotOptimize(error);
  }
}

void LiteralDerivative(benchmark::State& state, const CQRSData& record) {
  const literal::Surface surface(record);
  const std::vector<double> x = MakePoint();
  std::vector<double> gradient;
  for (auto _ : state) {
    benchmark::DoNotOptimize(literal::EvaluateRegressionDerivative(surface, x, gradient));
    benchmark::DoNotOptimize(gradient.data());
  }
}

void LibraryDerivative(benchmark::State& state, const CQRSData& record) {
  const CQRSEvaluator evaluator;
  const std::vector<double> x = MakePoint();
  std::vector<double> gradient;
  for (auto _ : state) {
    benchmark::DoNotOptimize(
        evaluator.EvaluateResponseSurfaceDerivativeWrtInputVariables(&record, x, gradient));
    benchmark::DoNotOptimize(gradient.data());
  }
}

using Body = void (*)(benchmark::State&, const CQRSData&);

struct Case {
  const char* name;
  E_QRSTransformationType input;
  E_QRSTransformationType output;
};

constexpr Case kCases[] = {
    {"logarithms", TransformLogE, TransformLogE},
    {"roots and logarithm", TransformSquare, TransformLogE},
    {"Box-Cox", TransformBox, TransformBox},
    {"plain", TransformNone, TransformNone},
};

void Register(const std::string& kind, const Case& test, Body literalBody, Body libraryBody) {
  for (const auto& [program, body] :
       {std::pair{"literal", literalBody}, {"library", libraryBody}}) {
    const std::string name = kind + "/" + program + "/" + test.name;
    benchmark::RegisterBenchmark(name.c_str(), [body = body, test](benchmark::State& state) {
      body(state, MakeRecord(test.input, test.output));
    });
  }
}

}  // namespace

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  for (const Case& test : kCases) {
    Register("value", test, &LiteralValue, &LibraryValue);
    Register("error", test, &LiteralError, &LibraryError);
    Register("derivative", test, &LiteralDerivative, &LibraryDerivative);
  }
  RatioReport report;
  benchmark::RunSpecifiedBenchmarks(&report);
  report.Print("value", "Regression of 66 terms", {12.0});
  report.Print("error", "Regression of 66 terms and error");
  report.Print("derivative", "Derivative of a regression of 66 terms");
  return 0;
}
