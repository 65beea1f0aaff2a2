#include "reference/evaluate_literal.h"

#include <algorithm>
#include <cmath>

#include "pxrom/constant.h"
#include "pxrom/regression.h"
#include "reference/gaussian_process_literal.h"
#include "reference/kernel_local_literal.h"
#include "reference/kriging_literal.h"
#include "reference/polynomial_literal.h"

namespace literal {

namespace {

using namespace Tarvane::Plexura::PXROM;

/// An evaluator whose values come from the literal program of its family; the rest is the
/// library's.
template <class Evaluator, class Record>
class LiteralValues : public Evaluator {
 public:
  using Value = int (*)(const Record&, const std::vector<double>&, double&);
  using Evaluator::EvaluateResponseSurface;

  explicit LiteralValues(Value value) : value_(value) {}
  LiteralValues* Clone() const override { return new LiteralValues(*this); }
  int EvaluateResponseSurface(const CRSData* data, const std::vector<double>& x,
                              double& y) const override {
    return value_(static_cast<const Record&>(*data), x, y);
  }

 private:
  Value value_;
};

class EvaluatorTable {
 public:
  EvaluatorTable() {
    table_[DT_RSData] = new CRSEvaluator;
    table_[DT_QRSData] = new CQRSEvaluator;
    table_[DT_KrigingData] = new LiteralValues<CKrigingEvaluator, CKrigingData>(&EvaluateKriging);
    table_[DT_SVRData] = new LiteralValues<CSVREvaluator, CSVRData>(&EvaluateSupportVector);
    table_[DT_MLSData] = new LiteralValues<CMLSEvaluator, CMLSData>(&EvaluateMovingLeastSquares);
    table_[DT_LBFData] = new LiteralValues<CLBFEvaluator, CLBFData>(&EvaluateLinearBasis);
    table_[DT_ConstantData] = new CConstantEvaluator;
    table_[DT_GaussianProcessData] =
        new LiteralValues<CGaussianProcessEvaluator, CGaussianProcessData>(
            &EvaluateGaussianProcess);
    table_[DT_PolynomialData] =
        new LiteralValues<CPolynomialEvaluator, CPolynomialData>(&EvaluatePolynomial);
  }
  ~EvaluatorTable() {
    for (auto& entry : table_) delete entry.second;
  }
  EvaluatorTable(const EvaluatorTable&) = delete;
  EvaluatorTable& operator=(const EvaluatorTable&) = delete;

  int Evaluate(const CRSData* surface, const std::vector<double>& x, double& y) const {
    CRSEvaluator* const evaluator = table_.at(surface->DataType())->Clone();
    const int status = evaluator->EvaluateResponseSurface(surface, x, y);
    delete evaluator;
    return status;
  }
  int Evaluate(const CRSData* surface, const std::vector<double>& x, double& y,
               double& error) const {
    CRSEvaluator* const evaluator = table_.at(surface->DataType())->Clone();
    const int status = evaluator->EvaluateResponseSurface(surface, x, y, error);
    delete evaluator;
    return status;
  }

