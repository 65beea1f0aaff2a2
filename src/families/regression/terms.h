#pragma once

#include <memory>

#include "pxrom/regression_terms.h"

namespace Tarvane::Plexura::PXROM {

/// A term of the class that `source` names, with its activity, indices and coefficient; null when
/// it names none. A CrossPolyTerm loses its list, see there.
std::unique_ptr<RegTerm> CopyOfTerm(const RegTerm& source);

/// The sum of a list of terms.
class TermSum {
 public:
  /// Adds the values of `count` terms to `sum`, in their order. The first non-zero status is
  /// returned at once with the sum up to there; a missing term gives 1.
  static int Add(const RegTerm* const* terms, int count, int numInputVars, const double* x,
                 double& sum);

  /// Adds slopes[i] times entry i of the term's gradient to g[i] for all inputs, by touching only
  /// the entries that are not zero: the same for finite slopes and a `g` that began at 0.0. False
  /// with `g` untouched when the term has to be asked itself.
  static bool AddGradient(const RegTerm& term, int numInputVars, const double* x,
                          const double* slopes, double* g);

  /// A new term of a class of its own, or null for a number that is no type. Only such a term is
  /// known to be of that class and none derived from it, so that it may be added the short way.
  static std::unique_ptr<RegTerm> NewTerm(E_FuncType type);

  /// Whether `term` has a coefficient. GetParamVal delivers one after ResetParamVal too.
  static bool HasCoefficient(const RegTerm& term) {
    return term.coefficientValue != nullptr && term.isCoefficientSet != 0;
  }

 private:
  static bool AddReady(const RegTerm& term, unsigned numInputVars, const double* x, double& sum);
};

}  // namespace Tarvane::Plexura::PXROM
