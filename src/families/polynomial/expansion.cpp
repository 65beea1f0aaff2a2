#include "families/polynomial/expansion.h"

#include <algorithm>
#include <cmath>

#include "families/regression/transformation_slopes.h"

namespace Tarvane::Plexura::PXROM::polynomial {

namespace {

/// Element `v` of an optional list.
template <class Element>
Element ElementOr(const std::vector<Element>& list, std::size_t v, Element ifEmpty) {
  return list.empty() ? ifEmpty : list[v];
}

/// Whether an optional list is empty or has `count` elements.
template <class Element>
bool Fits(const std::vector<Element>& list, std::size_t count) {
  return list.empty() || list.size() == count;
}

bool HasListsOf(const CPolynomialData& record, std::size_t variables) {
  return Fits(record.VariableTransformTypes, variables) &&
         Fits(record.VariableTransformValues, variables) &&
         Fits(record.VariableLambdas, variables) && Fits(record.VariableSlopes, variables) &&
         Fits(record.VariableIntercepts, variables) && Fits(record.VariableBases, variables) &&
         Fits(record.VariableAlphas, variables) && Fits(record.VariableBetas, variables);
}

}  // namespace

bool Expansion::LayOut(const CPolynomialData& record, std::size_t inputs) {
  record_ = &record;
  const std::size_t variables = record.VariableInputs.size();
  const std::size_t terms = record.Coefficients.size();
  const bool isSound =
      record.PolynomialDataVersion_ == PolynomialDataVersion1 &&
      record.InputScaleSlopes.size() == inputs && record.InputScaleIntercepts.size() == inputs &&
      HasListsOf(record, variables) && terms > 0 && record.Degrees.size() % terms == 0 &&
      record.Degrees.size() / terms == variables;
  back_ = FindTransformer(record.OutputTransformType);
  if (!isSound || back_ == nullptr || !FindVariables(inputs) || !FindDegrees()) return false;
  FindFactors();
  return true;
}

bool Expansion::FindVariables(std::size_t inputs) {
  const CPolynomialData& record = *record_;
  variables_.reserve(record.VariableInputs.size());
  for (std::size_t v = 0; v < record.VariableInputs.size(); ++v) {
    const int input = record.VariableInputs[v];
    const auto type = static_cast<E_QRSTransformationType>(
        ElementOr<int>(record.VariableTransformTypes, v, TransformNone));
    const auto basis =
        static_cast<E_PolynomialBasis>(ElementOr<int>(record.VariableBases, v, PolyBasisMonomial));
    const Variable variable = {
        static_cast<std::size_t>(input),
        FindTransformer(type),
        ElementOr(record.VariableTransformValues, v, 0.0),
        ElementOr(record.VariableLambdas, v, 0.0),
        ElementOr(record.VariableSlopes, v, 1.0),
        ElementOr(record.VariableIntercepts, v, 0.0),
        UnivariateBasis(basis, ElementOr(record.VariableAlphas, v, 0.0),
                        ElementOr(record.VariableBetas, v, 0.0), record.Orthonormal)};
    const bool isInput = input >= 0 && variable.input < inputs;
    if (!isInput || variable.forward == nullptr || !variable.basis.IsSound()) return false;
    variables_.push_back(variable);
  }
  return true;
}

bool Expansion::FindDegrees() {
  const std::vector<int>& degrees = record_->Degrees;
  for (std::size_t at = 0; at < degrees.size();) {
    for (Variable& variable : variables_) {
      const int degree = degrees[at++];
      if (degree < 0 || degree > CPolynomialData::kLargestDegree) return false;
      variable.highest = std::max(variable.highest, degree);
    }
  }
  std::size_t sum = 0;
  for (Variable& variable : variables_) {
    variable.place = tableSize_;
    tableSize_ += static_cast<std::size_t>(variable.highest) + 1;
    sum += static_cast<std::size_t>(variable.highest);
  }
  return sum <= CPolynomialData::kLargestDegreeSum && GiveSteps();
}

bool Expansion::GiveSteps() {
  std::size_t used = 0;
  for (Variable& variable : variables_) {
    if (!variable.basis.NeedsSteps()) continue;
    variable.basis.SetSteps(record_->Recurrences.data() + used);
    used += std::size_t{3} * static_cast<std::size_t>(variable.highest);
    if (used > record_->Recurrences.size()) return false;
  }
  return used == record_->Recurrences.size();
}

void Expansion::FindFactors() {
  const int* degree = record_->Degrees.data();
  ends_.reserve(record_->Coefficients.size());
  for (std::size_t term = 0; term < record_->Coefficients.size(); ++term) {
    const std::size_t begin = factors_.size();
    for (std::size_t v = 0; v < variables_.size(); ++v, ++degree) {
      if (*degree == 0) continue;
      const std::size_t place = variables_[v].place + static_cast<std::size_t>(*degree);
      factors_.push_back({static_cast<std::uint32_t>(place), static_cast<std::uint32_t>(v)});
    }
    ends_.push_back(factors_.size());
    longestProduct_ = std::max(longestProduct_, factors_.size() - begin);
  }
}

bool Expansion::HasCovariance() const {
  const auto& rows = record_->Covariance;
  return record_->SavePredictorError && rows.size() == Terms() &&
         std::all_of(rows.begin(), rows.end(),
                     [this](const std::vector<double>& row) { return row.size() == Terms(); });
}

int Expansion::FillTable(const double* x, double* table) const {
  return FillTable(x, table, nullptr);
}

int Expansion::FillTable(const double* x, double* table, double* slopes) const {
  for (const Variable& variable : variables_) {
    const std::size_t i = variable.input;
    const double scaled = record_->InputScaleSlopes[i] * x[i] + record_->InputScaleIntercepts[i];
    double transformed = scaled;
    if (variable.forward->TransformAndOverwrite(transformed, variable.value, variable.lambda) !=
        0) {
      return 1;
    }
    const double u = variable.slope * transformed + variable.intercept;
    double* const values = table + variable.place;
    variable.basis.FillValues(variable.highest, u, values);
    if (slopes == nullptr) continue;
    double* const own = slopes + variable.place;
    variable.basis.FillSlopes(variable.highest, u, values, own);
    const double inner =
        record_->InputScaleSlopes[i] * variable.slope *
        batch::TransformationSlope(*variable.forward, scaled, variable.value, variable.lambda);
    for (int n = 1; n <= variable.highest; ++n) own[n] *= inner;
  }
  return 0;
}

double Expansion::Product(std::size_t term, const double* table) const {
  double product = 1.0;
  for (const Factor* factor = Begin(term); factor != End(term); ++factor) {
    product *= table[factor->place];
  }
  return product;
}

double Expansion::Sum(const double* table) const {
  double sum = 0.0;
  for (std::size_t term = 0; term < Terms(); ++term) {
    sum += record_->Coefficients[term] * Product(term, table);
  }
  return sum;
}

void Expansion::AddGradient(std::size_t term, double weight, const double* table,
                            const double* slopes, double* work, double* gradient) const {
  const Factor* const begin = Begin(term);
  const auto count = static_cast<std::size_t>(End(term) - begin);
  double before = weight;
  for (std::size_t k = 0; k < count; ++k) {
    work[k] = before;
    before *= table[begin[k].place];
  }
  double after = 1.0;
  for (std::size_t k = count; k-- > 0;) {
    const Factor& factor = begin[k];
    gradient[variables_[factor.variable].input] += work[k] * after * slopes[factor.place];
    after *= table[factor.place];
  }
}

int Expansion::Finish(double s, double& y) const {
  const int status =
      back_->BacktransformAndOverwrite(s, record_->OutputTransformValue, record_->OutputLambda);
  if (status != 0) return 1;
  y = (s - record_->OutputScaleIntercept) / record_->OutputScaleSlope;
  return 0;
}

double Expansion::QuadraticForm(const std::vector<double>& products) const {
  double sum = 0.0;
  for (std::size_t i = 0; i < products.size(); ++i) {
    for (std::size_t j = 0; j < products.size(); ++j) {
      sum += products[i] * record_->Covariance[i][j] * products[j];
    }
  }
  return std::max(sum, 0.0);
}

}  // namespace Tarvane::Plexura::PXROM::polynomial
