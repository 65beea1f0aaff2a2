#include "pxrom/regression_terms.h"

#include <algorithm>
#include <cmath>
#include <memory>
#include <new>
#include <vector>

#include "families/regression/terms.h"

namespace {

constexpr double kResetCoefficient = -99.0;
constexpr int kUnknownCount = -99;

/// x to the power `exponent`. The square is a product, since pow may round differently.
double Power(double x, int exponent) { return exponent == 2 ? x * x : std::pow(x, exponent); }

}  // namespace

RegTerm::RegTerm(E_FuncType type, int usedInputVariables)
    : funcType(type), numUsedInpVar(usedInputVariables) {}

RegTerm::~RegTerm() {
  delete[] inputVariablesIndex;
  delete[] coefficientValue;
}

void RegTerm::UpdateReadyKind() {
  readyKind = NotReady;
  if (!isPlain || isActive != 1 || isCoefficientSet == 0) return;
  if (funcType == FuncTypeConst) readyKind = ReadyConst;
  if (isInputVariablesIndexSet == 0) return;
  if (funcType == FuncTypeLinear) readyKind = ReadyLinear;
  if (funcType == FuncTypePureQuad || funcType == FuncTypeCrossQuad) readyKind = ReadyQuad;
}

int StoredRegTerm::SetParamVal(const int& count, const double* values) {
  if (count != numParam || values == nullptr) return 1;
  std::unique_ptr<double[]> copy(new (std::nothrow) double[static_cast<std::size_t>(count)]);
  if (!copy) return 1;
  std::copy_n(values, count, copy.get());
  delete[] coefficientValue;
  coefficientValue = copy.release();
  isCoefficientSet = 1;
  UpdateReadyKind();
  return 0;
}

int StoredRegTerm::StoreIndices(int count, int copied, const int* indices) {
  if (count < 0 || (copied > 0 && indices == nullptr)) return 1;
  std::unique_ptr<int[]> copy(new (std::nothrow) int[static_cast<std::size_t>(count)]());
  if (!copy) return 1;
  std::copy_n(indices, std::min(copied, count), copy.get());
  delete[] inputVariablesIndex;
  inputVariablesIndex = copy.release();
  numUsedInpVar = count;
  isInputVariablesIndexSet = 1;
  UpdateReadyKind();
  return 0;
}

int StoredRegTerm::SetUsedInpVarIdx(const int& count, const int* indices) {
  return count == numUsedInpVar ? StoreIndices(count, count, indices) : 1;
}

int StoredRegTerm::SetActive() {
  isActive = 1;
  UpdateReadyKind();
  return 0;
}

int StoredRegTerm::SetInactive() {
  isActive = 0;
  UpdateReadyKind();
  return 0;
}

int StoredRegTerm::GetNumParam(int& count) const {
  count = numParam;
  return 0;
}

int StoredRegTerm::GetParamVal(double* values) const {
  if (coefficientValue == nullptr) return 1;
  std::copy_n(coefficientValue, numParam, values);
  return 0;
}

int StoredRegTerm::GetNumUsedInpVar(int& count) const {
  count = numUsedInpVar;
  return 0;
}

int StoredRegTerm::GetUsedInpVarIdx(int* indices) const {
  if (inputVariablesIndex == nullptr) return 1;
  std::copy_n(inputVariablesIndex, numUsedInpVar, indices);
  return 0;
}

int StoredRegTerm::GetTermTag(int& tag) const {
  tag = termTag;
  return 0;
}

int StoredRegTerm::GetFuncType(E_FuncType& type) const {
  type = funcType;
  return 0;
}

int StoredRegTerm::QryIsActive() const { return isActive; }

int StoredRegTerm::ResetParamVal() {
  if (coefficientValue != nullptr) std::fill_n(coefficientValue, numParam, kResetCoefficient);
  isActive = 1;
  isCoefficientSet = 0;
  UpdateReadyKind();
  return 0;
}

inline bool StoredRegTerm::IsIndexInside(int entry, int numInputVars) const {
  const int index = inputVariablesIndex[entry];
  return index >= 0 && index < numInputVars;
}

