// Predicted errors of many points as what most of their time is: a triangular matrix times a
// matrix. The yardstick is that product alone, by dtrmm of OpenBLAS. Other programs predict with
// the same process: values and standard deviations at all points, on one thread. Each benchmark
// does all points in each iteration; items are points.

#include <benchmark/benchmark.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "models.h"
#include "peak.h"
#include "peers/error_peer.h"
#include "pxrom/batch.h"
#include "ratio_report.h"

namespace {

using namespace models;

constexpr int kPoints = 2000;
constexpr int kInputs = 6;

struct Answers {
  std::vector<double> values = std::vector<double>(kPoints);
  std::vector<double> errors = std::vector<double>(kPoints);
};

peers::Process ProcessOf(int n) {
  Numbers numbers;
  peers::Process process;
  process.inputs = kInputs;
  process.length = 1.0;
  process.noise = 0.01;
  process.samples = numbers(n * kInputs, -1.0, 1.0);
  process.outputs = numbers(n, -1.0, 1.0);
  process.points = numbers(kPoints * kInputs, -1.0, 1.0);
  return process;
}

CKrigingData RecordOf(const peers::Process& process, const peers::FittedProcess& fitted) {
  const auto rowsOf = [](const std::vector<double>& values, std::size_t columns) {
    std::vector<std::vector<double>> rows;
    for (auto at = values.begin(); at != values.end(); at += static_cast<std::ptrdiff_t>(columns)) {
      rows.emplace_back(at, at + static_cast<std::ptrdiff_t>(columns));
    }
    return rows;
  };
  CKrigingData record;
  record.NumberOfInputVariables = kInputs;
  record.NumberOfSamples = static_cast<int>(process.Samples());
  record.InputSamples = rowsOf(process.samples, kInputs);
  record.OutputSamples = process.outputs;
  record.InputScaleSlopes.assign(kInputs, 1.0);
  record.InputScaleIntercepts.assign(kInputs, 0.0);
  record.OutputScaleSlope = 1.0;
  record.OutputScaleIntercept = 0.0;
  record.ReadyForEvaluation = true;
  record.PolynomialType = PolyNone;
  record.CorrelationFunctionType = CorrGaussian;
  record.CorrelationKernels.assign(kInputs, 0.5 / process.length / process.length);
  record.CorrelationCoefficients = fitted.weights;
  record.SavePredictorError = true;
  record.Sigma2 = 1.0;
  record.InvC = rowsOf(fitted.inverseFactor, process.Samples());
  // Without a trend these only have to be there.
  record.InvG = {{0.0}};
  record.Ft = {{0.0}};
  return record;
}

/// Ends the program if a peer has another model.
void Compare(peers::ErrorPeer& peer, const Answers& ours) {
  Answers answers;
  peer.Predict(answers.values, answers.errors);
  for (std::size_t p = 0; p < kPoints; ++p) {
    if (std::fabs(answers.values[p] - ours.values[p]) <= 1e-9 &&
        std::fabs(answers.errors[p] - ours.errors[p]) <= 1e-9) {
      continue;
    }
    std::fprintf(stderr, "%s finds %.17g and %.17g instead of %.17g and %.17g\n", peer.Name(),
                 answers.values[p], answers.errors[p], ours.values[p], ours.errors[p]);
    std::exit(1);
  }
}

void Add(const std::string& name, const std::function<void()>& once) {
  benchmark::RegisterBenchmark(name.c_str(), [once](benchmark::State& state) {
    for (auto _ : state) once();
    state.SetItemsProcessed(state.iterations() * kPoints);
  })->UseRealTime();  // a peer may run in a process of its own
}

void Register(int n) {
  const peers::Process process = ProcessOf(n);
  const peers::FittedProcess fitted = peers::Fit(process);
  const CKrigingData record = RecordOf(process, fitted);
  CFittingCandidates list;
  list.GenerateCandidateFromCRSData(&record);
  CDiscreteCombinations model;
  FillModel(list, kInputs, model);
  auto prepared = std::make_shared<CPreparedModel>();
  CPreparedModel::Prepare(model, {}, *prepared);
  auto points = std::make_shared<std::vector<double>>(process.points);
  auto answers = std::make_shared<Answers>();
  const auto evaluate = [=](E_PrecisionMode mode) {
    prepared->Evaluate(points->data(), kPoints, mode, answers->values.data(),
                       answers->errors.data(), nullptr);
  };
  evaluate(PrecisionExact);

  const std::string name = "/n" + std::to_string(n) + " d" + std::to_string(kInputs);
  auto triangle = std::make_shared<std::vector<double>>(fitted.inverseFactor);
  // Its products with itself would grow beyond all numbers, or become denormal.
  auto right = std::make_shared<std::vector<double>>(process.Samples() * kPoints, 0.0);
  const std::shared_ptr<peers::ErrorPeer> others[] = {peers::OpenTurnsErrors(process),
                                                      peers::ScikitLearn(process)};
  for (const auto& peer : others) {
    if (peer) Compare(*peer, *answers);
  }
  for (const std::string kind : {"exact_errors", "fast_errors"}) {
    const E_PrecisionMode mode = kind == "exact_errors" ? PrecisionExact : PrecisionFast;
    Add(kind + "/library" + name, [=] { evaluate(mode); });
    Add(kind + "/dtrmm" + name,
        [=] { peers::MultiplyTriangle(*triangle, static_cast<std::size_t>(n), *right); });
    for (const auto& peer : others) {
      if (peer)
        Add(kind + "/" + peer->Name() + name,
            [=] { peer->Predict(answers->values, answers->errors); });
    }
    if (!peak::IsKnown()) continue;
    const double products = 0.5 * n * (n + 1.0) * kPoints;
    const auto steps = static_cast<std::size_t>(products / static_cast<double>(peak::kPerStep));
    Add(kind + "/peak" + name, [=] { benchmark::DoNotOptimize(peak::Run(steps)); });
  }
}

}  // namespace

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  if (!peers::HasOpenBlas()) return 0;
  std::vector<std::string> large;
  for (const int n : {200, 1000, 2000, 4000}) {
    Register(n);
    if (n > 200) large.push_back("n" + std::to_string(n) + " d" + std::to_string(kInputs));
  }
  RatioReport report;
  benchmark::RunSpecifiedBenchmarks(&report);
  const std::vector<std::pair<std::string, double>> others = {{"OpenTURNS", 2.0},
                                                              {"scikit-learn", 3.0}};
  report.Print("exact_errors", "Batch, exact: errors", {1 / 2.2, 0.0, large, others}, "dtrmm");
  report.Print("fast_errors", "Batch, fast: errors", {1 / 1.2, 0.0, large, others}, "dtrmm");
  return 0;
}
