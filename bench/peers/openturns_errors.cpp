#include "peers/error_peer.h"

#ifdef PXROM_WITH_OPENTURNS

#include <cmath>
#include <openturns/KrigingAlgorithm.hxx>
#include <openturns/SquaredExponential.hxx>
#include <openturns/TBB.hxx>

namespace peers {

namespace {

OT::Sample SampleOf(const std::vector<double>& rows, std::size_t columns) {
  OT::Sample sample(rows.size() / columns, columns);
  for (std::size_t at = 0; at < rows.size(); ++at) sample(at / columns, at % columns) = rows[at];
  return sample;
}

OT::KrigingResult ResultOf(const Process& process) {
  const OT::SquaredExponential covariance(OT::Point(process.inputs, process.length),
                                          OT::Point(1, 1.0));
  OT::KrigingAlgorithm algorithm(SampleOf(process.samples, process.inputs),
                                 SampleOf(process.outputs, 1), covariance, OT::Basis());
  algorithm.setOptimizeParameters(false);
  algorithm.setNoise(OT::Point(process.Samples(), process.noise));
  algorithm.run();
  return algorithm.getResult();
}

class OpenTurnsProcess : public ErrorPeer {
 public:
  explicit OpenTurnsProcess(const Process& process)
      : result_(ResultOf(process)), points_(SampleOf(process.points, process.inputs)) {
    OT::TBB::SetThreadsNumber(1);
  }

  const char* Name() const override { return "OpenTURNS"; }

  void Predict(std::vector<double>& values, std::vector<double>& errors) override {
    const OT::Sample means = result_.getConditionalMean(points_);
    const OT::Sample variances = result_.getConditionalMarginalVariance(points_);
    for (std::size_t p = 0; p < values.size(); ++p) {
      values[p] = means(p, 0);
      errors[p] = std::sqrt(variances(p, 0));
    }
  }

 private:
  OT::KrigingResult result_;
  OT::Sample points_;
};

}  // namespace

std::unique_ptr<ErrorPeer> OpenTurnsErrors(const Process& process) {
  return std::make_unique<OpenTurnsProcess>(process);
}

}  // namespace peers

#else

std::unique_ptr<peers::ErrorPeer> peers::OpenTurnsErrors(const Process&) { return nullptr; }

#endif
