// Evaluation by names, and of a cross-validated ensemble, against the literal program in the same
// run; ends with the ratios, and the number of allocations per call.

#include <benchmark/benchmark.h>

#include <atomic>
#include <cstdlib>
#include <new>
#include <string>

#include "models.h"
#include "pxrom/constant.h"
#include "ratio_report.h"
#include "reference/evaluate_literal.h"

namespace {

std::atomic<long long> allocationCount{0};

}  // namespace

// Not inlined, so that the compiler doesn't take malloc and free for a mismatched pair.
[[gnu::noinline]] void* operator new(std::size_t size) {
  allocationCount.fetch_add(1, std::memory_order_relaxed);
  if (void* const memory = std::malloc(size)) return memory;
  throw std::bad_alloc();
}
[[gnu::noinline]] void operator delete(void* memory) noexcept { std::free(memory); }
[[gnu::noinline]] void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }

namespace {

using namespace Tarvane::Plexura::PXROM;
using NamedInts = std::vector<std::pair<std::string, int>>;
using NamedValues = std::vector<std::pair<std::string, double>>;

constexpr int kInputs = 12;
constexpr int kOutputs = 5;
constexpr int kValidatedInputs = 6;

CConstantData Constant(double value, int inputs) {
  CConstantData data;
  data.NumberOfInputVariables = inputs;
  data.ReadyForEvaluation = true;
  data.SetConstantValue(value);
  return data;
}

/// Twelve inputs, whose order by rank is not the one of their IDs, and five constant outputs.
void MakeStudy(CDiscreteCombinations& study) {
  for (int i = 0; i < kInputs; ++i) {
    study.RegisterParameter("x" + std::to_string(i), CausalityInput, ContinuousNotManufacturable,
                            true);
  }
  std::vector<std::pair<std::string, CFittingCandidates*>> outputs;
  for (int o = 0; o < kOutputs; ++o) {
    const std::string id = "y" + std::to_string(o);
    study.RegisterParameter(id, CausalityOutput, ContinuousNotManufacturable, true);
    auto* const list = new CFittingCandidates;
    const CConstantData constant = Constant(o, kInputs);
    list->GenerateCandidateFromCRSData(&constant);
    outputs.emplace_back(id, list);
  }
  study.RegisterDiscreteCombination({}, outputs);
}

NamedValues Point(int inputs, int stride) {
  NamedValues point;
  for (int i = 0; i < inputs; ++i) {
    point.emplace_back("x" + std::to_string(i * stride % inputs), 0.1 * i);
  }
  return point;
}

template <class Model>
void ByName(benchmark::State& state, const Model& model, const NamedValues& point) {
  NamedValues outputs;
  model.Evaluate(NamedInts(), point, outputs);
  const long long before = allocationCount;
  for (auto _ : state) {
    benchmark::DoNotOptimize(model.Evaluate(NamedInts(), point, outputs));
  }
  state.counters["allocations"] =
      static_cast<double>(allocationCount - before) / static_cast<double>(state.iterations());
}

template <class Model>
void WithError(benchmark::State& state, const Model& model, const NamedValues& point) {
  NamedValues outputs;
  NamedValues errors;
  for (auto _ : state) {
    errors.clear();
    benchmark::DoNotOptimize(model.Evaluate(NamedInts(), point, outputs, errors));
  }
}

}  // namespace

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  CDiscreteCombinations study;
  CDiscreteCombinations validated;
  MakeStudy(study);
  models::FillModel(models::CrossValidated(kValidatedInputs), kValidatedInputs, validated);
  const literal::Combinations literalStudy(study);
  const literal::Combinations literalValidated(validated);
  // In the order of ranks, which IDs do not follow, and in no order at all.
  const std::pair<const char*, int> orders[] = {{"in the order of ranks", 1}, {"in no order", 5}};
  for (const auto& [name, stride] : orders) {
    const NamedValues point = Point(kInputs, stride);
    benchmark::RegisterBenchmark(
        (std::string("by_name/literal/") + name).c_str(),
        [&, point](benchmark::State& state) { ByName(state, literalStudy, point); });
    benchmark::RegisterBenchmark(
        (std::string("by_name/library/") + name).c_str(),
        [&, point](benchmark::State& state) { ByName(state, study, point); });
  }
  const NamedValues point = Point(kValidatedInputs, 1);
  benchmark::RegisterBenchmark(
      "cross_validated/literal/3 families by 10 folds",
      [&](benchmark::State& state) { WithError(state, literalValidated, point); });
  benchmark::RegisterBenchmark(
      "cross_validated/library/3 families by 10 folds",
      [&](benchmark::State& state) { WithError(state, validated, point); });
  RatioReport report;
  benchmark::RunSpecifiedBenchmarks(&report);
  report.Print("by_name", "Evaluate by name", {0.0, 350.0});
  const auto allocations = [&](const char* program) {
    return report.Counter(std::string("by_name/") + program + "/in no order", "allocations");
  };
  RatioReport::Row("Evaluate by name, allocations per call",
                   RatioReport::Number(allocations("library")),
                   RatioReport::Number(allocations("literal")), "", "",
                   RatioReport::Reached("0", allocations("library") == 0.0));
  report.Print("cross_validated", "Cross-validated ensemble", {3.0});
}
