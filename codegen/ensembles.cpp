// Ensembles of surfaces, and the error from cross-validation.

#include "codegen/lowering.h"
#include "pxrom/constant.h"

namespace pxrom_codegen {

template <class Real>
void Lowering<Real>::Scaling(const pxrom::CRSData& record, const Real*& slopes,
                             const Real*& intercepts) {
  slopes = Numbers("input_slopes", record.InputScaleSlopes);
  intercepts = Numbers("input_intercepts", record.InputScaleIntercepts);
}

template <class Real>
typename Runtime<Real>::surface Lowering<Real>::Surface(const pxrom::CRSData& record,
                                                        bool withError) {
  typename T::surface surface = {};
  surface.without_error = -2;
  switch (record.DataType()) {
    case pxrom::DT_ConstantData: {
      RequireServed<pxrom::CConstantEvaluator>(record);
      double value = 0.0;
      static_cast<const pxrom::CConstantData&>(record).GetConstantValue(value);
      out_.pieces.insert("CONSTANT");
      surface.constant = Numbers("constant", {value});
      return surface;
    }
    case pxrom::DT_KrigingData:
      surface.kernels = Kriging(static_cast<const pxrom::CKrigingData&>(record), withError);
      return surface;
    case pxrom::DT_SVRData:
      surface.kernels = SupportVector(static_cast<const pxrom::CSVRData&>(record));
      surface.without_error = 1;
      return surface;
    case pxrom::DT_LBFData:
      surface.kernels = LinearBasis(static_cast<const pxrom::CLBFData&>(record));
      surface.without_error = 1;
      return surface;
    case pxrom::DT_GaussianProcessData:
      surface.process_of =
          Process(static_cast<const pxrom::CGaussianProcessData&>(record), withError);
      return surface;
    case pxrom::DT_MLSData:
      surface.fit = LocalFit(static_cast<const pxrom::CMLSData&>(record));
      surface.without_error = 1;
      return surface;
    case pxrom::DT_QRSData:
      surface.terms = Regression(static_cast<const pxrom::CQRSData&>(record), withError);
      surface.without_error = 1;
      return surface;
    case pxrom::DT_PolynomialData:
      surface.products = Polynomial(static_cast<const pxrom::CPolynomialData&>(record), withError);
      return surface;
    default:
      Refuse("is of a family that has no generated code");
  }
}

template <class Real>
const typename Runtime<Real>::validation* Lowering<Real>::Validation(
    const pxrom::CFittingCandidate& candidate, const std::string& words) {
  const Matrix rows = candidate.GetvvdScSortedInput();
  const std::vector<int> counts = candidate.GetviNumPtsPerFold();
  const std::size_t surfaces = candidate.GetRSCount();
  const std::size_t subSurfaces = candidate.GetSubRSCounts();
  const std::size_t folds = surfaces > 0 ? subSurfaces / surfaces : 0;
  bool fits = surfaces > 0 && subSurfaces % surfaces == 0 && counts.size() >= folds;
  std::size_t sum = 0;
  for (std::size_t f = 0; fits && f < folds; ++f) {
    fits = counts[f] > 0;
    sum += static_cast<std::size_t>(std::max(counts[f], 0));
  }
  fits = fits && sum <= rows.size() &&
         std::all_of(rows.begin(), rows.end(),
                     [&](const Vector& row) { return row.size() >= inputs_; });
  if (!fits) {
    throw Refused("The cross-validation data of " + words +
                  " do not fit its surfaces, so it has no error.");
  }
  int statedInputs = 0;
  candidate.GetNumberOfInputVariables(statedInputs);
  const std::string name = name_;
  typename T::validation validation = {};
  validation.folds = Count(folds);
  validation.fold_counts =
      Places("fold_counts",
             std::vector<int>(counts.begin(), counts.begin() + static_cast<std::ptrdiff_t>(folds)));
  validation.row_count = Count(rows.size());
  validation.rows = Numbers("rows", Flat(rows, rows.size(), inputs_));
  validation.sort_threshold = Number(2.0 * std::sqrt(static_cast<double>(statedInputs)) * 1.0e-12);
  validation.distance_scale = Number(candidate.GetDPMinDist());
  std::vector<typename T::surface> all;
  for (std::size_t k = 0; k < surfaces; ++k) {
    for (std::size_t f = 0; f < folds; ++f) {
      const std::string surface = std::to_string(k + 1);
      const std::string fold = std::to_string(f + 1);
      name_ = name;
      name_.append("_s").append(surface).append("_without").append(fold);
      words_ = surface;
      words_.append(" of ").append(words).append(" without fold ").append(fold);
      all.push_back(Surface(*candidate.GetSubRSPtr(static_cast<int>(k * folds + f)), false));
    }
  }
  name_ = name;
  validation.leaving_one_out = KeepArray(out_.surfaces, "_leaving_one_out", std::move(all));
  out_.pieces.insert("CROSS_VALIDATION");
  return Keep(out_.validations, "_folds", validation);
}

template <class Real>
typename Runtime<Real>::ensemble Lowering<Real>::Ensemble(
    const pxrom::CFittingCandidates& candidates, const std::string& name,
    const std::string& words) {
  const pxrom::CFittingCandidate* const candidate = candidates.GetEvaluationCandidatePtr();
  Vector slopes;
  Vector intercepts;
  if (candidate != nullptr) {
    candidate->GetInputScaleSlopes(slopes);
    candidate->GetInputScaleIntercepts(intercepts);
  }
  if (candidate == nullptr || slopes.size() != inputs_ || intercepts.size() != inputs_) {
    throw Refused("The ensemble of " + words + " does not fit the inputs of the model.");
  }
  double outputSlope = 0.0;
  double outputIntercept = 0.0;
  candidate->GetOutputScaleSlope(outputSlope);
  candidate->GetOutputScaleIntercept(outputIntercept);
  if (outputSlope == 0.0) throw Refused("The output scaling of " + words + " has the slope 0.");

  work_ = {};
  const bool validates = errors_ && candidate->GetIsErrPredRequired();
  std::vector<typename T::surface> surfaces;
  Vector weights;
  for (std::size_t k = 0; k < candidate->GetRSCount(); ++k) {
    name_ = name + "_s" + std::to_string(k + 1);
    words_ = std::to_string(k + 1) + " of " + words;
    surfaces.push_back(Surface(*candidate->GetRSPtr(static_cast<int>(k)), errors_ && !validates));
    weights.push_back(candidate->GetRSWeight(static_cast<int>(k)));
  }
  name_ = name;
  words_ = "the ensemble of " + words;
  typename T::ensemble ensemble = {};
  ensemble.inputs = Count(inputs_);
  ensemble.input_slopes = Numbers("input_slopes", slopes);
  ensemble.input_intercepts = Numbers("input_intercepts", intercepts);
  ensemble.surface_count = Count(surfaces.size());
  ensemble.surfaces = KeepArray(out_.surfaces, "_surfaces", std::move(surfaces));
  ensemble.weights = Numbers("weights", weights);
  ensemble.output_slope = Number(outputSlope);
  ensemble.output_intercept = Number(outputIntercept);
  std::size_t error = work_.error;
  if (validates) {
    ensemble.folds = Validation(*candidate, words);
    error = static_cast<std::size_t>(ensemble.folds->row_count) +
            2 * static_cast<std::size_t>(ensemble.folds->folds) + work_.value;
  }
  out_.work = std::max({out_.work, inputs_ + work_.value, errors_ ? inputs_ + error : 0,
                        gradients_ ? 2 * inputs_ + work_.gradient : 0});
  return ensemble;
}

template class Lowering<double>;
template class Lowering<float>;

}  // namespace pxrom_codegen
