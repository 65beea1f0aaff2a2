#include "families/kriging/correlation.h"

#include "kernels/loops/row_pieces.h"

namespace Tarvane::Plexura::PXROM::kriging {

Correlation::Correlation(const CKrigingData& record) {
  const std::size_t scales = record.CorrelationKernels.size();
  const bool isServed =
      record.NumberOfInputVariables > 0 &&
      (scales == 1 || scales >= static_cast<std::size_t>(record.NumberOfInputVariables));
  const kernels::Kernel* const kernel = kernels::FindKernel(record.CorrelationFunctionType);
  if (!isServed || kernel == nullptr) return;
  call_.kernel = kernel;
  call_.inputs = static_cast<std::size_t>(record.NumberOfInputVariables);
  call_.constants = kernel->constants(static_cast<double>(call_.inputs));
  call_.scales = record.CorrelationKernels.data();
  call_.isOneScale = scales == 1;
}

double Correlation::OfPair(const double* x, const double* y) const {
  double r = 0.0;
  kernels::RowKernels call = call_;
  call.x = x;
  call.rows = &y;
  call.count = 1;
  call.values = &r;
  call.kernel->rows(call);
  return r;
}

double Correlation::OfRows(const double* x, const ScaledRows& samples, const double* weights,
                           double* r, const kernels::LoopTable* loops) const {
  kernels::RowKernels call = call_;
  call.x = x;
  call.slopes = samples.slopes;
  call.intercepts = samples.intercepts;
  double sum = 0.0;
  // Each piece is summed at once, so that its additions overlap with the work on the next piece.
  kernels::ForRowKernels(loops, call, samples.rows, samples.count, nullptr, r,
                         [&](std::size_t first, std::size_t last) {
                           if (weights == nullptr) return;
                           for (std::size_t j = first; j < last; ++j) sum += r[j] * weights[j];
                         });
  return sum;
}

}  // namespace Tarvane::Plexura::PXROM::kriging