 private:
  std::map<E_DataType, CRSEvaluator*> table_;
};

int AddValues(const CFittingCandidate& candidate, const EvaluatorTable& table,
              const std::vector<double>& point, double& value) {
  for (int i = 0; i < static_cast<int>(candidate.GetRSCount()); ++i) {
    double v = 0.0;
    if (table.Evaluate(candidate.GetRSPtr(i), point, v) == 1) return 1;
    value += candidate.GetRSWeight(i) * v;
  }
  return 0;
}

int EvaluateCandidate(const CFittingCandidates& list, const std::vector<double>& x, double& value) {
  const CFittingCandidate* const candidate = list.GetEvaluationCandidatePtr();
  if (candidate == nullptr) return 1;
  std::vector<double> point(x);
  if (candidate->ScaleAndOverwriteInputSample(point) != 0) return 1;
  value = 0.0;
  const EvaluatorTable table;
  if (AddValues(*candidate, table, point, value) != 0) return 1;
  return candidate->BackscaleAndOverwriteOutputSample(value);
}

// The first value after the tolerant bubble sort.
double Closest(std::vector<double> q, int d) {
  const double threshold = 2 * std::sqrt(static_cast<double>(d)) * 1.0e-12;
  for (std::size_t pass = q.size() - 1; pass > 0; --pass) {
    for (std::size_t i = 0; i < pass; ++i) {
      if (q[i] - q[i + 1] > threshold) std::swap(q[i], q[i + 1]);
    }
  }
  return q[0];
}

int EvaluateCandidate(const CFittingCandidates& list, const std::vector<double>& x, double& value,
                      double& error) {
  const CFittingCandidate* const candidate = list.GetEvaluationCandidatePtr();
  if (candidate == nullptr) return 1;
  std::vector<double> point(x);
  if (candidate->ScaleAndOverwriteInputSample(point) != 0) return 1;
  value = 0.0;
  const EvaluatorTable table;
  bool hasError = true;
  double slope = 0.0;
  candidate->GetOutputScaleSlope(slope);
  const int surfaces = static_cast<int>(candidate->GetRSCount());
  if (!candidate->GetIsErrPredRequired()) {
    for (int i = 0; i < surfaces; ++i) {
      double v = 0.0;
      const int status = table.Evaluate(candidate->GetRSPtr(i), point, v, error);
      if (status == 1) return 1;
      if (status == -2) hasError = false;
      value += candidate->GetRSWeight(i) * v;
    }
  } else {
    if (AddValues(*candidate, table, point, value) != 0) return 1;
    const int s = static_cast<int>(candidate->GetSubRSCounts());
    const int K = s / surfaces;
    std::vector<double> v(static_cast<std::size_t>(K), 0.0);
    for (int k = 0; k < s; ++k) {
      double u = 0.0;
      if (table.Evaluate(candidate->GetSubRSPtr(k), point, u) == 1) return 1;
      v[static_cast<std::size_t>(k % K)] += candidate->GetRSWeight(k / K) * u;
    }
    const std::vector<std::vector<double>> rows = candidate->GetvvdScSortedInput();
    const std::vector<int> counts = candidate->GetviNumPtsPerFold();
    int d = 0;
    candidate->GetNumberOfInputVariables(d);
    const double rho = candidate->GetDPMinDist();
    std::vector<double> q;
    double qmin = -1.0;
    for (const std::vector<double>& row : rows) {
      double sum = 0.0;
      for (std::size_t j = 0; j < point.size(); ++j) {
        sum += (point[j] - row[j]) * (point[j] - row[j]);
      }
      if (q.empty() || sum < qmin) qmin = sum;
      q.push_back(sum);
    }
    std::vector<double> W;
    double total = 0.0;
    auto start = q.begin();
    for (std::size_t f = 0; f < v.size(); ++f) {
      const auto end = start + counts[f];
      const double c = Closest(std::vector<double>(start, end), d);
      W.push_back(1 - std::exp(-10 * (c / rho) * (c / rho)));
      total += W.back();
      start = end;
    }
    double a = 0.0;
    for (std::size_t f = 0; f < v.size(); ++f) {
      W[f] = W[f] / total;
      a += W[f] * v[f];
    }
    const double mean = (K * a + value) / (K + 1);
    double b = 0.0;
    for (std::size_t f = 0; f < v.size(); ++f) b += W[f] * ((v[f] - mean) * (v[f] - mean));
    const double g = std::min(1.0, std::log(1 + 10 * qmin / (rho + 0.0001)));
    error = ((0.005 * qmin + std::sqrt(b)) * g / slope) * 3;
  }
  const int status = candidate->BackscaleAndOverwriteOutputSample(value);
  return hasError ? status : -2;
}

template <class Value>
int PickAndSort(const std::map<std::string, std::int32_t>& ranks,
                const std::vector<std::pair<std::string, Value>>& named,
                std::vector<Value>& sorted) {
  sorted.clear();
  std::vector<std::pair<std::int32_t, Value>> pairs;
  for (const auto& entry : named) {
    const auto rank = ranks.find(entry.first);
    if (rank == ranks.end()) return 1;
    pairs.emplace_back(rank->second, entry.second);
  }
  std::sort(pairs.begin(), pairs.end());
  for (const auto& pair : pairs) sorted.push_back(pair.second);
  return 0;
}

}  // namespace

Combinations::Combinations(const CDiscreteCombinations& source)
    : ranks_(*source.GetRegistrationRank()),
      indexing_(*source.GetDiscreteCombinationsIndexingPtr()),
      outputs_(*source.GetOutputsWrtDiscCombPtr()) {
  for (const std::string& id : source.ListParameterImmutableID()) {
    causalities_[id] = source.ListParameterCausality({id})[0];
    types_[id] = source.ListParameterType({id})[0];
    availability_[id] = source.IsEnabled(id);
  }
}

std::size_t Combinations::Count(int causality, int type, bool enabled) const {
  int count = 0;
  for (const auto& entry : types_) {
    if (entry.second == type && causalities_.find(entry.first)->second == causality &&
        availability_.find(entry.first)->second == enabled) {
      ++count;
    }
  }
  return static_cast<std::size_t>(count);
}

int Combinations::FindPoint(
    const NamedInts& discreteValues, const NamedValues& continuousValues,
    std::vector<double>& point,
    std::map<std::vector<int>, std::int32_t>::const_iterator& combination) const {
  if (discreteValues.size() != Count(CausalityInput, DiscreteParameter, true)) return 1;
  if (continuousValues.size() != Count(CausalityInput, ContinuousManufacturable, true) +
                                     Count(CausalityInput, ContinuousNotManufacturable, true)) {
    return 1;
  }
  std::vector<int> key;
  if (PickAndSort(ranks_, discreteValues, key) != 0) return 1;
  if (PickAndSort(ranks_, continuousValues, point) != 0) return 1;
  combination = indexing_.find(key);
  return combination == indexing_.end() ? 1 : 0;
}

int Combinations::Evaluate(const NamedInts& discreteValues, const NamedValues& continuousValues,
                           NamedValues& outputs) const {
  std::vector<double> point;
  std::map<std::vector<int>, std::int32_t>::const_iterator combination;
  if (FindPoint(discreteValues, continuousValues, point, combination) != 0) return 1;
  outputs.clear();
  for (const auto& output : outputs_[static_cast<std::size_t>(combination->second)]) {
    double value = 0.0;
    if (EvaluateCandidate(*output.second, point, value) == 1) return 1;
    outputs.emplace_back(output.first, value);
  }
  return 0;
}

int Combinations::Evaluate(const NamedInts& discreteValues, const NamedValues& continuousValues,
                           NamedValues& outputs, NamedValues& errors) const {
  std::vector<double> point;
  std::map<std::vector<int>, std::int32_t>::const_iterator combination;
  if (FindPoint(discreteValues, continuousValues, point, combination) != 0) return 1;
  outputs.clear();
  int result = 0;
  for (const auto& output : outputs_[static_cast<std::size_t>(combination->second)]) {
    double value = 0.0;
    double error = 0.0;
    const int status = EvaluateCandidate(*output.second, point, value, error);
    if (status == 1) return 1;
    outputs.emplace_back(output.first, value);
    if (status == -2) {
      result = -2;
    } else {
      errors.emplace_back(output.first, error);
    }
  }
  return result;
}

}  // namespace literal
