#pragma once

#include <cstdint>
#include <vector>

#include "numerics/distribution_attributes.h"

/// Distributions: the standard Gauss, Beta and gamma functions, and Student's t on top of them. The
/// library itself uses only StudTDist(dof).EvalInvCdf(p, x).
///
/// Statuses: 0 is success and the result is written; on any other status it is untouched, unless a
/// comment says otherwise.
///
/// Deliberate (distributions-print): a numerical failure also writes its message to the standard
/// output, with a decimal point in any locale. Besides DMtx::Print nothing else in the library
/// prints.
///
/// Deliberate (distribution-edges): IncompleteGammaSeries returns 1 at 0, where 0 would be right;
/// EvalDofFromMoments refuses the deviations for which its formula holds; the last value of
/// TabulateCdf is that of the accumulated point; two attributes return 2 where others return 1.
/// Callers depend on these statuses and values.
///
/// Threads: plain objects and functions without shared state; const operations may run at the same
/// time. Memory: only operations with a vector argument and CopyTo allocate.

/// The logarithm of the gamma function of x > 0, by the Lanczos approximation (relative error of
/// the gamma function about 2e-10). Press et al., Numerical Recipes in C (1992), section 6.1.
/// Always 0.
int GammaLn(const double& x, double& out);

/// The regularised lower incomplete gamma function P(a, x), to about 3e-7. Press et al. (1992),
/// section 6.2. 1 when x < 0, a is not
/// above 0, or on a failure of the two below, one of which it calls: **so also at x = 0**, and for
/// an a of some hundreds with an x near it.
int IncompleteGammaP(const double& a, const double& x, double& out);
/// P(a, x) by its power series (Abramowitz and Stegun 6.5.29), for x < a + 1. 1 when 100 terms are
/// not enough. An x that is not above 0 gives 0.0, which is right, and yet status 1.
int IncompleteGammaSeries(const double& a, const double& x, double& out);
/// Q(a, x) = 1 - P(a, x) by its continued fraction (Abramowitz and Stegun 6.5.31), for x >= a + 1.
/// 1 when 100 rounds are not enough.
int IncompleteGammaContinuedFraction(const double& a, const double& x, double& out);

/// The Beta function B(a, b) of a, b > 0. Always 0.
int BetaFunction(const double& a, const double& b, double& out);
/// The regularised incomplete Beta function I_x(a, b), x in 0 to 1, to about 3e-7 of the smaller
/// tail. 1 when the fraction does not converge.
int IncompleteBetaRatio(const double& a, const double& b, const double& x, double& out);
/// The continued fraction of the incomplete Beta function. 1 when 100 rounds are not enough.
int BetaContinuedFraction(const double& a, const double& b, const double& x, double& out);

/// The density of the standard Gauss distribution, to eight digits. Always 0.
int StdGaussPdf(const double& x, double& out);
/// The distribution function of the standard Gauss distribution. 1 when an expansion fails.
int StdGaussCdf(const double& x, double& out);
/// The quantile of the standard Gauss distribution by Newton iteration. 2 with -9e99 when p <= 0,
/// 3 with +9e99 when p >= 1, 1 when 200 rounds are not enough (p below about 1e-163), else a sum of
/// the statuses of the functions above. A NaN for `p` ends after one round: 0 with NaN.
int StdGaussInvCdf(const double& p, double& out);

/// The Beta distribution on the interval `lo` to `hi`: density (1-u)^(shapeT-1) u^(shapeR-1) /
/// ((hi-lo) B(shapeR, shapeT)) with u = (x-lo) / (hi-lo). Both shapes must be above 0.
struct BetaDist {
  static int EvalPdf(const double& shapeR, const double& shapeT, const double& lo, const double& hi,
                     const double& x, double& out);
  /// A failure of IncompleteBetaRatio is returned.
  static int EvalCdf(const double& shapeR, const double& shapeT, const double& lo, const double& hi,
                     const double& x, double& out);
  /// Newton iteration to an absolute step of 1e-8 on the unit interval. `lo` for prob <= 0, `hi`
  /// for prob >= 1. 1 when 150 rounds are not enough; a failure of the two above is returned. A NaN
  /// for `prob` ends after one round: 0 with the mean.
  static int EvalInvCdf(const double& shapeR, const double& shapeT, const double& lo,
                        const double& hi, const double& prob, double& out);
};

