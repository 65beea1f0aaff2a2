// Kriging, support vector and linear basis records as one kind of model.

#include <algorithm>
#include <cmath>

#include "batch/kernel_surface.h"
#include "kriging/predictor_error.h"
#include "numerics/bessel.h"
#include "numerics/polynomial_basis.h"
#include "pxrom/kriging.h"
#include "pxrom/linear_basis.h"
#include "pxrom/support_vector.h"

namespace Tarvane::Plexura::PXROM::batch {

namespace {

using Matrix = std::vector<std::vector<double>>;

constexpr double kSincEnd = 4.71238898038469;

KernelModel StartModel(const CRSData& record, std::size_t inputs) {
  KernelModel model;
  model.inputs = inputs;
  model.kernels.assign(inputs, 1.0);
  model.outputSlope = record.OutputScaleSlope;
  model.outputIntercept = record.OutputScaleIntercept;
  return model;
}

void TakeScaling(const CRSData& record, KernelModel& model) {
  model.inputSlopes = record.InputScaleSlopes;
  model.inputIntercepts = record.InputScaleIntercepts;
}

bool FitsScaling(const CRSData& record, std::size_t inputs) {
  return record.InputScaleSlopes.size() == inputs && record.InputScaleIntercepts.size() == inputs;
}

/// The first `columns` values of the first `rows` rows, which are there, in one piece.
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

std::unique_ptr<const KrigingErrorData> ErrorDataOf(const CKrigingData& record,
                                                    std::size_t functions) {
  const bool isAvailable =
      record.SavePredictorError &&
      PolynomialCount(record.PolynomialType, record.NumberOfInputVariables) >= 0 &&
      kriging::PredictorError(record, functions).IsAvailable();
  if (!isAvailable) return nullptr;
  const auto n = static_cast<std::size_t>(record.NumberOfSamples);
  auto data = std::make_unique<KrigingErrorData>();
  data->functions = functions;
  data->sigma2 = record.Sigma2;
  data->invC = Flat(record.InvC, n, n);
  for (std::size_t r = 0; r < n; ++r) {
    std::size_t length = n;
    while (length > 0 && data->invC[r * n + length - 1] == 0.0) --length;
    data->lengths.push_back(length);
  }
  data->invG = Flat(record.InvG, functions, functions);
  data->ft = Flat(record.Ft, functions, n);
  return data;
}

}  // namespace

std::unique_ptr<const PreparedSurface> PrepareKriging(const CRSData& base, std::size_t inputs) {
  const auto& record = static_cast<const CKrigingData&>(base);
  KernelModel model = StartModel(record, inputs);
  TakeScaling(record, model);
  const auto n = static_cast<std::size_t>(record.NumberOfSamples);
  TakeCentres(record.InputSamples, n, model);
  ScaleCentres(record.InputScaleSlopes.data(), record.InputScaleIntercepts.data(), model);
  model.weights = record.CorrelationCoefficients;
  model.weights.resize(n);
  if (n > 0) {
    const int type = record.CorrelationFunctionType - CorrExponential;
    model.kernel = static_cast<Kernel>(static_cast<int>(Kernel::Exponential) + type);
    const std::vector<double>& kernels = record.CorrelationKernels;
    for (std::size_t i = 0; i < inputs; ++i)
      model.kernels[i] = kernels[kernels.size() == 1 ? 0 : i];
    if (model.kernel == Kernel::BesselJ0) model.shift = BesselJ0(3.8317);
    if (model.kernel == Kernel::Sinc) model.shift = std::sin(kSincEnd) / kSincEnd;
  }
  model.hasTrend = record.PolynomialType != PolyNone;
  if (model.hasTrend) {
    model.trend = TrendTerms(record.PolynomialType, inputs, record.PolynomialCoefficients);
  }
  model.hasErrorForm = true;
  model.error = ErrorDataOf(record, model.trend.size());
  return MakeKernelSurface(std::move(model));
}

std::unique_ptr<const PreparedSurface> PrepareSupportVector(const CRSData& base,
                                                            std::size_t inputs) {
  const auto& record = static_cast<const CSVRData&>(base);
  KernelModel model = StartModel(record, inputs);
  const bool isPaired =
      record.SVRLossFuncType == SVRLossFuncPaired3 || record.SVRLossFuncType == SVRLossFuncPaired4;
  model.weights = isPaired ? record.AlphasStar : record.Betas;
  if (isPaired) {
    for (std::size_t j = 0; j < model.weights.size(); ++j) model.weights[j] -= record.Alphas[j];
  }
  model.start = record.ConstantCoefficient;
  if (model.weights.empty()) return MakeKernelSurface(std::move(model));

  // Only samples with a multiplier count. Without a scaling that fits both stay as they are.
  TakeCentres(record.InputSamples, model.weights.size(), model);
  if (FitsScaling(record, inputs)) {
    TakeScaling(record, model);
    ScaleCentres(record.InputScaleSlopes.data(), record.InputScaleIntercepts.data(), model);
  }
  model.kernels = record.KernelArray;
  switch (record.SVRKernType) {
    case SVRKernLinear:
      model.kernel = Kernel::DotLinear;
      break;
    case SVRKernQuadratic:
      model.kernel = Kernel::DotQuadratic;
      break;
    case SVRKernGaussian:
      model.kernel = Kernel::Gaussian;
      break;
    case SVRKernSigmoid:
      model.kernel = Kernel::DotSigmoid;
      model.shift = std::exp(1.0);
      model.perInput = model.shift / static_cast<double>(inputs);
      break;
    case SVRKernExponential:
      model.kernel = Kernel::Exponential;
      break;
    case SVRKernEpanechnikov:
      model.kernel = Kernel::Epanechnikov;
      break;
  }
  return MakeKernelSurface(std::move(model));
}

std::unique_ptr<const PreparedSurface> PrepareLinearBasis(const CRSData& base, std::size_t inputs) {
  const auto& record = static_cast<const CLBFData&>(base);
  KernelModel model = StartModel(record, inputs);
  if (record.NumberOfSamples == 1) {
    // The one output as it is stored.
    model.start = record.OutputSamples[0];
    model.outputSlope = 1.0;
    model.outputIntercept = 0.0;
    return MakeKernelSurface(std::move(model));
  }
  if (FitsScaling(record, inputs)) TakeScaling(record, model);
  model.weights = record.KernelCoefficients;
  TakeCentres(record.InputSamples, model.weights.size(), model);
  model.widths = record.KernelValues;
  constexpr Kernel kRadial[] = {Kernel::RadialGaussian, Kernel::RadialCompact,  Kernel::RadialCubic,
                                Kernel::RadialSinc,     Kernel::RadialRational, Kernel::RadialTanh};
  model.kernel = kRadial[record.BasisFunctionType];
  if (model.kernel == Kernel::RadialSinc) model.shift = std::sin(kSincEnd) / kSincEnd;
  if (model.kernel == Kernel::RadialTanh) model.perInput = 1.0 / static_cast<double>(inputs);
  model.hasTrend = true;
  model.trend = TrendTerms(record.PolynomialType, inputs, record.PolynomialCoefficients);
  return MakeKernelSurface(std::move(model));
}

}  // namespace Tarvane::Plexura::PXROM::batch
