// One Kriging prediction, and one with its error, against the literal program in the same run. Ends
// with the ratios literal / library and their geometric means.

#include <benchmark/benchmark.h>

#include <random>
#include <string>
#include <vector>

#include "literal/kriging_literal.h"
#include "pxrom/kriging.h"
#include "ratio_report.h"

namespace {

using namespace Tarvane::Plexura::PXROM;

std::vector<double> Uniform(std::mt19937& random, int count, double low, double high) {
  std::uniform_real_distribution<double> distribution(low, high);
  std::vector<double> values(static_cast<std::size_t>(count));
  for (double& value : values) value = distribution(random);
  return values;
}

// A Gaussian surface with a linear trend; InvC is lower triangular, as the inverse of a Cholesky
// factor is.
CKrigingData MakeRecord(int n, int d) {
  std::mt19937 random(7U);
  CKrigingData record;
  record.NumberOfInputVariables = d;
  record.NumberOfSamples = n;
  for (int s = 0; s < n; ++s) record.InputSamples.push_back(Uniform(random, d, 0.0, 10.0));
  record.OutputSamples = Uniform(random, n, 0.0, 1.0);
  record.InputScaleSlopes = Uniform(random, d, 0.1, 0.2);
  record.InputScaleIntercepts = Uniform(random, d, -1.0, 1.0);
  record.OutputScaleSlope = 0.5;
  record.OutputScaleIntercept = 0.25;
  record.ReadyForEvaluation = true;
  record.PolynomialType = PolyLinear;
  record.PolynomialCoefficients = Uniform(random, d + 1, -1.0, 1.0);
  record.CorrelationFunctionType = CorrGaussian;
  record.CorrelationCoefficients = Uniform(random, n, -1.0, 1.0);
  record.CorrelationKernels = Uniform(random, d, 0.1, 1.0);
  record.SavePredictorError = true;
  record.NumberOfPolyCoeff = d + 1;
  record.Sigma2 = 2.0;
  for (int k = 0; k < n; ++k) {
    record.InvC.push_back(Uniform(random, k + 1, -1.0, 1.0));
    record.InvC.back().resize(static_cast<std::size_t>(n));
  }
  for (int k = 0; k <= d; ++k) {
    record.InvG.push_back(Uniform(random, d + 1, -1.0, 1.0));
    record.Ft.push_back(Uniform(random, n, -1.0, 1.0));
  }
  return record;
}

void LiteralValue(benchmark::State& state, CKrigingData& record, const std::vector<double>& x) {
  double y = 0.0;
  for (auto _ : state) {
    benchmark::DoNotOptimize(literal::EvaluateKriging(record, x, y));
    benchmark::DoNotOptimize(y);
  }
}

void LibraryValue(benchmark::State& state, CKrigingData& record, const std::vector<double>& x) {
  const CKrigingEvaluator evaluator;
  double y = 0.0;
  for (auto _ : state) {
    benchmark::DoNotOptimize(evaluator.EvaluateResponseSurface(&record, x, y));
    benchmark::DoNotOptimize(y);
  }
}

void LiteralError(benchmark::State& state, CKrigingData& record, const std::vector<double>& x) {
  double y = 0.0;
  double error = 0.0;
  for (auto _ : state) {
    benchmark::DoNotOptimize(literal::EvaluateKriging(record, x, y, error));
    benchmark::DoNotOptimize(error);
  }
}

void LibraryError(benchmark::State& state, CKrigingData& record, const std::vector<double>& x) {
  const CKrigingEvaluator evaluator;
  double y = 0.0;
  double error = 0.0;
  for (auto _ : state) {
    benchmark::DoNotOptimize(evaluator.EvaluateResponseSurface(&record, x, y, error));
    benchmark::DoNotOptimize(error);
  }
}

using Body = void (*)(benchmark::State&, CKrigingData&, const std::vector<double>&);

void Register(const std::string& name, Body body, int n, int d) {
  benchmark::RegisterBenchmark(name.c_str(), [body, n, d](benchmark::State& state) {
    CKrigingData record = MakeRecord(n, d);
    std::mt19937 random(11U);
    body(state, record, Uniform(random, d, 0.0, 10.0));
  });
}

}  // namespace

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  for (const int n : {50, 200, 1000}) {
    for (const int d : {2, 6, 10}) {
      const std::string size = "/n" + std::to_string(n) + "/d" + std::to_string(d);
      Register("value/literal" + size, &LiteralValue, n, d);
      Register("value/library" + size, &LibraryValue, n, d);
      Register("error/literal" + size, &LiteralError, n, d);
      Register("error/library" + size, &LibraryError, n, d);
    }
  }
  RatioReport report;
  benchmark::RunSpecifiedBenchmarks(&report);
  report.Print("value");
  report.Print("error");
  return 0;
}
