#pragma once

#include <cstddef>
#include <memory>
#include <vector>

#include "kernels/kernels.h"
#include "pxrom/types.h"
#include "records/error_norms.h"
#include "records/prepared_surface.h"

namespace Tarvane::Plexura::PXROM::batch {

/// The data of the predictor error of a Kriging surface.
struct KrigingErrorData {
  std::size_t functions;
  double sigma2;
  std::shared_ptr<const ErrorNorms> norms;
};

/// What Kriging, support vector and linear basis surfaces have in common:
///
///   y = (start + sum of weights[j] kernel(u, centre j) + trend(u) - intercept) / slope
///
/// where u is the scaled point and the centres are in that space.
struct KernelModel {
  std::size_t inputs = 0;
  /// Empty where the point is not scaled.
  std::vector<double> inputSlopes;
  std::vector<double> inputIntercepts;

  const kernels::Kernel* kernel = nullptr;  ///< null without a centre
  kernels::Constants constants;
  std::size_t centreCount = 0;
  std::vector<double> centres;       ///< row by row
  std::vector<double> scales;        ///< one per input
  std::vector<double> centreScales;  ///< one per centre, or empty
  std::vector<double> weights;       ///< one per centre
  double start = 0.0;

  bool hasTrend = false;
  std::vector<Monomial> trend;

  double outputSlope = 1.0;
  double outputIntercept = 0.0;

  /// Whether the evaluator has a form with errors; else that form returns 1.
  bool hasErrorForm = false;
  /// The data of the error; without them the form with errors returns -2.
  std::unique_ptr<KrigingErrorData> error;
};

/// The first `count` functions of a polynomial basis as products of variables, with coefficients.
std::vector<Monomial> TrendTerms(E_PolynomialType type, std::size_t inputs,
                                 const std::vector<double>& coefficients);

std::unique_ptr<PreparedSurface> MakeKernelSurface(KernelModel model);

// One for each family of this kind, for points of `inputs` values. They keep no reference to the
// record.
std::unique_ptr<PreparedSurface> PrepareKriging(const CRSData& record, std::size_t inputs);
std::unique_ptr<PreparedSurface> PrepareSupportVector(const CRSData& record, std::size_t inputs);
std::unique_ptr<PreparedSurface> PrepareLinearBasis(const CRSData& record, std::size_t inputs);

/// A model in the form of the fast sums: points and centres are multiplied by a factor per input,
/// and the centres' scales are replaced by the factor of the (squared) distance.
struct FastKernels {
  std::vector<double> inputFactors;  ///< empty without a fast form
  std::vector<double> centres;
  std::vector<double> centreFactors;
  /// The largest difference between a sum of kernels and the exact one.
  double deviation = 0.0;
};

/// The largest magnitude of a coordinate of a point or centre in a fast sum.
constexpr double kLargestFast = 1e100;

FastKernels FindFastKernels(const KernelModel& model);

}  // namespace Tarvane::Plexura::PXROM::batch
