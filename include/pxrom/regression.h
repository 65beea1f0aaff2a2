#pragma once

#include <cstdint>
#include <vector>

#include "pxrom/dense_matrix.h"
#include "pxrom/export.h"
#include "pxrom/goodness_of_fit.h"
#include "pxrom/regression_terms.h"
#include "pxrom/rs_data.h"
#include "pxrom/rs_evaluator.h"

namespace Tarvane::Plexura::PXROM {

/// Format version of the regression record. From 192 on a database holds "QRSSavePredictorError=".
enum E_CQRSDataVersion : std::int32_t { QRSDataVersion192 = 192 };

/// The kind of the surface as the fit named it; kept for the host, and read by no calculation.
enum E_SurfaceType : std::int32_t { SurfaceTypeNone = 0 };

/// How the fit filtered the terms; kept for the host. The numbered types used a confidence value.
enum E_RegTermFilterType : std::int32_t {
  RegTermFilterNone = 0,
  RegTermFilterConfidence1 = 1,
  RegTermFilterConfidence2 = 2,
  RegTermFilterConfidence3 = 3,
};

/// A transformation of the inputs or of the output. The numbers are those of "InputTransformType="
/// and "OutputTransformType=". Forward leads into the space of the regression, back leads out of
/// it.
///
/// Each transformation reads at most one parameter: `value` from InputTransformValues or
/// OutputTransformValue, or `lambda` from InputLambdas or OutputLambda. A back-transformation
/// refuses arguments whose result would exceed 1e99.
///
/// Deliberate (transformations-without-inverse): **for LogA, LogBox and Power the
/// back-transformation is not the inverse** (see below). The fits used them in this form.
///
/// Sources: Box and Cox, An Analysis of Transformations, Journal of the Royal Statistical Society B
/// 26, 1964; Yeo and Johnson, A New Family of Power Transformations to Improve Normality or
/// Symmetry, Biometrika 87, 2000.
enum E_QRSTransformationType : std::int32_t {
  TransformNone = 0,    ///< the identity
  TransformExpo = 1,    ///< exp(x); back log(x)
  TransformLogA = 2,    ///< log(x) / log(value); back log(value) * exp(x), not the inverse
  TransformLogE = 3,    ///< log(x); back exp(x)
  TransformLog10 = 4,   ///< log10(x); back 10^x
  TransformSquare = 5,  ///< sqrt(x); back x^2
  TransformPower = 6,   ///< x^value; back x^(1/value), which refuses ordinary x for value < 1
  TransformBox = 7,     ///< Box-Cox with lambda
  TransformLogBox = 8,  ///< exp of the inverse of Box-Cox with lambda, in both directions
  TransformYeo = 9,     ///< Yeo-Johnson with lambda
};

/// The record of a regression surface: a sum of terms (regression_terms.h). The inputs are scaled,
/// then transformed; the sum is transformed back, then scaled back. See CQRSEvaluator for the whole
/// formula.
///
/// A record holds every candidate term of the fit; the terms that the fit dropped are not active.
///
/// Statuses: accessors return 0 and Set operations store what they get, unless a comment says
/// otherwise. These give 1 and write nothing: a term that doesn't exist, a list or matrix shorter
/// than the record's counts, an unknown transformation type, and InputTransformValues or
/// InputLambdas shorter than the inputs, with any transformation.
///
/// Ownership: the record owns its terms and their array. Copies and assignments are deep. A host
/// that writes RegTerms itself, with NumberOfRegTerms, passes ownership to the record.
/// Threads: const operations, GetPredictorError and EvalErrorPredictions only read, so they may run
/// at the same time as long as nothing writes the record. IsTransformingCorrect and IsAllRight
/// write.
struct PXROM_API CQRSData : public CRSData {
  CQRSData();
  CQRSData(const CQRSData&);
  CQRSData& operator=(const CQRSData&);

  CQRSData* Clone() const override;
  ~CQRSData() override;
  /// Leaves Sigma2 and InvXtX unchanged: without SavePredictorError they have no meaning.
  int ResetData() override;
  /// IsSamplingCorrect, IsTransformingCorrect and IsScalingCorrect, each only if the one before it
  /// is true.
  bool IsAllRight() override;
  E_DataType DataType() const override;

