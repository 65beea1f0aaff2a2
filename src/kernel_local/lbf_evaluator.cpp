#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "kernel_local/samples.h"
#include "lanes/row_pieces.h"
#include "numerics/polynomial_basis.h"
#include "pxrom/linear_basis.h"
#include "records/evaluation_frame.h"

namespace Tarvane::Plexura::PXROM {

namespace {

// 3 pi / 2, where the sinc function is cut after a shift that makes it 0 there.
constexpr double kSincCutOff = 4.71238898038469;

// More functions than any fit has samples for.
constexpr std::int64_t kMostTrendFunctions = std::int64_t{1} << 24;

// Calls `use(function)`, where function(r2, h) is the radial function of `type` at the squared
// distance r2 with the width h, in `d` inputs; false for an unknown type. A width of 0 is not
// tested.
template <class Use>
bool WithRadialFunction(E_LinearBasisFunction type, double d, const Use& use) {
  switch (type) {
    case LBFGaussian:
      use([](double r2, double h) { return std::exp(-(r2 / (h * h))); });
      return true;
    case LBFCompact:
      use([](double r2, double h) {
        const double t = std::sqrt(r2) / (2.0 * h);
        return t <= 1.0 ? std::pow(1.0 - t, 4.0) * (4.0 * t + 1.0) : 0.0;
      });
      return true;
    case LBFCubic:
      use([](double r2, double h) {
        const double t = std::sqrt(r2) / (2.0 * h);
        return std::fabs(t) <= 1.0 ? 1.0 - 3.0 * t * t + 2.0 * t * t * t : 0.0;
      });
      return true;
    case LBFSinc:
      use([shift = std::sin(kSincCutOff) / kSincCutOff](double r2, double h) {
        const double z = 2.0 * std::sqrt(r2) / h;
        if (z > kSincCutOff) return 0.0;
        return std::fabs(z) > 1e-06 ? (std::sin(z) / z - shift) / (1.0 - shift) : 1.0;
      });
      return true;
    case LBFRational:
      use([](double r2, double h) { return 1.0 / (r2 / (h * h) + 1.0); });
      return true;
    case LBFTanh:
      use([perInput = 1.0 / d](double r2, double h) {
        return std::tanh(std::sqrt(r2) * perInput / h);
      });
      return true;
  }
  return false;
}

// Whether the record has rows as long as `x` and widths for all samples that it counts.
bool HasCentres(const CLBFData& data, const std::vector<double>& x) {
  const SampleRows& samples = data.InputSamples;
  return IsCovered(data.NumberOfSamples, samples.size()) &&
         IsCovered(data.NumberOfSamples, data.KernelValues.size()) &&
         HaveWidth(samples, static_cast<std::size_t>(data.NumberOfSamples), x.size());
}

// Which of the vectors' kernels `type` is; one that they don't serve if it is none.
lanes::Kernel KernelOnLanes(E_LinearBasisFunction type) {
  switch (type) {
    case LBFGaussian:
      return lanes::Kernel::RadialGaussian;
    case LBFCompact:
      return lanes::Kernel::RadialCompact;
    case LBFCubic:
      return lanes::Kernel::RadialCubic;
    case LBFRational:
      return lanes::Kernel::RadialRational;
    case LBFSinc:
    case LBFTanh:
      break;
  }
  return lanes::Kernel::RadialSinc;
}

// EvaluateRadial with the vectors of `lanes`; false when they don't serve the record's function.
bool EvaluateRadialOnLanes(const lanes::Lanes& lanes, const CLBFData& data,
                           const std::vector<double>& x, std::vector<double>& out) {
  lanes::RowKernels call;
  call.kernel = KernelOnLanes(data.BasisFunctionType);
  if (!lanes::HasRowKernels(call.kernel)) return false;
  const double unused = 1.0;
  call.inputs = x.size();
  call.x = x.data();
  call.kernels = &unused;
  call.isOneKernel = true;
  lanes::ForRowKernels(lanes, call, data.InputSamples.data(), out.size(), data.KernelValues.data(),
                       [&](std::size_t first, std::size_t count, const double* values) {
                         std::copy_n(values, count, out.data() + first);
                       });
  return true;
}

// The radial functions of the first out.size() samples at the scaled point `x`; false for an
// unknown function, `out` untouched. The samples are used as they are stored: only the point is
// scaled in this family, and that is how its models are fitted.
bool EvaluateRadial(const CLBFData& data, const std::vector<double>& x, std::vector<double>& out) {
  const lanes::Lanes* const lanes = lanes::LanesForRows();
  if (lanes != nullptr && EvaluateRadialOnLanes(*lanes, data, x, out)) return true;
  return WithRadialFunction(data.BasisFunctionType,
                            static_cast<double>(data.NumberOfInputVariables),
                            [&](const auto& function) {
                              SquaredDistances(data.InputSamples, out.size(), x, out.data());
                              for (std::size_t j = 0; j < out.size(); ++j) {
                                out[j] = function(out[j], data.KernelValues[j]);
                              }
                            });
}

}  // namespace

CLBFEvaluator* CLBFEvaluator::Clone() const { return new CLBFEvaluator(*this); }
CLBFEvaluator::~CLBFEvaluator() = default;

int CLBFEvaluator::EvaluateResponseSurface(const CRSData* data, const std::vector<double>& x,
                                           double& y) const {
  if (!IsEvaluable(data, DT_LBFData, x)) return 1;
  const auto& record = static_cast<const CLBFData&>(*data);
  if (record.NumberOfSamples == 1) {
    // The output as it is stored, in physical units: no scaling applies.
    if (record.OutputSamples.empty()) return 1;
    y = record.OutputSamples[0];
    return 0;
  }
  const std::vector<double>& radialWeights = record.KernelCoefficients;
  if (!HasCentres(record, x)) return 1;
  if (radialWeights.size() > static_cast<std::size_t>(record.NumberOfSamples)) return 1;

  std::vector<double> point = x;
  // The status is ignored on purpose: a scaling that does not fit leaves the point as it is.
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