/// A distribution. Every numerical operation returns 1 while DistStatus is 0.
///
/// It stores pointers to attributes and never deletes them. Their owner deletes them after the last
/// use of the distribution. **CopyTo makes new ones for its target, which the caller owns**: take
/// them with GetAttributes and delete them. A StudTDist that is built from its degrees of freedom
/// has no attributes.
class DistType {
 public:
  DistType() = default;
  DistType(const DistType&) = default;  ///< shares the attributes
  DistType& operator=(const DistType&) = default;

  virtual ~DistType();
  /// Sets the parameters from attributes.
  virtual int SetAttributes(const std::vector<DistAttr*>& attributes) = 0;
  virtual int EvalMean(double& out) const = 0;
  virtual int EvalStdDev(double& out) const = 0;
  virtual int EvalSkewness(double& out) const = 0;
  /// The excess over the Gauss distribution's 3.
  virtual int EvalKurtosis(double& out) const = 0;
  /// The density at `n` ascending points from `lo` to `hi`, about half of them at equal steps of x
  /// and half at equal steps of probability. `xs` and `pdfs` take n values; after a failure
  /// their content has no meaning. 1 when n < 3 or the bounds are outside the limits.
  virtual int TabulatePdf(const int& n, const double& lo, const double& hi, double* xs,
                          double* pdfs) const;
  virtual int EvalPdf(const double& x, double& p) const = 0;
  /// The distribution function at `n` points at equal steps from `lo` to `hi`. `xs` and `cdfs` take
  /// n values; after a failure the values from its point on are unchanged. 1 when n < 1 or the
  /// bounds are outside the limits. The last point is exactly `hi`, but its value is that of the
  /// accumulated point, which differs by rounding (and with n = 1 is `lo`).
  virtual int TabulateCdf(const int& n, const double& lo, const double& hi, double* xs,
                          double* cdfs) const;
  virtual int EvalCdf(const double& x, double& p) const = 0;
  virtual int EvalInvCdf(const double& p, double& x) const = 0;
  virtual int GetNumParam(int& count) const = 0;
  /// The attribute types that may set parameter `paramIdx`, followed by a 0. 1 with an
  /// empty list when there is no such parameter.
  virtual int GetAllowedAttributes(const int& paramIdx, std::vector<int>& ids) const = 0;
  virtual int GetNumAttributes(long long& count) const = 0;
  virtual int GetAttributes(std::vector<DistAttr*>& attributes) const;
  /// A first guess of the attribute of type `attrType` for data around `center`.
  virtual int GetDefaultParam(const int& paramIdx, const int& attrType, const double& center,
                              double& out) const = 0;
  virtual int GetNumKind(int& kind) const = 0;
  virtual int GetDistKind(int& kind) const = 0;
  /// Bounds to plot between; the lowest bit set of `flags` says which:
  ///   1, 32   the limits
  ///   2       the limits where they are finite (magnitude up to 1e99), else 1e-6 and 0.999999
  ///   4, 8    the quantiles at 0.001 and 0.999
  ///   16      the limits where they are finite, else 0.002 and 0.998
  /// With 64 only `lo` is written, with 128 only `hi`, with both neither. 1 when none of the lower
  /// six is set. **A DistStatus below 3 is returned as the status, so a distribution that is not
  /// set returns 0 with both bounds untouched.**
  virtual int GetPlotBounds(const unsigned char& flags, double& lo, double& hi) const;
  virtual int GetDistStatus(int& status) const;
  /// Copies everything to `target`, with new attribute objects that the caller owns; those that the
  /// target held are dropped, not deleted. 1, with the target untouched, when it is null, is of
  /// another class, or an attribute is of an unknown type.
  virtual int CopyTo(DistType* target) const;
  /// Forgets the attributes without deleting them. Always 0.
  virtual int ClearAttributes();
  virtual int ResetParams() = 0;

