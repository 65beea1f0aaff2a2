#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "families/polynomial/univariate_basis.h"
#include "families/regression/transformers.h"
#include "pxrom/polynomial.h"

namespace Tarvane::Plexura::PXROM::polynomial {

/// One variable of a record, and where its polynomials are in a table of values: that of degree n
/// at `place` + n.
struct Variable {
  std::size_t input;
  const CTransformer* forward;
  double value;
  double lambda;
  double slope;
  double intercept;
  UnivariateBasis basis;
  int highest = 0;  ///< the largest degree that a term has
  std::size_t place = 0;
};

/// A univariate polynomial in a product.
struct Factor {
  std::uint32_t place;
  std::uint32_t variable;
};

/// A record that was checked, and the order of its evaluation. The record must outlive it. An
/// expansion takes memory in proportion to the lists of its record, a table of values no more than
/// their length and CPolynomialData::kLargestDegreeSum.
class Expansion {
 public:
  /// False when no point of `inputs` values can be evaluated.
  bool LayOut(const CPolynomialData& record, std::size_t inputs);

  const std::vector<Variable>& Variables() const { return variables_; }
  const CTransformer& Back() const { return *back_; }
  std::size_t Terms() const { return ends_.size(); }
  std::size_t TableSize() const { return tableSize_; }
  std::size_t LongestProduct() const { return longestProduct_; }
  std::size_t FactorCount() const { return factors_.size(); }
  const Factor* Begin(std::size_t term) const {
    return factors_.data() + (term == 0 ? 0 : ends_[term - 1]);
  }
  const Factor* End(std::size_t term) const { return factors_.data() + ends_[term]; }
  /// Whether the record has a covariance matrix for its terms.
  bool HasCovariance() const;

  // The steps of an evaluation at one point `x`, in order.

  /// TableSize values into `table`. 1 where a transformation refuses.
  int FillTable(const double* x, double* table) const;
  /// The same, with the derivative of each value by the input of its variable.
  int FillTable(const double* x, double* table, double* slopes) const;
  double Product(std::size_t term, const double* table) const;
  double Sum(const double* table) const;
  /// Adds `weight` times the derivative of a product to `gradient`, which has an entry per input.
  /// `work` holds LongestProduct values.
  void AddGradient(std::size_t term, double weight, const double* table, const double* slopes,
                   double* work, double* gradient) const;
  /// What is left of the way to the value, for the sum `s`: 1 where it refuses.
  int Finish(double s, double& y) const;
  /// b' C b for the products b of the terms, 0 where it rounds below that.
  double QuadraticForm(const std::vector<double>& products) const;

 private:
  bool FindVariables(std::size_t inputs);
  bool FindDegrees();
  bool GiveSteps();
  void FindFactors();

  const CPolynomialData* record_ = nullptr;
  std::vector<Variable> variables_;
  std::vector<Factor> factors_;
  std::vector<std::size_t> ends_;  ///< of the factors of each term
  const CTransformer* back_ = nullptr;
  std::size_t tableSize_ = 0;
  std::size_t longestProduct_ = 0;
};

}  // namespace Tarvane::Plexura::PXROM::polynomial
