#pragma once

#include <cstddef>
#include <vector>

#include "pxrom/regression.h"

namespace Tarvane::Plexura::PXROM {

/// A transformation of one variable and its way back; this class itself is the identity.
/// E_QRSTransformationType says which parameter a class reads, `value` or `lambda`.
///
/// Statuses: 0 done, 1 the argument is outside the formula's guard. A refused argument does not
/// change, except for the way back of CTransformerYeo. A formula without a guard returns whatever
/// the standard function gives, also a NaN.
///
/// The objects have no data: one of each class serves all calls of all threads.
class CTransformer {
 public:
  CTransformer() = default;
  CTransformer(const CTransformer&) = default;
  CTransformer& operator=(const CTransformer&) = default;

  virtual ~CTransformer();
  virtual E_QRSTransformationType TransformationType() const;
  /// A new object of the same class, owned by the caller.
  virtual CTransformer* Clone() const;
  // Without parameters both are the identity in ALL classes.
  virtual int Transform(const double& in, double& out) const;
  virtual int Backtransform(const double& in, double& out) const;
  /// Each x[i] with values[i] and lambdas[i], which must be there unless this is the identity.
  /// Always 0: an element that fails does not change, and the loop continues.
  virtual int TransformAndOverwrite(std::vector<double>& x, const std::vector<double>& values,
                                    const std::vector<double>& lambdas) const;
  virtual int TransformAndOverwrite(double& x, double value, double lambda) const;
  /// The way back, as TransformAndOverwrite.
  virtual int BacktransformAndOverwrite(std::vector<double>& x, const std::vector<double>& values,
                                        const std::vector<double>& lambdas) const;
  virtual int BacktransformAndOverwrite(double& x, double value, double lambda) const;
};

/// The operations that the transformers share, over the two formulas of `Child`:
/// Forward(x, value, lambda, out) and Backward(x, value, lambda, out), which write `out` or
/// return 1.
template <class Child, E_QRSTransformationType kType>
class FormulaTransformer : public CTransformer {
 public:
  using CTransformer::Backtransform;
  using CTransformer::Transform;

  E_QRSTransformationType TransformationType() const override;
  CTransformer* Clone() const override;
  int TransformAndOverwrite(std::vector<double>& x, const std::vector<double>& values,
                            const std::vector<double>& lambdas) const override;
  int TransformAndOverwrite(double& x, double value, double lambda) const override;
  int BacktransformAndOverwrite(std::vector<double>& x, const std::vector<double>& values,
                                const std::vector<double>& lambdas) const override;
  int BacktransformAndOverwrite(double& x, double value, double lambda) const override;
  /// The formulas of TransformAndOverwrite and BacktransformAndOverwrite into `out`.
  virtual int Transform(double x, double& out, double value, double lambda) const;
  virtual int Backtransform(double x, double& out, double value, double lambda) const;

  /// TransformAndOverwrite of `count` values in a block, with as many parameters.
  static void TransformBlock(std::size_t count, double* x, const double* values,
                             const double* lambdas);
};

/// exp(x); back log(x), which refuses x <= 1e-99.
class CTransformerExpo : public FormulaTransformer<CTransformerExpo, TransformExpo> {
 public:
  static int Forward(double x, double value, double lambda, double& out);
  static int Backward(double x, double value, double lambda, double& out);
};

/// log(x) to the base `value`; back log(value) * exp(x), **which is not the inverse**.
class CTransformerLogA : public FormulaTransformer<CTransformerLogA, TransformLogA> {
 public:
  static int Forward(double x, double value, double lambda, double& out);
  static int Backward(double x, double value, double lambda, double& out);
};

/// log(x); back exp(x), which refuses results above 1e99.
class CTransformerLogE : public FormulaTransformer<CTransformerLogE, TransformLogE> {
 public:
  static int Forward(double x, double value, double lambda, double& out);
  static int Backward(double x, double value, double lambda, double& out);
};

/// log10(x); back 10^x, which refuses x above the **natural** logarithm of 1e99, about 228,
/// although the result would be a finite number.
class CTransformerLog10 : public FormulaTransformer<CTransformerLog10, TransformLog10> {
 public:
  static int Forward(double x, double value, double lambda, double& out);
  static int Backward(double x, double value, double lambda, double& out);
};

/// sqrt(x); back x^2.
class CTransformerSquare : public FormulaTransformer<CTransformerSquare, TransformSquare> {
 public:
  static int Forward(double x, double value, double lambda, double& out);
  static int Backward(double x, double value, double lambda, double& out);
};

/// x^value; back x^(1/value). For a `value` between 0 and 1 the way back refuses everything
/// **below** 1e99^value, which is where ordinary numbers are, instead of everything above it.
class CTransformerPower : public FormulaTransformer<CTransformerPower, TransformPower> {
 public:
  static int Forward(double x, double value, double lambda, double& out);
  static int Backward(double x, double value, double lambda, double& out);
};

/// The Box-Cox transformation and its inverse; the logarithm where lambda counts as zero.
class CTransformerBox : public FormulaTransformer<CTransformerBox, TransformBox> {
 public:
  static int Forward(double x, double value, double lambda, double& out);
  static int Backward(double x, double value, double lambda, double& out);
};

/// The exponential of the inverse of Box-Cox, **in both directions**: going forward and back again
/// applies it twice.
class CTransformerLogBox : public FormulaTransformer<CTransformerLogBox, TransformLogBox> {
 public:
  static int Forward(double x, double value, double lambda, double& out);
  static int Backward(double x, double value, double lambda, double& out);
};

/// The Yeo-Johnson transformation and its inverse. A refused way back leaves -9e99 in its result,
/// the one class that overwrites on a failure.
class CTransformerYeo : public FormulaTransformer<CTransformerYeo, TransformYeo> {
 public:
  static int Forward(double x, double value, double lambda, double& out);
  static int Backward(double x, double value, double lambda, double& out);
};

/// The transformer of `type`, which exists as long as the program, or null for an unknown type.
const CTransformer* FindTransformer(E_QRSTransformationType type) noexcept;

/// TransformAndOverwrite of a transformer for `count` values in a block: one call for all of them.
/// It is not a virtual operation of a transformer, since hosts depend on the table of its
/// operations.
using BlockTransform = void (*)(std::size_t count, double* x, const double* values,
                                const double* lambdas);

/// The block transformation of `type`, or null for an unknown type.
BlockTransform FindBlockTransform(E_QRSTransformationType type) noexcept;

/// Below this magnitude a lambda counts as zero.
constexpr double LambdaZeroTolerance = 1e-06;
/// The largest value that a way back may yield.
constexpr double TransformValueLimit = 1e99;
/// The result of a failed way back of CTransformerYeo, and the mark of a hole for the evaluator.
constexpr double YeoFailureValue = -9e99;

}  // namespace Tarvane::Plexura::PXROM
