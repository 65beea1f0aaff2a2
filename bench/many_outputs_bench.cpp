// Ten outputs of one model against ten models of one output each, in the same run: outputs that
// were fitted together, with one kernel and one matrix of errors, and outputs that have only their
// samples in common. Every benchmark does all points in each iteration; items are points.

#include <benchmark/benchmark.h>

#include <memory>
#include <string>
#include <vector>

#include "models.h"
#include "pxrom/batch.h"
#include "ratio_report.h"

namespace {

using namespace models;

constexpr int kRows = 512;
constexpr int kInputs = 6;
constexpr int kOutputs = 10;

/// One surface for each output, of `n` samples that all of them have.
std::vector<CFittingCandidates> Lists(int n, bool haveOneKernel) {
  Numbers numbers;
  std::vector<CFittingCandidates> lists(kOutputs);
  for (CFittingCandidates& list : lists) {
    CKrigingData record = Kriging(n, kInputs, CorrGaussian);
    record.CorrelationCoefficients = numbers(n, -1.0, 1.0);
    if (!haveOneKernel) {
      record.CorrelationKernels = numbers(kInputs, 0.1, 1.0);
      for (auto& row : record.InvC) row[0] = numbers(1, -1.0, 1.0)[0];
    }
    list.GenerateCandidateFromCRSData(&record);
  }
  return lists;
}

CPreparedModel Prepared(const std::vector<CFittingCandidates>& lists) {
  CDiscreteCombinations model;
  FillModel(lists, kInputs, model);
  CPreparedModel prepared;
  CPreparedModel::Prepare(model, {}, prepared);
  return prepared;
}

void Register(const std::string& name, const std::vector<CPreparedModel>& models,
              E_PrecisionMode mode, bool withErrors) {
  Numbers numbers;
  auto points = std::make_shared<std::vector<double>>(numbers(kRows * kInputs, -1.0, 1.0));
  benchmark::RegisterBenchmark(name.c_str(), [=](benchmark::State& state) {
    std::vector<double> values(kRows * kOutputs);
    std::vector<double> errors(kRows * kOutputs);
    for (auto _ : state) {
      for (const CPreparedModel& model : models) {
        model.Evaluate(points->data(), kRows, mode, values.data(),
                       withErrors ? errors.data() : nullptr, nullptr);
        benchmark::DoNotOptimize(values.data());
        benchmark::DoNotOptimize(errors.data());
      }
    }
    state.SetItemsProcessed(state.iterations() * kRows);
  });
}

void RegisterAll(const std::string& kind, bool haveOneKernel) {
  for (const int n : {50, 200, 1000}) {
    const std::vector<CFittingCandidates> lists = Lists(n, haveOneKernel);
    const std::vector<CPreparedModel> together = {Prepared(lists)};
    std::vector<CPreparedModel> apart;
    for (const CFittingCandidates& list : lists) apart.push_back(Prepared({list}));
    const struct {
      const char* name;
      E_PrecisionMode mode;
      bool withErrors;
    } forms[] = {{"exact", PrecisionExact, false},
                 {"fast", PrecisionFast, false},
                 {"with errors", PrecisionExact, true}};
    for (const auto& form : forms) {
      const std::string name = std::string(form.name) + " n" + std::to_string(n);
      Register(kind + "/library/" + name, together, form.mode, form.withErrors);
      Register(kind + "/apart/" + name, apart, form.mode, form.withErrors);
    }
  }
}

}  // namespace

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  RegisterAll("one_kernel", true);
  RegisterAll("own_kernels", false);
  RatioReport report;
  benchmark::RunSpecifiedBenchmarks(&report);
  report.Print("one_kernel", "Ten outputs of one kernel, against ten models", {}, "apart");
  report.Print("own_kernels", "Ten outputs of ten kernels, against ten models", {}, "apart");
  return 0;
}
