#pragma once

#include <cstdint>
#include <vector>

#include "pxrom/export.h"
#include "pxrom/rs_data.h"
#include "pxrom/rs_evaluator.h"
#include "pxrom/types.h"

namespace Tarvane::Plexura::PXROM {

/// Format version of the Gaussian process record. A text of another version is refused.
enum E_CGaussianProcessDataVersion : std::int32_t { GaussianProcessDataVersion1 = 1 };

/// A function of the scaled distance r >= 0 of two points, with the parameter a where it has one.
/// The first seven are covariance functions in any number of inputs. Rasmussen and Williams,
/// Gaussian Processes for Machine Learning (2006), chapter 4.
///
/// The others are the radial basis functions of interpolation. Those up to CovMultiquadric are only
/// conditionally positive definite: with a trend of sufficient degree they interpolate, and a sign
/// makes them so. Wendland, Scattered Data Approximation (2005), chapter 8.
enum E_CovarianceFunctionType : std::int32_t {
  CovMatern12 = 1,                ///< exp(-r), the exponential
  CovMatern32 = 2,                ///< (1 + t) exp(-t), t = sqrt(3) r
  CovMatern52 = 3,                ///< (1 + t + t^2 / 3) exp(-t), t = sqrt(5) r
  CovGaussian = 4,                ///< exp(-r^2 / 2), the squared exponential
  CovRationalQuadratic = 5,       ///< (1 + r^2 / (2 a))^-a, a > 0
  CovGeneralisedExponential = 6,  ///< exp(-r^a), a > 0; a covariance up to a = 2
  CovConstant = 7,                ///< 1
  CovThinPlateSpline = 8,         ///< r^2 log(r), 0 at r = 0
  CovLinear = 9,                  ///< -r
  CovCubic = 10,                  ///< r^3
  CovQuintic = 11,                ///< -r^5
  CovMultiquadric = 12,           ///< -sqrt(1 + r^2)
  CovInverseMultiquadric = 13,    ///< 1 / sqrt(1 + r^2)
  CovInverseQuadratic = 14,       ///< 1 / (1 + r^2)
};

/// A fitted Gaussian process, or a radial basis function interpolant, which has the same form:
///
///   y(u) = trend(u) + sum over samples j of Weights[j] k(u, u_j)
///   k(u, v) = sum over terms t of TermAmplitudes[t] times the product of the factors of t
///   factor f = its function of r, r^2 = sum over inputs i of ((u_i - v_i) / length[f][i])^2
///
/// in scaled space: u and u_j are the point and the samples, both scaled by InputScaleSlopes and
/// InputScaleIntercepts. The value is y scaled back by the output scaling. Rasmussen and Williams
/// (2006), sections 2.2 and 2.7. The library does not fit.
///
/// With d for NumberOfInputVariables, n for NumberOfSamples, m for the number of factors and p for
/// that of trend functions, a record that can be evaluated has
///   - n samples of d values and n weights;
///   - one term or more. The term of each factor, in ascending order; a term without a factor is
///     its amplitude alone;
///   - m functions and m parameters, those that a function uses above 0;
///   - m lengths, each for all inputs of a factor, or m d of them, factor by factor, one for each
///     input. All are above 0, and a difference is multiplied by 1 / length. An infinite length
///     drops the input from the distance: so a product of one factor per input is a product of
///     kernels of one input each;
///   - p coefficients: first those of PolynomialType, then one for each monomial.
/// A record without samples is its trend alone, and has no need of a term. IsAllRight says whether
/// all of this holds.
///
/// Statuses, ownership and threads are those of CRSData. The fields are public; there are no
/// accessors. No operation writes a record that is passed as const.
struct PXROM_API CGaussianProcessData : public CRSData {
  CGaussianProcessData();
  CGaussianProcessData(const CGaussianProcessData&);
  CGaussianProcessData& operator=(const CGaussianProcessData&);

  CGaussianProcessData* Clone() const override;
  ~CGaussianProcessData() override;
  int ResetData() override;
  /// Whether an evaluation of the value finds what it needs. The data of the error are not checked.
  bool IsAllRight() override;
  E_DataType DataType() const override;

  /// The underscore keeps the name as in the other records.
  E_CGaussianProcessDataVersion GaussianProcessDataVersion_ = GaussianProcessDataVersion1;

