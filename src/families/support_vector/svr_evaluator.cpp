#include <cstddef>
#include <vector>

#include "families/support_vector/multipliers.h"
#include "kernels/loops/row_pieces.h"
#include "pxrom/support_vector.h"
#include "records/evaluation_frame.h"
#include "records/samples.h"

namespace Tarvane::Plexura::PXROM {

namespace {

// The kernel values between the point and the first values.size() samples, which are scaled on the
// way. If the record is stopped meanwhile, the remaining values are 0.
//
// Deliberate (scaling-that-does-not-fit): a scaling whose length does not fit is left out for the
// point and the samples, and not reported.
void EvaluateKernels(const kernels::Kernel& kernel, const CSVRData& record, std::vector<double> x,
                     std::vector<double>& values) {
  kernels::RowKernels call;
  call.kernel = &kernel;
  call.inputs = x.size();
  call.constants = kernel.constants(static_cast<double>(x.size()));
  if (record.ScaleAndOverwriteInputSample(x) == 0) {
    call.slopes = record.InputScaleSlopes.data();
    call.intercepts = record.InputScaleIntercepts.data();
  }
  call.x = x.data();
  call.scales = record.KernelArray.data();
  kernels::ForRowKernels(kernels::LoopsForRows(), call, record.InputSamples.data(), values.size(),
                         nullptr, values.data(), [&](std::size_t first, std::size_t last) {
                           for (std::size_t j = first; j < last; ++j) {
                             if (IsStoppedNow(record)) values[j] = 0.0;
                           }
                         });
}

}  // namespace

CSVREvaluator* CSVREvaluator::Clone() const { return new CSVREvaluator(*this); }
CSVREvaluator::~CSVREvaluator() = default;

int CSVREvaluator::EvaluateResponseSurface(const CRSData* data, const std::vector<double>& x,
                                           double& y) const {
  if (!IsEvaluable(data, DT_SVRData, x)) return 1;
  const auto& record = static_cast<const CSVRData&>(*data);
  const SampleRows& samples = record.InputSamples;
  const Multipliers multipliers(record);
  if (multipliers.size() > samples.size() || !multipliers.AreComplete()) return 1;

  // Only samples with a multiplier count, but the kernel has to accept every sample.
  std::vector<double> values(multipliers.size());
  if (!samples.empty()) {
    if (x.empty() || record.KernelArray.size() != x.size()) return 1;
    if (!HaveWidth(samples, samples.size(), x.size())) return 1;
    const kernels::Kernel* const kernel = kernels::FindKernel(record.SVRKernType);
    if (kernel == nullptr) return 1;
    EvaluateKernels(*kernel, record, x, values);
  }

  double sum = record.ConstantCoefficient;
  for (std::size_t i = 0; i < values.size(); ++i) sum += multipliers[i] * values[i];
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
