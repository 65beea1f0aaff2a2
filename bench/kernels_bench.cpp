// Every kernel with a thousand samples of six inputs: many points by a prepared model in its exact
// mode, and one point by an evaluator, against the literal program in the same run. Ends with the
// ratios literal / library.

#include <benchmark/benchmark.h>

#include <memory>
#include <string>
#include <vector>

#include "models.h"
#include "pxrom/batch.h"
#include "ratio_report.h"
#include "reference/gaussian_process_literal.h"
#include "reference/kernel_local_literal.h"
#include "reference/kriging_literal.h"

namespace {

using namespace models;

constexpr int kSamples = 1000;
constexpr int kInputs = 6;
constexpr int kRows = 128;

/// The cases, all of which have the same goal.
std::vector<std::string> names;

template <class Evaluator, class Record>
void Register(const std::string& name, const Record& made,
              int (*literal)(const Record&, const std::vector<double>&, double&)) {
  names.push_back(name);
  const auto record = std::make_shared<Record>(made);
  auto points = std::make_shared<std::vector<std::vector<double>>>();
  auto table = std::make_shared<std::vector<double>>();
  Numbers numbers;
  for (int row = 0; row < kRows; ++row) {
    points->push_back(numbers(kInputs, -1.0, 1.0));
    table->insert(table->end(), points->back().begin(), points->back().end());
  }
  CFittingCandidates list;
  list.GenerateCandidateFromCRSData(record.get());
  CDiscreteCombinations model;
  FillModel(list, kInputs, model);
  auto prepared = std::make_shared<CPreparedModel>();
  CPreparedModel::Prepare(model, {}, *prepared);

  const auto add = [&](const std::string& program, auto evaluateAll) {
    benchmark::RegisterBenchmark((program + "/" + name).c_str(), [=](benchmark::State& state) {
      for (auto _ : state) evaluateAll();
      state.SetItemsProcessed(state.iterations() * kRows);
    });
  };
  const auto onePointAfterTheOther = [=](auto evaluate) {
    return [=] {
      double y = 0.0;
      for (const std::vector<double>& x : *points) {
        benchmark::DoNotOptimize(evaluate(x, y));
        benchmark::DoNotOptimize(y);
      }
    };
  };
  const auto literalValues = onePointAfterTheOther(
      [=](const std::vector<double>& x, double& y) { return literal(*record, x, y); });
  add("batch/literal", literalValues);
  add("batch/library", [=] {
    std::vector<double> values(kRows);
    prepared->Evaluate(table->data(), kRows, PrecisionExact, values.data(), nullptr, nullptr);
    benchmark::DoNotOptimize(values.data());
  });
  add("single/literal", literalValues);
  add("single/library", onePointAfterTheOther([=](const std::vector<double>& x, double& y) {
        return Evaluator().EvaluateResponseSurface(record.get(), x, y);
      }));
}

void RegisterKriging() {
  const char* const kernels[] = {"",          "exponential", "gaussian",     "linear",
                                 "spherical", "cubic",       "multiquadric", "spline",
                                 "matern52",  "parabolic",   "bessel",       "sinc"};
  for (int type = CorrExponential; type <= CorrSinc; ++type) {
    Register<CKrigingEvaluator>(
        std::string("kriging, ") + kernels[type],
        Kriging(kSamples, kInputs, static_cast<E_KringingCorrelationFunctionType>(type)),
        &literal::EvaluateKriging);
  }
}

void RegisterGaussianProcess() {
  const char* const kernels[] = {"",
                                 "matern 1/2",
                                 "matern 3/2",
                                 "matern 5/2",
                                 "gaussian",
                                 "rational quadratic",
                                 "generalised exponential",
                                 "constant",
                                 "thin plate spline",
                                 "linear",
                                 "cubic",
                                 "quintic",
                                 "multiquadric",
                                 "inverse multiquadric",
                                 "inverse quadratic"};
  for (int function = CovMatern12; function <= CovInverseQuadratic; ++function) {
    CGaussianProcessData record = GaussianProcess(kSamples, kInputs, {function});
    record.SavePredictorError = false;  // else the literal program checks half a million elements
    record.InverseFactor.clear();
    Register<CGaussianProcessEvaluator>(std::string("gaussian process, ") + kernels[function],
                                        record, &literal::EvaluateGaussianProcess);
  }
}

void RegisterKernelLocal() {
  for (const auto& [type, kernel] :
       {std::pair(SVRKernLinear, "linear"), std::pair(SVRKernQuadratic, "quadratic"),
        std::pair(SVRKernGaussian, "gaussian"), std::pair(SVRKernSigmoid, "sigmoid"),
        std::pair(SVRKernExponential, "exponential"),
        std::pair(SVRKernEpanechnikov, "epanechnikov")}) {
    Register<CSVREvaluator>(std::string("support vectors, ") + kernel,
                            SupportVector(kSamples, kInputs, type),
                            &literal::EvaluateSupportVector);
  }
  for (const auto& [type, kernel] :
       {std::pair(LBFGaussian, "gaussian"), std::pair(LBFCompact, "compact"),
        std::pair(LBFCubic, "cubic"), std::pair(LBFSinc, "sinc"),
        std::pair(LBFRational, "rational"), std::pair(LBFTanh, "tanh")}) {
    Register<CLBFEvaluator>(std::string("linear basis, ") + kernel,
                            LinearBasis(kSamples, kInputs, type), &literal::EvaluateLinearBasis);
  }
}

}  // namespace

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  RegisterKriging();
  RegisterGaussianProcess();
  RegisterKernelLocal();
  RatioReport report;
  benchmark::RunSpecifiedBenchmarks(&report);
  report.Print("batch", "1,000 samples, batch, exact: per point", {6.0, 0.0, names});
  report.Print("single", "1,000 samples, single point", {3.0, 0.0, names});
  return 0;
}
