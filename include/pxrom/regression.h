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

/// The kind of the surface as the fit named it; carried, and read by no calculation.
enum E_SurfaceType : std::int32_t { SurfaceTypeNone = 0 };

/// How the fit filtered the terms; carried. The numbered ways used a confidence value.
enum E_RegTermFilterType : std::int32_t {
  RegTermFilterNone = 0,
  RegTermFilterConfidence1 = 1,
  RegTermFilterConfidence2 = 2,
  RegTermFilterConfidence3 = 3,
};

/// A transformation of the inputs or of the output. The numbers are those of "InputTransformType="
/// and "OutputTransformType=". Going into the regression's space is forward, leaving it is back.
///
/// Each has a parameter that it reads: `value` from InputTransformValues or OutputTransformValue,
/// or `lambda` from InputLambdas or OutputLambda; it ignores the other. Ways back refuse arguments
/// that would lead beyond 1e99. **Three of them are no inverses, deliberately**, see there.
enum E_QRSTransformationType : std::int32_t {
  TransformNone = 0,    ///< the identity
  TransformExpo = 1,    ///< exp(x); back log(x)
  TransformLogA = 2,    ///< log(x) / log(value); back log(value) * exp(x), no inverse
  TransformLogE = 3,    ///< log(x); back exp(x)
  TransformLog10 = 4,   ///< log10(x); back 10^x
  TransformSquare = 5,  ///< sqrt(x); back x^2
  TransformPower = 6,   ///< x^value; back x^(1/value), which refuses ordinary x for value < 1
  TransformBox = 7,     ///< Box-Cox with lambda
  TransformLogBox = 8,  ///< exp of the inverse of Box-Cox with lambda, in both directions
  TransformYeo = 9,     ///< Yeo-Johnson with lambda
};

/// The record of a regression surface: a sum of terms (regression_terms.h) in a space that is
/// reached by scaling and then transforming the inputs, and left by back-transforming and
/// backscaling the sum. See CQRSEvaluator for the whole formula.
///
/// A record holds every candidate term of the fit; those that the fit dropped are not active.
///
/// Statuses: accessors return 0 and Set operations store what they get, unless a comment says
/// otherwise. What can't be honoured gives 1 and writes nothing: a term that isn't there, a list or
/// matrix shorter than the record's counts, a transformation type that is none, or
/// InputTransformValues or InputLambdas shorter than the inputs under any transformation.
///
/// Ownership: the record owns its terms and the array of them, and copies are deep, assignments
/// too. A host that writes RegTerms itself hands over what it writes, with NumberOfRegTerms.
/// Threads: const operations, GetPredictorError and EvalErrorPredictions only read, so they may run
/// side by side as long as nobody writes the record. IsTransformingCorrect and IsAllRight write.
struct PXROM_API CQRSData : public CRSData {
  CQRSData();
  CQRSData(const CQRSData&);
  CQRSData& operator=(const CQRSData&);

  CQRSData* Clone() const override;
  ~CQRSData() override;
  /// Leaves Sigma2 and InvXtX as they are, on purpose: without SavePredictorError they have no
  /// meaning.
  int ResetData() override;
  /// IsSamplingCorrect, IsTransformingCorrect and IsScalingCorrect, each only if the one before
  /// held.
  bool IsAllRight() override;
  E_DataType DataType() const override;

  /// The design matrix of `terms` at `points`, both in the regression's space: one row per sample
  /// of the record, one column per coefficient. `design` must have that shape already. 1 for a
  /// shape that does not fit, `points` included; the status of a term that refuses is returned at
  /// once, with the entries up to there written. The record's own terms are not touched.
  virtual int BuildDesignMtx(const std::vector<std::vector<double>>& points, const int& numTerms,
                             const RegTerm* const* terms,
                             std::vector<std::vector<double>>& design) const;
  virtual int BuildDesignMtx(const DRecMtx& points, const int& numTerms,
                             const RegTerm* const* terms, DRecMtx& design) const;

  int GetResponseSurfaceType(E_SurfaceType& type) const;
  int SetResponseSurfaceType(const E_SurfaceType& type);
  int GetRegTermFilterType(E_RegTermFilterType& type) const;
  int SetRegTermFilterType(const E_RegTermFilterType& type);
  /// 1 with `value` untouched unless the filter type is one of those with a confidence value. The
  /// predictor error uses the value whatever the filter type is.
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

