// Many points: a prepared model in its exact and its fast mode against the literal program, point
// by point, in the same run. Every benchmark does all points in each iteration. Ends with the
// ratios literal / library; items are predictions times samples, or times terms for a regression.

#include <benchmark/benchmark.h>

#include <functional>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "literal/evaluate_literal.h"
#include "literal/kernel_local_literal.h"
#include "literal/kriging_literal.h"
#include "literal/regression_literal.h"
#include "pxrom/batch.h"
#include "pxrom/linear_basis.h"
#include "pxrom/support_vector.h"
#include "ratio_report.h"

namespace {

using namespace Tarvane::Plexura::PXROM;

constexpr int kRows = 512;

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

template <class Record>
Record Base(Numbers& numbers, int n, int d) {
  Record record;
  record.NumberOfInputVariables = d;
  record.NumberOfSamples = n;
  for (int s = 0; s < n; ++s) record.InputSamples.push_back(numbers(d, -1.0, 1.0));
  record.OutputSamples = numbers(n, 0.0, 1.0);
  record.InputScaleSlopes = numbers(d, 0.9, 1.1);
  record.InputScaleIntercepts = numbers(d, -0.1, 0.1);
  record.OutputScaleSlope = 0.5;
  record.OutputScaleIntercept = 0.25;
  record.ReadyForEvaluation = true;
  return record;
}

// InvC is lower triangular, as the inverse of a Cholesky factor is.
CKrigingData Kriging(int n, int d, E_KringingCorrelationFunctionType type) {
  Numbers numbers;
  auto record = Base<CKrigingData>(numbers, n, d);
  record.PolynomialType = PolyLinear;
  record.PolynomialCoefficients = numbers(d + 1, -1.0, 1.0);
  record.CorrelationFunctionType = type;
  record.CorrelationCoefficients = numbers(n, -1.0, 1.0);
  record.CorrelationKernels = numbers(d, 0.1, 1.0);
  record.SavePredictorError = true;
  record.NumberOfPolyCoeff = d + 1;
  record.Sigma2 = 2.0;
  for (int k = 0; k < n; ++k) {
    record.InvC.push_back(numbers(k + 1, -1.0, 1.0));
    record.InvC.back().resize(static_cast<std::size_t>(n));
  }
  for (int k = 0; k <= d; ++k) {
    record.InvG.push_back(numbers(d + 1, -1.0, 1.0));
    record.Ft.push_back(numbers(n, -1.0, 1.0));
  }
  return record;
}

CSVRData SupportVector(int n, int d, E_SVRKernType type) {
  Numbers numbers;
  auto record = Base<CSVRData>(numbers, n, d);
  record.SVRKernType = type;
  record.Alphas = numbers(n, 0.0, 1.0);
  record.AlphasStar = numbers(n, 0.0, 1.0);
  record.KernelArray = numbers(d, 0.1, 1.0);
  return record;
}

CLBFData LinearBasis(int n, int d, E_LinearBasisFunction type) {
  Numbers numbers;
  auto record = Base<CLBFData>(numbers, n, d);
  record.BasisFunctionType = type;
  record.PolynomialType = PolyLinear;
  record.PolynomialCoefficients = numbers(d + 1, -1.0, 1.0);
  record.KernelValues = numbers(n, 0.5, 2.0);
  record.KernelCoefficients = numbers(n, -1.0, 1.0);
  return record;
}

// A full quadratic.
CQRSData Regression(int n, int d) {
  Numbers numbers;
  auto record = Base<CQRSData>(numbers, n, d);
  std::vector<std::unique_ptr<RegTerm>> terms;
  const auto add = [&](std::unique_ptr<RegTerm> term, const std::vector<int>& indices) {
    const double coefficient = numbers(1, -0.1, 0.1)[0];
    term->SetUsedInpVarIdx(static_cast<int>(indices.size()), indices.data());
    term->SetParamVal(1, &coefficient);
    terms.push_back(std::move(term));
  };
  add(std::make_unique<ConstTerm>(), {});
  for (int i = 0; i < d; ++i) add(std::make_unique<LinearTerm>(), {i});
  for (int i = 0; i < d; ++i) {
    add(std::make_unique<PureQuadTerm>(), {i, i});
    for (int j = i + 1; j < d; ++j) add(std::make_unique<CrossQuadTerm>(), {i, j});
  }
  std::vector<RegTerm*> pointers;
  for (const auto& term : terms) pointers.push_back(term.get());
  record.SetRegTerm(pointers.data(), static_cast<int>(pointers.size()));
  record.Sigma2 = 0.25;
  for (std::size_t k = 0; k < terms.size(); ++k) {
    record.InvXtX.push_back(numbers(static_cast<int>(terms.size()), -0.1, 0.1));
  }
  return record;
}

void FillModel(const CFittingCandidates& list, int d, CDiscreteCombinations& model) {
  for (int i = 0; i < d; ++i) {
    model.RegisterParameter("x" + std::to_string(i), CausalityInput, ContinuousNotManufacturable,
                            true);
  }
  model.RegisterParameter("y", CausalityOutput, ContinuousNotManufacturable, true);
  model.RegisterDiscreteCombination({}, {{"y", list.Clone()}});
}

using Points = std::vector<std::vector<double>>;

/// What the literal program does at one point.
using Literal = std::function<void(const std::vector<double>&)>;

/// One prediction asks `items` samples, or terms.
void Register(const std::string& kind, const std::string& name, const CFittingCandidates& list,
              int d, int items, bool withErrors, const Literal& literal) {
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
             Value<CKrigingData>(record, &literal::EvaluateKriging));
  };
  for (const int n : {50, 200, 1000}) {
    for (const int d : {2, 6, 10}) {
      add("gaussian/n" + std::to_string(n) + "/d" + std::to_string(d), n, d, CorrGaussian);
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
    Register("kriging_error", "n" + std::to_string(n), ListOf(*record), 6, n, true,
             [record](const std::vector<double>& x) {
               double y = 0.0;
               double error = 0.0;
               benchmark::DoNotOptimize(literal::EvaluateKriging(*record, x, y, error));
               benchmark::DoNotOptimize(error);
             });
  }
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
  Register("regression", "66_terms", ListOf(record), 10, 66, false,
           [surface](const std::vector<double>& x) {
             double y = 0.0;
             benchmark::DoNotOptimize(literal::EvaluateRegression(*surface, x, y));
             benchmark::DoNotOptimize(y);
           });
  Register("regression_error", "66_terms", ListOf(record), 10, 66, true,
           [surface](const std::vector<double>& x) {
             double y = 0.0;
             double error = 0.0;
             benchmark::DoNotOptimize(literal::EvaluateRegression(*surface, x, y, error));
             benchmark::DoNotOptimize(error);
           });
}

