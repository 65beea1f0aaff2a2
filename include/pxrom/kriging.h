#pragma once

#include <cstdint>
#include <vector>

#include "pxrom/export.h"
#include "pxrom/rs_data.h"
#include "pxrom/rs_evaluator.h"
#include "pxrom/types.h"

namespace Tarvane::Plexura::PXROM {

/// Format version of the Kriging record. A database may hold any number; from 192 on a record can
/// hold the data of its predictor error.
enum E_CKrigingDataVersion : std::int32_t { KrigingDataVersion192 = 192 };

/// The correlation of two points in scaled space. With a = |xi - yi|, k the kernel scale of input i
/// and z = k a, the inputs contribute in ascending order. For the families of correlation functions
/// see Santner, Williams and Notz, The Design and Analysis of Computer Experiments; for Matern 5/2
/// see Rasmussen and Williams, Gaussian Processes for Machine Learning, equation 4.17.
enum E_KringingCorrelationFunctionType : std::int32_t {
  CorrNone = 0,          ///< the default of a new record: no function
  CorrExponential = 1,   ///< exp(-sum of z)
  CorrGaussian = 2,      ///< exp(-sum of k a a): k is not squared
  CorrLinear = 3,        ///< product of max(1 - z, 0)
  CorrSpherical = 4,     ///< product of 1 - 1.5 s + 0.5 s^3, s = min(z, 1)
  CorrCubic = 5,         ///< product of 1 - 3 s^2 + 2 s^3, s = min(z, 1)
  CorrMultiquadric = 6,  ///< product of sqrt(k k + a): grows with the distance, |k| at distance 0
  CorrSpline = 7,        ///< 1 - 15 z^2 + 30 z^3 up to z = 0.2, 1.25 (1 - z)^3 below 1, then 0
  CorrMatern52 = 8,      ///< product of exp(-t) (1 + t + t^2 / 3), t = sqrt(5) z, summed as logs
  CorrParabolic = 9,     ///< product of 1 - z^2 below z = 1, then 0
  CorrBesselJ0 = 10,     ///< product of (J0(z) - c) / (1 - c), c = J0(3.8317); 0 beyond 3.8317
  CorrSinc = 11,         ///< product of (sin(z) / z - c) / (1 - c), c = sin(e) / e; 0 beyond
                         ///< e = 3 pi / 2
};

/// One fitted Kriging surface: a polynomial trend plus a weighted sum of correlation functions
/// centred on the scaled samples (universal Kriging; Sacks, Welch, Mitchell and Wynn, Design and
/// Analysis of Computer Experiments, Statistical Science 4, 1989). The library does not fit.
///
/// With d for NumberOfInputVariables, n for NumberOfSamples and p for NumberOfPolyCoeff, a record
/// that can be evaluated has n correlation coefficients and either one kernel scale, shared by all
/// inputs, or d of them (IsAllRight requires d). Surplus elements are ignored.
///
/// **A record that is passed to the four-argument EvaluateResponseSurface must not be defined
/// const:** that form writes InputSamples, see CKrigingEvaluator.
///
/// Statuses, ownership and threads are those of CRSData. Accessors return 0 and validate nothing.
struct PXROM_API CKrigingData : public CRSData {
  CKrigingData();
  CKrigingData(const CKrigingData&);
  CKrigingData& operator=(const CKrigingData&);

  CKrigingData* Clone() const override;
  ~CKrigingData() override;
  /// Leaves InvC, InvG, Ft, NumberOfPolyCoeff and Sigma2 unchanged: nothing reads them while
  /// SavePredictorError is false. Always 0.
  int ResetData() override;
  /// Whether samples, scaling, coefficients and kernel scales fit together. The data of the
  /// predictor error are not checked.
  ///
  /// Deliberate (kriging-one-kernel-per-input): a single kernel scale for several inputs gives
  /// false, although such a record can be evaluated.
  bool IsAllRight() override;
  E_DataType DataType() const override;