ConstTerm::ConstTerm() : StoredRegTerm(FuncTypeConst, 0) {}

int ConstTerm::SetUsedInpVarIdx(const int& count, const int*) { return count == 0 ? 0 : 1; }
int ConstTerm::GetUsedInpVarIdx(int*) const { return 1; }

int ConstTerm::EvaluateValue(const int&, const double*, double* value) const {
  if (!IsCoefficientSet()) return 1;
  *value = isActive == 1 ? *coefficientValue : 0.0;
  return 0;
}

int ConstTerm::EvaluateDerivativeWrtInputVariables(const int& numInputVars, const double*,
                                                   double* gradient) const {
  if (!IsCoefficientSet()) return 1;
  std::fill_n(gradient, numInputVars, 0.0);
  return 0;
}

int ConstTerm::EvaluateDesignRow(const int&, const double*, double* row) const {
  row[0] = isActive == 1 ? 1.0 : 0.0;
  return 0;
}

LinearTerm::LinearTerm() : StoredRegTerm(FuncTypeLinear, 1) {}

int LinearTerm::EvaluateValue(const int& numInputVars, const double* x, double* value) const {
  if (!IsCoefficientSet() || !IsIndexSet()) return 1;
  if (isActive != 1) {
    *value = 0.0;
    return 0;
  }
  if (!IsIndexInside(0, numInputVars)) return 1;
  *value = x[inputVariablesIndex[0]] * *coefficientValue;
  return 0;
}

int LinearTerm::EvaluateDerivativeWrtInputVariables(const int& numInputVars, const double*,
                                                    double* gradient) const {
  if (!IsCoefficientSet() || !IsIndexSet()) return 1;
  if (isActive == 1 && !IsIndexInside(0, numInputVars)) return 1;
  std::fill_n(gradient, numInputVars, 0.0);
  if (isActive == 1) gradient[inputVariablesIndex[0]] = *coefficientValue;
  return 0;
}

int LinearTerm::EvaluateDesignRow(const int& numInputVars, const double* x, double* row) const {
  if (!IsIndexSet()) return 1;
  if (isActive == 1 && !IsIndexInside(0, numInputVars)) return 1;
  row[0] = isActive == 1 ? x[inputVariablesIndex[0]] : 0.0;
  return 0;
}

int QuadTerm::EvaluateValue(const int& numInputVars, const double* x, double* value) const {
  if (!IsCoefficientSet() || !IsIndexSet()) return 1;
  if (isActive != 1) {
    *value = 0.0;
    return 0;
  }
  if (!IsIndexInside(0, numInputVars) || !IsIndexInside(1, numInputVars)) return 1;
  *value = x[inputVariablesIndex[0]] * *coefficientValue * x[inputVariablesIndex[1]];
  return 0;
}

int QuadTerm::EvaluateDesignRow(const int& numInputVars, const double* x, double* row) const {
  if (!IsIndexSet()) return 1;
  if (isActive != 1) {
    row[0] = 0.0;
    return 0;
  }
  if (!IsIndexInside(0, numInputVars) || !IsIndexInside(1, numInputVars)) return 1;
  row[0] = x[inputVariablesIndex[1]] * x[inputVariablesIndex[0]];
  return 0;
}

PureQuadTerm::PureQuadTerm() : QuadTerm(FuncTypePureQuad, 2) {}

int PureQuadTerm::EvaluateDerivativeWrtInputVariables(const int& numInputVars, const double* x,
                                                      double* gradient) const {
  if (!IsCoefficientSet() || !IsIndexSet()) return 1;
  if (isActive == 1 && !IsIndexInside(0, numInputVars)) return 1;
  std::fill_n(gradient, numInputVars, 0.0);
  if (isActive != 1) return 0;
  const int variable = inputVariablesIndex[0];
  gradient[variable] = (*coefficientValue + *coefficientValue) * x[variable];
  return 0;
}

CrossQuadTerm::CrossQuadTerm() : QuadTerm(FuncTypeCrossQuad, 2) {}

