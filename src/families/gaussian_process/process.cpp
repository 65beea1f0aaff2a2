#include "families/gaussian_process/process.h"

#include <algorithm>

#include "records/samples.h"

namespace Tarvane::Plexura::PXROM::gaussian_process {

Process::Process(const CGaussianProcessData& record)
    : record_(record),
      samples_(static_cast<std::size_t>(std::max(record.NumberOfSamples, 0))),
      trend_(record),
      covariance_(record),
      error_(record, trend_.FunctionCount()) {}

bool Process::Fits() const {
  if (record_.GaussianProcessDataVersion_ != GaussianProcessDataVersion1 || !trend_.Fits()) {
    return false;
  }
  return samples_ == 0 || (covariance_ && record_.InputSamples.size() >= samples_ &&
                           record_.Weights.size() >= samples_ &&
                           HaveWidth(record_.InputSamples, samples_, covariance_.InputCount()));
}

void Process::AddGradient(const double* u, const double* centres, const double* kernelWeights,
                          const double* trendWeights, double* work, double* gradient) const {
  covariance_.AddGradient(u, centres, samples_, kernelWeights, work, gradient);
  trend_.AddGradient(trendWeights, u, gradient);
}

std::vector<double> Process::Centres() const {
  std::vector<double> centres;
  centres.reserve(samples_ * covariance_.InputCount());
  for (std::size_t j = 0; j < samples_; ++j) {
    for (std::size_t i = 0; i < covariance_.InputCount(); ++i) {
      centres.push_back(record_.InputScaleSlopes[i] * record_.InputSamples[j][i] +
                        record_.InputScaleIntercepts[i]);
    }
  }
  return centres;
}

}  // namespace Tarvane::Plexura::PXROM::gaussian_process