  E_CKrigingDataVersion KrigingDataVersion() const;
  int SetKrigingDataVersion(E_CKrigingDataVersion version);
  int GetPolynomialType(E_PolynomialType& type) const;
  int SetPolynomialType(E_PolynomialType type);
  int GetPolynomialCoefficients(std::vector<double>& coefficients) const;
  int SetPolynomialCoefficients(const std::vector<double>& coefficients);
  int GetCorrelationFunctionType(E_KringingCorrelationFunctionType& type) const;
  int SetCorrelationFunctionType(E_KringingCorrelationFunctionType type);
  int GetCorrelationCoefficients(std::vector<double>& coefficients) const;
  int SetCorrelationCoefficients(const std::vector<double>& coefficients);
  int GetCorrelationKernels(std::vector<double>& kernels) const;
  int SetCorrelationKernels(const std::vector<double>& kernels);
  int GetSavePredictorError(bool& save) const;
  int SetSavePredictorError(const bool& save);
  int GetNumberOfPolyCoeff(int& count) const;
  int SetNumberOfPolyCoeff(int& count);
  int GetSigma2(double& variance) const;
  int SetSigma2(double& variance);
  int GetInvC(std::vector<std::vector<double>>& rows) const;
  int SetInvC(const std::vector<std::vector<double>>& rows);
  int GetInvG(std::vector<std::vector<double>>& rows) const;
  int SetInvG(const std::vector<std::vector<double>>& rows);
  int GetFt(std::vector<std::vector<double>>& rows) const;
  int SetFt(const std::vector<std::vector<double>>& rows);

  /// The polynomial basis of `type` at `x` (types.h); the record is not read.
  ///
  /// Deliberate (kriging-unknown-trend): type 0 leaves `out` empty with status 1, and a type
  /// outside 0 to 4 leaves it empty with status 0.
  int ComputeVandermondePolynomialVector(const std::vector<double>& x, E_PolynomialType type,
                                         std::vector<double>& out) const;
  /// One row of basis functions for each row of `x`. The status of the rows is ignored, so type 0
  /// gives empty rows and 0. 1 with `out` untouched when `x` is empty or ragged.
  int ComputeVandermondePolynomialMatrix(const std::vector<std::vector<double>>& x,
                                         E_PolynomialType type,
                                         std::vector<std::vector<double>>& out) const;

  // Scalings for hosts that fit a surface; nothing in the library calls them. Each returns 0, but
  // the two for inputs return 1 and change nothing when a sample has fewer values than d. A
  // negative d gives empty lists, as a d of 0 does.

  /// To zero mean and unit variance: slope 1/s, intercept -(1/s) m. s = 0 is not guarded.
  int ComputeScalingFactorsForInputs();
  /// To largest magnitude 1, intercepts 0; a largest magnitude below 1e-08 or above 1e+30 gives the
  /// slope 1.
  int ComputeScalingFactorsForInputsUsingInfNorm();
  /// Deliberate (kriging-output-intercept): slope 1/s and intercept **-(s m)**, unlike the -(1/s) m
  /// of the inputs. This does not centre the output unless s is 1.
  int ComputeScalingFactorForOutput();
  /// Sets the slope as for inputs. **The intercept does not change.**
  int ComputeScalingFactorForOutputUsingInfNorm();

  /// Whether there are n coefficients and n is not 0.
  bool AreCorrelationCoefficientsCorrect() const;
  /// Whether there are exactly d kernel scales.
  bool AreCorrelationKernelsCorrect() const;
  /// Whether there are as many coefficients as PolynomialType has functions in d inputs; false for
  /// a type outside 0 to 4.
  bool ArePolynomialCoefficientsCorrect() const;

  /// The correlation `r` of `x` and `y`, two points in scaled space. 1 with `r` untouched unless
  /// both have d elements and d is not 0; 1 with `r` set to 0 when CorrelationFunctionType is not a
  /// function, or when there are neither one kernel scale nor at least d. Allocates nothing.
  int EvaluateCorrelationFunction(const std::vector<double>& x, const std::vector<double>& y,
                                  double& r) const;
  /// The correlations of `rows` with each other. 1 with `out` empty when `rows` is empty or ragged;
  /// 1 at the first refused pair, with the entries before it in `out`.
  ///
  /// Deliberate (kriging-lower-triangle): **only the strict lower triangle is filled**, the rest
  /// stays 0. The caller mirrors it and adds the diagonal if needed.
  int EvaluateCorrelationMatrix(const std::vector<std::vector<double>>& rows,
                                std::vector<std::vector<double>>& out) const;
  /// The Bessel function of the first kind of order 0.
  double Bessel_j0(double x) const;