  /// The design matrix of `terms` at `points`, both in the space of the regression: one row per
  /// sample of the record, one column per coefficient. `design` must already have that shape. 1 for
  /// a shape that does not fit, also of `points`. If a term refuses, returns its status at once,
  /// with the entries before it written. The record's own terms do not change.
  virtual int BuildDesignMtx(const std::vector<std::vector<double>>& points, const int& numTerms,
                             const RegTerm* const* terms,
                             std::vector<std::vector<double>>& design) const;
  virtual int BuildDesignMtx(const DRecMtx& points, const int& numTerms,
                             const RegTerm* const* terms, DRecMtx& design) const;

  int GetResponseSurfaceType(E_SurfaceType& type) const;
  int SetResponseSurfaceType(const E_SurfaceType& type);
  int GetRegTermFilterType(E_RegTermFilterType& type) const;
  int SetRegTermFilterType(const E_RegTermFilterType& type);
  /// 1 with `value` untouched unless the filter type has a confidence value. The predictor error
  /// uses the value with any filter type.
  int GetRegTermFilterConfVal(double& value) const;
  int SetRegTermFilterConfVal(const double& value);
  int GetNumberOfRegTerms(int& count) const;
  int GetNumberOfSelectedRegTerms(int& count) const;
  int SetNumberOfSelectedRegTerms(const int& count);
  int GetInputTransformType(E_QRSTransformationType& type) const;
  int SetInputTransformType(E_QRSTransformationType type);
  int GetInputTransformValues(std::vector<double>& values) const;
  int SetInputTransformValues(const std::vector<double>& values);
  int GetInputLambdas(std::vector<double>& lambdas) const;
  int SetInputLambdas(const std::vector<double>& lambdas);
  int GetOutputTransformType(E_QRSTransformationType& type) const;
  int SetOutputTransformType(E_QRSTransformationType type);
  int GetOutputTransformValue(double& value) const;
  int SetOutputTransformValue(double value);
  int GetOutputLambda(double& lambda) const;
  int SetOutputLambda(double lambda);
  E_CQRSDataVersion QRSDataVersion() const;
  int SetQRSDataVersion(E_CQRSDataVersion version);
  int GetSavePredictorError(bool& save) const;
  int SetSavePredictorError(bool save);
  int GetSigma2(double& sigma2) const;
  int SetSigma2(double sigma2);
  int GetInvXtX(std::vector<std::vector<double>>& rows) const;
  int SetInvXtX(std::vector<std::vector<double>> rows);

  // The same operation of term `k`; 1 without such a term. The arrays are as long as the counts.
  int GetRegTermFuncType(const int& k, E_FuncType& type) const;
  int GetRegTermNumParam(const int& k, int& count) const;
  int GetRegTermNumUsedInpVar(const int& k, int& count) const;
  int GetRegTermParamVal(const int& k, double* values) const;
  int GetRegTermUsedInpVarIdx(const int& k, int* const indices) const;
  /// The flag of term `k`, not a status; 0 without such a term.
  int QryRegTermIsActive(const int& k) const;
  /// Stops at the first term that refuses and returns its status.
  int SetAllRegTermActive();
  /// Replaces the terms by deep copies of `terms`, which stay with the caller and may be the
  /// record's own. A null entry, or one of unknown type, becomes null, and evaluations refuse it;
  /// so they do if `terms` is null and `count` above 0. If a term has no coefficients or indices,
  /// or a wrong number of them, its copy has none. Always 0.
  int SetRegTerm(RegTerm** terms, int count);
  /// Deep copies of the terms: the caller deletes each and, with delete[], the array. Null when
  /// there are none.
  RegTerm** CloneRegTerm() const;
  /// The coefficients of all terms in list order with the flag of their term, 1.0 for an active
  /// one. Both arrays hold `numParam` values. 1 when the record is not ready for evaluation or
  /// `numParam` is not the number of all coefficients; if a term fails, returns its status at once.
  int GetAllParamStatusAndVal(const int& numParam, double* status, double* values) const;
  /// The largest of the first `n` values, or 0.0 if none is above 0.0. 1 when `v` has fewer values.
  ///
  /// Deliberate (no-absolute-value): **no absolute value is taken**, despite the name.
  int GetMaxMagnitude(const std::vector<double>& v, const int& n, double& out) const;