  // What term `k` answers; 1 without such a term. The arrays are as long as the counts.
  int GetRegTermFuncType(const int& k, E_FuncType& type) const;
  int GetRegTermNumParam(const int& k, int& count) const;
  int GetRegTermNumUsedInpVar(const int& k, int& count) const;
  int GetRegTermParamVal(const int& k, double* values) const;
  int GetRegTermUsedInpVarIdx(const int& k, int* const indices) const;
  /// The flag of term `k` and not a status; 0 without such a term.
  int QryRegTermIsActive(const int& k) const;
  /// Stops at the first term that refuses and returns its status.
  int SetAllRegTermActive();
  /// Replaces the terms by deep copies of `terms`, which stay the caller's and may be the record's
  /// own. The copy of an entry that is null or of no known type is null, and evaluations refuse it;
  /// so they do where `terms` is null and `count` above 0. Coefficients or indices that a term
  /// doesn't have, or not in the right number, its copy doesn't have either. Always 0.
  int SetRegTerm(RegTerm** terms, int count);
  /// Deep copies of the terms: the caller deletes each and, with delete[], the array. Null when
  /// there are none.
  RegTerm** CloneRegTerm() const;
  /// The coefficients of all terms in list order with the flag of their term, 1.0 for an active
  /// one. Both arrays hold `numParam` values. 1 when the record is not ready for evaluation or
  /// `numParam` is not the number of all coefficients; a term's status is returned at once.
  int GetAllParamStatusAndVal(const int& numParam, double* status, double* values) const;
  /// The greatest of the first `n` values, and 0.0 when none is above that: **no absolute value is
  /// taken**, despite the name. 1 when `v` has fewer.
  int GetMaxMagnitude(const std::vector<double>& v, const int& n, double& out) const;

  /// The sum of all terms at `x`, a scaled and transformed point. The first non-zero status of a
  /// term is returned at once with the sum so far in `y`.
  int EvaluateRegTerm(std::vector<double>& x, double& y) const;
  /// The gradient of that sum at a scaled point, with respect to the **unscaled** inputs: entry i
  /// has the factor InputScaleSlopes[i]. There is no factor for an input transformation. The first
  /// non-zero status of a term is returned at once.
  int EvaluateRegTermDerivativeWrtInputVariables(const std::vector<double>& x,
                                                 std::vector<double>& g) const;

  /// Forward, all inputs. An element outside its formula's guard **stays as it was and is not
  /// reported**.
  int TransformAndOverwriteInputSample(std::vector<double>& x) const;
  int TransformAndOverwriteInputSamples(std::vector<std::vector<double>>& rows) const;
  /// Forward, the output. 1 with `y` untouched when it is outside the formula's guard.
  int TransformAndOverwriteOutputSample(double& y) const;
  /// Stops at the first that fails, with 1 and those before it transformed.
  int TransformAndOverwriteOutputSamples(std::vector<double>& ys) const;
  /// Back. A refused value stays as it was, but is -9e99 with TransformYeo.
  int BacktransformAndOverwriteOutputSample(double& y) const;
  /// The same on each value, singular in name; stops at the first that fails.
  int BacktransformAndOverwriteOutputSample(std::vector<double>& ys) const;
  /// Whether both parameter lists have one entry per input, or there is no input transformation.
  /// **A check that fails sets Stopped**, so that every later evaluation refuses the record, also
  /// when the lists are mended.
  bool IsTransformingCorrect();

  /// The half-width of the **one-sided** prediction interval of level RegTermFilterConfVal (0.95 is
  /// the 95 percent quantile of Student's t) at `x`, a scaled and transformed point:
  /// sqrt((h + 1) * Sigma2) * t / OutputScaleSlope, h the leverage. A transformed model gets it in
  /// its transformed output divided by the slope: no way back is applied. SavePredictorError is not
  /// asked; 1 when InvXtX has fewer rows or columns than there are active terms. The status of a
  /// term or of the quantile is returned; without degrees of freedom (as many active terms as
  /// samples) there is none. `error` is written on 0 only.
  int GetPredictorError(std::vector<double>& x, double& error);
  /// Appends errors[i] / |values[i]| for the first `n`, or errors[i] where |values[i]| <= 0.0001.
  /// `out` is not emptied first.
  int GetRelativePredictorError(const std::vector<double>& values,
                                const std::vector<double>& errors, const int& n,
                                std::vector<double>& out) const;
  /// GetPredictorError at each of `points`; 0.0 where that fails, which is not reported. Without
  /// SavePredictorError `errors` is left alone. The status tells something else, namely whether a
  /// design matrix of the record's terms can be built at `points`: 1 for no points and for another
  /// number of them than samples, and **`errors` is filled all the same**.
  int EvalErrorPredictions(std::vector<std::vector<double>>& points, std::vector<double>& errors);

