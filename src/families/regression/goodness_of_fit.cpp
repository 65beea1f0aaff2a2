#include "pxrom/goodness_of_fit.h"

#include <memory>

#include "families/regression/record_parts.h"
#include "pxrom/regression.h"

namespace Tarvane::Plexura::Core {

GOFMeasr::~GOFMeasr() = default;
int GOFMeasr::SecondPlace() { return 0; }
int GOFMeasr::ThirdPlace() { return 0; }

}  // namespace Tarvane::Plexura::Core

namespace Tarvane::Plexura::PXROM {

namespace {

/// Owns clones of a record's terms.
class ClonedTerms {
 public:
  explicit ClonedTerms(const CQRSData& record)
      : count_(record.NumberOfRegTerms), terms_(record.CloneRegTerm()) {}
  ClonedTerms(const ClonedTerms&) = delete;
  ClonedTerms& operator=(const ClonedTerms&) = delete;
  ~ClonedTerms() {
    for (int k = 0; terms_ && k < count_; ++k) delete terms_[static_cast<std::size_t>(k)];
  }

  RegTerm** Data() const { return terms_.get(); }

  /// Counts all coefficients and makes all terms active. The first non-zero status is returned.
  int Activate(int& parameters) const {
    for (int k = 0; k < count_; ++k) {
      RegTerm* const term = terms_ ? terms_[static_cast<std::size_t>(k)] : nullptr;
      int count = 0;
      int status = term != nullptr ? term->GetNumParam(count) : 1;
      if (status != 0) return status;
      parameters += count;
      status = term->SetActive();
      if (status != 0) return status;
    }
    return 0;
  }

 private:
  int count_;
  std::unique_ptr<RegTerm*[]> terms_;
};

/// The values at the first `count` samples.
int PredictSamples(const CQRSEvaluator& evaluator, const CQRSData& record, std::size_t count,
                   std::vector<double>& predictions) {
  if (record.InputSamples.size() < count) return 1;
  for (std::size_t k = 0; k < count; ++k) {
    double y = 0.0;
    const int status = evaluator.EvaluateResponseSurface(&record, record.InputSamples[k], y);
    if (status != 0) return status;
    predictions.push_back(y);
  }
  return 0;
}

/// Physical values, and the same values in the space of the regression sum.
struct Columns {
  explicit Columns(const int& length) : plain(length), transformed(length) {}

  int Assign(const CQRSData& record, std::vector<double> values) {
    int status = plain.AssignChecked(values.data());
    record.ScaleAndOverwriteOutputSamples(values);
    status += record.TransformAndOverwriteOutputSamples(values);
    return status + transformed.AssignChecked(values.data());
  }

  DColVec plain;
  DColVec transformed;
};

}  // namespace

int CQRSEvaluator::EvalGoodnessOfFit(const CQRSData* data, Core::GOFMeasr& gof) {
  if (data == nullptr || !data->IsReadyForEvaluation() || data->NumberOfSamples < 1) return 1;
  const int samples = data->NumberOfSamples;
  const auto sampleCount = static_cast<std::size_t>(samples);
  const ClonedTerms terms(*data);
  std::vector<double> predictions;
  if (PredictSamples(*this, *data, sampleCount, predictions) != 0) return 1;
  int parameters = 0;
  int status = terms.Activate(parameters);
  if (status != 0) return status;

  DRecMtx points(samples, data->NumberOfInputVariables);
  for (int k = 0; k < samples; ++k) {
    std::vector<double> point = data->InputSamples[static_cast<std::size_t>(k)];
    data->ScaleAndOverwriteInputSample(point);
    data->TransformAndOverwriteInputSample(point);
    points.SetRow(k, point.data());
  }
  DRecMtx design(samples, parameters);
  status = data->BuildDesignMtx(points, data->NumberOfRegTerms, terms.Data(), design);
  if (status != 0) return status;

  if (data->OutputSamples.size() < sampleCount) return 1;
  Columns outputs(samples);
  Columns predicted(samples);
  status = outputs.Assign(*data, data->OutputSamples);
  status += predicted.Assign(*data, predictions);
  if (status != 0) return status;

  std::vector<double> flags(static_cast<std::size_t>(parameters));
  std::vector<double> values(static_cast<std::size_t>(parameters));
  status = data->GetAllParamStatusAndVal(parameters, flags.data(), values.data());
  DRowVec paramStatus(parameters);
  DColVec paramValues(parameters);
  status += paramStatus.AssignChecked(flags.data());
  status += paramValues.AssignChecked(values.data());
  return status + gof.ComputeAllMeasures(design, paramStatus, paramValues, outputs.plain,
                                         outputs.transformed, predicted.plain,
                                         predicted.transformed);
}

int CQRSEvaluator::EvalR2Only(const CQRSData* data, Core::GOFMeasr& gof) {
  if (data == nullptr || !data->IsReadyForEvaluation()) return 1;
  const std::vector<double> samples = data->OutputSamples;
  std::vector<double> predictions;
  const int status = PredictSamples(*this, *data, samples.size(), predictions);
  if (status != 0) return status;
  // Deliberate (r2-empty-columns): columns without a length take nothing, and their statuses are
  // not read, so both arrive empty. EvalGoodnessOfFit passes the values.
  DColVec outputs;
  DColVec predicted;
  outputs.AssignChecked(samples.data());
  predicted.AssignChecked(predictions.data());
  return gof.ComputeR2(outputs, predicted);
}

}  // namespace Tarvane::Plexura::PXROM
