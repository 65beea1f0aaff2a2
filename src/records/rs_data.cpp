#include "pxrom/rs_data.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

#include "records/samples.h"
#include "records/scaling.h"

namespace Tarvane::Plexura::PXROM {

namespace {

using Matrix = std::vector<std::vector<double>>;

// The statistics are written once, over `at(0)` to `at(count - 1)`. A vector and a column of a
// matrix differ only in `at`.

template <class At>
double Largest(std::size_t count, At at) {
  if (count == 0) return 0.0;
  double largest = at(0);
  for (std::size_t i = 1; i < count; ++i) {
    if (at(i) > largest) largest = at(i);
  }
  return largest;
}

template <class At>
double Smallest(std::size_t count, At at) {
  if (count == 0) return 0.0;
  double smallest = at(0);
  for (std::size_t i = 1; i < count; ++i) {
    if (at(i) < smallest) smallest = at(i);
  }
  return smallest;
}

template <class At>
double Mean(std::size_t count, At at) {
  double sum = 0.0;
  for (std::size_t i = 0; i < count; ++i) sum += at(i);
  return sum / static_cast<double>(count);
}

template <class At>
double Norm2(std::size_t count, At at) {
  double sum = 0.0;
  for (std::size_t i = 0; i < count; ++i) sum += at(i) * at(i);
  return std::sqrt(sum);
}

template <class At>
double NormInf(std::size_t count, At at) {
  return Largest(count, [&](std::size_t i) { return std::fabs(at(i)); });
}

template <class At>
double SquaredDeviations(std::size_t count, double mean, At at) {
  double sum = 0.0;
  for (std::size_t i = 0; i < count; ++i) {
    const double deviation = at(i) - mean;
    sum += deviation * deviation;
  }
  return sum;
}

auto ElementsOf(const std::vector<double>& v) {
  return [&v](std::size_t i) { return v[i]; };
}

auto ColumnOf(const Matrix& m, int c) {
  return [&m, column = static_cast<std::size_t>(c)](std::size_t r) { return m[r][column]; };
}

bool HasEqualRows(const Matrix& m) {
  return std::all_of(m.begin(), m.end(), [&m](const std::vector<double>& row) {
    return row.size() == m.front().size();
  });
}

bool EqualsCount(int count, std::size_t size) {
  return count >= 0 && static_cast<std::size_t>(count) == size;
}

}  // namespace

CRSData::CRSData() = default;
CRSData::CRSData(const CRSData&) = default;
CRSData& CRSData::operator=(const CRSData&) = default;
CRSData* CRSData::Clone() const { return new CRSData(*this); }
CRSData::~CRSData() = default;

int CRSData::ResetData() {
  NumberOfInputVariables = 0;
  NumberOfSamples = 0;
  InputSamples.clear();
  OutputSamples.clear();
  InputScaleSlopes.clear();
  InputScaleIntercepts.clear();
  OutputScaleSlope = 0.0;
  OutputScaleIntercept = 0.0;
  ReadyForSolve = false;
  ReadyForEvaluation = false;
  Stopped = false;
  RSDataVersion_ = RSDataVersion162;
  return 0;
}

bool CRSData::IsAllRight() { return IsSamplingCorrect() && IsScalingCorrect(); }

E_DataType CRSData::DataType() const { return DT_RSData; }

int CRSData::GetNumberOfInputVariables(int& count) const {
  count = NumberOfInputVariables;
  return 0;
}

int CRSData::SetNumberOfInputVariables(int count) {
  NumberOfInputVariables = count;
  return 0;
}

int CRSData::GetNumberOfSamples(int& count) const {
  count = NumberOfSamples;
  return 0;
}

int CRSData::SetNumberOfSamples(int count) {
  NumberOfSamples = count;
  return 0;
}

int CRSData::GetInputSamples(Matrix& rows) const {
  rows = InputSamples;
  return 0;
}

int CRSData::SetInputSamples(const Matrix& rows) {
  InputSamples = rows;
  return 0;
}

int CRSData::GetOutputSamples(std::vector<double>& ys) const {
  ys = OutputSamples;
  return 0;
}

int CRSData::SetOutputSamples(const std::vector<double>& ys) {
  OutputSamples = ys;
  return 0;
}

int CRSData::GetInputScaleSlopes(std::vector<double>& slopes) const {
  slopes = InputScaleSlopes;
  return 0;
}

int CRSData::SetInputScaleSlopes(const std::vector<double>& slopes) {
  InputScaleSlopes = slopes;
  return 0;
}

int CRSData::GetInputScaleIntercepts(std::vector<double>& intercepts) const {
  intercepts = InputScaleIntercepts;
  return 0;
}

int CRSData::SetInputScaleIntercepts(const std::vector<double>& intercepts) {
  InputScaleIntercepts = intercepts;
  return 0;
}

int CRSData::GetOutputScaleSlope(double& slope) const {
  slope = OutputScaleSlope;
  return 0;
}

int CRSData::SetOutputScaleSlope(double slope) {
  OutputScaleSlope = slope;
  return 0;
}

int CRSData::GetOutputScaleIntercept(double& intercept) const {
  intercept = OutputScaleIntercept;
  return 0;
}

int CRSData::SetOutputScaleIntercept(double intercept) {
  OutputScaleIntercept = intercept;
  return 0;
}

int CRSData::GetInputSampleWrtSampleIndex(int s, std::vector<double>& out) const {
  out = InputSamples[static_cast<std::size_t>(s)];
  return 0;
}

int CRSData::GetInputSampleWrtInputIndex(int v, std::vector<double>& out) const {
  const auto sample = ColumnOf(InputSamples, v);
  out.clear();
  for (int s = 0; s < NumberOfSamples; ++s) out.push_back(sample(static_cast<std::size_t>(s)));
  return 0;
}

int CRSData::GetOutputSampleWrtSampleIndex(int s, double& y) const {
  y = OutputSamples[static_cast<std::size_t>(s)];
  return 0;
}

int CRSData::SetRSDataVersion(E_CRSDataVersion version) {
  RSDataVersion_ = version;
  return 0;
}

E_CRSDataVersion CRSData::RSDataVersion() const { return RSDataVersion_; }

int CRSData::SetStatusReadyForSolve(bool ready) {
  ReadyForSolve = ready;
  return 0;
}

bool CRSData::IsReadyForSolve() const { return ReadyForSolve; }

int CRSData::SetStatusReadyForEvaluation(bool ready) {
  ReadyForEvaluation = ready;
  return 0;
}

bool CRSData::IsReadyForEvaluation() const { return ReadyForEvaluation; }

int CRSData::SetStatusStopped(bool stopped) {
  Stopped = stopped;
  return 0;
}

bool CRSData::IsStopped() const { return Stopped; }

int CRSData::ScaleAndOverwriteInputSample(std::vector<double>& x) const {
  return ScaleSample(InputScaleSlopes, InputScaleIntercepts, x);
}

int CRSData::ScaleAndOverwriteInputSamples(Matrix& rows) const {
  for (std::vector<double>& row : rows) {
    if (ScaleAndOverwriteInputSample(row) != 0) return 1;
  }
  return 0;
}

int CRSData::ScaleAndOverwriteOutputSample(double& y) const {
  y = OutputScaleSlope * y + OutputScaleIntercept;
  return 0;
}

int CRSData::ScaleAndOverwriteOutputSamples(std::vector<double>& ys) const {
  for (double& y : ys) ScaleAndOverwriteOutputSample(y);
  return 0;
}

int CRSData::BackscaleAndOverwriteOutputSample(double& y) const {
  y = (y - OutputScaleIntercept) / OutputScaleSlope;
  return 0;
}

int CRSData::BackscaleAndOverwriteOutputSamples(std::vector<double>& ys) const {
  for (double& y : ys) BackscaleAndOverwriteOutputSample(y);
  return 0;
}

bool CRSData::IsSamplingCorrect() const {
  return EqualsCount(NumberOfSamples, OutputSamples.size()) &&
         EqualsCount(NumberOfSamples, InputSamples.size()) && !InputSamples.empty() &&
         HasEqualRows(InputSamples) &&
         EqualsCount(NumberOfInputVariables, InputSamples.front().size());
}

bool CRSData::IsScalingCorrect() const {
  // Compared exactly: any other slope is usable, however small, and NaN passes.
  const auto isZero = [](double slope) { return slope == 0.0; };
  return EqualsCount(NumberOfInputVariables, InputScaleSlopes.size()) &&
         EqualsCount(NumberOfInputVariables, InputScaleIntercepts.size()) &&
         !isZero(OutputScaleSlope) &&
         std::none_of(InputScaleSlopes.begin(), InputScaleSlopes.end(), isZero);
}

bool CRSData::IsThisRectangularMatrix(const Matrix& m) const {
  return !m.empty() && HasEqualRows(m);
}

bool CRSData::IsThisSquareMatrix(const Matrix& m) const {
  return !m.empty() && HasEqualRows(m) && m.front().size() == m.size();
}

bool CRSData::IsThisSymmetricMatrix(const Matrix& m) const {
  if (!IsThisSquareMatrix(m)) return false;
  for (std::size_t i = 1; i < m.size(); ++i) {
    for (std::size_t j = 0; j < i; ++j) {
      // Deliberate (symmetry-check-signed): the difference has a sign, so an exactly symmetric
      // matrix fails.
      if (m[i][j] - m[j][i] < 1e-10) return false;
    }
  }
  return true;
}

std::vector<double> CRSData::GetColumn(const Matrix& m, int c) const {
  const auto element = ColumnOf(m, c);
  std::vector<double> column(m.size());
  for (std::size_t r = 0; r < m.size(); ++r) column[r] = element(r);
  return column;
}

namespace {

// The columns of `m` less their means; empty when the matrix is empty or ragged.
Matrix CentredColumns(const Matrix& m) {
  if (m.empty() || !HasEqualRows(m)) return {};
  Matrix columns(m.front().size(), std::vector<double>(m.size()));
  for (std::size_t c = 0; c < columns.size(); ++c) {
    const auto element = ColumnOf(m, static_cast<int>(c));
    const double mean = Mean(m.size(), element);
    for (std::size_t r = 0; r < m.size(); ++r) columns[c][r] = element(r) - mean;
  }
  return columns;
}

double Covariance(const std::vector<double>& a, const std::vector<double>& b) {
  double sum = 0.0;
  for (std::size_t r = 0; r < a.size(); ++r) sum += a[r] * b[r];
  return sum / (static_cast<double>(a.size()) - 1.0);
}

}  // namespace

Matrix CRSData::GetVarianceCovarianceMatrix(const Matrix& m) const {
  const Matrix columns = CentredColumns(m);
  Matrix covariance(columns.size(), std::vector<double>(columns.size()));
  for (std::size_t i = 0; i < columns.size(); ++i) {
    for (std::size_t j = i; j < columns.size(); ++j) {
      covariance[i][j] = covariance[j][i] = Covariance(columns[i], columns[j]);
    }
  }
  return covariance;
}

std::vector<double> CRSData::GetDiagVarianceCovarianceMatrix(const Matrix& m) const {
  std::vector<double> variances;
  for (const std::vector<double>& column : CentredColumns(m)) {
    variances.push_back(Covariance(column, column));
  }
  return variances;
}

double CRSData::ComputeMax(const std::vector<double>& v) const {
  return Largest(v.size(), ElementsOf(v));
}

double CRSData::ComputeMin(const std::vector<double>& v) const {
  return Smallest(v.size(), ElementsOf(v));
}

double CRSData::ComputeMean(const std::vector<double>& v) const {
  return Mean(v.size(), ElementsOf(v));
}

double CRSData::ComputeNorm2(const std::vector<double>& v) const {
  return Norm2(v.size(), ElementsOf(v));
}

double CRSData::ComputeNormInf(const std::vector<double>& v) const {
  return NormInf(v.size(), ElementsOf(v));
}

double CRSData::ComputeStandardDeviation(const std::vector<double>& v) const {
  const double squares = SquaredDeviations(v.size(), ComputeMean(v), ElementsOf(v));
  return std::sqrt(squares / (static_cast<double>(v.size()) - 1.0));
}

double CRSData::ComputeColumnMax(const Matrix& m, int c) const {
  return Largest(m.size(), ColumnOf(m, c));
}

double CRSData::ComputeColumnMin(const Matrix& m, int c) const {
  return Smallest(m.size(), ColumnOf(m, c));
}

double CRSData::ComputeColumnMean(const Matrix& m, int c) const {
  return Mean(m.size(), ColumnOf(m, c));
}

double CRSData::ComputeColumnNorm2(const Matrix& m, int c) const {
  return Norm2(m.size(), ColumnOf(m, c));
}

double CRSData::ComputeColumnNormInf(const Matrix& m, int c) const {
  return NormInf(m.size(), ColumnOf(m, c));
}

double CRSData::ComputeColumnStandardDeviation(const Matrix& m, int c) const {
  // Deliberate (column-deviation-rows): the sum runs over as many rows as there are outputs, the
  // mean and the divisor over all rows. For the record's own samples the two agree.
  const std::size_t rows = std::min(m.size(), OutputSamples.size());
  const double squares = SquaredDeviations(rows, ComputeColumnMean(m, c), ColumnOf(m, c));
  return std::sqrt(squares / (static_cast<double>(m.size()) - 1.0));
}

double CRSData::ComputeInputSamplesWrtInputVariableMax(int v) const {
  return ComputeColumnMax(InputSamples, v);
}

double CRSData::ComputeInputSamplesWrtInputVariableMin(int v) const {
  return ComputeColumnMin(InputSamples, v);
}

double CRSData::ComputeInputSamplesWrtInputVariableMean(int v) const {
  return ComputeColumnMean(InputSamples, v);
}

double CRSData::ComputeInputSamplesWrtInputVariableNorm2(int v) const {
  return ComputeColumnNorm2(InputSamples, v);
}

double CRSData::ComputeInputSamplesWrtInputVariableNormInf(int v) const {
  return ComputeColumnNormInf(InputSamples, v);
}

double CRSData::ComputeInputSamplesWrtInputVariableStandardDeviation(int v) const {
  return ComputeColumnStandardDeviation(InputSamples, v);
}

double CRSData::ComputeOutputSamplesMax() const { return ComputeMax(OutputSamples); }

double CRSData::ComputeOutputSamplesMin() const { return ComputeMin(OutputSamples); }

double CRSData::ComputeOutputSamplesMean() const { return ComputeMean(OutputSamples); }

double CRSData::ComputeOutputSamplesNorm2() const { return ComputeNorm2(OutputSamples); }

double CRSData::ComputeOutputSamplesNormInf() const { return ComputeNormInf(OutputSamples); }

double CRSData::ComputeOutputSamplesStandardDeviation() const {
  return ComputeStandardDeviation(OutputSamples);
}

double CRSData::ComputeEuclideanDistance(const std::vector<double>& a,
                                         const std::vector<double>& b) const {
  if (a.size() != b.size() || a.empty()) return 0.0;
  return std::sqrt(SquaredDistance(a, b, a.size()));
}

}  // namespace Tarvane::Plexura::PXROM
