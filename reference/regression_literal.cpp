#include "reference/regression_literal.h"

#include <cmath>
#include <map>

#include "numerics/distributions.h"

namespace literal {

namespace {

using Tarvane::Plexura::PXROM::CQRSData;

// ------------------------------------------------------------------------------ terms

class Const : public Term {
 public:
  int EvaluateValue(const int&, const double*, double* value) override {
    if (coefficientValue == nullptr || isCoefficientSet == 0) return 1;
    *value = isActive == 1 ? coefficientValue[0] : 0.0;
    return 0;
  }
  int EvaluateDesignRow(const int&, const double*, double* row) override {
    row[0] = isActive == 1 ? 1.0 : 0.0;
    return 0;
  }
  int EvaluateDerivativeWrtInputVariables(const int& n, const double*, double* gradient) override {
    if (coefficientValue == nullptr || isCoefficientSet == 0) return 1;
    for (int i = 0; i < n; ++i) gradient[i] = 0.0;
    return 0;
  }
};

class WithIndices : public Term {
 protected:
  bool HasIndices() const {
    return inputVariablesIndex != nullptr && isInputVariablesIndexSet != 0;
  }
  bool IsComplete() const {
    return coefficientValue != nullptr && isCoefficientSet != 0 && HasIndices();
  }
};

class Linear : public WithIndices {
 public:
  int EvaluateValue(const int&, const double* x, double* value) override {
    if (!IsComplete()) return 1;
    *value = isActive == 1 ? x[inputVariablesIndex[0]] * coefficientValue[0] : 0.0;
    return 0;
  }
  int EvaluateDesignRow(const int&, const double* x, double* row) override {
    if (!HasIndices()) return 1;
    row[0] = isActive == 1 ? x[inputVariablesIndex[0]] : 0.0;
    return 0;
  }
  int EvaluateDerivativeWrtInputVariables(const int& n, const double*, double* gradient) override {
    if (!IsComplete()) return 1;
    for (int i = 0; i < n; ++i) gradient[i] = 0.0;
    if (isActive == 1) gradient[inputVariablesIndex[0]] = coefficientValue[0];
    return 0;
  }
};

class CrossQuad : public WithIndices {
 public:
  int EvaluateValue(const int&, const double* x, double* value) override {
    if (!IsComplete()) return 1;
    *value = isActive == 1
                 ? x[inputVariablesIndex[0]] * coefficientValue[0] * x[inputVariablesIndex[1]]
                 : 0.0;
    return 0;
  }
  int EvaluateDesignRow(const int&, const double* x, double* row) override {
    if (!HasIndices()) return 1;
    row[0] = isActive == 1 ? x[inputVariablesIndex[1]] * x[inputVariablesIndex[0]] : 0.0;
    return 0;
  }
  int EvaluateDerivativeWrtInputVariables(const int& n, const double* x,
                                          double* gradient) override {
    if (!IsComplete()) return 1;
    for (int i = 0; i < n; ++i) gradient[i] = 0.0;
    if (isActive != 1) return 0;
    gradient[inputVariablesIndex[0]] = x[inputVariablesIndex[1]] * coefficientValue[0];
    gradient[inputVariablesIndex[1]] = x[inputVariablesIndex[0]] * coefficientValue[0];
    return 0;
  }
};

class PureQuad : public CrossQuad {
 public:
  int EvaluateDerivativeWrtInputVariables(const int& n, const double* x,
                                          double* gradient) override {
    if (!IsComplete()) return 1;
    for (int i = 0; i < n; ++i) gradient[i] = 0.0;
    if (isActive != 1) return 0;
    gradient[inputVariablesIndex[0]] =
        (coefficientValue[0] + coefficientValue[0]) * x[inputVariablesIndex[0]];
    return 0;
  }
};

// ----------------------------------------------------------------------- transformers

class Transformer {
 public:
  Transformer() = default;
  virtual ~Transformer() = default;
  virtual Transformer* Clone() { return new Transformer(*this); }
  virtual int TransformAndOverwrite(std::vector<double>&, const std::vector<double>&,
                                    const std::vector<double>&) {
    return 0;
  }
  virtual int TransformAndOverwrite(double&, double, double) { return 0; }
  virtual int BacktransformAndOverwrite(double&, double, double) { return 0; }

