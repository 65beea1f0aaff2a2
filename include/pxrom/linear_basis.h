#pragma once

#include <cstdint>
#include <vector>

#include "pxrom/export.h"
#include "pxrom/rs_data.h"
#include "pxrom/rs_evaluator.h"

namespace Tarvane::Plexura::PXROM {

/// Format version of the linear basis record; nothing depends on it.
enum E_CLBFDataVersion : std::int32_t { LBFDataVersion170 = 170 };

/// The radial function of a sample at distance r with its kernel scale h, in d inputs (Buhmann,
/// Radial Basis Functions, 2003). Any other value is refused. The types scale their arguments
/// differently. Only the last one rises, from 0 at the sample; the others fall from 1.
enum E_LinearBasisFunction : std::int32_t {
  LBFGaussian = 0,  ///< exp(-r^2 / h^2)
  LBFCompact = 1,   ///< (1 - t)^4 (4 t + 1) for t = r / (2 h) up to 1, else 0 (Wendland 1995)
  LBFCubic = 2,     ///< 1 - 3 t^2 + 2 t^3 for t = r / (2 h) up to 1, else 0
  LBFSinc = 3,      ///< (sin(z) / z - c) / (1 - c) for z = 2 r / h up to 3 pi / 2, else 0; c shifts
                    ///< the value at the cut-off to 0
  LBFRational = 4,  ///< 1 / (r^2 / h^2 + 1), an inverse quadratic
  LBFTanh = 5,      ///< tanh(r / d / h)
};

/// A linear basis function surface: a polynomial trend plus one radial function per sample, each
/// with its own kernel scale.
///
/// **The samples are not scaled**: only the point is.
///
/// Accessors return 0 and store what they get.
struct PXROM_API CLBFData : public CRSData {
  CLBFData();
  CLBFData(const CLBFData&);
  CLBFData& operator=(const CLBFData&);

  CLBFData* Clone() const override;
  ~CLBFData() override;
  int ResetData() override;
  E_DataType DataType() const override;

  E_CLBFDataVersion LBFDataVersion() const;
  int SetLBFDataVersion(const E_CLBFDataVersion& version);
  int GetBasisFunctionType(E_LinearBasisFunction& type) const;
  int SetBasisFunctionType(const E_LinearBasisFunction& type);
  int GetPolynomialType(E_PolynomialType& type) const;
  int SetPolynomialType(const E_PolynomialType& type);
  int GetKernelValues(std::vector<double>& widths) const;
  int SetKernelValues(const std::vector<double>& widths);
  int GetPolynomialCoefficients(std::vector<double>& coefficients) const;
  int SetPolynomialCoefficients(const std::vector<double>& coefficients);
  int GetKernelCoefficients(std::vector<double>& coefficients) const;
  int SetKernelCoefficients(const std::vector<double>& coefficients);

  /// The underscore keeps the field apart from the getter.
  E_CLBFDataVersion LBFDataVersion_ = LBFDataVersion170;
  E_LinearBasisFunction BasisFunctionType = LBFGaussian;
  E_PolynomialType PolynomialType = PolyFullQuadratic;
  /// The kernel scales, one per sample. A scale of 0 is not checked and gives a NaN or an infinity.
  std::vector<double> KernelValues;
  /// In the order of the basis.
  std::vector<double> PolynomialCoefficients;
  /// One weight per sample.
  std::vector<double> KernelCoefficients;
};

/// Evaluates a CLBFData; it offers neither a predictor error nor a derivative.
class PXROM_API CLBFEvaluator : public CRSEvaluator {
 public:
  CLBFEvaluator() = default;
  CLBFEvaluator(const CLBFEvaluator&) = default;
  CLBFEvaluator& operator=(const CLBFEvaluator&) = default;

  CLBFEvaluator* Clone() const override;
  ~CLBFEvaluator() override;

  // The form with a predictor error is that of the base: both 0.0, status 1.
  using CRSEvaluator::EvaluateResponseSurface;

  /// Radial sum plus trend at the scaled point, scaled back. With a single sample the value is its
  /// stored output, whatever else the record holds. A scaling whose length does not fit is left
  /// out. Lists of coefficients may be short; missing coefficients count as 0.
  ///
  /// Besides what every value form refuses, 1 with `y` untouched for an unknown radial function or
  /// trend (PolyNone too), lists of coefficients that are longer than the samples or the trend,
  /// fewer kernel scales, rows or outputs than NumberOfSamples, and rows with fewer values than
  /// inputs. Further values of a row are ignored.
  int EvaluateResponseSurface(const CRSData* data, const std::vector<double>& x,
                              double& y) const override;
  /// Not offered: 1 with `gradient` untouched.
  int EvaluateResponseSurfaceDerivativeWrtInputVariables(
      const CRSData* data, const std::vector<double>& x,
      std::vector<double>& gradient) const override;

 protected:
  /// The radial functions of all samples at the scaled point `x`, over the first
  /// NumberOfInputVariables values of both. 1 with zeros in `out` for an unknown function; 1 with
  /// `out` empty when there are fewer samples, kernel scales or values than the counts say.
  int EvaluateBasisFunction(const CLBFData* data, const std::vector<double>& x,
                            std::vector<double>& out) const;
  /// The trend's functions at the scaled point `x`. 1 with `out` empty for a type other than
  /// PolyConstant to PolyFullQuadratic, and for more than 2^24 functions.
  int ComputeVandermondePolynomialVector(const CLBFData* data, const std::vector<double>& x,
                                         std::vector<double>& out) const;
};

}  // namespace Tarvane::Plexura::PXROM
