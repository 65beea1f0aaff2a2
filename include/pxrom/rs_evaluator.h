#pragma once

#include <vector>

#include "pxrom/export.h"
#include "pxrom/rs_data.h"

namespace Tarvane::Plexura::PXROM {

/// The base of all evaluators: operations on a record, without state of their own. Each family has
/// one; a CFittingCandidatesEvaluator chooses it by the record's DataType.
///
/// Status of a value form:
///   0   the outputs are valid.
///   1   refused or failed; the outputs are as the caller left them, unless a comment says more.
///   -2  only from the form with an error: `y` is valid, no predictor error is available and
///       `predictorError` was not written.
///
/// Deliberate (value-without-error): -2 is a success. Compare a status with 1, not with 0.
///
/// Deliberate (nan-input): a NaN in `x` has no status of its own. Most families then give NaN with
/// status 0, so test the point before the call.
///
/// A value form refuses (in this order) a null record, a record of another family, one that is not
/// ready for evaluation or is stopped, and an `x` whose length is not NumberOfInputVariables.
///
/// Deliberate (evaluators-skip-checks): evaluators never call IsAllRight. They refuse a ready
/// record only if they would have to read a value that is missing, so a record that is built by
/// hand can be wrong and still give a number.
///
/// | Family     | Scales the point | Scales the samples    | Backscales the value |
/// |------------|------------------|-----------------------|----------------------|
/// | Constant   | no               | no                    | no                   |
/// | Kriging    | yes              | yes                   | yes                  |
/// | Regression | yes              | no                    | yes                  |
/// | SVR        | yes              | yes, a copy per call  | yes                  |
/// | MLS        | no               | no                    | no                   |
/// | LBF        | yes              | no                    | yes                  |
/// | GP         | yes              | yes                   | yes                  |
/// | Polynomial | yes              | no                    | yes                  |
///
/// Threads: evaluators have no fields, so any number of threads may evaluate at once, as long as
/// nothing writes the records.
class PXROM_API CRSEvaluator {
 public:
  CRSEvaluator() = default;
  CRSEvaluator(const CRSEvaluator&) = default;
  CRSEvaluator& operator=(const CRSEvaluator&) = default;

  /// A new evaluator of the same class, owned by the caller.
  virtual CRSEvaluator* Clone() const;
  virtual ~CRSEvaluator();
  /// Value and predictor error at `x`, in physical units.
  ///
  /// Deliberate (error-form-can-fail): the base sets both to 0.0 and returns 1, and so do families
  /// without a predictor error, although they have a value. Treat the error as an extra.
  virtual int EvaluateResponseSurface(const CRSData* data, const std::vector<double>& x, double& y,
                                      double& predictorError) const;
  /// Value at `x`, in physical units. The base sets `y` to 0.0 and returns 1.
  virtual int EvaluateResponseSurface(const CRSData* data, const std::vector<double>& x,
                                      double& y) const;
  /// Derivative of the value with respect to `x`. The base only checks its arguments: 0 when `x`
  /// fits a record that is ready and not stopped, else 1, with `gradient` untouched either way.
  /// `data` must not be null here.
  virtual int EvaluateResponseSurfaceDerivativeWrtInputVariables(
      const CRSData* data, const std::vector<double>& x, std::vector<double>& gradient) const;
};

}  // namespace Tarvane::Plexura::PXROM
