// Many points: a prepared model in its exact and its fast mode against the literal program, point
// by point, in the same run. Every benchmark does all points in each iteration. Ends with the
// ratios literal / library; items are predictions times samples, or times terms for a regression.

#include <benchmark/benchmark.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "models.h"
#include "peers/peer.h"
#include "pxrom/batch.h"
#include "ratio_report.h"
#include "reference/evaluate_literal.h"
#include "reference/gaussian_process_literal.h"
#include "reference/kernel_local_literal.h"
#include "reference/kriging_literal.h"
#include "reference/regression_literal.h"

namespace {

using namespace models;

constexpr int kRows = 512;

using Points = std::vector<std::vector<double>>;

/// What the literal program does at one point.
using Literal = std::function<void(const std::vector<double>&)>;

/// A prepared model's answers at all points, without errors.
std::vector<double> Answers(const CPreparedModel& prepared, const std::vector<double>& table) {
  std::vector<double> values(kRows);
  prepared.Evaluate(table.data(), kRows, PrecisionExact, values.data(), nullptr, nullptr);
  return values;
}

/// One prediction asks `items` samples, or terms. `kriging` is the record that a peer gets too, or
/// null.
void Register(const std::string& kind, const std::string& name, const CFittingCandidates& list,
              int d, int items, bool withErrors, const Literal& literal,
              const CKrigingData* kriging = nullptr) {
  Numbers numbers;
  auto points = std::make_shared<Points>();
  for (int r = 0; r < kRows; ++r) points->push_back(numbers(d, -1.0, 1.0));
  const auto finish = [items](benchmark::State& state) {
    state.SetItemsProcessed(state.iterations() * kRows * items);
  };
  auto model = std::make_shared<CDiscreteCombinations>();
  FillModel(list, d, *model);
  auto prepared = std::make_shared<CPreparedModel>();
  CPreparedModel::Prepare(*model, {}, *prepared);
  auto table = std::make_shared<std::vector<double>>();
  for (const auto& row : *points) table->insert(table->end(), row.begin(), row.end());

  std::shared_ptr<peers::Peer> peer;
  if (kriging != nullptr) peer = peers::OpenTurnsKriging(*kriging);
  if (peer) peers::Check(*peer, *kriging, *points, Answers(*prepared, *table));

  const std::string modes[] = {"exact_", "fast_"};
  for (const E_PrecisionMode mode : {PrecisionExact, PrecisionFast}) {
    benchmark::RegisterBenchmark((modes[mode] + kind + "/literal/" + name).c_str(),
                                 [=](benchmark::State& state) {
                                   for (auto _ : state) {
                                     for (const auto& x : *points) literal(x);
                                   }
                                   finish(state);
                                 });
    benchmark::RegisterBenchmark(
        (modes[mode] + kind + "/library/" + name).c_str(), [=](benchmark::State& state) {
          std::vector<double> values(kRows);
          std::vector<double> errors(kRows);
          std::vector<int> statuses(kRows);
          for (auto _ : state) {
            prepared->Evaluate(table->data(), kRows, mode, values.data(),
                               withErrors ? errors.data() : nullptr, statuses.data());
            benchmark::DoNotOptimize(values.data());
            benchmark::DoNotOptimize(errors.data());
          }
          finish(state);
        });
    if (!peer) continue;
    benchmark::RegisterBenchmark((modes[mode] + kind + "/" + peer->Name() + "/" + name).c_str(),
                                 [=](benchmark::State& state) {
                                   for (auto _ : state)
                                     benchmark::DoNotOptimize(peer->EvaluateAll());
                                   finish(state);
                                 });
  }
}

CFittingCandidates ListOf(const CRSData& record) {
  CFittingCandidates list;
  list.GenerateCandidateFromCRSData(&record);
  return list;
}

template <class Record>
Literal Value(const Record& record,
              int (*evaluate)(const Record&, const std::vector<double>&, double&)) {
  return [evaluate, copy = std::make_shared<Record>(record)](const std::vector<double>& x) {
    double y = 0.0;
    benchmark::DoNotOptimize(evaluate(*copy, x, y));
    benchmark::DoNotOptimize(y);
  };
}

void RegisterKriging() {
  const auto add = [](const std::string& name, int n, int d,
                      E_KringingCorrelationFunctionType type) {
    const CKrigingData record = Kriging(n, d, type);
    Register("kriging", name, ListOf(record), d, n, false,
             Value<CKrigingData>(record, &literal::EvaluateKriging),
             type == CorrGaussian ? &record : nullptr);
  };
  for (const int n : {50, 200, 1000}) {
    for (const int d : {2, 6, 10}) {
      add("gaussian n" + std::to_string(n) + " d" + std::to_string(d), n, d, CorrGaussian);
    }
  }
  const char* const names[] = {"",          "exponential", "gaussian",     "linear",
                               "spherical", "cubic",       "multiquadric", "spline",
                               "matern52",  "parabolic",   "bessel",       "sinc"};
  for (int type = CorrExponential; type <= CorrSinc; ++type) {
    if (type == CorrGaussian) continue;
    add(names[type], 200, 6, static_cast<E_KringingCorrelationFunctionType>(type));
  }
  for (const int n : {50, 200, 1000}) {
    auto record = std::make_shared<CKrigingData>(Kriging(n, 6, CorrGaussian));
    Register("kriging_error", "n" + std::to_string(n) + " d6", ListOf(*record), 6, n, true,
             [record](const std::vector<double>& x) {
               double y = 0.0;
               double error = 0.0;
               benchmark::DoNotOptimize(literal::EvaluateKriging(*record, x, y, error));
               benchmark::DoNotOptimize(error);
             });
  }
}

void RegisterGaussianProcess() {
  const std::pair<const char*, std::vector<int>> kernels[] = {
      {"gaussian", {CovGaussian}},
      {"matern 1/2", {CovMatern12}},
      {"matern 3/2", {CovMatern32}},
      {"matern 5/2", {CovMatern52}},
      {"rational quadratic", {CovRationalQuadratic}},
      {"gaussian by matern 5/2", {CovGaussian, CovMatern52}},
      {"thin plate spline", {CovThinPlateSpline}},
      {"cubic", {CovCubic}},
  };
  for (const auto& [name, functions] : kernels) {
    const CGaussianProcessData record = GaussianProcess(200, 6, functions);
    Register("gaussian_process", name, ListOf(record), 6, 200, false,
             Value<CGaussianProcessData>(record, &literal::EvaluateGaussianProcess));
  }
  const auto record =
      std::make_shared<CGaussianProcessData>(GaussianProcess(200, 6, {CovMatern52}));
  Register("gaussian_process_error", "n200 d6", ListOf(*record), 6, 200, true,
           [record](const std::vector<double>& x) {
             double y = 0.0;
             double error = 0.0;
             benchmark::DoNotOptimize(literal::EvaluateGaussianProcess(*record, x, y, error));
             benchmark::DoNotOptimize(error);
           });
}

void RegisterKernelLocal() {
  for (const auto& [type, name] :
       {std::pair(SVRKernGaussian, "gaussian"), std::pair(SVRKernQuadratic, "quadratic"),
        std::pair(SVRKernSigmoid, "sigmoid")}) {
    const CSVRData record = SupportVector(200, 6, type);
    Register("support_vector", name, ListOf(record), 6, 200, false,
             Value(record, &literal::EvaluateSupportVector));
  }
  for (const auto& [type, name] :
       {std::pair(LBFGaussian, "gaussian"), std::pair(LBFCompact, "compact"),
        std::pair(LBFRational, "rational"), std::pair(LBFTanh, "tanh")}) {
    const CLBFData record = LinearBasis(200, 6, type);
    Register("linear_basis", name, ListOf(record), 6, 200, false,
             Value(record, &literal::EvaluateLinearBasis));
  }
}

void RegisterRegression() {
  const CQRSData record = Regression(200, 10);
  const auto surface = std::make_shared<literal::Surface>(record);
  Register("regression", "66 terms", ListOf(record), 10, 66, false,
           [surface](const std::vector<double>& x) {
             double y = 0.0;
             benchmark::DoNotOptimize(literal::EvaluateRegression(*surface, x, y));
             benchmark::DoNotOptimize(y);
           });
  Register("regression_error", "66 terms", ListOf(record), 10, 66, true,
           [surface](const std::vector<double>& x) {
             double y = 0.0;
             double error = 0.0;
             benchmark::DoNotOptimize(literal::EvaluateRegression(*surface, x, y, error));
             benchmark::DoNotOptimize(error);
           });
}

void RegisterCrossValidated() {
  constexpr int d = 6;
  const CFittingCandidates list = CrossValidated(d);
  auto model = std::make_shared<CDiscreteCombinations>();
  FillModel(list, d, *model);
  auto combinations = std::make_shared<literal::Combinations>(*model);
  Register("cross_validated", "3 families by 10 folds", list, d, 3 * 200 + 30 * 180, true,
           [model, combinations](const std::vector<double>& x) {
             std::vector<std::pair<std::string, double>> point;
             for (std::size_t i = 0; i < x.size(); ++i) {
               point.emplace_back("x" + std::to_string(i), x[i]);
             }
             std::vector<std::pair<std::string, double>> outputs;
             std::vector<std::pair<std::string, double>> errors;
             benchmark::DoNotOptimize(combinations->Evaluate({}, point, outputs, errors));
           });
}

}  // namespace

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  RegisterKriging();
  RegisterGaussianProcess();
  RegisterKernelLocal();
  RegisterRegression();
  RegisterCrossValidated();
  RatioReport report;
  benchmark::RunSpecifiedBenchmarks(&report);
  const std::vector<std::string> usual = {"gaussian n200 d6"};
  const std::vector<std::string> errors = {"n200 d6"};
  const std::vector<std::string> quadratic = {"66 terms"};
  const struct {
    const char* kind;
    const char* title;
    Goal exact;
    Goal fast;
  } tables[] = {
      {"kriging", "Kriging", {6.0, 0.0, usual}, {15.0, 0.0, usual}},
      {"kriging_error", "Kriging and error", {10.0, 0.0, errors}, {10.0, 0.0, errors}},
      {"gaussian_process", "Gaussian process", {}, {}},
      {"gaussian_process_error", "Gaussian process and error", {}, {}},
      {"support_vector", "support vectors", {}, {}},
      {"linear_basis", "linear basis", {}, {}},
      {"regression", "regression", {20.0, 0.0, quadratic}, {20.0, 0.0, quadratic}},
      {"regression_error", "regression and error", {}, {}},
      {"cross_validated", "cross-validated ensemble", {}, {}},
  };
  for (const auto& table : tables) {
    report.Print(std::string("exact_") + table.kind, std::string("Batch, exact: ") + table.title,
                 table.exact);
    report.Print(std::string("fast_") + table.kind, std::string("Batch, fast: ") + table.title,
                 table.fast);
  }
  return 0;
}