 protected:
  Transformer(const Transformer&) = default;
  Transformer& operator=(const Transformer&) = default;
};

class Child : public Transformer {
 public:
  using Transformer::TransformAndOverwrite;
  int TransformAndOverwrite(std::vector<double>& x, const std::vector<double>& values,
                            const std::vector<double>& lambdas) override {
    for (std::size_t i = 0; i < x.size(); ++i) TransformAndOverwrite(x[i], values[i], lambdas[i]);
    return 0;
  }
};

class Expo : public Child {
 public:
  Expo* Clone() override { return new Expo(*this); }
  using Child::TransformAndOverwrite;
  int TransformAndOverwrite(double& x, double, double) override {
    x = std::exp(x);
    return 0;
  }
  int BacktransformAndOverwrite(double& x, double, double) override {
    if (!(x > 1e-99)) return 1;
    x = std::log(x);
    return 0;
  }
};

class LogA : public Child {
 public:
  LogA* Clone() override { return new LogA(*this); }
  using Child::TransformAndOverwrite;
  int TransformAndOverwrite(double& x, double a, double) override {
    x = std::log(x) * (1.0 / std::log(a));
    return 0;
  }
  int BacktransformAndOverwrite(double& x, double a, double) override {
    if (x > std::log(1e99)) return 1;
    x = std::log(a) * std::exp(x);
    return 0;
  }
};

class LogE : public Child {
 public:
  LogE* Clone() override { return new LogE(*this); }
  using Child::TransformAndOverwrite;
  int TransformAndOverwrite(double& x, double, double) override {
    x = std::log(x);
    return 0;
  }
  int BacktransformAndOverwrite(double& x, double, double) override {
    if (x > std::log(1e99)) return 1;
    x = std::exp(x);
    return 0;
  }
};

class Log10 : public Child {
 public:
  Log10* Clone() override { return new Log10(*this); }
  using Child::TransformAndOverwrite;
  int TransformAndOverwrite(double& x, double, double) override {
    x = std::log10(x);
    return 0;
  }
  int BacktransformAndOverwrite(double& x, double, double) override {
    if (x > std::log(1e99)) return 1;
    x = std::pow(10.0, x);
    return 0;
  }
};

class Square : public Child {
 public:
  Square* Clone() override { return new Square(*this); }
  using Child::TransformAndOverwrite;
  int TransformAndOverwrite(double& x, double, double) override {
    x = std::sqrt(x);
    return 0;
  }
  int BacktransformAndOverwrite(double& x, double, double) override {
    x = std::pow(x, 2.0);
    return 0;
  }
};

class Power : public Child {
 public:
  Power* Clone() override { return new Power(*this); }
  using Child::TransformAndOverwrite;
  int TransformAndOverwrite(double& x, double a, double) override {
    x = std::pow(x, a);
    return 0;
  }
  int BacktransformAndOverwrite(double& x, double a, double) override {
    const double r = 1.0 / a;
    double limit = 0.0;
    if (r > 1.0) {
      limit = std::pow(1e99, a);
      if (x < 0.0) return 1;
    }
    if (x < limit) return 1;
    x = std::pow(x, r);
    return 0;
  }
};

class Box : public Child {
 public:
  Box* Clone() override { return new Box(*this); }
  using Child::TransformAndOverwrite;
  int TransformAndOverwrite(double& x, double, double lambda) override {
    if (std::fabs(lambda) >= 1e-06) {
      if (x < 0.0) return 1;
      if (x == 0.0 && !(lambda > 0.0)) return 1;
      x = (std::pow(x, lambda) - 1.0) / lambda;
    } else {
      if (!(x > 0.0)) return 1;
      x = std::log(x);
    }
    return 0;
  }
  int BacktransformAndOverwrite(double& x, double, double lambda) override {
    if (std::fabs(lambda) >= 1e-06) {
      const double c = lambda * x + 1.0;
      if (c < 0.0) return 1;
      if (1.0 / lambda > 1.0 && c > std::pow(1e99, lambda)) return 1;
      x = std::pow(c, 1.0 / lambda);
    } else {
      if (x > std::log(1e99)) return 1;
      x = std::exp(x);
    }
    return 0;
  }
};

class LogBox : public Child {
 public:
  LogBox* Clone() override { return new LogBox(*this); }
  using Child::TransformAndOverwrite;
  int TransformAndOverwrite(double& x, double value, double lambda) override {
    return BacktransformAndOverwrite(x, value, lambda);
  }
  int BacktransformAndOverwrite(double& x, double, double lambda) override {
    if (std::fabs(lambda) >= 1e-06) {
      const double c = lambda * x + 1.0;
      if (c < 0.0) return 1;
      if (1.0 / lambda > 1.0 && c > std::log(std::pow(1e99, lambda))) return 1;
      x = std::exp(std::pow(c, 1.0 / lambda));
    } else {
      if (x > std::log(std::log(1e99))) return 1;
      x = std::exp(std::exp(x));
    }
    return 0;
  }
};

class Yeo : public Child {
 public:
  Yeo* Clone() override { return new Yeo(*this); }
  using Child::TransformAndOverwrite;
  int TransformAndOverwrite(double& x, double, double lambda) override {
    if (x < 0.0) {
      const double b = 2.0 - lambda;
      x = std::fabs(b) >= 1e-06 ? (1.0 - std::pow(1.0 - x, b)) / b : -std::log(1.0 - x);
    } else if (std::fabs(lambda) >= 1e-06) {
      x = (std::pow(x + 1.0, lambda) - 1.0) / lambda;
    } else {
      x = std::log(x + 1.0);
    }
    return 0;
  }
  int BacktransformAndOverwrite(double& x, double, double lambda) override {
    if (x < 0.0) {
      const double b = 2.0 - lambda;
      if (std::fabs(b) >= 1e-06) {
        const double c = 1.0 - b * x;
        if (c < 0.0 || (1.0 / b > 1.0 && c > std::pow(1e99, b))) return Fail(x);
        x = 1.0 - std::pow(c, 1.0 / b);
      } else {
        if (-x > std::log(1e99)) return Fail(x);
        x = 1.0 - std::exp(-x);
      }
    } else if (std::fabs(lambda) >= 1e-06) {
      const double c = lambda * x + 1.0;
      if (c < 0.0 || (1.0 / lambda > 1.0 && c > std::pow(1e99, lambda))) return Fail(x);
      x = std::pow(c, 1.0 / lambda) - 1.0;
    } else {
      if (x > std::log(1e99)) return Fail(x);
      x = std::exp(x) - 1.0;
    }
    return 0;
  }

