#pragma once

#include <cstdint>
#include <vector>

#include "pxrom/export.h"
#include "pxrom/rs_data.h"
#include "pxrom/rs_evaluator.h"

namespace Tarvane::Plexura::PXROM {

/// Format version of the support vector record. A lower number in a database marks a record without
/// kernel scales, which are then computed from the samples while it is read.
enum E_CSVRDataVersion : std::int32_t { SVRDataVersion171 = 171 };

/// The kernel k(x, y), with s = sum of xi yi, q inputs, e = exp(1) and kernel scales w. Any other
/// value is refused.
enum E_SVRKernType : std::int32_t {
  SVRKernLinear = 0,        ///< 1 + s
  SVRKernQuadratic = 1,     ///< (1 + s)^2
  SVRKernGaussian = 2,      ///< exp(-sum of wi (xi - yi)^2), an anisotropic Gaussian
  SVRKernSigmoid = 3,       ///< tanh((e / q) s - e)
  SVRKernExponential = 5,   ///< exp(-sum of wi |xi - yi|), a Laplacian
  SVRKernEpanechnikov = 9,  ///< 0.75 (1 - u^2) for u < 1, else 0; u is the *squared* distance
};

/// Kept for the host; no value has a meaning here.
enum E_SVRKernCompType : std::int32_t { SVRKernCompTypeNone = 0 };

/// Which multipliers a prediction uses: AlphasStar - Alphas for 3 and 4, Betas for any other value.
enum E_SVRLossFuncType : std::int32_t { SVRLossFuncPaired3 = 3, SVRLossFuncPaired4 = 4 };

/// A fitted support vector regression: a bias plus a weighted sum of the kernel values of the
/// scaled point and every scaled sample (the support vector expansion; Smola and Schoelkopf, A
/// Tutorial on Support Vector Regression, Statistics and Computing 14, 2004). The library does not
/// train, so epsilon, nu and the constant (the penalty, often called C) are kept and not used.
///
/// Accessors return 0 and store what they get, except for the three Set operations with a range.
struct PXROM_API CSVRData : public CRSData {
  CSVRData();
  CSVRData(const CSVRData&);
  CSVRData& operator=(const CSVRData&);

  CSVRData* Clone() const override;
  ~CSVRData() override;
  int ResetData() override;
  /// Checks samples, scaling, AreMultipliersCorrect and IsKernelArrayCorrect, in this order. **The
  /// last one makes this false for a record that has as many inputs as samples.**
  bool IsAllRight() override;
  E_DataType DataType() const override;

  E_CSVRDataVersion SVRDataVersion() const;
  int SetSVRDataVersion(E_CSVRDataVersion version);
  int GetSVRKernType(E_SVRKernType& type) const;
  int SetSVRKernType(const E_SVRKernType& type);
  int GetSVRKernCompType(E_SVRKernCompType& type) const;
  int SetSVRKernCompType(const E_SVRKernCompType& type);
  int GetSVRLossFuncType(E_SVRLossFuncType& type) const;
  int SetSVRLossFuncType(const E_SVRLossFuncType& type);
  int GetEpsilonValue(double& epsilon) const;
  /// 1 with the field unchanged unless 0 < epsilon < 1.
  int SetEpsVal(const double& epsilon);
  int GetNuValue(double& nu) const;
  /// 1 with the field unchanged unless 0 < nu < 1.
  int SetNuVal(const double& nu);
  int GetConstantValue(double& constant) const;
  /// 1 with the field unchanged when the constant is 0 or less.
  int SetConstVal(const double& constant);
  int GetAlphas(std::vector<double>& alphas) const;
  int SetAlpha(const std::vector<double>& alphas);
  int GetAlphasStar(std::vector<double>& alphasStar) const;
  int SetAlphaStar(const std::vector<double>& alphasStar);
  int GetBetas(std::vector<double>& betas) const;
  int SetBeta(const std::vector<double>& betas);
  int GetConstantCoefficient(double& bias) const;
  int SetConstCoeff(double bias);
  int GetKernelArray(std::vector<double>& widths) const;
  int SetKernelArray(const std::vector<double>& widths);

