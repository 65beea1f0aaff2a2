// One prediction of a support vector, a moving least squares and a linear basis surface against the
// literal programs in the same run. Ends with the ratios literal / library and their means.

#include <benchmark/benchmark.h>

#include <random>
#include <string>
#include <vector>

#include "literal/kernel_local_literal.h"
#include "peers/peer.h"
#include "pxrom/linear_basis.h"
#include "pxrom/moving_least_squares.h"
#include "pxrom/support_vector.h"
#include "ratio_report.h"

namespace {

using namespace Tarvane::Plexura::PXROM;

constexpr int kSamples = 200;
constexpr int kInputs = 6;

class Numbers {
 public:
  std::vector<double> operator()(int count, double low, double high) {
    std::uniform_real_distribution<double> distribution(low, high);
    std::vector<double> values(static_cast<std::size_t>(count));
    for (double& value : values) value = distribution(random_);
    return values;
  }

 private:
  std::mt19937 random_{7U};
};

// The part that all records share, and the point to predict at.
std::vector<double> Fill(CRSData& record, Numbers& numbers) {
  record.NumberOfInputVariables = kInputs;
  record.NumberOfSamples = kSamples;
  for (int s = 0; s < kSamples; ++s) record.InputSamples.push_back(numbers(kInputs, -1.0, 1.0));
  record.OutputSamples = numbers(kSamples, 0.0, 1.0);
  record.InputScaleSlopes = numbers(kInputs, 0.9, 1.1);
  record.InputScaleIntercepts = numbers(kInputs, -0.1, 0.1);
  record.OutputScaleSlope = 0.5;
  record.OutputScaleIntercept = 0.25;
  record.ReadyForEvaluation = true;
  return numbers(kInputs, -1.0, 1.0);
}

template <class Record>
using Literal = int (*)(const Record&, const std::vector<double>&, double&);

template <class Record, class Evaluator>
void Register(const std::string& kind, const std::string& name, const Record& record,
              const std::vector<double>& x, Literal<Record> literal) {
  benchmark::RegisterBenchmark((kind + "/literal/" + name).c_str(), [=](benchmark::State& state) {
    double y = 0.0;
    for (auto _ : state) {
      benchmark::DoNotOptimize(literal(record, x, y));
      benchmark::DoNotOptimize(y);
    }
  });
  benchmark::RegisterBenchmark((kind + "/library/" + name).c_str(), [=](benchmark::State& state) {
    const Evaluator evaluator;
    double y = 0.0;
    for (auto _ : state) {
      benchmark::DoNotOptimize(evaluator.EvaluateResponseSurface(&record, x, y));
      benchmark::DoNotOptimize(y);
    }
  });
}

void RegisterSupportVector() {
  Numbers numbers;
  CSVRData record;
  const std::vector<double> x = Fill(record, numbers);
  record.Alphas = numbers(kSamples, 0.0, 1.0);
  record.AlphasStar = numbers(kSamples, 0.0, 1.0);
  record.KernelArray = numbers(kInputs, 0.1, 1.0);
  const char* const names[] = {"linear",      "quadratic", "gaussian", "sigmoid", "",
                               "exponential", "",          "",         "",        "epanechnikov"};
  for (const E_SVRKernType type : {SVRKernLinear, SVRKernQuadratic, SVRKernGaussian, SVRKernSigmoid,
                                   SVRKernExponential, SVRKernEpanechnikov}) {
    record.SVRKernType = type;
    Register<CSVRData, CSVREvaluator>("support_vector", names[type], record, x,
                                      &literal::EvaluateSupportVector);
  }
  record.SVRKernType = SVRKernGaussian;
  const std::shared_ptr<peers::Peer> peer = peers::LibsvmRegression(record);
  if (!peer) return;
  double y = 0.0;
  CSVREvaluator().EvaluateResponseSurface(&record, x, y);
  peers::Check(*peer, record, {x}, {y});
  benchmark::RegisterBenchmark("support_vector/libsvm/gaussian", [peer](benchmark::State& state) {
    for (auto _ : state) benchmark::DoNotOptimize(peer->EvaluateAt(0));
  });
}

void RegisterMovingLeastSquares() {
  Numbers numbers;
  CMLSData record;
  const std::vector<double> x = Fill(record, numbers);
  record.NumberOfUsedPoints = kSamples;
  const char* const weights[] = {"constant", "gaussian", "compact", "rational", "inverse"};
  const struct {
    const char* name;
    E_PolynomialType type;
    int count;
  } bases[] = {{"constant", PolyConstant, 1},
               {"linear", PolyLinear, kInputs + 1},
               {"pure quadratic", PolyPureQuadratic, 2 * kInputs + 1},
               {"full quadratic", PolyFullQuadratic, (kInputs + 1) * (kInputs + 2) / 2}};
  for (const auto& basis : bases) {
    for (const E_WeightFunction weight : {WeightGaussian, WeightCompact, WeightInverse}) {
      record.PolynomialType = basis.type;
      record.NumberOfBasisFunctions = basis.count;
      record.WeightFunction = weight;
      Register<CMLSData, CMLSEvaluator>("moving_least_squares",
                                        std::string(basis.name) + ", " + weights[weight], record, x,
                                        &literal::EvaluateMovingLeastSquares);
    }
  }
}

void RegisterLinearBasis() {
  Numbers numbers;
  CLBFData record;
  const std::vector<double> x = Fill(record, numbers);
  record.KernelValues = numbers(kSamples, 0.5, 2.0);
  record.KernelCoefficients = numbers(kSamples, -1.0, 1.0);
  record.PolynomialType = PolyLinear;
  record.PolynomialCoefficients = numbers(kInputs + 1, -1.0, 1.0);
  const char* const names[] = {"gaussian", "compact", "cubic", "sinc", "rational", "tanh"};
  for (const E_LinearBasisFunction type :
       {LBFGaussian, LBFCompact, LBFCubic, LBFSinc, LBFRational, LBFTanh}) {
    record.BasisFunctionType = type;
    Register<CLBFData, CLBFEvaluator>("linear_basis", names[type], record, x,
                                      &literal::EvaluateLinearBasis);
  }
}

}  // namespace

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  RegisterSupportVector();
  RegisterMovingLeastSquares();
  RegisterLinearBasis();
  RatioReport report;
  benchmark::RunSpecifiedBenchmarks(&report);
  report.Print("support_vector", "Support vectors", {4.0});
  report.Print("moving_least_squares", "Moving least squares", {3.0});
  report.Print("linear_basis", "Linear basis functions", {3.0});
  return 0;
}