 private:
  static int Fail(double& x) {
    x = -9e99;
    return 1;
  }
};

/// The table of prototypes, built for each call.
class Table {
 public:
  Table() {
    map_[0] = new Transformer;
    map_[1] = new Expo;
    map_[2] = new LogA;
    map_[3] = new LogE;
    map_[4] = new Log10;
    map_[5] = new Square;
    map_[6] = new Power;
    map_[7] = new Box;
    map_[8] = new LogBox;
    map_[9] = new Yeo;
  }
  Table(const Table&) = delete;
  Table& operator=(const Table&) = delete;
  ~Table() {
    for (const auto& entry : map_) delete entry.second;
  }
  Transformer* NewTransformer(int type) const { return map_.find(type)->second->Clone(); }

 private:
  std::map<int, Transformer*> map_;
};

int TransformInput(const CQRSData& record, std::vector<double>& x) {
  const Table table;
  Transformer* const transformer = table.NewTransformer(record.InputTransformType);
  const int status =
      transformer->TransformAndOverwrite(x, record.InputTransformValues, record.InputLambdas);
  delete transformer;
  return status;
}

int BacktransformOutput(const CQRSData& record, double& y) {
  const Table table;
  Transformer* const transformer = table.NewTransformer(record.OutputTransformType);
  const int status =
      transformer->BacktransformAndOverwrite(y, record.OutputTransformValue, record.OutputLambda);
  delete transformer;
  return status;
}

// ---------------------------------------------------------------------------- surface

int Sum(const Surface& surface, const std::vector<double>& x, double& y) {
  y = 0.0;
  for (int k = 0; k < surface.termCount; ++k) {
    double value = 0.0;
    const int status =
        surface.terms[k]->EvaluateValue(surface.record.NumberOfInputVariables, x.data(), &value);
    if (status != 0) return status;
    y += value;
  }
  return 0;
}

int PredictorError(const Surface& surface, const std::vector<double>& x, double& error) {
  const CQRSData& record = surface.record;
  std::vector<double> local(x.size());
  for (int i = 0; i < record.NumberOfInputVariables; ++i) {
    local[static_cast<std::size_t>(i)] = x[static_cast<std::size_t>(i)];
  }
  std::vector<double> r;
  for (int k = 0; k < surface.termCount; ++k) {
    if (surface.terms[k]->isActive == 0) continue;
    double value = 0.0;
    const int status =
        surface.terms[k]->EvaluateDesignRow(record.NumberOfInputVariables, local.data(), &value);
    if (status != 0) return status;
    r.push_back(value);
  }
  const StudTDist student(static_cast<double>(record.NumberOfSamples) -
                          static_cast<double>(r.size()));
  double t = 0.0;
  student.EvalInvCdf(record.RegTermFilterConfVal, t);
  double h = 0.0;
  for (std::size_t i = 0; i < r.size(); ++i) {
    for (std::size_t j = 0; j < r.size(); ++j) h += r[i] * record.InvXtX[i][j] * r[j];
  }
  error = std::sqrt((h + 1.0) * record.Sigma2) * t;
  error = error / record.OutputScaleSlope;
  return 0;
}

int Derivative(const CQRSData& record, double s, double& d) {
  const double c = 1.0 / record.OutputScaleSlope;
  const double a = record.OutputTransformValue;
  const double lambda = record.OutputLambda;
  const double e = 2.718281828459045;
  switch (static_cast<int>(record.OutputTransformType)) {
    case 0:
      d = c;
      return 0;
    case 1:
      d = std::exp(s) * c;
      return 0;
    case 2:
      d = (std::log10(e) * c) / (std::log10(a) * s);
      return 0;
    case 3:
      d = c / s;
      return 0;
    case 4:
      d = (std::log10(e) * c) / s;
      return 0;
    case 5:
      if (s < 0.0) return 1;
      d = (c * 0.5) / std::sqrt(s);
      return 0;
    case 6:
      if (s < 0.0) return 1;
      d = std::pow(s, a - 1.0) * a * c;
      return 0;
    case 7:
      if (std::fabs(lambda) < 1e-06) {
        d = std::exp(s) * c;
        return 0;
      }
      if (s * lambda + 1.0 < 0.0) return 1;
      d = std::pow(s * lambda + 1.0, 1.0 / lambda - 1.0) * c;
      return 0;
    case 8: {
      if (std::fabs(lambda) < 1e-06) {
        if (s > std::log(std::log(1e99))) return 1;
        d = std::exp(std::exp(s)) * c * std::exp(s);
        return 0;
      }
      const double t = lambda * s + 1.0;
      if (t < 0.0) return 1;
      d = std::exp(std::pow(t, 1.0 / lambda)) * c * std::pow(t, 1.0 / lambda - 1.0);
      return 0;
    }
    default:
      return 0;
  }
}

/// The interpolation without a limit on attempts and depth: only for holes that it can fill.
int Interpolate(const Surface& surface, const std::vector<double>& x, double& y) {
  const CQRSData& record = surface.record;
  const std::size_t n = x.size();
  if (n < 1 || n > 13) return 1;
  const std::size_t numPnts = std::size_t{1} << n;
  std::vector<std::vector<double>> pnts(numPnts, std::vector<double>(n));
  for (std::size_t i = 0; i < numPnts; ++i) {
    for (std::size_t j = 0; j < n; ++j) pnts[i][j] = ((i >> j) & 1U) != 0 ? 1.0 : -1.0;
  }
  std::vector<double> lower = record.InputSamples[0];
  std::vector<double> upper = record.InputSamples[0];
  for (const std::vector<double>& sample : record.InputSamples) {
    for (std::size_t j = 0; j < n; ++j) {
      if (sample[j] < lower[j]) lower[j] = sample[j];
      if (sample[j] > upper[j]) upper[j] = sample[j];
    }
  }
  std::vector<double> range;
  for (std::size_t j = 0; j < n; ++j) range.push_back(upper[j] - lower[j]);
  double failures = 0.0;
  bool shift = false;
  bool again = true;
  while (again) {
    again = false;
    std::vector<double> coded;
    for (std::size_t j = 0; j < n; ++j) {
      coded.push_back(2.0 * (x[j] - lower[j]) / (upper[j] - lower[j]) - 1.0);
    }
    y = 0.0;
    for (std::size_t p = 0; p < numPnts && !again; ++p) {
      double w = 1.0;
      for (std::size_t j = 0; j < n; ++j) w *= coded[j] * pnts[p][j] + 1.0;
      w = w / static_cast<double>(numPnts);
      std::vector<double> pt;
      for (std::size_t j = 0; j < n; ++j) {
        pt.push_back(x[j] + 0.005 * range[j] * (pnts[p][j] - coded[j]));
      }
      for (std::size_t pass = 0; shift && pass < numPnts; ++pass) {
        const std::vector<double> memory = pt;
        pt.clear();
        for (std::size_t j = 0; j < n; ++j) {
          const double v = memory[j];
          if (x[j] > upper[j] - range[j] * 0.5) pt.push_back(v - failures * 0.5 * 0.01 * range[j]);
          if (lower[j] + range[j] * 0.5 > x[j]) pt.push_back(v + failures * 0.5 * 0.01 * range[j]);
        }
      }
      double value = 0.0;
      if (EvaluateRegression(surface, pt, value) != 0) {
        shift = true;
        failures += 1.0;
        again = true;
      } else {
        y += value * w;
      }
    }
  }
  return 0;
}

bool IsRefused(const CQRSData& record, const std::vector<double>& x) {
  return !record.IsReadyForEvaluation() || record.IsStopped() ||
         x.size() != static_cast<std::size_t>(record.NumberOfInputVariables);
}

Term* NewTerm(int type) {
  switch (type) {
    case 1:
      return new Const;
    case 2:
      return new Linear;
    case 3:
      return new PureQuad;
    default:
      return new CrossQuad;
  }
}

}  // namespace

Surface::Surface(const CQRSData& source)
    : record(source),
      termCount(source.NumberOfRegTerms),
      terms(new Term*[static_cast<std::size_t>(termCount)]) {
  for (int k = 0; k < termCount; ++k) {
    Tarvane::Plexura::PXROM::CQRSData& from = record;
    E_FuncType type{};
    from.GetRegTermFuncType(k, type);
    Term* const term = NewTerm(type);
    term->isActive = from.QryRegTermIsActive(k);
    int count = 0;
    from.GetRegTermNumUsedInpVar(k, count);
    term->inputVariablesIndex = new int[static_cast<std::size_t>(count)]();
    term->isInputVariablesIndexSet =
        from.GetRegTermUsedInpVarIdx(k, term->inputVariablesIndex) == 0 ? 1 : 0;
    term->coefficientValue = new double[1]();
    term->isCoefficientSet = from.GetRegTermParamVal(k, term->coefficientValue) == 0 ? 1 : 0;
    terms[k] = term;
  }
}

Surface::~Surface() {
  for (int k = 0; k < termCount; ++k) {
    delete[] terms[k]->inputVariablesIndex;
    delete[] terms[k]->coefficientValue;
    delete terms[k];
  }
  delete[] terms;
}

int EvaluateRegression(const Surface& surface, const std::vector<double>& x, double& y) {
  const CQRSData& record = surface.record;
  if (IsRefused(record, x)) return 1;
  std::vector<double> point(x);
  double s = 0.0;
  int status = record.ScaleAndOverwriteInputSample(point);
  status += TransformInput(record, point);
  status += Sum(surface, point, s);
  status += BacktransformOutput(record, s);
  if (status != 0) return 1;
  if (std::fabs(s - (-9e99)) < 1e-10) return Interpolate(surface, x, y);
  y = (s - record.OutputScaleIntercept) / record.OutputScaleSlope;
  return 0;
}

int EvaluateRegression(const Surface& surface, const std::vector<double>& x, double& y,
                       double& predictorError) {
  const CQRSData& record = surface.record;
  if (IsRefused(record, x)) return 1;
  std::vector<double> point(x);
  double s = 0.0;
  int status = record.ScaleAndOverwriteInputSample(point);
  status += TransformInput(record, point);
  status += Sum(surface, point, s);
  status += BacktransformOutput(record, s);
  if (PredictorError(surface, point, predictorError) != 0) return 1;
  if (status != 0) return 1;
  if (std::fabs(s - (-9e99)) < 1e-10) return Interpolate(surface, x, y);
  y = (s - record.OutputScaleIntercept) / record.OutputScaleSlope;
  return 0;
}

int EvaluateRegressionDerivative(const Surface& surface, const std::vector<double>& x,
                                 std::vector<double>& gradient) {
  const CQRSData& record = surface.record;
  if (!record.IsReadyForEvaluation()) return 1;
  std::vector<double> point(x);
  double s = 0.0;
  double d = 0.0;
  int status = record.ScaleAndOverwriteInputSample(point);
  status += Sum(surface, point, s);
  status += Derivative(record, s, d);
  if (status != 0) return status;
  const auto n = static_cast<std::size_t>(record.NumberOfInputVariables);
  std::vector<double> g(n, 0.0);
  for (int k = 0; k < surface.termCount; ++k) {
    std::vector<double> local(n);
    status = surface.terms[k]->EvaluateDerivativeWrtInputVariables(record.NumberOfInputVariables,
                                                                   point.data(), local.data());
    if (status != 0) return status;
    for (std::size_t i = 0; i < n; ++i) g[i] += record.InputScaleSlopes[i] * local[i];
  }
  gradient.clear();
  for (std::size_t i = 0; i < n; ++i) gradient.push_back(d * g[i]);
  return 0;
}

int TransformForward(int type, double value, double lambda, double& x) {
  const Table table;
  Transformer* const transformer = table.NewTransformer(type);
  const int status = transformer->TransformAndOverwrite(x, value, lambda);
  delete transformer;
  return status;
}

int TransformBack(int type, double value, double lambda, double& x) {
  const Table table;
  Transformer* const transformer = table.NewTransformer(type);
  const int status = transformer->BacktransformAndOverwrite(x, value, lambda);
  delete transformer;
  return status;
}

}  // namespace literal
