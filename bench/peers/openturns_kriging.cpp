#include "peers/peer.h"

#ifdef PXROM_WITH_OPENTURNS

#include <openturns/KrigingEvaluation.hxx>
#include <openturns/LinearBasisFactory.hxx>
#include <openturns/SquaredExponential.hxx>
#include <openturns/TBB.hxx>

namespace peers {

namespace {

using Tarvane::Plexura::PXROM::CKrigingData;

OT::KrigingEvaluation EvaluationOf(const CKrigingData& record) {
  const auto inputs = static_cast<OT::UnsignedInteger>(record.NumberOfInputVariables);
  const auto count = static_cast<OT::UnsignedInteger>(record.NumberOfSamples);
  OT::Sample samples(count, inputs);
  OT::Sample weights(count, 1);
  for (std::size_t j = 0; j < count; ++j) {
    std::vector<double> row = record.InputSamples[j];
    record.ScaleAndOverwriteInputSample(row);
    for (std::size_t i = 0; i < inputs; ++i) samples(j, i) = row[i];
    weights(j, 0) = record.CorrelationCoefficients[j];
  }
  // Its correlation is exp(-sum of (a / scale)^2 / 2).
  OT::Point scales(inputs);
  for (std::size_t i = 0; i < inputs; ++i) {
    scales[i] = std::sqrt(0.5 / record.CorrelationKernels[i]);
  }
  OT::Point trend(record.PolynomialCoefficients.size());
  std::copy(record.PolynomialCoefficients.begin(), record.PolynomialCoefficients.end(),
            trend.begin());
  const OT::Basis basis = OT::LinearBasisFactory(inputs).build();
  return {OT::KrigingEvaluation::BasisCollection(1, basis), samples,
          OT::SquaredExponential(scales, OT::Point(1, 1.0)),
          OT::KrigingEvaluation::PointCollection(1, trend), weights};
}

class OpenTurns : public Peer {
 public:
  explicit OpenTurns(const CKrigingData& record)
      : evaluation_(EvaluationOf(record)),
        slope_(record.OutputScaleSlope),
        intercept_(record.OutputScaleIntercept) {
    OT::TBB::SetThreadsNumber(1);
  }

  const char* Name() const override { return "OpenTURNS"; }

  void SetPoints(const std::vector<std::vector<double>>& scaled) override {
    points_ = OT::Sample(scaled.size(), scaled.front().size());
    for (std::size_t p = 0; p < scaled.size(); ++p) {
      list_.emplace_back(scaled[p].size());
      std::copy(scaled[p].begin(), scaled[p].end(), list_.back().begin());
      points_[p] = list_.back();
    }
  }

  double EvaluateAt(std::size_t point) const override {
    return (evaluation_(list_[point])[0] - intercept_) / slope_;
  }

  double EvaluateAll() const override {
    const OT::Sample results = evaluation_(points_);
    return (results(results.getSize() - 1, 0) - intercept_) / slope_;
  }

 private:
  OT::KrigingEvaluation evaluation_;
  double slope_;
  double intercept_;
  std::vector<OT::Point> list_;
  OT::Sample points_;
};

}  // namespace

bool HasOpenTurns() { return true; }

std::unique_ptr<Peer> OpenTurnsKriging(const CKrigingData& record) {
  return std::make_unique<OpenTurns>(record);
}

}  // namespace peers

#else

bool peers::HasOpenTurns() { return false; }

std::unique_ptr<peers::Peer> peers::OpenTurnsKriging(const Tarvane::Plexura::PXROM::CKrigingData&) {
  return nullptr;
}

#endif
