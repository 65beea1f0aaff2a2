#pragma once

#include <cstdint>
#include <vector>

#include "pxrom/export.h"
#include "pxrom/regression.h"
#include "pxrom/rs_data.h"
#include "pxrom/rs_evaluator.h"

namespace Tarvane::Plexura::PXROM {

/// Format version of the polynomial record. Evaluations refuse any other.
enum E_CPolynomialDataVersion : std::int32_t { PolynomialDataVersion1 = 1 };

/// The polynomials p0, p1, ... of one variable u, with pn of degree n and p0 = 1. The orthogonal
/// ones have the classical normalisation (NIST Digital Library of Mathematical Functions, table
/// 18.3.1): p1 is given with each. With CPolynomialData::Orthonormal each of them is divided by the
/// root of its mean square over the density that is named here, so that its sign stays and its mean
/// square is 1. Monomials and own recurrences never change.
enum E_PolynomialBasis : std::int32_t {
  PolyBasisMonomial = 0,    ///< u^n
  PolyBasisLegendre = 1,    ///< p1 = u; uniform on -1 to 1; mean square 1 / (2n + 1)
  PolyBasisHermite = 2,     ///< probabilists' He, p1 = u; standard normal; mean square n!
  PolyBasisLaguerre = 3,    ///< generalised, p1 = 1 + alpha - u; gamma density u^alpha exp(-u)
  PolyBasisJacobi = 4,      ///< p1 = (alpha + 1) + (alpha + beta + 2) (u - 1) / 2; beta density
                            ///< (1 - u)^alpha (1 + u)^beta on -1 to 1
  PolyBasisRecurrence = 5,  ///< those of CPolynomialData::Recurrences
};

/// A polynomial of any degree in several variables: a sum of coefficients times products of
/// univariate polynomials, as polynomial features, a polynomial regression or a polynomial chaos
/// expansion have it (Xiu and Karniadakis, The Wiener-Askey Polynomial Chaos for Stochastic
/// Differential Equations, SIAM Journal on Scientific Computing 24, 2002). CPolynomialEvaluator has
/// the formula.
///
/// A variable is made from one input, and several variables may share an input, so that a model can
/// have x and log(x). **A list that is described as optional may be empty**, which gives every
/// variable the value in parentheses; else it has one element per variable.
///
/// All fields are open and are checked by each evaluation. Ownership and threads are as for
/// CRSData.
struct PXROM_API CPolynomialData : public CRSData {
  CPolynomialData();
  CPolynomialData(const CPolynomialData&);
  CPolynomialData& operator=(const CPolynomialData&);

  CPolynomialData* Clone() const override;
  ~CPolynomialData() override;
  int ResetData() override;
  E_DataType DataType() const override;

  /// The largest degree of a variable in a term, and the largest sum over all variables of the
  /// largest degree of each: what one evaluation may take. Records beyond them are refused.
  static constexpr int kLargestDegree = 1000;
  static constexpr int kLargestDegreeSum = 65536;

  /// The underscore keeps the field apart from getters that other records have.
  E_CPolynomialDataVersion PolynomialDataVersion_ = PolynomialDataVersion1;
  /// The input of each variable, from 0. This list has the number of variables.
  std::vector<int> VariableInputs;
  /// Optional: the transformation of the scaled input, an E_QRSTransformationType (none), with its
  /// two parameters (0).
  std::vector<int> VariableTransformTypes;
  std::vector<double> VariableTransformValues;
  std::vector<double> VariableLambdas;
  /// Optional: the scaling after the transformation (1 and 0).
  std::vector<double> VariableSlopes;
  std::vector<double> VariableIntercepts;
  /// Optional: the polynomials of each variable, an E_PolynomialBasis (monomials), with their
  /// parameters (0). Only Laguerre reads alpha and only Jacobi both; those are above -1.
  std::vector<int> VariableBases;
  std::vector<double> VariableAlphas;
  std::vector<double> VariableBetas;
  /// The recurrences of the variables with PolyBasisRecurrence, one variable after the other: a, b
  /// and c for each of its degrees from 0 to one below its largest, p(n + 1) = (a u + b) pn -
  /// c p(n - 1). The first c is not used.
  std::vector<double> Recurrences;
  /// Whether the orthogonal polynomials are orthonormal, see E_PolynomialBasis.
  bool Orthonormal = false;
  /// The degree of each variable in each term, term by term.
  std::vector<int> Degrees;
  /// One per term, at least one.
  std::vector<double> Coefficients;
  /// As in CQRSData.
  E_QRSTransformationType OutputTransformType = TransformNone;
  double OutputTransformValue = 0.0;
  double OutputLambda = 0.0;
  /// Whether the record has Covariance.
  bool SavePredictorError = false;
  /// The covariance matrix of the coefficients, in the space of the sum.
  std::vector<std::vector<double>> Covariance;
};

/// Evaluates a CPolynomialData:
///
///   y = (B(s) - output intercept) / output slope,
///   s = sum over the terms of coefficient * product over the variables v of p(degree of v)(u),
///   u = slope of v * T(input slope * x + input intercept) + intercept of v
///
/// with the transformation T of the variable and the back-transformation B of the output
/// (E_QRSTransformationType). Products and sums run in the order of the lists, and a variable of
/// degree 0 takes no part. The polynomials follow their three-term recurrences (NIST Digital
/// Library of Mathematical Functions, 18.9), with p of the degree n + 1 as (a u + b) pn - c p(n -
/// 1).
///
/// All operations refuse, with 1 and their results untouched, what every value form refuses,
/// another version, lists whose lengths do not fit, an unknown transformation or basis, a parameter
/// alpha or beta of -1 or below that is read, an input or degree out of range, a sum of degrees out
/// of range, and a point that T or B refuses. A regression differs in the last two: it keeps an
/// input that T refuses, and interpolates over holes.
class PXROM_API CPolynomialEvaluator : public CRSEvaluator {
 public:
  CPolynomialEvaluator() = default;
  CPolynomialEvaluator(const CPolynomialEvaluator&) = default;
  CPolynomialEvaluator& operator=(const CPolynomialEvaluator&) = default;

  CPolynomialEvaluator* Clone() const override;
  ~CPolynomialEvaluator() override;

  int EvaluateResponseSurface(const CRSData* data, const std::vector<double>& x,
                              double& y) const override;
  /// The error is the standard error of the fitted function, not of a new observation:
  ///
  ///   |B'(s)| sqrt(b' C b) / |output slope|
  ///
  /// with the products b of the terms and their covariance C. With an output transformation it is
  /// the first-order (delta method) error. A quadratic form that rounds below 0 counts as 0. -2
  /// without SavePredictorError, or if Covariance is not a square matrix of one row per term.
  int EvaluateResponseSurface(const CRSData* data, const std::vector<double>& x, double& y,
                              double& predictorError) const override;
  /// The derivative of the value, through all transformations.
  int EvaluateResponseSurfaceDerivativeWrtInputVariables(
      const CRSData* data, const std::vector<double>& x,
      std::vector<double>& gradient) const override;
  /// The derivative of the error. 1 also where there is no error, or where it is 0.
  int EvaluatePredictorErrorDerivativeWrtInputVariables(const CRSData* data,
                                                        const std::vector<double>& x,
                                                        std::vector<double>& gradient) const;
};

}  // namespace Tarvane::Plexura::PXROM