/// Three surfaces in ten folds of twenty samples, each sub surface on nine of them.
void RegisterCrossValidated() {
  constexpr int d = 6;
  constexpr int folds = 10;
  CFittingCandidate candidate;
  const auto add = [&](const CRSData& full, const CRSData& sub) {
    candidate.AddRSAndWeight(&full, 0.3);
    for (int f = 0; f < folds; ++f) candidate.AddSubRS(&sub);
  };
  add(Kriging(200, d, CorrGaussian), Kriging(180, d, CorrGaussian));
  add(SupportVector(200, d, SVRKernGaussian), SupportVector(180, d, SVRKernGaussian));
  add(Regression(200, d), Regression(180, d));
  Numbers numbers;
  std::vector<std::vector<double>> rows;
  for (int r = 0; r < 200; ++r) rows.push_back(numbers(d, -1.0, 1.0));
  std::vector<int> counts(folds, 20);
  double rho = 0.2;
  candidate.SetCrossValidationData(rows, counts);
  candidate.SetDPMinDist(rho);
  candidate.SetNumberOfInputVariables(d);
  candidate.SetInputScaleSlopes(std::vector<double>(d, 1.0));
  candidate.SetInputScaleIntercepts(std::vector<double>(d, 0.0));
  CFittingCandidates list;
  list.AddFittingCandidate(candidate);

  auto model = std::make_shared<CDiscreteCombinations>();
  FillModel(list, d, *model);
  auto combinations = std::make_shared<literal::Combinations>(*model);
  Register("cross_validated", "3_by_10_folds", list, d, 3 * 200 + 30 * 180, true,
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
  RegisterKernelLocal();
  RegisterRegression();
  RegisterCrossValidated();
  RatioReport report;
  benchmark::RunSpecifiedBenchmarks(&report);
  for (const char* kind : {"kriging", "kriging_error", "support_vector", "linear_basis",
                           "regression", "regression_error", "cross_validated"}) {
    for (const char* mode : {"exact_", "fast_"}) report.Print(std::string(mode) + kind);
  }
  return 0;
}
