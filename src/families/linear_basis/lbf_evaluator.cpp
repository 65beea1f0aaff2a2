#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "kernels/loops/row_pieces.h"
#include "numerics/polynomial_basis.h"
#include "pxrom/linear_basis.h"
#include "records/evaluation_frame.h"
#include "records/samples.h"

namespace Tarvane::Plexura::PXROM {

namespace {

// No fit has this many samples.
constexpr std::int64_t kMostTrendFunctions = std::int64_t{1} << 24;

// The inputs that distances run over.
std::size_t InputsOf(const CLBFData& data) {
  return static_cast<std::size_t>(std::max(data.NumberOfInputVariables, 0));
}

// Whether `x` and all samples that the record counts have a value per input, and the samples have
// kernel scales. Further values are not read.
bool HasCentres(const CLBFData& data, const std::vector<double>& x) {
  const SampleRows& samples = data.InputSamples;
  const auto isCovered = [inputs = InputsOf(data)](const std::vector<double>& values) {
    return values.size() >= inputs;
  };
  return IsCovered(data.NumberOfSamples, samples.size()) &&
         IsCovered(data.NumberOfSamples, data.KernelValues.size()) && isCovered(x) &&
         std::all_of(samples.begin(), samples.begin() + data.NumberOfSamples, isCovered);
}

// The radial functions of the first out.size() samples at the scaled point `x`; false for an
// unknown function, `out` untouched. A kernel scale of 0 is not tested.
//
// Deliberate (lbf-samples-unscaled): the samples are used as they are stored. Only the point is
// scaled, and models of this family are fitted that way.
bool EvaluateRadial(const CLBFData& data, const std::vector<double>& x, std::vector<double>& out) {
  kernels::RowKernels call;
  call.kernel = kernels::FindKernel(data.BasisFunctionType);
  if (call.kernel == nullptr) return false;
  const double unused = 1.0;
  call.inputs = InputsOf(data);
  call.constants = call.kernel->constants(static_cast<double>(data.NumberOfInputVariables));
  call.x = x.data();
  call.scales = &unused;
  call.isOneScale = true;
  kernels::ForRowKernels(kernels::LoopsForRows(), call, data.InputSamples.data(), out.size(),
                         data.KernelValues.data(), out.data(), [](std::size_t, std::size_t) {});
  return true;
}

}  // namespace

CLBFEvaluator* CLBFEvaluator::Clone() const { return new CLBFEvaluator(*this); }
CLBFEvaluator::~CLBFEvaluator() = default;

int CLBFEvaluator::EvaluateResponseSurface(const CRSData* data, const std::vector<double>& x,
                                           double& y) const {
  if (!IsEvaluable(data, DT_LBFData, x)) return 1;
  const auto& record = static_cast<const CLBFData&>(*data);
  if (record.NumberOfSamples == 1) {
    // Deliberate (lbf-single-sample): a single sample gives its stored output, without any scaling
    // and whatever else the record holds.
    if (record.OutputSamples.empty()) return 1;
    y = record.OutputSamples[0];
    return 0;
  }
  const std::vector<double>& radialWeights = record.KernelCoefficients;
  if (!HasCentres(record, x)) return 1;
  if (radialWeights.size() > static_cast<std::size_t>(record.NumberOfSamples)) return 1;

  std::vector<double> point = x;
  // As in a support vector surface, a scaling that does not fit leaves the point as it is.
  record.ScaleAndOverwriteInputSample(point);
  // Samples without a weight of their own do not count.
  std::vector<double> radial(radialWeights.size());
  if (!EvaluateRadial(record, point, radial)) return 1;
  // Functions without a coefficient do not count either, and there can be far too many of them.
  const std::vector<double>& trendWeights = record.PolynomialCoefficients;
  const std::int64_t functions =
      PolynomialCount(record.PolynomialType, static_cast<std::int64_t>(point.size()));
  if (functions <= 0 || trendWeights.size() > static_cast<std::uint64_t>(functions)) return 1;
  std::vector<double> trend(trendWeights.size());
  EvaluateLeadingPolynomialBasis(record.PolynomialType, point.data(), point.size(), trend.size(),
                                 trend.data());

  double trendSum = 0.0;
  for (std::size_t i = 0; i < trendWeights.size(); ++i) trendSum += trend[i] * trendWeights[i];
  double radialSum = 0.0;
  for (std::size_t j = 0; j < radial.size(); ++j) radialSum += radial[j] * radialWeights[j];
  double value = radialSum + trendSum;
  record.BackscaleAndOverwriteOutputSample(value);
  y = value;
  return 0;
}

int CLBFEvaluator::EvaluateResponseSurfaceDerivativeWrtInputVariables(const CRSData*,
                                                                      const std::vector<double>&,
                                                                      std::vector<double>&) const {
  return 1;
}

int CLBFEvaluator::EvaluateBasisFunction(const CLBFData* data, const std::vector<double>& x,
                                         std::vector<double>& out) const {
  out.clear();
  if (!HasCentres(*data, x)) return 1;
  out.resize(static_cast<std::size_t>(data->NumberOfSamples));
  return EvaluateRadial(*data, x, out) ? 0 : 1;
}

int CLBFEvaluator::ComputeVandermondePolynomialVector(const CLBFData* data,
                                                      const std::vector<double>& x,
                                                      std::vector<double>& out) const {
  out.clear();
  const std::int64_t count =
      PolynomialCount(data->PolynomialType, static_cast<std::int64_t>(x.size()));
  if (count <= 0 || count > kMostTrendFunctions) return 1;
  out.resize(static_cast<std::size_t>(count));
  EvaluatePolynomialBasis(data->PolynomialType, x.data(), x.size(), out.data());
  return 0;
}

}  // namespace Tarvane::Plexura::PXROM
