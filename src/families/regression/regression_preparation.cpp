#include "families/regression/regression_preparation.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <memory>
#include <utility>
#include <vector>

#include "families/regression/record_parts.h"
#include "families/regression/transformation_slopes.h"
#include "families/regression/transformed_errors.h"
#include "families/regression/transformers.h"
#include "pxrom/regression.h"
#include "records/evaluation_frame.h"

namespace Tarvane::Plexura::PXROM::batch {

namespace {

/// The active terms. Products of up to two variables are in stretches, separated by the terms of
/// more variables, so that the sum keeps its order.
struct Terms {
  struct Stretch {
    std::size_t count = 0;  ///< of the products of two
    /// The term of more variables that follows, unless this is the last stretch.
    bool hasLongTerm = false;
    double coefficient = 0.0;
    std::vector<std::uint32_t> variables;
  };

  std::vector<Monomial> pairs;
  std::vector<Stretch> stretches;
  std::size_t count = 0;
};

/// Appends an active term of the record. The index `inputs` means a variable that is always 1.
void Append(double coefficient, const std::vector<int>& variables, std::size_t inputs,
            Terms& terms) {
  const auto one = static_cast<std::uint32_t>(inputs);
  const auto variable = [&](std::size_t v) {
    return v < variables.size() ? static_cast<std::uint32_t>(variables[v]) : one;
  };
  ++terms.count;
  Terms::Stretch& stretch = terms.stretches.back();
  if (variables.size() <= 2) {
    terms.pairs.push_back({coefficient, variable(0), variable(1)});
    ++stretch.count;
    return;
  }
  stretch.hasLongTerm = true;
  stretch.coefficient = coefficient;
  for (std::size_t v = 0; v < variables.size(); ++v) stretch.variables.push_back(variable(v));
  terms.stretches.emplace_back();
}

/// False when a term refuses, whatever the point is.
bool FindTerms(const CQRSData& record, std::size_t inputs, Terms& terms) {
  const std::vector<double> origin(inputs, 0.0);
  const int d = static_cast<int>(inputs);
  terms.stretches.emplace_back();
  for (int k = 0; k < record.NumberOfRegTerms; ++k) {
    const RegTerm* const term = record.RegTerms != nullptr ? record.RegTerms[k] : nullptr;
    double value = 0.0;
    if (term == nullptr || term->EvaluateValue(d, origin.data(), &value) != 0) return false;
    // Inactive terms add a zero, which changes no sum that begins with 0.
    if (term->QryIsActive() != 1) continue;
    E_FuncType type{};
    int parameters = 0;
    int variableCount = 0;
    double coefficient = 0.0;
    if (term->GetFuncType(type) != 0 || term->GetNumParam(parameters) != 0 || parameters != 1 ||
        term->GetParamVal(&coefficient) != 0) {
      return false;
    }
    std::vector<int> variables;
    if (type != FuncTypeConst) {
      if (term->GetNumUsedInpVar(variableCount) != 0 || variableCount < 0) return false;
      variables.resize(static_cast<std::size_t>(variableCount));
      if (term->GetUsedInpVarIdx(variables.data()) != 0) return false;
    }
    Append(coefficient, variables, inputs, terms);
  }
  return true;
}

/// The data of the half-width of the prediction interval.
struct IntervalData {
  std::vector<double> invXtX;
  double quantile = 0.0;
};

std::unique_ptr<const IntervalData> IntervalDataOf(const CQRSData& record, std::size_t order) {
  auto data = std::make_unique<IntervalData>();
  if (!HasInverseOfOrder(record, order) || QuantileOf(record, order, data->quantile) != 0) {
    return nullptr;
  }
  data->invXtX.reserve(order * order);
  for (std::size_t i = 0; i < order; ++i) {
    data->invXtX.insert(data->invXtX.end(), record.InvXtX[i].begin(),
                        record.InvXtX[i].begin() + static_cast<std::ptrdiff_t>(order));
  }
  return data;
}

/// The parts of an evaluation's working area.
struct RegressionWork {
  RegressionWork(std::size_t inputs, std::size_t terms, double* start) {
    WorkArea area(start);
    x = area.Take((inputs + 1) * kBlock);
    sums = area.Take(kBlock);
    part = area.Take(kBlock);
    f = area.Take(terms * kBlock);
    size = area.Used();
  }

  double* x;
  double* sums;
  double* part;
  double* f;
  std::size_t size;
};

class RegressionSurface : public PreparedSurface {
 public:
  RegressionSurface(const CQRSData& record, std::size_t inputs, Terms terms)
      : record_(record),
        inputs_(inputs),
        terms_(std::move(terms)),
        interval_(IntervalDataOf(record_, terms_.count)),
        forward_(FindTransformer(record_.InputTransformType)),
        back_(FindTransformer(record_.OutputTransformType)) {}

  std::size_t WorkSize(bool withErrors, std::size_t) const override {
    return RegressionWork(inputs_, withErrors ? terms_.count : 0, nullptr).size;
  }

