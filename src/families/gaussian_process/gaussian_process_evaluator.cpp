#include <cmath>
#include <cstddef>
#include <vector>

#include "families/gaussian_process/process.h"
#include "pxrom/gaussian_process.h"
#include "records/evaluation_frame.h"

namespace Tarvane::Plexura::PXROM {

namespace {

using gaussian_process::PredictorError;
using gaussian_process::Process;

/// One prediction: what it computes on the way, in scaled space.
class Prediction {
 public:
  explicit Prediction(const CGaussianProcessData& record) : record_(record), process_(record) {}

  /// Scales the point, and computes what value and error are made of. False if the record can't be
  /// honoured.
  bool TurnTo(const std::vector<double>& x) {
    point_ = x;
    if (!process_.Fits() || record_.ScaleAndOverwriteInputSample(point_) != 0) return false;
    functions_.resize(process_.TrendPart().FunctionCount());
    process_.TrendPart().FunctionsAt(point_.data(), functions_.data());
    covariances_.resize(process_.SampleCount());
    process_.Kernel().OfRows(point_.data(), record_.InputSamples.data(), covariances_.size(),
                             record_.InputScaleSlopes.data(), record_.InputScaleIntercepts.data(),
                             covariances_.data());
    return true;
  }

  double Value() const {
    double value =
        gaussian_process::Product(functions_.data(), record_.PolynomialCoefficients.data(),
                                  functions_.size()) +
        gaussian_process::Product(covariances_.data(), record_.Weights.data(), covariances_.size());
    record_.BackscaleAndOverwriteOutputSample(value);
    return value;
  }

  bool HasError() const { return process_.ErrorPart().IsAvailable(); }

  double Error() {
    return process_.ErrorPart().Of(Variance()) / std::fabs(record_.OutputScaleSlope);
  }

  void ValueGradient(std::vector<double>& gradient) const {
    FillGradient(record_.Weights.data(), record_.PolynomialCoefficients.data(),
                 record_.OutputScaleSlope, gradient);
  }

  void ErrorGradient(std::vector<double>& gradient) {
    const double variance = Variance();
    std::vector<double> kernelWeights(covariances_.size());
    std::vector<double> trendWeights(functions_.size());
    process_.ErrorPart().GradientWeights(variance, process_.Kernel().AtDistance0(), work_.data(),
                                         kernelWeights.data(), trendWeights.data());
    FillGradient(kernelWeights.data(), trendWeights.data(), std::fabs(record_.OutputScaleSlope),
                 gradient);
  }

 private:
  double Variance() {
    const PredictorError& error = process_.ErrorPart();
    work_.resize(error.WorkSize());
    return error.Variance(covariances_.data(), functions_.data(), process_.Kernel().AtDistance0(),
                          work_.data());
  }

  void FillGradient(const double* kernelWeights, const double* trendWeights, double outputSlope,
                    std::vector<double>& gradient) const {
    const std::vector<double> centres = process_.Centres();
    std::vector<double> work(process_.GradientWorkSize());
    gradient.assign(point_.size(), 0.0);
    process_.AddGradient(point_.data(), centres.data(), kernelWeights, trendWeights, work.data(),
                         gradient.data());
    for (std::size_t i = 0; i < gradient.size(); ++i) {
      gradient[i] *= record_.InputScaleSlopes[i] / outputSlope;
    }
  }

  const CGaussianProcessData& record_;
  Process process_;
  std::vector<double> point_;
  std::vector<double> functions_;
  std::vector<double> covariances_;
  std::vector<double> work_;
};

const CGaussianProcessData& AsProcess(const CRSData* data) {
  return *static_cast<const CGaussianProcessData*>(data);
}

}  // namespace

CGaussianProcessEvaluator* CGaussianProcessEvaluator::Clone() const {
  return new CGaussianProcessEvaluator(*this);
}
CGaussianProcessEvaluator::~CGaussianProcessEvaluator() = default;

int CGaussianProcessEvaluator::EvaluateResponseSurface(const CRSData* data,
                                                       const std::vector<double>& x, double& y,
                                                       double& predictorError) const {
  if (!IsEvaluable(data, DT_GaussianProcessData, x)) return 1;
  Prediction prediction(AsProcess(data));
  if (!prediction.TurnTo(x)) return 1;
  y = prediction.Value();
  if (!prediction.HasError()) return -2;
  predictorError = prediction.Error();
  return 0;
}

int CGaussianProcessEvaluator::EvaluateResponseSurface(const CRSData* data,
                                                       const std::vector<double>& x,
                                                       double& y) const {
  if (!IsEvaluable(data, DT_GaussianProcessData, x)) return 1;
  Prediction prediction(AsProcess(data));
  if (!prediction.TurnTo(x)) return 1;
  y = prediction.Value();
  return 0;
}

int CGaussianProcessEvaluator::EvaluateResponseSurfaceDerivativeWrtInputVariables(
    const CRSData* data, const std::vector<double>& x, std::vector<double>& gradient) const {
  if (!IsEvaluable(data, DT_GaussianProcessData, x)) return 1;
  Prediction prediction(AsProcess(data));
  if (!prediction.TurnTo(x)) return 1;
  prediction.ValueGradient(gradient);
  return 0;
}

int CGaussianProcessEvaluator::EvaluatePredictorErrorDerivativeWrtInputVariables(
    const CRSData* data, const std::vector<double>& x, std::vector<double>& gradient) const {
  if (!IsEvaluable(data, DT_GaussianProcessData, x)) return 1;
  Prediction prediction(AsProcess(data));
  if (!prediction.TurnTo(x)) return 1;
  if (!prediction.HasError()) return -2;
  prediction.ErrorGradient(gradient);
  return 0;
}

}  // namespace Tarvane::Plexura::PXROM
