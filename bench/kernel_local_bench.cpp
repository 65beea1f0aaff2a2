// One prediction of a support vector, a moving least squares and a linear basis surface against the
// literal programs in the same run. Ends with the ratios literal / library and their means.

#include <benchmark/benchmark.h>

#include <string>
#include <vector>

#include "models.h"
#include "peers/peer.h"
#include "pxrom/linear_basis.h"
#include "pxrom/moving_least_squares.h"
#include "pxrom/support_vector.h"
#include "ratio_report.h"
#include "reference/kernel_local_literal.h"

namespace {

using namespace Tarvane::Plexura::PXROM;

constexpr int kSamples = 200;
constexpr int kInputs = 6;

// On none of the samples.
const std::vector<double> kPoint = {0.31, -0.42, 0.53, -0.64, 0.15, -0.26};

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
  const char* const names[] = {"linear",      "quadratic", "gaussian", "sigmoid", "",
                               "exponential", "",          "",         "",        "epanechnikov"};
  for (const E_SVRKernType type : {SVRKernLinear, SVRKernQuadratic, SVRKernGaussian, SVRKernSigmoid,
                                   SVRKernExponential, SVRKernEpanechnikov}) {
    const CSVRData record = models::SupportVector(kSamples, kInputs, type);
    Register<CSVRData, CSVREvaluator>("support_vector", names[type], record, kPoint,
                                      &literal::EvaluateSupportVector);
  }
  const CSVRData record = models::SupportVector(kSamples, kInputs, SVRKernGaussian);
  const std::shared_ptr<peers::Peer> peer = peers::LibsvmRegression(record);
  if (!peer) return;
  double y = 0.0;
  CSVREvaluator().EvaluateResponseSurface(&record, kPoint, y);
  peers::Check(*peer, record, {kPoint}, {y});
  benchmark::RegisterBenchmark("support_vector/libsvm/gaussian", [peer](benchmark::State& state) {
    for (auto _ : state) benchmark::DoNotOptimize(peer->EvaluateAt(0));
  });
}

void RegisterMovingLeastSquares() {
  models::Numbers numbers;
  auto record = models::Base<CMLSData>(numbers, kSamples, kInputs);
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
                                        std::string(basis.name) + ", " + weights[weight], record,
                                        kPoint, &literal::EvaluateMovingLeastSquares);
    }
  }
}

void RegisterLinearBasis() {
  const char* const names[] = {"gaussian", "compact", "cubic", "sinc", "rational", "tanh"};
  for (const E_LinearBasisFunction type :
       {LBFGaussian, LBFCompact, LBFCubic, LBFSinc, LBFRational, LBFTanh}) {
    const CLBFData record = models::LinearBasis(kSamples, kInputs, type);
    Register<CLBFData, CLBFEvaluator>("linear_basis", names[type], record, kPoint,
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