  void Evaluate(const Points& points, const Tools& tools, const Results& results) const override {
    if (results.errors != nullptr && interval_ == nullptr) {
      std::fill_n(results.statuses, points.count, 1);
      return;
    }
    const RegressionWork work(inputs_, results.errors != nullptr ? terms_.count : 0, tools.work);
    Transform(points, work);
    Sum(points.count, *tools.exact, work);
    for (std::size_t point = 0; point < points.count; ++point) {
      results.statuses[point] = Finish(points, point, work.sums[point], results.values[point]);
    }
    if (results.errors == nullptr) return;
    FillErrors(points.count, *tools.exact, work, results.errors);
    if (results.inUnit.errors != nullptr) FillErrorsInUnit(points.count, work, results);
  }

  bool HasErrors() const override { return interval_ != nullptr; }
  bool AreErrorsFirstOrder() const override { return record_.OutputTransformType != TransformNone; }

  std::size_t GradientWorkSize() const override { return 2 * inputs_ + 1; }

  int Gradient(const double* x, double* work, double* gradient) const override {
    double* const u = work;
    double* const factors = work + inputs_ + 1;
    for (std::size_t i = 0; i < inputs_; ++i) {
      u[i] = record_.InputScaleSlopes[i] * x[i] + record_.InputScaleIntercepts[i];
      factors[i] = record_.InputScaleSlopes[i];
      if (record_.InputTransformType == TransformNone) continue;
      const double value = record_.InputTransformValues[i];
      const double lambda = record_.InputLambdas[i];
      factors[i] *= TransformationSlope(*forward_, u[i], value, lambda);
      forward_->TransformAndOverwrite(u[i], value, lambda);
    }
    u[inputs_] = 1.0;
    std::fill_n(gradient, inputs_, 0.0);
    const double sum = SumWithGradient(u, gradient);
    double b = sum;
    const double value = record_.OutputTransformValue;
    const double lambda = record_.OutputLambda;
    if (back_->BacktransformAndOverwrite(b, value, lambda) != 0) return 1;
    // Over a hole the value is an interpolation, which the terms do not determine.
    if (IsHole(b)) return 1;
    const double slope = BacktransformationSlope(*back_, sum, value, lambda);
    for (std::size_t i = 0; i < inputs_; ++i) {
      gradient[i] *= factors[i] * slope / record_.OutputScaleSlope;
    }
    return 0;
  }

 private:
  void Transform(const Points& points, const RegressionWork& work) const {
    for (std::size_t i = 0; i < inputs_; ++i) {
      const double slope = record_.InputScaleSlopes[i];
      const double intercept = record_.InputScaleIntercepts[i];
      const double* const from = points.x + i * kBlock;
      double* const to = work.x + i * kBlock;
      for (std::size_t point = 0; point < kBlock; ++point)
        to[point] = slope * from[point] + intercept;
      if (record_.InputTransformType == TransformNone) continue;
      const double value = record_.InputTransformValues[i];
      const double lambda = record_.InputLambdas[i];
      for (std::size_t point = 0; point < points.count; ++point) {
        forward_->TransformAndOverwrite(to[point], value, lambda);
      }
    }
    std::fill_n(work.x + inputs_ * kBlock, kBlock, 1.0);
  }

  void Sum(std::size_t count, const LoopTable& loops, const RegressionWork& work) const {
    // Most surfaces are a single stretch. Terms of more variables and the stretches after them are
    // added one by one.
    loops.polynomial({terms_.pairs.data(), terms_.stretches.front().count, true}, work.x, count,
                     work.sums);
    if (terms_.stretches.size() == 1) return;
    for (std::size_t point = 0; point < count; ++point) AddFurtherStretches(point, work);
  }

  void AddFurtherStretches(std::size_t point, const RegressionWork& work) const {
    const double* const x = work.x + point;
    double& sum = work.sums[point];
    const Monomial* pair = terms_.pairs.data();
    for (std::size_t s = 0; s < terms_.stretches.size(); ++s) {
      const Terms::Stretch& stretch = terms_.stretches[s];
      for (std::size_t k = 0; k < stretch.count; ++k, ++pair) {
        if (s == 0) continue;
        sum += x[pair->first * kBlock] * pair->coefficient * x[pair->second * kBlock];
      }
      if (!stretch.hasLongTerm) continue;
      double product = stretch.coefficient;
      for (const std::uint32_t v : stretch.variables) product *= x[v * kBlock];
      sum += product;
    }
  }

  int Finish(const Points& points, std::size_t point, double b, double& value) const {
    if (record_.OutputTransformType != TransformNone &&
        back_->BacktransformAndOverwrite(b, record_.OutputTransformValue, record_.OutputLambda) !=
            0) {
      return 1;
    }
    if (IsHole(b)) return FillHole(points, point, value);
    value = (b - record_.OutputScaleIntercept) / record_.OutputScaleSlope;
    return 0;
  }

