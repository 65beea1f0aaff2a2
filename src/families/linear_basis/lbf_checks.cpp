#include "families/linear_basis/lbf_checks.h"

#include "pxrom/database_labels.h"
#include "pxrom/linear_basis.h"

namespace Tarvane::Plexura::PXROM::inspection {

void CheckLinearBasis(SurfaceText& surface) {
  using Labels = CPXROMDatabaseLabels;
  const GroupText& in = surface.in;
  const Shape& shape = surface.shape;
  // The value of a single sample is its output, so nothing else matters.
  if (shape.samples == 1) return;
  if (shape.samples) {
    in.ExpectLength(Labels::attLBFKernelValues(), *shape.samples, SamplesOf(shape));
    in.ExpectLength(Labels::attLBFKernelCoefficients(), *shape.samples, SamplesOf(shape));
  }
  const std::optional<int> type = in.Int(Labels::attLBFPolynomialType());
  if (const std::optional<std::int64_t> size = BasisSize(type, shape.inputs)) {
    in.ExpectLength(
        Labels::attLBFPolynomialCoefficients(), *size,
        "a trend of type " + std::to_string(*type) + " in " + InputsOf(shape) + " would");
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
