#pragma once

#include <memory>

#include "pxrom/regression_terms.h"

namespace Tarvane::Plexura::PXROM {

/// A term of the class that `source` names, with its activity, indices and coefficient; null for an
/// unknown class. A CrossPolyTerm loses its list (regression_terms.h).
std::unique_ptr<RegTerm> CopyOfTerm(const RegTerm& source);

/// The sum of a list of terms.
class TermSum {
 public:
  /// Adds the values of `count` terms to `sum`, in their order. The first non-zero status is
  /// returned at once with the sum up to there; a missing term gives 1.
  static int Add(const RegTerm* const* terms, int count, int numInputVars, const double* x,
                 double& sum);

  /// Adds slopes[i] times entry i of the term's gradient to g[i] for all inputs. It changes only
  /// the entries that are not zero, which gives the same for finite slopes and a `g` that began at
  /// 0.0. False with `g` untouched when only the term itself can compute its gradient.
  static bool AddGradient(const RegTerm& term, int numInputVars, const double* x,
                          const double* slopes, double* g);

  /// A new term of one of the library's classes, or null for an unknown type. Only such a term is
  /// known to be exactly of its class, so that it may be added without a virtual call.
  static std::unique_ptr<RegTerm> NewTerm(E_FuncType type);

  /// Whether `term` has a coefficient. GetParamVal also returns one after ResetParamVal.
  static bool HasCoefficient(const RegTerm& term) {
    return term.coefficientValue != nullptr && term.isCoefficientSet != 0;
  }

 private:
  static bool AddReady(const RegTerm& term, unsigned numInputVars, const double* x, double& sum);
};

}  // namespace Tarvane::Plexura::PXROM