int CrossQuadTerm::EvaluateDerivativeWrtInputVariables(const int& numInputVars, const double* x,
                                                       double* gradient) const {
  if (!IsCoefficientSet() || !IsIndexSet()) return 1;
  const bool active = isActive == 1;
  if (active && !(IsIndexInside(0, numInputVars) && IsIndexInside(1, numInputVars))) return 1;
  std::fill_n(gradient, numInputVars, 0.0);
  if (!active) return 0;
  const int first = inputVariablesIndex[0];
  const int second = inputVariablesIndex[1];
  gradient[first] = x[second] * *coefficientValue;
  // Assigned and not added: see the class.
  gradient[second] = x[first] * *coefficientValue;
  return 0;
}

CrossPolyTerm::CrossPolyTerm() : StoredRegTerm(FuncTypeCrossPoly, kUnknownCount) {}

int CrossPolyTerm::SetUsedInpVarIdx(const int& count, const int* indices) {
  // Copies the old length: see the class.
  return StoreIndices(count, std::max(numUsedInpVar, 0), indices);
}

bool CrossPolyTerm::AreIndicesInside(int numInputVars) const {
  for (int entry = 0; entry < numUsedInpVar; ++entry) {
    if (!IsIndexInside(entry, numInputVars)) return false;
  }
  return true;
}

double CrossPolyTerm::Product(double start, const double* x) const {
  for (int entry = 0; entry < numUsedInpVar; ++entry) start *= x[inputVariablesIndex[entry]];
  return start;
}

int CrossPolyTerm::EvaluateValue(const int& numInputVars, const double* x, double* value) const {
  if (!IsCoefficientSet() || !IsIndexSet()) return 1;
  if (isActive == 1 && !AreIndicesInside(numInputVars)) return 1;
  *value = isActive == 1 ? Product(*coefficientValue, x) : 0.0;
  return 0;
}

int CrossPolyTerm::EvaluateDerivativeWrtInputVariables(const int& numInputVars, const double* x,
                                                       double* gradient) const {
  if (!IsCoefficientSet() || !IsIndexSet()) return 1;
  if (isActive == 1 && !AreIndicesInside(numInputVars)) return 1;
  std::fill_n(gradient, numInputVars, 0.0);
  if (isActive != 1 || numInputVars <= 0) return 0;
  std::vector<int> powers(static_cast<std::size_t>(numInputVars));
  for (int entry = 0; entry < numUsedInpVar; ++entry) {
    ++powers[static_cast<std::size_t>(inputVariablesIndex[entry])];
  }
  for (std::size_t v = 0; v < powers.size(); ++v) {
    if (powers[v] == 0) continue;
    const double c = *coefficientValue;
    double entry = powers[v] == 1 ? c : powers[v] * c * Power(x[v], powers[v] - 1);
    for (std::size_t u = 0; u < powers.size(); ++u) {
      if (u != v && powers[u] != 0) entry *= Power(x[u], powers[u]);
    }
    gradient[v] = entry;
  }
  return 0;
}

int CrossPolyTerm::EvaluateDesignRow(const int& numInputVars, const double* x, double* row) const {
  if (!IsIndexSet()) return 1;
  if (isActive == 1 && !AreIndicesInside(numInputVars)) return 1;
  row[0] = isActive == 1 ? Product(1.0, x) : 0.0;
  return 0;
}

