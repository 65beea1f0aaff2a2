#pragma once

#include <cstddef>
#include <memory>
#include <vector>

#include "batch/prepared_surface.h"
#include "lanes/lanes.h"
#include "pxrom/types.h"

namespace Tarvane::Plexura::PXROM::batch {

/// The data of a predictor error of a Kriging surface, each matrix in one piece.
struct KrigingErrorData {
  std::size_t functions = 0;
  double sigma2 = 0.0;
  std::vector<double> invC;
  std::vector<std::size_t> lengths;  ///< behind which a row of invC is zero
  std::vector<double> invG;
  std::vector<double> ft;
};

/// What Kriging, support vector and linear basis surfaces have in common:
///
///   y = (start + sum of weights[j] kernel(u, centre j) + trend(u) - intercept) / slope
///
/// with u the scaled point and the centres in that space.
struct KernelModel {
  std::size_t inputs = 0;
  /// Empty where the point is not scaled.
  std::vector<double> inputSlopes;
  std::vector<double> inputIntercepts;

  Kernel kernel = Kernel::Gaussian;
  std::size_t centreCount = 0;
  std::vector<double> centres;  ///< row by row
  std::vector<double> kernels;  ///< one per input
  std::vector<double> widths;   ///< one per centre, or none
  std::vector<double> weights;  ///< one per centre
  double start = 0.0;
  double shift = 0.0;
  double perInput = 0.0;

  bool hasTrend = false;
  std::vector<Monomial> trend;

  double outputSlope = 1.0;
  double outputIntercept = 0.0;

  /// Whether the evaluator has a form with errors; else that form answers 1.
  bool hasErrorForm = false;
  /// The error itself; without it the form with errors answers -2.
  std::unique_ptr<const KrigingErrorData> error;
};

/// The first `count` functions of a polynomial basis as products of variables, with coefficients.
std::vector<Monomial> TrendTerms(E_PolynomialType type, std::size_t inputs,
                                 const std::vector<double>& coefficients);

std::unique_ptr<const PreparedSurface> MakeKernelSurface(KernelModel model);

/// A kernel in the form that the fast sums take: points and centres multiplied by a factor per
/// input, widths replaced by the factor in front of the (squared) distance.
struct FastKernels {
  std::vector<double> factors;  ///< empty when there is no fast form
  std::vector<double> centres;
  std::vector<double> widths;
  /// How far a sum of kernels may be from the exact one.
  double deviation = 0.0;
};

/// No coordinate of a point or a centre in a fast sum is larger.
constexpr double kLargestFast = 1e100;

FastKernels FindFastKernels(const KernelModel& model);

/// Adds the gradient of weights[j] kernel(u, centre j), with respect to u, over all centres.
/// `work` has room for 3 values per input.
void AddKernelGradients(const KernelModel& model, const double* u, double* work, double* gradient);

}  // namespace Tarvane::Plexura::PXROM::batch
