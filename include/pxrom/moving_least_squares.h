#pragma once

#include <cstdint>
#include <vector>

#include "pxrom/export.h"
#include "pxrom/rs_data.h"
#include "pxrom/rs_evaluator.h"

namespace Tarvane::Plexura::PXROM {

/// Selects the weight formulas; E_WeightFunction tells the two differences. Any other version is
/// refused.
enum E_CMLSDataVersion : std::int32_t { MLSDataVersion162 = 162, MLSDataVersion170 = 170 };

/// The weight w of a sample at distance r, with the reference distance rho, z = r / rho and d
/// inputs. Any other value weighs every sample 0, which makes the prediction fail or NaN.
enum E_WeightFunction : std::int32_t {
  WeightConstant = 0,  ///< 1
  WeightGaussian = 1,  ///< exp(-z^2); in version 162 exp(-20 z^2)
  WeightCompact = 2,  ///< (1 - t)^4 (4 t + 1), t = min(1, r / (2 sqrt(d) rho)), a Wendland function
  WeightRational = 3,  ///< 1 / (z^2 + 1); in version 162 1 / ((r/2)^2 + 1), without rho
  WeightInverse = 4,   ///< 1 / |z + 0.01|
};

/// How the fit chose NumberOfUsedPoints; only the last one has a percentage.
enum E_UsedPointsOption : std::int32_t {
  UsedPointsOption0 = 0,
  UsedPointsOption1 = 1,
  UsedPointsOption2 = 2,
  UsedPointsExtraPercent = 3,
};

/// A moving least squares surface. It stores no coefficients: each prediction solves a weighted
/// least-squares problem around its point, from the first NumberOfUsedPoints samples.
///
/// This family alone works in physical units throughout: the scalings of the base record have no
/// effect, whatever they hold.
///
/// Accessors return 0 and store what they get.
struct PXROM_API CMLSData : public CRSData {
  CMLSData();
  CMLSData(const CMLSData&);
  CMLSData& operator=(const CMLSData&);

  CMLSData* Clone() const override;
  ~CMLSData() override;
  int ResetData() override;
  E_DataType DataType() const override;

  E_CMLSDataVersion MLSDataVersion() const;
  int SetMLSDataVersion(E_CMLSDataVersion version);
  int GetWeightFunction(E_WeightFunction& function) const;
  int SetWeightFunction(E_WeightFunction function);
  int GetPolynomialType(E_PolynomialType& type) const;
  int SetPolynomialType(E_PolynomialType type);
  int GetUsedPointOption(E_UsedPointsOption& option) const;
  /// `extraPercent` is taken over only with UsedPointsExtraPercent and unless it is -1.0.
  int SetUsedPointOption(E_UsedPointsOption option, double extraPercent);
  int GetExtraPointPercent(double& percent) const;
  int GetNumberOfBasisFunctions(int& count) const;
  int SetNumberOfBasisFunctions(int count);
  int GetNumberOfUsedPoints(int& count) const;
  int SetNumberOfUsedPoints(int count);

  /// The underscore keeps the field apart from the getter.
  E_CMLSDataVersion MLSDataVersion_ = MLSDataVersion170;
  E_WeightFunction WeightFunction = WeightCompact;
  E_PolynomialType PolynomialType = PolyFullQuadratic;
  /// Carried for the host, as is the percentage: NumberOfUsedPoints is already settled.
  E_UsedPointsOption UsedPointOption = UsedPointsOption0;
  /// p, which has to be the number of functions of PolynomialType.
  int NumberOfBasisFunctions = 0;
  /// u: the samples 0 to u - 1 in stored order form the local problem. There is no choice of
  /// neighbours.
  int NumberOfUsedPoints = 0;
  double ExtraPointPercent = 0.0;
};

/// Evaluates a CMLSData; it offers neither a predictor error nor a derivative. All operations below
/// return 0 or 1.
class PXROM_API CMLSEvaluator : public CRSEvaluator {
 public:
  CMLSEvaluator() = default;
  CMLSEvaluator(const CMLSEvaluator&) = default;
  CMLSEvaluator& operator=(const CMLSEvaluator&) = default;

  CMLSEvaluator* Clone() const override;
  ~CMLSEvaluator() override;

  // The form with a predictor error is the base's answer: both 0.0, status 1.
  using CRSEvaluator::EvaluateResponseSurface;

  /// Weighted least squares with a small ridge, c = (B'WB + h I)^-1 B'Wy and y = f(x)'c, in
  /// O(n d + u p^2 + p^3).
  ///
  /// Besides what every value form refuses, 1 with `y` untouched for a linear basis with constant
  /// weights, an unknown version or basis, NumberOfBasisFunctions that is not that of the basis,
  /// fewer samples or used points than basis functions, more of them than there are, samples of
  /// another length than `x`, and a local problem that is not positive definite. NaN weights (all
  /// samples at the reference distance 0, or none with weight) give 1, or with a single basis
  /// function 0 and a NaN.
  int EvaluateResponseSurface(const CRSData* data, const std::vector<double>& x,
                              double& y) const override;
  /// Not offered: 1 with `gradient` untouched.
  int EvaluateResponseSurfaceDerivativeWrtInputVariables(
      const CRSData* data, const std::vector<double>& x,
      std::vector<double>& gradient) const override;

  /// Solves A x = b by Cholesky's factorisation, A symmetric to the last bit and positive definite.
  /// `A` is replaced by its lower factor, `out` becomes x. 1 with `out` untouched when A is ragged
  /// or not square, b is shorter than A, or the factorisation is refused.
  int SolveLinearSystemCholeskyMth(std::vector<std::vector<double>>& A,
                                   const std::vector<double>& b, std::vector<double>& out) const;

 protected:
  /// The weights of the used samples at `x`, which sum to 1. rho is the distance of the (p + 1)-th
  /// nearest of all samples, or of the farthest; distances that are NaN count as the farthest. A
  /// rho of 0 or a sum of 0 is not tested. 1 when the record is stopped, n is below p, the version
  /// is unknown, or counts and shapes do not fit the samples and `x`.
  int ComputeWeights(const CMLSData* data, const std::vector<double>& x,
                     std::vector<double>& weights) const;
  /// One row of basis functions per used sample. 1 when u is below p, the record is stopped, or the
  /// samples or the basis do not fit.
  int ComputeB(const CMLSData* data, std::vector<std::vector<double>>& B) const;
  /// The basis functions at `x`. 1 with `out` empty unless the basis is one of PolyConstant to
  /// PolyFullQuadratic with NumberOfBasisFunctions functions and `x` has a value per input.
  int EvaluateBasisFunction(const CMLSData* data, const std::vector<double>& x,
                            std::vector<double>& out) const;
  /// The weight of a sample at distance `r`, by the record's version. 1 for any other version or a
  /// negative `r`, `w` untouched.
  int EvaluateWeightFuction(const CMLSData* data, double r, double rho, double& w) const;
  int EvaluateWeightFuction162(const CMLSData* data, double r, double rho, double& w) const;
  int EvaluateWeightFuction170(const CMLSData* data, double r, double rho, double& w) const;
};

}  // namespace Tarvane::Plexura::PXROM