namespace Tarvane::Plexura::PXROM {

/// Adds the value of a term of up to two variables, without a virtual call and with as few loads as
/// possible, so that only the chain of additions takes time. False when the term is not ready for
/// this; EvaluateValue then gives the value or the status.
inline bool TermSum::AddReady(const RegTerm& term, unsigned numInputVars, const double* x,
                              double& sum) {
  if (term.readyKind == RegTerm::ReadyQuad) {
    const auto first = static_cast<unsigned>(term.inputVariablesIndex[0]);
    const auto second = static_cast<unsigned>(term.inputVariablesIndex[1]);
    if (first >= numInputVars || second >= numInputVars) return false;
    sum += x[first] * *term.coefficientValue * x[second];
    return true;
  }
  if (term.readyKind == RegTerm::ReadyLinear) {
    const auto first = static_cast<unsigned>(term.inputVariablesIndex[0]);
    if (first >= numInputVars) return false;
    sum += x[first] * *term.coefficientValue;
    return true;
  }
  if (term.readyKind == RegTerm::ReadyConst) {
    sum += *term.coefficientValue;
    return true;
  }
  return false;
}

// It begins a cache line: at other places its loop takes up to a quarter longer.
[[gnu::aligned(64)]] int TermSum::Add(const RegTerm* const* terms, int count, int numInputVars,
                                      const double* x, double& sum) {
  const auto inputs = static_cast<unsigned>(numInputVars);
  double total = sum;
  int status = 0;
  for (int k = 0; k < count; ++k) {
    const RegTerm* const term = terms[k];
    if (term != nullptr && AddReady(*term, inputs, x, total)) continue;
    double value = 0.0;
    status = term != nullptr ? term->EvaluateValue(numInputVars, x, &value) : 1;
    if (status != 0) break;
    total += value;
  }
  sum = total;
  return status;
}

bool TermSum::AddGradient(const RegTerm& term, int numInputVars, const double* x,
                          const double* slopes, double* g) {
  if (term.readyKind == RegTerm::NotReady) return false;
  if (term.readyKind == RegTerm::ReadyConst) return true;
  const int first = term.inputVariablesIndex[0];
  if (first < 0 || first >= numInputVars) return false;
  const double c = *term.coefficientValue;
  if (term.readyKind == RegTerm::ReadyLinear) {
    g[first] += slopes[first] * c;
    return true;
  }
  if (term.funcType == FuncTypePureQuad) {
    g[first] += slopes[first] * ((c + c) * x[first]);
    return true;
  }
  const int second = term.inputVariablesIndex[1];
  if (second < 0 || second >= numInputVars) return false;
  // An index that occurs twice counts once, as in CrossQuadTerm.
  if (first != second) g[first] += slopes[first] * (x[second] * c);
  g[second] += slopes[second] * (x[first] * c);
  return true;
}

namespace {

std::unique_ptr<RegTerm> NewTermOfClass(E_FuncType type) {
  switch (type) {
    case FuncTypeConst:
      return std::make_unique<ConstTerm>();
    case FuncTypeLinear:
      return std::make_unique<LinearTerm>();
    case FuncTypePureQuad:
      return std::make_unique<PureQuadTerm>();
    case FuncTypeCrossQuad:
      return std::make_unique<CrossQuadTerm>();
    case FuncTypeCrossPoly:
      return std::make_unique<CrossPolyTerm>();
  }
  return nullptr;
}

}  // namespace

std::unique_ptr<RegTerm> TermSum::NewTerm(E_FuncType type) {
  std::unique_ptr<RegTerm> term = NewTermOfClass(type);
  if (term) term->isPlain = true;
  return term;
}

std::unique_ptr<RegTerm> CopyOfTerm(const RegTerm& source) {
  E_FuncType type{};
  std::unique_ptr<RegTerm> copy = source.GetFuncType(type) == 0 ? TermSum::NewTerm(type) : nullptr;
  if (!copy) return nullptr;
  if (source.QryIsActive() == 1) {
    copy->SetActive();
  } else {
    copy->SetInactive();
  }
  // If the source lacks indices or coefficients, or has another number of them, so does the copy. A
  // count of 0 is passed on without indices: a product of no variables still has to be set.
  int indexCount = 0;
  if (source.GetNumUsedInpVar(indexCount) == 0 && indexCount >= 0) {
    std::vector<int> indices(static_cast<std::size_t>(indexCount));
    if (indexCount == 0 || source.GetUsedInpVarIdx(indices.data()) == 0) {
      copy->SetUsedInpVarIdx(indexCount, indexCount > 0 ? indices.data() : nullptr);
    }
  }
  int parameterCount = 0;
  if (source.GetNumParam(parameterCount) == 0 && parameterCount > 0) {
    std::vector<double> values(static_cast<std::size_t>(parameterCount));
    if (source.GetParamVal(values.data()) == 0) copy->SetParamVal(parameterCount, values.data());
  }
  return copy;
}

}  // namespace Tarvane::Plexura::PXROM
