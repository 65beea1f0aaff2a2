// Sums, gradients and design matrices of a list of terms.

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <memory>
#include <new>

#include "families/regression/record_parts.h"
#include "families/regression/terms.h"
#include "pxrom/regression.h"

namespace Tarvane::Plexura::PXROM {

namespace {

using Matrix = std::vector<std::vector<double>>;

/// The number of coefficients of a list of terms, and of its largest term.
struct Width {
  std::int64_t sum = 0;
  int largest = 0;
};

int WidthOf(int numTerms, const RegTerm* const* terms, Width& width) {
  if (numTerms > 0 && terms == nullptr) return 1;
  for (int k = 0; k < numTerms; ++k) {
    int count = 0;
    const int status = terms[k] != nullptr ? terms[k]->GetNumParam(count) : 1;
    if (status != 0) return status;
    if (count < 0) return 1;
    width.sum += count;
    width.largest = std::max(width.largest, count);
  }
  return 0;
}

/// Points by rows in one array.
struct WorkingCopy {
  WorkingCopy(int rowCount, int columnCount)
      : columns(static_cast<std::size_t>(columnCount)),
        values(new (std::nothrow) double[static_cast<std::size_t>(rowCount) * columns]) {}

  double* Row(int r) const { return values.get() + static_cast<std::size_t>(r) * columns; }