  /// A point in a hole of the surface is rare, so the evaluator computes it.
  int FillHole(const Points& points, std::size_t point, double& value) const {
    std::vector<double> x(inputs_);
    for (std::size_t i = 0; i < inputs_; ++i) x[i] = points.x[i * kBlock + point];
    return CQRSEvaluator().EvaluateResponseSurface(&record_, x, value);
  }

  void FillErrors(std::size_t count, const LoopTable& loops, const RegressionWork& work,
                  double* errors) const {
    // Products in the order of the terms. Those of more variables are filled into gaps afterwards.
    std::size_t row = 0;
    const Monomial* pair = terms_.pairs.data();
    for (const Terms::Stretch& stretch : terms_.stretches) {
      loops.products({pair, stretch.count, true}, work.x, count, work.f + row * kBlock);
      pair += stretch.count;
      row += stretch.count;
      if (!stretch.hasLongTerm) continue;
      for (std::size_t point = 0; point < kBlock; ++point) {
        double product = 1.0;
        for (const std::uint32_t v : stretch.variables) product *= work.x[v * kBlock + point];
        work.f[row * kBlock + point] = product;
      }
      ++row;
    }
    loops.quadraticForm(interval_->invXtX.data(), work.f, terms_.count, count, work.part);
    for (std::size_t point = 0; point < count; ++point) {
      errors[point] = HalfWidth(record_, work.part[point], interval_->quantile);
    }
  }

  void FillErrorsInUnit(std::size_t count, const RegressionWork& work,
                        const Results& results) const {
    const OutputWay way = {back_, record_.OutputTransformValue, record_.OutputLambda,
                           record_.OutputScaleSlope, record_.OutputScaleIntercept};
    results.FillInUnit(count);
    for (std::size_t point = 0; point < count; ++point) {
      double b = work.sums[point];
      if (results.statuses[point] != 0 ||
          back_->BacktransformAndOverwrite(b, way.value, way.lambda) != 0) {
        continue;
      }
      if (IsHole(b)) {
        // The value is an interpolation, which has no error.
        results.inUnit.errors[point] = std::numeric_limits<double>::quiet_NaN();
      } else if (AreErrorsFirstOrder()) {
        // The error is that of the transformed output, divided by the slope.
        const double deviation = std::fabs(results.errors[point] * way.slope);
        FillTransformedError(way, work.sums[point], deviation, point, results);
      }
    }
  }

  /// The sum of the terms at `u`, to which a 1 is appended; `gradient` grows by its derivative.
  double SumWithGradient(const double* u, double* gradient) const {
    double sum = 0.0;
    const auto grow = [&](std::uint32_t variable, double by) {
      if (variable < inputs_) gradient[variable] += by;
    };
    const Monomial* pair = terms_.pairs.data();
    for (const Terms::Stretch& stretch : terms_.stretches) {
      for (std::size_t k = 0; k < stretch.count; ++k, ++pair) {
        sum += u[pair->first] * pair->coefficient * u[pair->second];
        grow(pair->first, pair->coefficient * u[pair->second]);
        grow(pair->second, pair->coefficient * u[pair->first]);
      }
      if (!stretch.hasLongTerm) continue;
      double product = stretch.coefficient;
      for (std::size_t v = 0; v < stretch.variables.size(); ++v) {
        double others = product;
        for (std::size_t w = v + 1; w < stretch.variables.size(); ++w) {
          others *= u[stretch.variables[w]];
        }
        grow(stretch.variables[v], others);
        product *= u[stretch.variables[v]];
      }
      sum += product;
    }
    return sum;
  }

  CQRSData record_;
  std::size_t inputs_;
  Terms terms_;
  std::unique_ptr<const IntervalData> interval_;  ///< null without the data of an error
  const CTransformer* forward_;
  const CTransformer* back_;
};

bool IsConsistent(const CQRSData& record, std::size_t inputs) {
  if (!IsEvaluable(&record, DT_QRSData, std::vector<double>(inputs))) return false;
  if (record.InputScaleSlopes.size() != inputs || record.InputScaleIntercepts.size() != inputs) {
    return false;
  }
  const bool hasParameters =
      record.InputTransformType == TransformNone ||
      (record.InputTransformValues.size() >= inputs && record.InputLambdas.size() >= inputs);
  return hasParameters && FindTransformer(record.InputTransformType) != nullptr &&
         FindTransformer(record.OutputTransformType) != nullptr;
}

}  // namespace

std::unique_ptr<PreparedSurface> PrepareRegression(const CRSData& base, std::size_t inputs) {
  const auto& record = static_cast<const CQRSData&>(base);
  Terms terms;
  if (!IsConsistent(record, inputs) || !FindTerms(record, inputs, terms)) return PrepareRefused();
  return std::make_unique<RegressionSurface>(record, inputs, std::move(terms));
}

}  // namespace Tarvane::Plexura::PXROM::batch