  /// The sum of all terms at `x`, a scaled and transformed point. Returns the first non-zero status
  /// of a term at once, with the sum so far in `y`.
  int EvaluateRegTerm(std::vector<double>& x, double& y) const;
  /// The gradient of that sum at a scaled point, with respect to the **unscaled** inputs: entry i
  /// has the factor InputScaleSlopes[i]. There is no factor for an input transformation. Returns
  /// the first non-zero status of a term at once.
  int EvaluateRegTermDerivativeWrtInputVariables(const std::vector<double>& x,
                                                 std::vector<double>& g) const;

  /// Forward, all inputs.
  ///
  /// Deliberate (refused-input-stays): an element that its formula refuses **does not change and is
  /// not reported**, so a prediction continues with the untransformed value.
  int TransformAndOverwriteInputSample(std::vector<double>& x) const;
  int TransformAndOverwriteInputSamples(std::vector<std::vector<double>>& rows) const;
  /// Forward, the output. 1 with `y` untouched when the formula refuses it.
  int TransformAndOverwriteOutputSample(double& y) const;
  /// Stops with 1 at the first value that fails, with the values before it transformed.
  int TransformAndOverwriteOutputSamples(std::vector<double>& ys) const;
  /// Back. A refused value does not change, but becomes -9e99 with TransformYeo.
  int BacktransformAndOverwriteOutputSample(double& y) const;
  /// The same for each value, despite its singular name; stops at the first that fails.
  int BacktransformAndOverwriteOutputSample(std::vector<double>& ys) const;
  /// Whether both parameter lists have one entry per input, or there is no input transformation.
  ///
  /// Deliberate (failed-check-stops): **if the check fails, it sets Stopped**, so every later
  /// evaluation refuses the record, even with corrected lists. Call SetStatusStopped(false) then.
  bool IsTransformingCorrect();

  /// The half-width of the **one-sided** prediction interval of level RegTermFilterConfVal (0.95 is
  /// the 95 percent quantile of Student's t) at `x`, a scaled and transformed point:
  /// sqrt((h + 1) * Sigma2) * t / OutputScaleSlope with the leverage h (prediction of a new
  /// observation; Draper and Smith, Applied Regression Analysis). With an output transformation it
  /// is in the transformed output divided by the slope: it is not transformed back.
  /// SavePredictorError is not read. 1 when InvXtX has fewer rows or columns than there are active
  /// terms. Returns the status of a term or of the quantile; the quantile fails without degrees of
  /// freedom (as many active terms as samples). Writes `error` only on 0.
  int GetPredictorError(std::vector<double>& x, double& error);
  /// Appends errors[i] / |values[i]| for the first `n`, or errors[i] where |values[i]| <= 0.0001.
  ///
  /// Deliberate (relative-error-appends): `out` is not emptied first.
  int GetRelativePredictorError(const std::vector<double>& values,
                                const std::vector<double>& errors, const int& n,
                                std::vector<double>& out) const;
  /// GetPredictorError at each of `points`; 0.0 where it fails, which is not reported. Without
  /// SavePredictorError `errors` does not change. The status only says whether a design matrix of
  /// the record's terms can be built at `points`: 1 without points, or if their number is not that
  /// of the samples, and **`errors` is filled even then**.
  int EvalErrorPredictions(std::vector<std::vector<double>>& points, std::vector<double>& errors);

  E_SurfaceType ResponseSurfaceType = SurfaceTypeNone;
  E_RegTermFilterType RegTermFilterType = RegTermFilterNone;
  double RegTermFilterConfVal = 0.95;
  int NumberOfRegTerms = 0;
  /// The number of active terms that the fit reported; kept for the host.
  int NumberOfSelectedRegTerms = 0;
  RegTerm** RegTerms = nullptr;
  E_QRSTransformationType InputTransformType = TransformNone;
  std::vector<double> InputTransformValues;
  std::vector<double> InputLambdas;
  E_QRSTransformationType OutputTransformType = TransformNone;
  double OutputTransformValue = 0.0;
  double OutputLambda = 0.0;
  /// The underscore keeps the field apart from the getter.
  E_CQRSDataVersion QRSDataVersion_ = QRSDataVersion192;
  bool SavePredictorError = false;
  /// The variance of the regression.
  double Sigma2 = 0.0;
  /// The inverse of the normal matrix of the active terms, in list order.
  std::vector<std::vector<double>> InvXtX;
};

/// Evaluates a CQRSData:
///
///   y = (B(sum of the terms at T(slope * x + intercept)) - intercept of the output) / its slope
///
/// with the forward transformation T of the inputs and the back-transformation B of the output. A
/// component of the input that T refuses stays untransformed, and the prediction continues with it.
/// If B refuses the sum, the status is 1. The model is multiple linear regression in the
/// transformed inputs (Draper and Smith, Applied Regression Analysis).
class PXROM_API CQRSEvaluator : public CRSEvaluator {
 public:
  CQRSEvaluator() = default;
  CQRSEvaluator(const CQRSEvaluator&) = default;
  CQRSEvaluator& operator=(const CQRSEvaluator&) = default;

