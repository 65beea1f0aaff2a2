// Support vector, moving least squares and linear basis surfaces.

#include <algorithm>

#include "inspection/surface_checks.h"
#include "pxrom/database_labels.h"
#include "pxrom/linear_basis.h"
#include "pxrom/moving_least_squares.h"
#include "pxrom/support_vector.h"

namespace Tarvane::Plexura::PXROM::inspection {

namespace {

using Labels = CPXROMDatabaseLabels;

std::string Samples(const Shape& shape) {
  return Counted(static_cast<std::size_t>(shape.samples.value_or(0)), "sample");
}

std::string Inputs(const Shape& shape) {
  return Counted(static_cast<std::size_t>(shape.inputs.value_or(0)), "input");
}

// A value outside of its range is not taken: the record keeps its default.
void CheckSetting(const GroupText& in, const std::string& label, double most,
                  const std::string& range) {
  const std::optional<double> value = in.Double(label);
  if (!value || (*value > 0.0 && *value < most)) return;
  in.Report(SeverityWarning, FindingValueOutOfRange, label, NumberText(*value), range,
            Quoted(label) + " is " + NumberText(*value) + ", taken is only " + range +
                "; the default stays");
}

void CheckMultipliers(const SurfaceText& surface) {
  GroupText& in = surface.in;
  const std::optional<int> loss = in.Int(Labels::attSVRLossFuncType());
  if (!loss) return;
  const bool isPaired = loss == SVRLossFuncPaired3 || loss == SVRLossFuncPaired4;
  std::vector<const std::string*> used = {&Labels::attSVRBeta()};
  if (isPaired) used = {&Labels::attSVRAlpha(), &Labels::attSVRAlphaStar()};
  for (const std::string* label : used) {
    in.Require(*label);
    if (surface.shape.samples) {
      in.ExpectLength(*label, *surface.shape.samples, Samples(surface.shape));
    }
  }
}

void CheckKernel(const GroupText& in) {
  constexpr int kKernels[] = {SVRKernLinear,  SVRKernQuadratic,   SVRKernGaussian,
                              SVRKernSigmoid, SVRKernExponential, SVRKernEpanechnikov};
  const std::string& label = Labels::attSVRKernType();
  const std::optional<int> type = in.Int(label);
  if (!type || std::count(std::begin(kKernels), std::end(kKernels), *type) > 0) return;
  in.Report(SeverityError, FindingValueOutOfRange, label, std::to_string(*type),
            "0, 1, 2, 3, 5 or 9",
            Quoted(label) + " is " + std::to_string(*type) + ", kernels are 0, 1, 2, 3, 5 and 9");
}

}  // namespace

void CheckSupportVector(SurfaceText& surface) {
  GroupText& in = surface.in;
  CheckKernel(in);
  CheckMultipliers(surface);
  CheckSetting(in, Labels::attSVREpsilonValue(), 1.0, "between 0 and 1");
  CheckSetting(in, Labels::attSVRNuValue(), 1.0, "between 0 and 1");
  CheckSetting(in, Labels::attSVRConstantValue(), std::numeric_limits<double>::infinity(),
               "above 0");
  // Older records have no widths: they are computed from the samples.
  if (in.Int(Labels::attSVRVersion()).value_or(0) < SVRDataVersion171) return;
  in.Require(kWidthKeys);
  if (surface.shape.inputs) {
    in.ExpectLength(Labels::attSVRKernelArray(), *surface.shape.inputs, Inputs(surface.shape));
  }
}

void CheckMovingLeastSquares(SurfaceText& surface) {
  const GroupText& in = surface.in;
  const Shape& shape = surface.shape;
  const std::optional<int> type = in.Int(Labels::attMLSPolynomialType());
  const std::string& weight = Labels::attMLSWeightFunction();
  if (type == PolyLinear && in.Int(weight) == WeightConstant) {
    in.Report(SeverityError, FindingSurfaceWithoutValue, weight, "0", "1 to 4",
              "a linear basis with the constant weight is refused by every evaluation");
  }
  const std::string& functions = Labels::attMLSNumberOfBasisFunctions();
  std::int64_t p = in.Int(functions).value_or(0);
  const std::int64_t size = BasisSize(type, shape.inputs).value_or(p);
  if (in.Int(functions) && p != size) {
    in.Report(SeverityError, FindingCountMismatch, functions, std::to_string(p),
              std::to_string(size),
              Quoted(functions) + " is " + std::to_string(p) + ", a basis of type " +
                  std::to_string(*type) + " in " + Inputs(shape) + " has " + std::to_string(size));
    p = size;
  }
  const std::string& points = Labels::attMLSNumberOfUsedPoints();
  const std::optional<int> used = in.Int(points);
  if (!used) return;
  if (shape.samples && *used > *shape.samples) {
    in.Report(
        SeverityError, FindingCountMismatch, points, std::to_string(*used),
        std::to_string(*shape.samples) + " or less",
        Quoted(points) + " is " + std::to_string(*used) + ", there are only " + Samples(shape));
  } else if (*used < p) {
    in.Report(SeverityError, FindingCountMismatch, points, std::to_string(*used),
              std::to_string(p) + " or more",
              Quoted(points) + " is " + std::to_string(*used) + ", too few for " +
                  std::to_string(p) + " basis functions");
  }
}

void CheckLinearBasis(SurfaceText& surface) {
  const GroupText& in = surface.in;
  const Shape& shape = surface.shape;
  // A single sample answers with its output; nothing else is looked at.
  if (shape.samples == 1) return;
  if (shape.samples) {
    in.ExpectLength(Labels::attLBFKernelValues(), *shape.samples, Samples(shape));
    in.ExpectLength(Labels::attLBFKernelCoefficients(), *shape.samples, Samples(shape));
  }
  const std::optional<int> type = in.Int(Labels::attLBFPolynomialType());
  if (const std::optional<std::int64_t> size = BasisSize(type, shape.inputs)) {
    in.ExpectLength(Labels::attLBFPolynomialCoefficients(), *size,
                    "a trend of type " + std::to_string(*type) + " in " + Inputs(shape) + " would");
  }
  const std::string& widths = Labels::attLBFKernelValues();
  if (const std::optional<std::size_t> zero = in.FirstZero(widths)) {
    in.ReportAt(in.OffsetOfElement(widths, *zero), SeverityError, FindingValueOutOfRange, widths,
                "0", "not 0",
                "width " + std::to_string(*zero + 1) + " of " + Quoted(widths) +
                    " is 0, by which a distance would be divided");
  }
}

}  // namespace Tarvane::Plexura::PXROM::inspection