  /// The predictor errors at `rows`. **These points and InputSamples must both be scaled**; nothing
  /// is scaled here. Returns the sum of the statuses of its steps: 1 for each point and sample
  /// without a correlation, 1 when `rows` is empty or ragged, 1 for a PolynomialType outside 0 to
  /// 4, and the status of GetPredictorError, which is called only if SavePredictorError is true. 1
  /// at once when n or d is negative or there are fewer than n samples. Only GetPredictorError
  /// writes `out`. `rows` is only read.
  int EvalErrorPredictions(std::vector<std::vector<double>>& rows, std::vector<double>& out);
  /// The predictor errors at `m` points from their correlations with the samples (`R`, n values a
  /// row) and their `p` trend functions (`F`, p values a row): the square root of the mean squared
  /// error of the universal Kriging predictor (Sacks et al. 1989),
  ///   v = InvC r, w = Ft v - f, g = InvG w, error = sqrt(|Sigma2 (1 + |g|^2 - |v|^2)|).
  /// A negative radicand gives a positive error, not a failure and not 0. The result is in the
  /// unit of Sigma2's root.
  /// 1 with `out` untouched when KrigingDataVersion is below 192, when InvC, InvG or Ft is empty
  /// (so a surface without a trend has no error), or when a count is negative or any of the five
  /// matrices is smaller than the counts require. All arguments except `out` are only read.
  int GetPredictorError(std::vector<std::vector<double>>& R, std::vector<std::vector<double>>& F,
                        int& m, int& p, std::vector<double>& out);

  /// The underscore keeps the field apart from the getter.
  E_CKrigingDataVersion KrigingDataVersion_ = KrigingDataVersion192;
  E_PolynomialType PolynomialType = PolyNone;
  /// One per function of the basis, in its order.
  std::vector<double> PolynomialCoefficients;
  E_KringingCorrelationFunctionType CorrelationFunctionType = CorrNone;
  /// One per sample.
  std::vector<double> CorrelationCoefficients;
  /// The kernel scales: one for all inputs, or one per input.
  std::vector<double> CorrelationKernels;
  /// Whether the fields below hold the data of the predictor error.
  bool SavePredictorError = false;
  int NumberOfPolyCoeff = 0;
  /// Process variance. No operation scales an error back, so those who write a record store it in
  /// the square of the unit of the surface's values, and not of the scaled output.
  double Sigma2 = 0.0;
  /// n by n: inverse of the factor of the correlation matrix.
  std::vector<std::vector<double>> InvC;
  /// p by p: inverse of the factor of the trend's regression problem.
  std::vector<std::vector<double>> InvG;
  /// p by n: the trend functions at the samples, transformed by InvC.
  std::vector<std::vector<double>> Ft;
};

/// Evaluates a CKrigingData. Statuses and the first checks are those of CRSEvaluator.
///
/// Besides these checks, both value forms give 1, with nothing written, when there are fewer than n
/// samples or correlation coefficients, or a sample of another length than d; when the scaling, the
/// kernel scales or the function do not fit d inputs; and when the number of trend functions is not
/// the number of PolynomialCoefficients. A record with n = 0 or a negative n is its trend alone; a
/// record with PolynomialType 0 has no trend, whatever coefficients it holds.
class PXROM_API CKrigingEvaluator : public CRSEvaluator {
 public:
  CKrigingEvaluator() = default;
  CKrigingEvaluator(const CKrigingEvaluator&) = default;
  CKrigingEvaluator& operator=(const CKrigingEvaluator&) = default;

  CKrigingEvaluator* Clone() const override;
  ~CKrigingEvaluator() override;

  /// Value and predictor error at `x`. The error is the estimated standard deviation, **in the unit
  /// of Sigma2's root**: it is not scaled back.
  ///
  /// **This form can change the record, although it takes it as const.** Only status 0 leaves the
  /// record unchanged. If the value is valid but there is no error (-2: SavePredictorError is
  /// false, or the error data are missing, incomplete or older than version 192; a surface without
  /// a trend always ends here), or if the trend fails (1), the first n samples in InputSamples stay
  /// *scaled*. The next prediction of either form scales them again: **repeating the call gives
  /// another value each time.** So:
  ///   - ask for the error only if SavePredictorError is true, else use the form without an error;
  ///   - after any status other than 0, call SetInputSamples before the next prediction;
  ///   - never define such a record const: writing it would be undefined behaviour;
  ///   - let no other thread use the record during the call. Nothing is locked.
  int EvaluateResponseSurface(const CRSData* data, const std::vector<double>& x, double& y,
                              double& predictorError) const override;
  /// Value at `x`. It never writes the record and may run in several threads at once.
  int EvaluateResponseSurface(const CRSData* data, const std::vector<double>& x,
                              double& y) const override;
  /// Deliberate (kriging-derivative-empty): **0 with `gradient` untouched, whatever the arguments
  /// are.** Kriging has no derivative here. Check that `gradient` was filled.
  int EvaluateResponseSurfaceDerivativeWrtInputVariables(
      const CRSData* data, const std::vector<double>& x,
      std::vector<double>& gradient) const override;
};

}  // namespace Tarvane::Plexura::PXROM