  std::size_t columns;
  std::unique_ptr<double[]> values;
};

/// Writes the design row by row through `at(row, column)`. The statuses are those of the terms.
template <class At>
int FillDesign(const CQRSData& record, const WorkingCopy& points, int numTerms,
               const RegTerm* const* terms, const Width& width, At at) {
  std::vector<double> values(static_cast<std::size_t>(width.largest));
  for (int r = 0; r < record.NumberOfSamples; ++r) {
    int column = 0;
    for (int k = 0; k < numTerms; ++k) {
      const RegTerm& term = *terms[k];
      int status =
          term.EvaluateDesignRow(record.NumberOfInputVariables, points.Row(r), values.data());
      if (status != 0) return status;
      int count = 0;
      status = term.GetNumParam(count);
      if (status != 0) return status;
      // Only a host's term that has changed its count since can get here.
      if (count < 0 || count > width.largest || column + count > width.sum) return 1;
      for (int i = 0; i < count; ++i) at(r, column++) = values[static_cast<std::size_t>(i)];
    }
  }
  return 0;
}

}  // namespace

int CQRSData::BuildDesignMtx(const Matrix& points, const int& numTerms, const RegTerm* const* terms,
                             Matrix& design) const {
  Width width;
  const int status = WidthOf(numTerms, terms, width);
  if (status != 0) return status;
  if (NumberOfSamples < 1 || NumberOfInputVariables < 0) return 1;
  const auto samples = static_cast<std::size_t>(NumberOfSamples);
  const auto inputs = static_cast<std::size_t>(NumberOfInputVariables);
  const auto columns = static_cast<std::size_t>(width.sum);
  if (design.size() != samples || design.front().size() != columns) return 1;
  if (points.size() < samples) return 1;
  for (std::size_t r = 0; r < samples; ++r) {
    if (points[r].size() < inputs || design[r].size() < columns) return 1;
  }
  const WorkingCopy copy(NumberOfSamples, NumberOfInputVariables);
  if (!copy.values) return 1;
  for (int r = 0; r < NumberOfSamples; ++r) {
    std::copy_n(points[static_cast<std::size_t>(r)].begin(), inputs, copy.Row(r));
  }
  return FillDesign(*this, copy, numTerms, terms, width, [&](int r, int c) -> double& {
    return design[static_cast<std::size_t>(r)][static_cast<std::size_t>(c)];
  });
}

int CQRSData::BuildDesignMtx(const DRecMtx& points, const int& numTerms,
                             const RegTerm* const* terms, DRecMtx& design) const {
  int rows = 0;
  int columns = 0;
  int status = design.GetDimensions(rows, columns);
  if (status != 0) return status;
  Width width;
  status = WidthOf(numTerms, terms, width);
  if (status != 0) return status;
  if (columns != width.sum || rows != NumberOfSamples || rows < 1) return 1;
  int pointRows = 0;
  int pointColumns = 0;
  status = points.GetDimensions(pointRows, pointColumns);
  if (status != 0) return status;
  if (pointRows != NumberOfSamples || pointColumns != NumberOfInputVariables) return 1;
  const WorkingCopy copy(pointRows, pointColumns);
  if (!copy.values) return 1;
  std::vector<double*> copyRows;
  copyRows.reserve(static_cast<std::size_t>(pointRows));
  for (int r = 0; r < pointRows; ++r) copyRows.push_back(copy.Row(r));
  status = points.CopyToRows(copyRows.data());
  if (status != 0) return status;
  // Dimensions may be set before there is storage.
  double* data = nullptr;
  if (design.GetData(data) != 0) return 1;
  return FillDesign(*this, copy, numTerms, terms, width,
                    [&](int r, int c) -> double& { return *design.ElementPtr(r, c); });
}

int SumTerms(const CQRSData& record, std::size_t count, const double* x, double& sum) {
  sum = 0.0;
  if (!HasTermArray(record)) return 1;
  return TermSum::Add(record.RegTerms, record.NumberOfRegTerms, UsableInputs(record, count), x,
                      sum);
}

int CQRSData::EvaluateRegTerm(std::vector<double>& x, double& y) const {
  return SumTerms(*this, x.size(), x.data(), y);
}

int CQRSData::EvaluateRegTermDerivativeWrtInputVariables(const std::vector<double>& x,
                                                         std::vector<double>& g) const {
  const auto inputs = static_cast<std::size_t>(std::max(NumberOfInputVariables, 0));
  if (!HasTermArray(*this) || InputScaleSlopes.size() < inputs) return 1;
  const int usable = UsableInputs(*this, x.size());
  const auto isFinite = [](double slope) { return std::isfinite(slope); };
  const bool areFinite = std::all_of(InputScaleSlopes.begin(), InputScaleSlopes.end(), isFinite);
  std::vector<double> gradient(inputs);
  g.assign(inputs, 0.0);
  for (int k = 0; k < NumberOfRegTerms; ++k) {
    const RegTerm* const term = RegTerms[k];
    if (term == nullptr) return 1;
    const double* const slopes = InputScaleSlopes.data();
    if (areFinite && TermSum::AddGradient(*term, usable, x.data(), slopes, g.data())) continue;
    const int status = term->EvaluateDerivativeWrtInputVariables(usable, x.data(), gradient.data());
    if (status != 0) return status;
    for (std::size_t i = 0; i < inputs; ++i) g[i] += slopes[i] * gradient[i];
  }
  return 0;
}

int CQRSData::GetMaxMagnitude(const std::vector<double>& v, const int& n, double& out) const {
  if (n > 0 && v.size() < static_cast<std::size_t>(n)) return 1;
  out = 0.0;
  for (int i = 0; i < n; ++i) out = std::max(out, v[static_cast<std::size_t>(i)]);
  return 0;
}

int CQRSData::GetAllParamStatusAndVal(const int& numParam, double* status, double* values) const {
  if (!IsReadyForEvaluation()) return 1;
  Width width;
  int failure = WidthOf(NumberOfRegTerms, RegTerms, width);
  if (failure != 0) return failure;
  if (width.sum != numParam) return 1;
  int offset = 0;
  for (int k = 0; k < NumberOfRegTerms; ++k) {
    const RegTerm& term = *RegTerms[k];
    int count = 0;
    failure = term.GetNumParam(count);
    if (failure != 0) return failure;
    if (count > numParam - offset) return 1;
    // Once per term, at its first coefficient.
    if (count > 0) status[offset] = term.QryIsActive();
    failure = term.GetParamVal(values + offset);
    if (failure != 0) return failure;
    offset += count;
  }
  return 0;
}

}  // namespace Tarvane::Plexura::PXROM