 protected:
  std::int32_t NumKind = 0;
  std::int32_t NumParam = 0;
  double LowerLimit = -9e99;
  double UpperLimit = +9e99;
  std::int32_t DistKind = 0;
  std::int32_t DistStatus = 0;  ///< 0: not set, 3: set
  std::vector<DistAttr*> Attributes;
  bool AcceptAnyDof = false;
};

/// Student's t distribution with `dof` degrees of freedom, which need not be a whole number.
///
/// The constructor checks nothing. With a `dof` of 0 or less, EvalInvCdf refuses, and the values of
/// EvalPdf and EvalCdf have no meaning.
class StudTDist : public DistType {
 public:
  explicit StudTDist(const double& dof);

  /// The list of one StudTDOF. 1 for two attributes of one type, for another type or a null
  /// pointer, for an empty list, and for a value that CheckDof refuses.
  int SetAttributes(const std::vector<DistAttr*>& attributes) override;
  int EvalMean(double& out) const override;
  /// 1 when the degrees of freedom are not above 2.
  int EvalStdDev(double& out) const override;
  int EvalSkewness(double& out) const override;
  /// 1 when the degrees of freedom are not above 4.
  int EvalKurtosis(double& out) const override;
  /// Above 342 degrees of freedom, the density of the standard Gauss distribution.
  int EvalPdf(const double& x, double& p) const override;
  int EvalCdf(const double& x, double& p) const override;
  /// The quantile of level `p`. 2 when p <= 0, 3 when p >= 1, 1 when the distribution is not set or
  /// its degrees of freedom are not above 0; else the status of the iteration that failed. Exactly
  /// 0.0 at p = 0.5.
  ///
  /// Deliberate (nan-confidence-level): **a NaN for `p` gives status 0** with a quantile of about
  /// 1, or NaN from 500 degrees of freedom on, since it ends each iteration after one round. A
  /// caller tests the level first.
  ///
  /// Below 500 degrees of freedom it is found through the quantile of the Beta distribution, with a
  /// relative error below 1e-7 at levels 0.001 to 0.999 and from 1 degree of freedom on. Outside
  /// these ranges, and with many degrees of freedom at levels closer than 0.05 to 0.5, the
  /// iteration ends too early, at a step of 1e-8: the absolute error is 4e-5 at 0.499, and even
  /// closer to 0.5 no digit is right. From 500 on it is a corrected Gauss quantile, with an
  /// absolute error of 6e-5 at 0.001. **One degree of freedom at p = 0.25 or 0.75 fails with 1**:
  /// IncompleteBetaRatio changes from one fraction to the other at the root, and their small
  /// difference makes the iteration jump back and forth.
  int EvalInvCdf(const double& p, double& x) const override;
  int GetNumParam(int& count) const override;
  int GetAllowedAttributes(const int& paramIdx, std::vector<int>& ids) const override;
  int GetNumAttributes(long long& count) const override;
  /// The degrees of freedom (parameter 0, type 17), 5.0 where the moments give none. 1 for others.
  int GetDefaultParam(const int& paramIdx, const int& attrType, const double& center,
                      double& out) const override;
  int GetNumKind(int& kind) const override;
  int GetDistKind(int& kind) const override;
  int CopyTo(DistType* target) const override;
  /// Unsets the degrees of freedom. Always 0.
  int ResetParams() override;

  // Parameter 0 is the degrees of freedom; another index gives 1.
  /// 2 for a value of 0 or less.
  virtual int SetParam(const int& paramIdx, const double& value);
  virtual int GetParam(const int& paramIdx, double& value) const;
  virtual int GetParamStatus(const int& paramIdx, int& status) const;
  /// The degrees of freedom of given moments: 2 s^2 / (s^2 - 1) for the standard deviation s.
  /// **The test is the wrong way round**: it refuses (1, `out` 0.0) the s above 1 for which the
  /// formula holds, and gives a negative or infinite value for the others.
  virtual int EvalDofFromMoments(const DistAttr& mean, const DistAttr& stdDev, double& out) const;
  /// 1 for a value of 0 or less, unless the distribution accepts any value.
  virtual int CheckDof(const double& value) const;

 private:
  double DOF;
  std::int32_t DOFStatus = 1;  ///< 0: not set, 1: set
};
