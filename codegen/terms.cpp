// Regression and polynomial surfaces.

#include "codegen/lowering.h"

namespace pxrom_codegen {

namespace {

using Vector = std::vector<double>;
using Matrix = std::vector<std::vector<double>>;

/// The pieces of transformations, by type.
const char* const kTransformations[] = {"NONE", "EXP",   "LOG_BASE", "LOG",         "LOG10",
                                        "ROOT", "POWER", "BOX_COX",  "EXP_BOX_COX", "YEO_JOHNSON"};

/// The quantile of the prediction interval: its half-width with an inverse of zeros and unit
/// variance and slope. False without degrees of freedom.
bool FindQuantile(const pxrom::CQRSData& record, std::size_t terms, std::size_t inputs, double& t) {
  pxrom::CQRSData unit(record);
  unit.InvXtX.assign(terms, Vector(terms, 0.0));
  unit.Sigma2 = 1.0;
  unit.OutputScaleSlope = 1.0;
  Vector origin(inputs, 0.0);
  return unit.GetPredictorError(origin, t) == 0;
}

template <class Element>
Element ElementOr(const std::vector<Element>& list, std::size_t v, Element ifEmpty) {
  return list.empty() ? ifEmpty : list[v];
}

template <class Element>
bool Fits(const std::vector<Element>& list, std::size_t count) {
  return list.empty() || list.size() == count;
}

struct Step {
  double slope = 1.0;
  double intercept = 0.0;
  double previous = 0.0;
};

struct MonicStep {
  double centre = 0.0;
  double spread = 0.0;
};

/// Gautschi, Orthogonal Polynomials, Computation and Approximation (2004), table 1.1.
MonicStep MonicStepOf(int basis, double n, double alpha, double beta) {
  const double sum = alpha + beta;
  const double twice = 2.0 * n + sum;
  switch (basis) {
    case pxrom::PolyBasisLegendre:
      return {0.0, n * n / (4.0 * n * n - 1.0)};
    case pxrom::PolyBasisHermite:
      return {0.0, n};
    case pxrom::PolyBasisLaguerre:
      return {2.0 * n + 1.0 + alpha, n * (n + alpha)};
    default:
      break;
  }
  if (n == 0.0) return {(beta - alpha) / (sum + 2.0), 0.0};
  const double centre = (beta * beta - alpha * alpha) / (twice * (twice + 2.0));
  if (n == 1.0) {
    return {centre, 4.0 * (1.0 + alpha) * (1.0 + beta) / (twice * twice * (twice + 1.0))};
  }
  return {centre, 4.0 * n * (n + alpha) * (n + beta) * (n + sum) /
                      (twice * twice * (twice + 1.0) * (twice - 1.0))};
}

Step OrthonormalStep(int basis, double n, double alpha, double beta) {
  const MonicStep step = MonicStepOf(basis, n, alpha, beta);
  const double root = std::sqrt(MonicStepOf(basis, n + 1.0, alpha, beta).spread);
  const double slope = (basis == pxrom::PolyBasisLaguerre ? -1.0 : 1.0) / root;
  return {slope, -step.centre * slope, n > 0.0 ? std::sqrt(step.spread) / root : 0.0};
}

Step ClassicalStep(int basis, double n, double alpha, double beta) {
  const double sum = alpha + beta;
  const double twice = 2.0 * n + sum;
  switch (basis) {
    case pxrom::PolyBasisLegendre:
      return {(2.0 * n + 1.0) / (n + 1.0), 0.0, n / (n + 1.0)};
    case pxrom::PolyBasisHermite:
      return {1.0, 0.0, n};
    case pxrom::PolyBasisLaguerre:
      return {-1.0 / (n + 1.0), (2.0 * n + 1.0 + alpha) / (n + 1.0), (n + alpha) / (n + 1.0)};
    default:
      break;
  }
  if (n == 0.0) return {0.5 * sum + 1.0, 0.5 * (alpha - beta), 0.0};
  const double divisor = (n + 1.0) * (n + sum + 1.0);
  return {(twice + 1.0) * (twice + 2.0) / (2.0 * divisor),
          (alpha * alpha - beta * beta) * (twice + 1.0) / (2.0 * divisor * twice),
          (n + alpha) * (n + beta) * (twice + 2.0) / (divisor * twice)};
}

/// Whether the lists of a record fit its variables and terms.
bool HasListsOf(const pxrom::CPolynomialData& record, std::size_t inputs) {
  const std::size_t variables = record.VariableInputs.size();
  const std::size_t terms = record.Coefficients.size();
  const auto isInput = [&](int i) { return i >= 0 && static_cast<std::size_t>(i) < inputs; };
  const auto isDegree = [](int n) { return n >= 0 && n <= pxrom::CPolynomialData::kLargestDegree; };
  return record.PolynomialDataVersion_ == pxrom::PolynomialDataVersion1 &&
         record.InputScaleSlopes.size() == inputs && record.InputScaleIntercepts.size() == inputs &&
         Fits(record.VariableTransformTypes, variables) &&
         Fits(record.VariableTransformValues, variables) &&
         Fits(record.VariableLambdas, variables) && Fits(record.VariableSlopes, variables) &&
         Fits(record.VariableIntercepts, variables) && Fits(record.VariableBases, variables) &&
         Fits(record.VariableAlphas, variables) && Fits(record.VariableBetas, variables) &&
         terms > 0 && record.Degrees.size() % terms == 0 &&
         record.Degrees.size() / terms == variables &&
         std::all_of(record.VariableInputs.begin(), record.VariableInputs.end(), isInput) &&
         std::all_of(record.Degrees.begin(), record.Degrees.end(), isDegree);
}

bool IsSoundBasis(int basis, double alpha, double beta) {
  if (basis < pxrom::PolyBasisMonomial || basis > pxrom::PolyBasisRecurrence) return false;
  if (basis == pxrom::PolyBasisLaguerre) return alpha > -1.0;
  return basis != pxrom::PolyBasisJacobi || (alpha > -1.0 && beta > -1.0);
}

bool HasCovariance(const pxrom::CPolynomialData& record) {
  const std::size_t terms = record.Coefficients.size();
  return record.SavePredictorError && record.Covariance.size() == terms &&
         std::all_of(record.Covariance.begin(), record.Covariance.end(),
                     [&](const Vector& row) { return row.size() == terms; });
}

}  // namespace

template <class Real>
typename Runtime<Real>::transformation Lowering<Real>::Transformation(
    int type, double value, double lambda, const std::string& direction) {
  if (type < pxrom::TransformNone || type > pxrom::TransformYeo) {
    Refuse("has an unknown transformation");
  }
  if (type != pxrom::TransformNone) out_.pieces.insert(direction + kTransformations[type]);
  return {type, Number(value), Number(lambda)};
}

template <class Real>
const typename Runtime<Real>::regression* Lowering<Real>::Regression(const pxrom::CQRSData& record,
                                                                     bool withError) {
  const std::size_t d = inputs_;
  if (!IsEvaluable(record) || record.InputScaleSlopes.size() != d ||
      record.InputScaleIntercepts.size() != d) {
    Refuse("cannot be evaluated; pxrom check says why");
  }
  out_.pieces.insert("REGRESSION");
  typename T::regression regression = {};
  regression.inputs = Count(d);
  Scaling(record, regression.input_slopes, regression.input_intercepts);
  if (record.InputTransformType != pxrom::TransformNone) {
    if (record.InputTransformValues.size() < d || record.InputLambdas.size() < d) {
      Refuse("has too few parameters of its transformation");
    }
    std::vector<typename T::transformation> transformations;
    for (std::size_t i = 0; i < d; ++i) {
      transformations.push_back(Transformation(record.InputTransformType,
                                               record.InputTransformValues[i],
                                               record.InputLambdas[i], "FORWARD_"));
    }
    regression.input_transformations =
        KeepArray(out_.transformations, "_transformations", std::move(transformations));
    out_.pieces.insert("REGRESSION_FORWARD");
  }
  regression.output = Transformation(record.OutputTransformType, record.OutputTransformValue,
                                     record.OutputLambda, "BACK_");

  Vector coefficients;
  std::vector<std::size_t> places[2];
  const Vector origin(d, 0.0);
  for (int k = 0; k < record.NumberOfRegTerms; ++k) {
    const RegTerm* const term = record.RegTerms != nullptr ? record.RegTerms[k] : nullptr;
    double value = 0.0;
    if (term == nullptr || term->EvaluateValue(static_cast<int>(d), origin.data(), &value) != 0) {
      Refuse("has a term that cannot be evaluated");
    }
    if (term->QryIsActive() != 1) continue;
    E_FuncType type{};
    int parameters = 0;
    int count = 0;
    double coefficient = 0.0;
    term->GetFuncType(type);
    if (type != FuncTypeConst) term->GetNumUsedInpVar(count);
    const bool isKnown = type >= FuncTypeConst && type <= FuncTypeCrossQuad;
    if (!isKnown || count > 2 || term->GetNumParam(parameters) != 0 || parameters != 1 ||
        term->GetParamVal(&coefficient) != 0) {
      Refuse("has a term of more than two variables");
    }
    int indices[2] = {static_cast<int>(d), static_cast<int>(d)};
    if (count > 0 && term->GetUsedInpVarIdx(indices) != 0) Refuse("has a term without indices");
    coefficients.push_back(coefficient);
    for (int v = 0; v < 2; ++v) places[v].push_back(static_cast<std::size_t>(indices[v]));
  }
  const std::size_t terms = coefficients.size();
  regression.term_count = Count(terms);
  regression.coefficients = Numbers("coefficients", coefficients);
  regression.first = Places("first", places[0]);
  regression.second = Places("second", places[1]);
  regression.output_slope = Number(record.OutputScaleSlope);
  regression.output_intercept = Number(record.OutputScaleIntercept);

  const bool hasInverse = record.InvXtX.size() >= terms &&
                          std::all_of(record.InvXtX.begin(),
                                      record.InvXtX.begin() + static_cast<std::ptrdiff_t>(std::min(
                                                                  terms, record.InvXtX.size())),
                                      [&](const Vector& row) { return row.size() >= terms; });
  double quantile = 0.0;
  if (withError && hasInverse && FindQuantile(record, terms, d, quantile)) {
    out_.pieces.insert("REGRESSION_ERROR");
    const typename T::regression_error error = {
        Number(record.Sigma2), Number(quantile),
        Numbers("inverse", Flat(record.InvXtX, terms, terms))};
    regression.error = Keep(out_.regressionErrors, "_error", error);
  }
  NeedWork(d + 1, regression.error != nullptr ? d + 1 + terms : 0, 2 * d + 1);
  return Keep(out_.regressions, "", regression, "regression");
}

template <class Real>
const typename Runtime<Real>::polynomial* Lowering<Real>::Polynomial(
    const pxrom::CPolynomialData& record, bool withError) {
  if (!IsEvaluable(record) || !HasListsOf(record, inputs_)) {
    Refuse("cannot be evaluated; pxrom check says why");
  }
  out_.pieces.insert("POLYNOMIAL");
  const std::size_t count = record.VariableInputs.size();
  const std::size_t terms = record.Coefficients.size();
  std::vector<int> highest(count, 0);
  for (std::size_t at = 0; at < record.Degrees.size(); ++at) {
    highest[at % count] = std::max(highest[at % count], record.Degrees[at]);
  }

  typename T::polynomial polynomial = {};
  std::vector<typename T::polynomial_variable> variables;
  std::size_t used = 0;
  std::size_t place = 0;
  for (std::size_t v = 0; v < count; ++v) {
    const int basis = ElementOr<int>(record.VariableBases, v, pxrom::PolyBasisMonomial);
    const double alpha = ElementOr(record.VariableAlphas, v, 0.0);
    const double beta = ElementOr(record.VariableBetas, v, 0.0);
    if (!IsSoundBasis(basis, alpha, beta)) Refuse("has an unknown basis or its parameters");
    typename T::polynomial_variable variable = {};
    variable.input = record.VariableInputs[v];
    const int type = ElementOr<int>(record.VariableTransformTypes, v, pxrom::TransformNone);
    variable.forward = Transformation(type, ElementOr(record.VariableTransformValues, v, 0.0),
                                      ElementOr(record.VariableLambdas, v, 0.0), "FORWARD_");
    if (type != pxrom::TransformNone) out_.pieces.insert("POLYNOMIAL_FORWARD");
    variable.slope = Number(ElementOr(record.VariableSlopes, v, 1.0));
    variable.intercept = Number(ElementOr(record.VariableIntercepts, v, 0.0));
    variable.highest = highest[v];
    variable.first = Count(place);
    place += static_cast<std::size_t>(highest[v]) + 1;
    Vector steps;
    for (int n = 0; n < highest[v] && basis != pxrom::PolyBasisMonomial; ++n) {
      Step step;
      if (basis == pxrom::PolyBasisRecurrence) {
        if (used + 3 > record.Recurrences.size()) Refuse("has too few recurrences");
        step = {record.Recurrences[used], record.Recurrences[used + 1],
                record.Recurrences[used + 2]};
        used += 3;
      } else {
        step = record.Orthonormal ? OrthonormalStep(basis, n, alpha, beta)
                                  : ClassicalStep(basis, n, alpha, beta);
      }
      steps.insert(steps.end(), {step.slope, step.intercept, step.previous});
    }
    variable.steps = Numbers("steps" + std::to_string(v + 1), steps);
    variables.push_back(variable);
  }
  if (used != record.Recurrences.size()) Refuse("has too many recurrences");
  if (place - count > pxrom::CPolynomialData::kLargestDegreeSum) Refuse("has too large degrees");

  std::vector<std::size_t> ends;
  std::vector<std::size_t> factors;
  std::vector<int> factorInputs;
  std::size_t longest = 0;
  for (std::size_t k = 0; k < terms; ++k) {
    const std::size_t begin = factors.size();
    for (std::size_t v = 0; v < count; ++v) {
      const int degree = record.Degrees[k * count + v];
      if (degree == 0) continue;
      factors.push_back(static_cast<std::size_t>(variables[v].first + degree));
      factorInputs.push_back(variables[v].input);
    }
    ends.push_back(factors.size());
    longest = std::max(longest, factors.size() - begin);
  }
  polynomial.inputs = Count(inputs_);
  Scaling(record, polynomial.input_slopes, polynomial.input_intercepts);
  polynomial.variable_count = Count(count);
  polynomial.variables = KeepArray(out_.variables, "_variables", std::move(variables));
  polynomial.table_size = Count(place);
  polynomial.term_count = Count(terms);
  polynomial.coefficients = Numbers("coefficients", record.Coefficients);
  polynomial.ends = Places("ends", ends);
  polynomial.factors = Places("factors", factors);
  if (gradients_) polynomial.factor_inputs = Places("factor_inputs", factorInputs);
  polynomial.longest_term = Count(longest);
  polynomial.output = Transformation(record.OutputTransformType, record.OutputTransformValue,
                                     record.OutputLambda, "BACK_");
  polynomial.output_slope = Number(record.OutputScaleSlope);
  polynomial.output_intercept = Number(record.OutputScaleIntercept);
  if (withError && HasCovariance(record)) {
    out_.pieces.insert("POLYNOMIAL_ERROR");
    polynomial.covariance = Numbers("covariance", Flat(record.Covariance, terms, terms));
  }
  NeedWork(place, polynomial.covariance != nullptr ? place + terms : 0, 2 * place + longest);
  return Keep(out_.polynomials, "", polynomial, "polynomial");
}

#define INSTANTIATE(Real)                                                        \
  template const typename Runtime<Real>::regression* Lowering<Real>::Regression( \
      const pxrom::CQRSData&, bool);                                             \
  template const typename Runtime<Real>::polynomial* Lowering<Real>::Polynomial( \
      const pxrom::CPolynomialData&, bool);
INSTANTIATE(double)
INSTANTIATE(float)
#undef INSTANTIATE

}  // namespace pxrom_codegen