  E_SurfaceType ResponseSurfaceType = SurfaceTypeNone;
  E_RegTermFilterType RegTermFilterType = RegTermFilterNone;
  double RegTermFilterConfVal = 0.95;
  int NumberOfRegTerms = 0;
  /// The active terms as the fit counted them; carried.
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
/// with the input transformation T forward and the output transformation B back. A component of the
/// input that T refuses stays untransformed and the prediction goes on with it; a refused way back
/// gives 1.
class PXROM_API CQRSEvaluator : public CRSEvaluator {
 public:
  CQRSEvaluator() = default;
  CQRSEvaluator(const CQRSEvaluator&) = default;
  CQRSEvaluator& operator=(const CQRSEvaluator&) = default;

  CQRSEvaluator* Clone() const override;
  ~CQRSEvaluator() override;
  /// The value with CQRSData::GetPredictorError. It does not ask SavePredictorError and **never
  /// returns -2**: 1 where the error cannot be told. `predictorError` is written before the value
  /// is known to be good, so it may be written where the status is 1.
  int EvaluateResponseSurface(const CRSData* data, const std::vector<double>& x, double& y,
                              double& predictorError) const override;
  /// A way back that succeeds with -9e99 (within 1e-10) counts as a hole of the surface: the value
  /// is then interpolated from the corners of a small box around `x`, which moves inward until all
  /// of them succeed. 1 for that without inputs or with more than 13, without samples, and when the
  /// effort is beyond bounds (2^15 corners, boxes inside boxes included, eight boxes deep). After a
  /// failed interpolation `y` is 0.0 or untouched.
  int EvaluateResponseSurface(const CRSData* data, const std::vector<double>& x,
                              double& y) const override;
  /// **Lighter than the value in its checks and in its steps, deliberately.** It asks only whether
  /// the record is ready: a stopped record is served, a length that does not fit shows up as a
  /// status of 1 or more, a sum of statuses. The inputs are scaled and NOT transformed, and the
  /// factor of the output transformation is, by type:
  ///   - none, TransformBox, TransformLogBox: the true derivative of the way back;
  ///   - TransformExpo to TransformPower: the derivative of the way **forward**, at the sum;
  ///   - TransformYeo and unknown types: 0, so that the gradient is all zeros with status 0.
  /// So the result is the derivative of the value for records without transformations and for the
  /// two Box outputs. 1 also for null and for a record of another class.
  int EvaluateResponseSurfaceDerivativeWrtInputVariables(
      const CRSData* data, const std::vector<double>& x,
      std::vector<double>& gradient) const override;

  /// Evaluates the record at all its samples and hands the results to `gof` (goodness_of_fit.h). 1
  /// for a record that is not ready, of another class, or without its samples; then and on any
  /// other failure before the call `gof` is not touched. Else the status of `gof`.
  int EvalGoodnessOfFit(const CQRSData* data, Tarvane::Plexura::Core::GOFMeasr& gof);
  /// Evaluates the record at all its samples and hands `gof` **two empty columns**: the values are
  /// assigned to columns that nobody sized. Kept so; use EvalGoodnessOfFit for the values.
  int EvalR2Only(const CQRSData* data, Tarvane::Plexura::Core::GOFMeasr& gof);

 private:
  struct InterpolationEffort;

  int CalIntmedDrvtVal(const CRSData* data, const double& s, double& d) const;
  int EvalCodedUsedInpVar(const InterpolationEffort& effort, const double* x,
                          std::vector<double>& coded) const;
  int EvalNumHypcubePnt(int numVars, int& numPnts) const;
  int GenCodedHypcubePnt(int numVars, double** pnts) const;
  int EvalHypcubePntWgt(int numVars, const std::vector<double>& coded, int numPnts, int pntIdx,
                        double** pnts, double& weight) const;
  int Interplt(const CRSData* data, const double* x, double& y) const;
  int Interplt(const CQRSData& record, const double* x, double& y,
               InterpolationEffort& effort) const;
  int EvaluateCorner(const CQRSData& record, const std::vector<double>& point, double& y,
                     InterpolationEffort& effort) const;
};

}  // namespace Tarvane::Plexura::PXROM
