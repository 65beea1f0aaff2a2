#pragma once

#include <cstdint>

#include "pxrom/export.h"

namespace Tarvane::Plexura::PXROM {
class TermSum;
}

/// The terms of a regression surface: one monomial of the inputs with one coefficient each. They
/// are in the global namespace; CQRSData (regression.h) owns an array of them.

/// What a term is. The numbers are those of "FuncType=" in a database.
enum E_FuncType : std::int32_t {
  FuncTypeConst = 1,      ///< ConstTerm: 1
  FuncTypeLinear = 2,     ///< LinearTerm: x[i0]
  FuncTypePureQuad = 3,   ///< PureQuadTerm: x[i0] * x[i1], both the same variable
  FuncTypeCrossQuad = 4,  ///< CrossQuadTerm: x[i0] * x[i1]
  FuncTypeCrossPoly = 5,  ///< CrossPolyTerm: the product of all x[i]; not in a database
};

/// The base of all terms. A host may derive its own term and put it into CQRSData::RegTerms. A copy
/// of such a record holds terms of the five classes below, chosen by GetFuncType.
///
/// To build a term: default constructor, SetActive or SetInactive, SetUsedInpVarIdx, SetParamVal.
/// After that it is only read. A term that is not active contributes exactly zero to everything.
///
/// Statuses: 0 done; 1 refused, and nothing is written. Evaluating operations refuse a term without
/// its coefficient or its indices, and an active term with an index that is not below
/// `numInputVars`; EvaluateDesignRow needs no coefficient.
///
/// Arguments: `x` and `gradient` hold `numInputVars` values, in the space that the caller prepared:
/// a term neither scales nor transforms. `row` and `values` hold GetNumParam values, `indices` hold
/// GetNumUsedInpVar. **These lengths are the caller's responsibility.**
///
/// Ownership: terms are heap objects that own their arrays; they have no copy constructor.
/// Threads: const operations may run at the same time as long as nothing writes the term.
class PXROM_API RegTerm {
 public:
  RegTerm(const RegTerm&) = delete;
  RegTerm& operator=(const RegTerm&) = delete;

  virtual ~RegTerm();
  /// Copies the coefficients. 1 unless `numParam` is GetNumParam.
  virtual int SetParamVal(const int& numParam, const double* values) = 0;
  /// Copies the indices. 1 unless `count` is GetNumUsedInpVar; CrossPolyTerm differs.
  virtual int SetUsedInpVarIdx(const int& count, const int* indices) = 0;
  virtual int SetActive() = 0;
  virtual int SetInactive() = 0;
  virtual int GetNumParam(int& count) const = 0;
  /// 1 without a coefficient.
  virtual int GetParamVal(double* values) const = 0;
  virtual int GetNumUsedInpVar(int& count) const = 0;
  /// 1 without indices, which a ConstTerm never has.
  virtual int GetUsedInpVarIdx(int* indices) const = 0;
  /// The tag is 1 for every term; nothing in the library reads it.
  virtual int GetTermTag(int& tag) const = 0;
  virtual int GetFuncType(E_FuncType& type) const = 0;
  /// The flag itself, not a status: 1 is active.
  virtual int QryIsActive() const = 0;
  /// The coefficient times the basis function.
  virtual int EvaluateValue(const int& numInputVars, const double* x, double* value) const = 0;
  /// The gradient of EvaluateValue in all `numInputVars` variables.
  virtual int EvaluateDerivativeWrtInputVariables(const int& numInputVars, const double* x,
                                                  double* gradient) const = 0;
  /// The basis function without the coefficient: one entry of a row of the design matrix.
  virtual int EvaluateDesignRow(const int& numInputVars, const double* x, double* row) const = 0;
  /// Sets each coefficient to -99 and makes the term active and without a coefficient. Always 0. In
  /// a **copy** of the term the -99 is a coefficient, since GetParamVal returns it.
  virtual int ResetParamVal() = 0;

 protected:
  RegTerm(E_FuncType type, int usedInputVariables);

  int termTag = 1;
  E_FuncType funcType;
  int numUsedInpVar;

 private:
  friend class Tarvane::Plexura::PXROM::TermSum;

  /// What TermSum may add without a call of the term; it fills what would be padding.
  enum ReadyKind : std::uint8_t { NotReady, ReadyConst, ReadyLinear, ReadyQuad };
  ReadyKind readyKind = NotReady;
  bool isPlain = false;

 protected:
  int* inputVariablesIndex = nullptr;
  int numParam = 1;
  double* coefficientValue = nullptr;
  int isActive = 1;  ///< only 1 is active
  int isCoefficientSet = 0;
  int isInputVariablesIndexSet = 0;

