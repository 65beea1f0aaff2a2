#include "families/kriging/kriging_checks.h"

#include "families/kriging/kriging_fields.h"

namespace Tarvane::Plexura::PXROM::inspection {

namespace {

using Labels = CPXROMDatabaseLabels;

void CheckTrend(const SurfaceText& surface) {
  const GroupText& in = surface.in;
  const std::optional<int> type = in.Int(Labels::attKrigingPolynomialType());
  const std::optional<std::int64_t> size = BasisSize(type, surface.shape.inputs);
  const std::string& label = Labels::attKrigingPolynomialCoefficients();
  if (!size) return;
  if (type != PolyNone) {
    in.ExpectLength(label, *size,
                    "a trend of type " + std::to_string(*type) + " in " +
                        Counted(static_cast<std::size_t>(*surface.shape.inputs), "input") +
                        " would");
  } else if (in.Length(label).value_or(0) > 0) {
    in.Report(SeverityWarning, FindingCountMismatch, label, Counted(*in.Length(label), "value"),
              "0", Quoted(label) + " has values, but the surface has no trend (type 0)");
  }
}

void CheckCorrelation(const SurfaceText& surface) {
  const GroupText& in = surface.in;
  if (surface.shape.samples) {
    in.ExpectLength(Labels::attKrigingCorrelationCoefficients(), *surface.shape.samples,
                    Counted(static_cast<std::size_t>(*surface.shape.samples), "sample"));
  }
  const std::string& label = Labels::attKrigingCorrelationKernels();
  const std::optional<std::size_t> kernels = in.Length(label);
  if (!kernels || !surface.shape.inputs || *kernels == 1) return;
  in.ExpectLength(label, *surface.shape.inputs,
                  Counted(static_cast<std::size_t>(*surface.shape.inputs), "input") +
                      " (or all of them together 1)");
}

// p trend functions and n samples give matrices of n by n, p by p and p by n. p follows from the
// type of the trend too, so the count of coefficients is wrong if the lists agree with the type.
void CheckErrorData(const SurfaceText& surface) {
  GroupText& in = surface.in;
  in.Require(FamilyOf<CKrigingData>::family.keys().keysOfPart);
  const std::string& countLabel = Labels::attKrigingNumberOfPolyCoeff();
  std::optional<std::int64_t> p = in.Int(countLabel);
  const std::optional<std::int64_t> size =
      BasisSize(in.Int(Labels::attKrigingPolynomialType()), surface.shape.inputs);
  if (p && size && *p != *size) {
    in.Report(SeverityError, FindingCountMismatch, countLabel, std::to_string(*p),
              std::to_string(*size),
              Quoted(countLabel) + " is " + std::to_string(*p) + ", the trend has " +
                  Counted(static_cast<std::size_t>(*size), "function"));
    p = size;
  }
  if (!surface.shape.samples || !p || *p < 0 || *p > INT32_MAX) return;
  const std::int64_t n = *surface.shape.samples;
  const std::string samples = Counted(static_cast<std::size_t>(n), "sample");
  const std::string functions = Counted(static_cast<std::size_t>(*p), "trend function");
  in.ExpectLength(Labels::attKrigingInverseOfC(), n * n, samples);
  in.ExpectLength(Labels::attKrigingInverseOfG(), *p * *p, functions);
  in.ExpectLength(Labels::attKrigingFTilde(), *p * n, functions + " at " + samples);
}

}  // namespace

void CheckKriging(SurfaceText& surface) {
  GroupText& in = surface.in;
  CheckTrend(surface);
  CheckCorrelation(surface);
  const std::string& save = Labels::attKrigingSavePredictorError();
  if (!in.Bool(save)) return;
  const std::optional<int> version = in.Int(Labels::attKrigingVersion());
  if (version && *version < KrigingDataVersion192) {
    in.Report(SeverityWarning, FindingErrorDataIgnored, save, "", "",
              "the data of the predictor error is not read, since the version is below 192");
  } else {
    CheckErrorData(surface);
  }
}

}  // namespace Tarvane::Plexura::PXROM::inspection