  /// The first functions of the trend (types.h), over the scaled inputs.
  E_PolynomialType PolynomialType = PolyNone;
  /// The further functions, d exponents for each, none of them negative: 2,0,1 is u0^2 u2.
  std::vector<int> Monomials;
  std::vector<double> PolynomialCoefficients;

  /// What multiplies the kernels of each term, a variance and not a standard deviation. A negative
  /// one is used unchanged.
  std::vector<double> TermAmplitudes;
  /// For each factor its term, from 0.
  std::vector<int> FactorTerms;
  /// For each factor an E_CovarianceFunctionType.
  std::vector<int> FactorFunctions;
  /// For each factor the parameter a of its function; read only where there is one.
  std::vector<double> FactorParameters;
  std::vector<double> FactorLengths;

  std::vector<double> Weights;

  /// Variance of a measurement about the function, in units of the scaled output. InverseFactor
  /// holds it already; only ErrorIncludesNoise makes it part of the error.
  double NoiseVariance = 0.0;

  /// Whether the data of the error follow: the standard deviation of the process at u, given the
  /// samples. With K the covariance matrix of the samples and of their noise, its Cholesky factor
  /// L, k the covariances of u with the samples, f the trend functions at u and F those at the
  /// samples,
  ///
  ///   v = inv(L) k,  variance = k(u, u) - v.v
  ///
  /// and, with the data of the trend, whose coefficients are then estimates (universal Kriging):
  ///
  ///   w = f - F' inv(K) k = f - TrendAtSamples v
  ///   variance = k(u, u) - v.v + |TrendInverseFactor w|^2
  ///
  /// A variance that is below 0 by rounding counts as 0. Santner, Williams and Notz, The Design and
  /// Analysis of Computer Experiments (2003), section 3.3.
  bool SavePredictorError = false;
  /// Whether the error is that of a new measurement, so that the variance grows by NoiseVariance,
  /// and not that of the function.
  bool ErrorIncludesNoise = false;
  /// inv(L), the lower triangle row by row: n (n + 1) / 2 values.
  std::vector<double> InverseFactor;
  /// Inverse of the Cholesky factor of F' inv(K) F, the lower triangle row by row: p (p + 1) / 2
  /// values, or none if the trend is known.
  std::vector<double> TrendInverseFactor;
  /// p by n: the transpose of inv(L) F. Empty if TrendInverseFactor is.
  std::vector<std::vector<double>> TrendAtSamples;
};

/// Evaluates a CGaussianProcessData. Statuses and the first checks are those of CRSEvaluator.
///
/// Besides these checks each form gives 1, with nothing written, for a record that does not fit
/// together (IsAllRight, except that a scale slope may be 0) or has another version. n is 0 for a
/// negative NumberOfSamples; surplus samples and weights are ignored.
class PXROM_API CGaussianProcessEvaluator : public CRSEvaluator {
 public:
  CGaussianProcessEvaluator() = default;
  CGaussianProcessEvaluator(const CGaussianProcessEvaluator&) = default;
  CGaussianProcessEvaluator& operator=(const CGaussianProcessEvaluator&) = default;

  CGaussianProcessEvaluator* Clone() const override;
  ~CGaussianProcessEvaluator() override;

  /// Value and standard deviation at `x`, **both in the unit of the value**. -2 if
  /// SavePredictorError is false or the data of the error do not have their sizes.
  int EvaluateResponseSurface(const CRSData* data, const std::vector<double>& x, double& y,
                              double& predictorError) const override;
  int EvaluateResponseSurface(const CRSData* data, const std::vector<double>& x,
                              double& y) const override;
  /// The gradient of the value, d elements. At a kink, which some functions have at a sample, the
  /// part of that sample is 0: the mean of all sides.
  int EvaluateResponseSurfaceDerivativeWrtInputVariables(
      const CRSData* data, const std::vector<double>& x,
      std::vector<double>& gradient) const override;
  /// The gradient of the standard deviation, d elements; all 0 where rounding alone is left of the
  /// variance, as at a sample without noise, where it has a kink. -2 with `gradient` untouched
  /// where the form with an error gives -2.
  int EvaluatePredictorErrorDerivativeWrtInputVariables(const CRSData* data,
                                                        const std::vector<double>& x,
                                                        std::vector<double>& gradient) const;
};

}  // namespace Tarvane::Plexura::PXROM
