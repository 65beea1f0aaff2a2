// Kriging, support vector and linear basis records as one kind of model.

#include "families/kernel_sum/kernel_surface.h"
#include "families/kriging/predictor_error.h"
#include "families/support_vector/multipliers.h"
#include "pxrom/kriging.h"
#include "pxrom/linear_basis.h"
#include "pxrom/support_vector.h"

namespace Tarvane::Plexura::PXROM::batch {

namespace {

using Matrix = std::vector<std::vector<double>>;

KernelModel StartModel(const CRSData& record, std::size_t inputs) {
  KernelModel model;
  model.inputs = inputs;
  model.scales.assign(inputs, 1.0);
  model.outputSlope = record.OutputScaleSlope;
  model.outputIntercept = record.OutputScaleIntercept;
  return model;
}

void TakeKernel(const kernels::Kernel* kernel, std::size_t inputs, KernelModel& model) {
  model.kernel = kernel;
  model.constants = kernel->constants(static_cast<double>(inputs));
}

void TakeScaling(const CRSData& record, KernelModel& model) {
  model.inputSlopes = record.InputScaleSlopes;
  model.inputIntercepts = record.InputScaleIntercepts;
}

bool FitsScaling(const CRSData& record, std::size_t inputs) {
  return record.InputScaleSlopes.size() == inputs && record.InputScaleIntercepts.size() == inputs;
}

/// The first `columns` values of the first `rows` rows, which must exist, in one array.
std::vector<double> Flat(const Matrix& matrix, std::size_t rows, std::size_t columns) {
  std::vector<double> flat;
  flat.reserve(rows * columns);
  for (std::size_t r = 0; r < rows; ++r) {
    flat.insert(flat.end(), matrix[r].begin(),
                matrix[r].begin() + static_cast<std::ptrdiff_t>(columns));
  }
  return flat;
}

void TakeCentres(const Matrix& samples, std::size_t count, KernelModel& model) {
  model.centreCount = count;
  model.centres = Flat(samples, count, model.inputs);
}

void ScaleCentres(const double* slopes, const double* intercepts, KernelModel& model) {
  for (std::size_t at = 0; at < model.centres.size(); ++at) {
    const std::size_t i = at % model.inputs;
    model.centres[at] = slopes[i] * model.centres[at] + intercepts[i];
  }
}

std::unique_ptr<KrigingErrorData> ErrorDataOf(const CKrigingData& record, std::size_t functions) {
  if (!kriging::PredictorError(record, functions).IsPredicted()) return nullptr;
  const auto n = static_cast<std::size_t>(record.NumberOfSamples);
  const auto rowOf = [](const Matrix& matrix) {
    return [&](std::size_t r) { return matrix[r].data(); };
  };
  using simd::Panels;
  // As fitted, InvC is triangular.
  auto norms = std::make_shared<const ErrorNorms>(
      Panels::BeforeZeros(n, n, rowOf(record.InvC)), Panels::OfAll(functions, n, rowOf(record.Ft)),
      Panels::OfAll(functions, functions, rowOf(record.InvG)));
  return std::make_unique<KrigingErrorData>(
      KrigingErrorData{functions, record.Sigma2, std::move(norms)});
}

}  // namespace

std::unique_ptr<PreparedSurface> PrepareKriging(const CRSData& base, std::size_t inputs) {
  const auto& record = static_cast<const CKrigingData&>(base);
  KernelModel model = StartModel(record, inputs);
  TakeScaling(record, model);
  const auto n = static_cast<std::size_t>(std::max(record.NumberOfSamples, 0));
  TakeCentres(record.InputSamples, n, model);
  ScaleCentres(record.InputScaleSlopes.data(), record.InputScaleIntercepts.data(), model);
  model.weights = record.CorrelationCoefficients;
  model.weights.resize(n);
  if (n > 0) {
    TakeKernel(kernels::FindKernel(record.CorrelationFunctionType), inputs, model);
    const std::vector<double>& scales = record.CorrelationKernels;
    for (std::size_t i = 0; i < inputs; ++i) model.scales[i] = scales[scales.size() == 1 ? 0 : i];
  }
  model.hasTrend = record.PolynomialType != PolyNone;
  if (model.hasTrend) {
    model.trend = TrendTerms(record.PolynomialType, inputs, record.PolynomialCoefficients);
  }
  model.hasErrorForm = true;
  model.error = ErrorDataOf(record, model.trend.size());
  return MakeKernelSurface(std::move(model));
}

std::unique_ptr<PreparedSurface> PrepareSupportVector(const CRSData& base, std::size_t inputs) {
  const auto& record = static_cast<const CSVRData&>(base);
  KernelModel model = StartModel(record, inputs);
  const Multipliers multipliers(record);
  for (std::size_t j = 0; j < multipliers.size(); ++j) model.weights.push_back(multipliers[j]);
  model.start = record.ConstantCoefficient;
  if (model.weights.empty()) return MakeKernelSurface(std::move(model));

  // Only samples with a multiplier count. A scaling that does not fit is left out.
  TakeCentres(record.InputSamples, model.weights.size(), model);
  if (FitsScaling(record, inputs)) {
    TakeScaling(record, model);
    ScaleCentres(record.InputScaleSlopes.data(), record.InputScaleIntercepts.data(), model);
  }
  model.scales = record.KernelArray;
  TakeKernel(kernels::FindKernel(record.SVRKernType), inputs, model);
  return MakeKernelSurface(std::move(model));
}

std::unique_ptr<PreparedSurface> PrepareLinearBasis(const CRSData& base, std::size_t inputs) {
  const auto& record = static_cast<const CLBFData&>(base);
  KernelModel model = StartModel(record, inputs);
  if (record.NumberOfSamples == 1) {
    // The stored output of the single sample, without scaling.
    model.start = record.OutputSamples[0];
    model.outputSlope = 1.0;
    model.outputIntercept = 0.0;
    return MakeKernelSurface(std::move(model));
  }
  if (FitsScaling(record, inputs)) TakeScaling(record, model);
  model.weights = record.KernelCoefficients;
  TakeCentres(record.InputSamples, model.weights.size(), model);
  model.centreScales = record.KernelValues;
  TakeKernel(kernels::FindKernel(record.BasisFunctionType), inputs, model);
  model.hasTrend = true;
  model.trend = TrendTerms(record.PolynomialType, inputs, record.PolynomialCoefficients);
  return MakeKernelSurface(std::move(model));
}

}  // namespace Tarvane::Plexura::PXROM::batch