  /// The kernel value k(x, y) of kernel `type`, in scaled space, with the record's kernel scales. 1
  /// with `value` untouched unless x, y and KernelArray have the same length above 0 and the type
  /// is known. Kernels without scales need KernelArray only for this check.
  int EvaluateSVRKernel(const E_SVRKernType& type, const std::vector<double>& x,
                        const std::vector<double>& y, double& value) const;
  /// out[i][j] = k(a[i], b[j]) of the record's kernel. 1 when the record is stopped, `a` is empty
  /// or ragged, or a kernel value is refused, with the earlier values in `out`. If the record is
  /// stopped during the call, the remaining entries stay 0, and the status is 0.
  int EvaluateKernelMatrix(const std::vector<std::vector<double>>& a,
                           const std::vector<std::vector<double>>& b,
                           std::vector<std::vector<double>>& out) const;
  /// Kernel scales from (scaled) samples: 0.5 divided by the mean variance of the columns, once per
  /// column. 1 with `out` empty when that mean is 0. Without rows, or with ragged ones, the mean is
  /// 0/0, which is not 0: 0 with `out` empty. One row gives NaN scales.
  int EvaluateKernelArray(const std::vector<std::vector<double>>& rows,
                          std::vector<double>& out) const;

  /// Whether the three lists of multipliers have the same length.
  bool AreMultipliersCorrect();
  /// Deliberate (svr-kernel-array-check): **true when the length of KernelArray differs from the
  /// number of samples**, despite the name. There is one kernel scale per input, not per sample.
  bool IsKernelArrayCorrect();

  /// The underscore keeps the field apart from the getter.
  E_CSVRDataVersion SVRDataVersion_ = SVRDataVersion171;
  E_SVRKernType SVRKernType = SVRKernGaussian;
  E_SVRKernCompType SVRKernCompType = SVRKernCompTypeNone;
  E_SVRLossFuncType SVRLossFuncType = SVRLossFuncPaired3;
  double EpsilonValue = 0.2;
  double NuValue = 0.5;
  double ConstantValue = 1000000.0;
  std::vector<double> Alphas;
  std::vector<double> AlphasStar;
  std::vector<double> Betas;
  /// The bias.
  double ConstantCoefficient = 0.0;
  /// The kernel scales, one per input variable, in scaled space.
  std::vector<double> KernelArray;
};

/// Evaluates a CSVRData; it offers neither a predictor error nor a derivative.
class PXROM_API CSVREvaluator : public CRSEvaluator {
 public:
  CSVREvaluator() = default;
  CSVREvaluator(const CSVREvaluator&) = default;
  CSVREvaluator& operator=(const CSVREvaluator&) = default;

  CSVREvaluator* Clone() const override;
  ~CSVREvaluator() override;

  // The form with a predictor error is that of the base: both 0.0, status 1.
  using CRSEvaluator::EvaluateResponseSurface;

  /// y = bias + sum of multiplier[i] k(x, sample[i]), scaled back. Each call scales the point and
  /// all samples again; a scaling whose length does not fit is left out for all of them. The
  /// samples are the rows of InputSamples: NumberOfSamples is ignored. Lists of multipliers may be
  /// shorter than the samples; missing multipliers count as 0.
  ///
  /// Besides what every value form refuses, 1 with `y` untouched when a kernel value is refused
  /// (EvaluateSVRKernel), and when the list that is summed is longer than the samples (or Alphas
  /// is shorter than AlphasStar).
  ///
  /// If the record is stopped during the call, the status is 0 and the value comes from the kernel
  /// values computed so far. This is for hosts that synchronise the flag themselves; the library
  /// takes no locks.
  int EvaluateResponseSurface(const CRSData* data, const std::vector<double>& x,
                              double& y) const override;
  /// Not offered: 1 with `gradient` untouched.
  int EvaluateResponseSurfaceDerivativeWrtInputVariables(
      const CRSData* data, const std::vector<double>& x,
      std::vector<double>& gradient) const override;
};

}  // namespace Tarvane::Plexura::PXROM