  CQRSEvaluator* Clone() const override;
  ~CQRSEvaluator() override;
  /// The value with CQRSData::GetPredictorError. It does not read SavePredictorError and **never
  /// returns -2**: 1 if there is no error. `predictorError` may be written although the status
  /// is 1.
  int EvaluateResponseSurface(const CRSData* data, const std::vector<double>& x, double& y,
                              double& predictorError) const override;
  /// A back-transformation that succeeds with -9e99 (within 1e-10) marks a hole of the surface. The
  /// value is then interpolated from the corners of a small box around `x`, which moves inward
  /// until all corners succeed. The interpolation gives 1 without inputs or with more than 13,
  /// without samples, and when it exceeds its limits (2^15 corners, including those of boxes inside
  /// boxes, and a depth of eight boxes). After a failed interpolation `y` is 0.0 or untouched.
  int EvaluateResponseSurface(const CRSData* data, const std::vector<double>& x,
                              double& y) const override;
  /// Deliberate (regression-light-derivative): **it checks less and does less than the value.** It
  /// only checks that the record is ready: it accepts a stopped record, and for a length that does
  /// not fit it returns 1 or more, a sum of statuses. The inputs are scaled and NOT transformed.
  /// The factor for the output transformation is, by type:
  ///   - none, TransformBox, TransformLogBox: the true derivative of the back-transformation;
  ///   - TransformExpo to TransformPower: the derivative of the **forward** formula, at the sum;
  ///   - TransformYeo and unknown types: 0, so the gradient is all zeros with status 0.
  /// So the result is the derivative of the value only for records without input transformations
  /// and with no output transformation or one of the two Box types. 1 also for null and for a
  /// record of another class.
  int EvaluateResponseSurfaceDerivativeWrtInputVariables(
      const CRSData* data, const std::vector<double>& x,
      std::vector<double>& gradient) const override;

  /// Evaluates the record at all its samples and passes the results to `gof` (goodness_of_fit.h). 1
  /// for a record that is not ready, of another class, or without its samples. If anything fails
  /// before the call of `gof`, `gof` is not called. Else returns the status of `gof`.
  int EvalGoodnessOfFit(const CQRSData* data, Tarvane::Plexura::Core::GOFMeasr& gof);
  /// Evaluates the record at all its samples and passes **two empty columns** to `gof`: the values
  /// are assigned to columns without a size. Use EvalGoodnessOfFit for the values.
  int EvalR2Only(const CQRSData* data, Tarvane::Plexura::Core::GOFMeasr& gof);

 private:
  struct InterpolationEffort;

  int CalIntmedDrvtVal(const CRSData* data, const double& s, double& d) const;
  /// Maps `x` to `coded`, with the range -1 to 1 over the box of the samples, in physical units. 1
  /// with `coded` empty without samples or with a sample that lacks an input.
  int EvalCodedUsedInpVar(const CRSData* data, const double* x, std::vector<double>& coded) const;
  int EvalNumHypcubePnt(int numVars, int& numPnts) const;
  int GenCodedHypcubePnt(int numVars, double** pnts) const;
  int EvalHypcubePntWgt(int numVars, const std::vector<double>& coded, int numPnts, int pntIdx,
                        double** pnts, double& weight) const;
  int Interplt(const CRSData* data, const double* x, double& y) const;
  int Interplt(const CQRSData& record, const double* x, const std::vector<double>& coded, double& y,
               InterpolationEffort& effort) const;
  int EvaluateCorner(const CQRSData& record, const std::vector<double>& point, double& y,
                     InterpolationEffort& effort) const;
};

}  // namespace Tarvane::Plexura::PXROM
