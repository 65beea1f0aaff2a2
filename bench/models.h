#pragma once

#include <memory>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "pxrom/discrete_combinations.h"
#include "pxrom/fitting_candidates.h"
#include "pxrom/gaussian_process.h"
#include "pxrom/kriging.h"
#include "pxrom/linear_basis.h"
#include "pxrom/regression.h"
#include "pxrom/support_vector.h"

/// Ready records with random content, of the sizes that benchmarks ask for.
namespace models {

using namespace Tarvane::Plexura::PXROM;

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
inline CKrigingData Kriging(int n, int d, E_KringingCorrelationFunctionType type) {
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

/// One term, the product of `functions`.
inline CGaussianProcessData GaussianProcess(int n, int d, const std::vector<int>& functions) {
  Numbers numbers;
  auto record = Base<CGaussianProcessData>(numbers, n, d);
  const auto factors = static_cast<int>(functions.size());
  record.PolynomialType = PolyConstant;
  record.PolynomialCoefficients = {0.5};
  record.TermAmplitudes = {1.5};
  record.FactorTerms.assign(functions.size(), 0);
  record.FactorFunctions = functions;
  record.FactorParameters.assign(functions.size(), 1.5);
  record.FactorLengths = numbers(factors * d, 1.0, 3.0);
  record.Weights = numbers(n, -1.0, 1.0);
  record.SavePredictorError = true;
  record.InverseFactor = numbers(n * (n + 1) / 2, -0.01, 0.01);
  return record;
}

inline CSVRData SupportVector(int n, int d, E_SVRKernType type) {
  Numbers numbers;
  auto record = Base<CSVRData>(numbers, n, d);
  record.SVRKernType = type;
  record.Alphas = numbers(n, 0.0, 1.0);
  record.AlphasStar = numbers(n, 0.0, 1.0);
  record.KernelArray = numbers(d, 0.1, 1.0);
  return record;
}

inline CLBFData LinearBasis(int n, int d, E_LinearBasisFunction type) {
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
inline CQRSData Regression(int n, int d) {
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

/// An output for each list.
inline void FillModel(const std::vector<CFittingCandidates>& lists, int d,
                      CDiscreteCombinations& model) {
  for (int i = 0; i < d; ++i) {
    model.RegisterParameter("x" + std::to_string(i), CausalityInput, ContinuousNotManufacturable,
                            true);
  }
  std::vector<std::pair<std::string, CFittingCandidates*>> outputs;
  for (const CFittingCandidates& list : lists) {
    outputs.emplace_back("y" + std::to_string(outputs.size()), list.Clone());
    model.RegisterParameter(outputs.back().first, CausalityOutput, ContinuousNotManufacturable,
                            true);
  }
  model.RegisterDiscreteCombination({}, outputs);
}

inline void FillModel(const CFittingCandidates& list, int d, CDiscreteCombinations& model) {
  FillModel(std::vector<CFittingCandidates>{list}, d, model);
}

/// Three families in ten folds of twenty samples, each sub surface on nine of them.
inline CFittingCandidates CrossValidated(int d) {
  const auto inputs = static_cast<std::size_t>(d);
  constexpr int folds = 10;
  CFittingCandidate candidate;
  const auto add = [&](const CRSData& full, const CRSData& sub) {
    candidate.AddRSAndWeight(&full, 0.3);
    for (int f = 0; f < folds; ++f) {
      // No two folds leave the same samples, which a prepared model would hold once.
      const std::unique_ptr<CRSData> own(sub.Clone());
      own->InputSamples[0] = own->InputSamples[static_cast<std::size_t>(f) + 1];
      candidate.AddSubRS(own.get());
    }
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
  candidate.SetInputScaleSlopes(std::vector<double>(inputs, 1.0));
  candidate.SetInputScaleIntercepts(std::vector<double>(inputs, 0.0));
  CFittingCandidates list;
  list.AddFittingCandidate(candidate);
  return list;
}

}  // namespace models