  /// Call it after each change of the fields.
  void UpdateReadyKind();
};

/// What the five terms share: everything except the basis function.
class PXROM_API StoredRegTerm : public RegTerm {
 public:
  int SetParamVal(const int& numParam, const double* values) override;
  int SetUsedInpVarIdx(const int& count, const int* indices) override;
  int SetActive() override;
  int SetInactive() override;
  int GetNumParam(int& count) const override;
  int GetParamVal(double* values) const override;
  int GetNumUsedInpVar(int& count) const override;
  int GetUsedInpVarIdx(int* indices) const override;
  int GetTermTag(int& tag) const override;
  int GetFuncType(E_FuncType& type) const override;
  int QryIsActive() const override;
  int ResetParamVal() override;

 protected:
  using RegTerm::RegTerm;

  /// Stores `count` new indices: the first `copied` are those of `indices`, the rest are 0.
  int StoreIndices(int count, int copied, const int* indices);
  bool IsIndexSet() const {
    return inputVariablesIndex != nullptr && isInputVariablesIndexSet != 0;
  }
  bool IsCoefficientSet() const { return coefficientValue != nullptr && isCoefficientSet != 0; }
  bool IsIndexInside(int entry, int numInputVars) const;
};

/// The constant 1. It needs no indices and never has any.
class PXROM_API ConstTerm : public StoredRegTerm {
 public:
  ConstTerm();
  /// Stores nothing: 0 for a `count` of 0, else 1.
  int SetUsedInpVarIdx(const int& count, const int* indices) override;
  int GetUsedInpVarIdx(int* indices) const override;
  int EvaluateValue(const int& numInputVars, const double* x, double* value) const override;
  int EvaluateDerivativeWrtInputVariables(const int& numInputVars, const double* x,
                                          double* gradient) const override;
  int EvaluateDesignRow(const int& numInputVars, const double* x, double* row) const override;
};

/// One variable.
class PXROM_API LinearTerm : public StoredRegTerm {
 public:
  LinearTerm();
  int EvaluateValue(const int& numInputVars, const double* x, double* value) const override;
  int EvaluateDerivativeWrtInputVariables(const int& numInputVars, const double* x,
                                          double* gradient) const override;
  int EvaluateDesignRow(const int& numInputVars, const double* x, double* row) const override;
};

/// The value and design row of a product of two variables.
class PXROM_API QuadTerm : public StoredRegTerm {
 public:
  int EvaluateValue(const int& numInputVars, const double* x, double* value) const override;
  int EvaluateDesignRow(const int& numInputVars, const double* x, double* row) const override;

 protected:
  using StoredRegTerm::StoredRegTerm;
};

/// The square of a variable. Its gradient assumes that both indices are the same and ignores the
/// second.
class PXROM_API PureQuadTerm : public QuadTerm {
 public:
  PureQuadTerm();
  int EvaluateDerivativeWrtInputVariables(const int& numInputVars, const double* x,
                                          double* gradient) const override;
};

/// The product of two different variables.
///
/// Deliberate (cross-term-half-gradient): with the same index twice its value is the square and its
/// gradient **half** of the true one. Use a PureQuadTerm instead.
class PXROM_API CrossQuadTerm : public QuadTerm {
 public:
  CrossQuadTerm();
  int EvaluateDerivativeWrtInputVariables(const int& numInputVars, const double* x,
                                          double* gradient) const override;
};

/// The product of any list of variables; a repeated index is a power. For hosts only: no database
/// can hold one.
class PXROM_API CrossPolyTerm : public StoredRegTerm {
 public:
  /// The number of indices is -99, which means that they are not set.
  CrossPolyTerm();
  /// Accepts any `count` from 0.
  ///
  /// Deliberate (cross-poly-indices): only as many indices are copied as the term had before; the
  /// rest are 0. **So a new term gets zeros and needs its list twice, and in a copy of a term
  /// (CQRSData::SetRegTerm, CloneRegTerm) all indices are 0.**
  int SetUsedInpVarIdx(const int& count, const int* indices) override;
  int EvaluateValue(const int& numInputVars, const double* x, double* value) const override;
  /// Allocates one array of `numInputVars` ints.
  int EvaluateDerivativeWrtInputVariables(const int& numInputVars, const double* x,
                                          double* gradient) const override;
  int EvaluateDesignRow(const int& numInputVars, const double* x, double* row) const override;

 private:
  bool AreIndicesInside(int numInputVars) const;
  double Product(double start, const double* x) const;
};
