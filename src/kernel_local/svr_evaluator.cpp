#include <cstddef>
#include <vector>

#include "kernel_local/samples.h"
#include "kernel_local/svr_kernels.h"
#include "lanes/row_pieces.h"
#include "pxrom/support_vector.h"
#include "records/evaluation_frame.h"

namespace Tarvane::Plexura::PXROM {

namespace {

// One input of the point, ready for the kernels: its scaled value, the scaling of the samples, the
// kernel's width.
struct Input {
  double value;
  double slope;
  double intercept;
  double width;
};

// The inputs of `x`, which has as many values as there are widths. The status of the scaling is
// ignored on purpose: lengths that do not fit leave both the point and the samples in physical
// units.
std::vector<Input> ScaledInputs(const CSVRData& record, const std::vector<double>& x) {
  const bool isScaled =
      record.InputScaleSlopes.size() == x.size() && record.InputScaleIntercepts.size() == x.size();
  std::vector<Input> inputs(x.size());
  for (std::size_t v = 0; v < x.size(); ++v) {
    Input& input = inputs[v];
    input.slope = isScaled ? record.InputScaleSlopes[v] : 1.0;
    input.intercept = isScaled ? record.InputScaleIntercepts[v] : 0.0;
    input.value = input.slope * x[v] + input.intercept;
    input.width = record.KernelArray[v];
  }
  return inputs;
}

// The kernels between the point and the first kernels.size() samples, which are scaled on the way.
// A stop that comes meanwhile leaves the rest at 0.
template <class Kernel>
void EvaluateKernels(const Kernel& kernel, const CSVRData& record, const std::vector<Input>& inputs,
                     std::vector<double>& kernels) {
  const Input* const input = inputs.data();
  SumOverEachRow(
      record.InputSamples, kernels.size(), inputs.size(),
      [input](std::size_t v, double sample) {
        const Input& in = input[v];
        return Kernel::Term(in.value, in.slope * sample + in.intercept, in.width);
      },
      kernels.data());
  std::size_t j = 0;
  for (; j < kernels.size() && !IsStoppedNow(record); ++j) kernels[j] = kernel.Value(kernels[j]);
  for (; j < kernels.size(); ++j) kernels[j] = 0.0;
}

// Which of the vectors' kernels `type` is; one that they don't serve if it is none.
lanes::Kernel KernelOnLanes(E_SVRKernType type) {
  switch (type) {
    case SVRKernLinear:
      return lanes::Kernel::DotLinear;
    case SVRKernQuadratic:
      return lanes::Kernel::DotQuadratic;
    case SVRKernGaussian:
      return lanes::Kernel::Gaussian;
    case SVRKernExponential:
      return lanes::Kernel::Exponential;
    case SVRKernEpanechnikov:
      return lanes::Kernel::Epanechnikov;
    case SVRKernSigmoid:
      break;
  }
  return lanes::Kernel::DotSigmoid;
}

// EvaluateKernels with the vectors of `lanes`; false when they don't serve the record's kernel.
bool EvaluateOnLanes(const lanes::Lanes& lanes, const CSVRData& record, std::vector<double>& x,
                     std::vector<double>& kernels) {
  lanes::RowKernels call;
  call.kernel = KernelOnLanes(record.SVRKernType);
  if (!lanes::HasRowKernels(call.kernel)) return false;
  // The status of the scaling is ignored here too.
  if (record.ScaleAndOverwriteInputSample(x) == 0) {
    call.slopes = record.InputScaleSlopes.data();
    call.intercepts = record.InputScaleIntercepts.data();
  }
  call.inputs = x.size();
  call.x = x.data();
  call.kernels = record.KernelArray.data();
  lanes::ForRowKernels(lanes, call, record.InputSamples.data(), kernels.size(), nullptr,
                       [&](std::size_t first, std::size_t count, const double* values) {
                         for (std::size_t k = 0; k < count; ++k) {
                           kernels[first + k] = IsStoppedNow(record) ? 0.0 : values[k];
                         }
                       });
  return true;
}

}  // namespace

CSVREvaluator* CSVREvaluator::Clone() const { return new CSVREvaluator(*this); }
CSVREvaluator::~CSVREvaluator() = default;

int CSVREvaluator::EvaluateResponseSurface(const CRSData* data, const std::vector<double>& x,
                                           double& y) const {
  if (!IsEvaluable(data, DT_SVRData, x)) return 1;
  const auto& record = static_cast<const CSVRData&>(*data);
  const SampleRows& samples = record.InputSamples;
  const bool isPaired =
      record.SVRLossFuncType == SVRLossFuncPaired3 || record.SVRLossFuncType == SVRLossFuncPaired4;
  const std::vector<double>& multipliers = isPaired ? record.AlphasStar : record.Betas;
  if (!IsCovered(record.NumberOfSamples, samples.size())) return 1;
  if (multipliers.size() > samples.size()) return 1;
  if (isPaired && record.Alphas.size() < multipliers.size()) return 1;

  // Only samples with a multiplier count, but each of them has to be one that its kernel takes.
  std::vector<double> kernels(multipliers.size());
  if (!samples.empty()) {
    if (x.empty() || record.KernelArray.size() != x.size()) return 1;
    if (!HaveWidth(samples, samples.size(), x.size())) return 1;
    std::vector<double> point = x;
    const lanes::Lanes* const lanes = lanes::LanesForRows();
    if (lanes == nullptr || !EvaluateOnLanes(*lanes, record, point, kernels)) {
      const std::vector<Input> inputs = ScaledInputs(record, x);
      const bool isKnown = WithKernel(record.SVRKernType, x.size(), [&](const auto& kernel) {
        EvaluateKernels(kernel, record, inputs, kernels);
      });
      if (!isKnown) return 1;
    }
  }

  double sum = record.ConstantCoefficient;
  if (isPaired) {
    for (std::size_t i = 0; i < kernels.size(); ++i) {
      sum += (record.AlphasStar[i] - record.Alphas[i]) * kernels[i];
    }
  } else {
    for (std::size_t i = 0; i < kernels.size(); ++i) sum += record.Betas[i] * kernels[i];
  }
  record.BackscaleAndOverwriteOutputSample(sum);
  y = sum;
  return 0;
}

int CSVREvaluator::EvaluateResponseSurfaceDerivativeWrtInputVariables(const CRSData*,
                                                                      const std::vector<double>&,
                                                                      std::vector<double>&) const {
  return 1;
}

}  // namespace Tarvane::Plexura::PXROM
