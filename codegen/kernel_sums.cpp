// Kriging, support vector and linear basis records as sums of kernels.

#include "codegen/lowering.h"

namespace pxrom_codegen {

namespace {

using Vector = std::vector<double>;

constexpr double kSincEnd = 4.71238898038469;

/// An enumerator of the code and the piece of the same name.
struct Choice {
  int value = 0;
  const char* name = "";
};

#define CHOICE(name) \
  Choice { T::name, #name }

template <class T>
Choice KernelOf(pxrom::E_KringingCorrelationFunctionType type) {
  switch (type) {
    case pxrom::CorrExponential:
      return CHOICE(KERNEL_EXPONENTIAL);
    case pxrom::CorrGaussian:
      return CHOICE(KERNEL_GAUSSIAN);
    case pxrom::CorrLinear:
      return CHOICE(KERNEL_LINEAR);
    case pxrom::CorrSpherical:
      return CHOICE(KERNEL_SPHERICAL);
    case pxrom::CorrCubic:
      return CHOICE(KERNEL_CUBIC);
    case pxrom::CorrMultiquadric:
      return CHOICE(KERNEL_MULTIQUADRIC);
    case pxrom::CorrSpline:
      return CHOICE(KERNEL_SPLINE);
    case pxrom::CorrMatern52:
      return CHOICE(KERNEL_MATERN52);
    case pxrom::CorrParabolic:
      return CHOICE(KERNEL_PARABOLIC);
    case pxrom::CorrBesselJ0:
      return CHOICE(KERNEL_BESSEL_J0);
    case pxrom::CorrSinc:
      return CHOICE(KERNEL_SINC);
    case pxrom::CorrNone:
      break;
  }
  return {};
}

template <class T>
Choice KernelOf(pxrom::E_SVRKernType type) {
  switch (type) {
    case pxrom::SVRKernLinear:
      return CHOICE(KERNEL_DOT_LINEAR);
    case pxrom::SVRKernQuadratic:
      return CHOICE(KERNEL_DOT_QUADRATIC);
    case pxrom::SVRKernGaussian:
      return CHOICE(KERNEL_GAUSSIAN);
    case pxrom::SVRKernSigmoid:
      return CHOICE(KERNEL_DOT_SIGMOID);
    case pxrom::SVRKernExponential:
      return CHOICE(KERNEL_EXPONENTIAL);
    case pxrom::SVRKernEpanechnikov:
      return CHOICE(KERNEL_EPANECHNIKOV);
  }
  return {};
}

template <class T>
Choice KernelOf(pxrom::E_LinearBasisFunction type) {
  switch (type) {
    case pxrom::LBFGaussian:
      return CHOICE(KERNEL_RADIAL_GAUSSIAN);
    case pxrom::LBFCompact:
      return CHOICE(KERNEL_RADIAL_COMPACT);
    case pxrom::LBFCubic:
      return CHOICE(KERNEL_RADIAL_CUBIC);
    case pxrom::LBFSinc:
      return CHOICE(KERNEL_RADIAL_SINC);
    case pxrom::LBFRational:
      return CHOICE(KERNEL_RADIAL_RATIONAL);
    case pxrom::LBFTanh:
      return CHOICE(KERNEL_RADIAL_TANH);
  }
  return {};
}

#undef CHOICE

/// Chooses the kernel, with the constants that it takes.
template <class Real, class Type>
void TakeKernel(Type type, std::size_t inputs, Lowered<Real>& out,
                typename Runtime<Real>::kernel_sum& sum) {
  using T = Runtime<Real>;
  const Choice kernel = KernelOf<T>(type);
  sum.kernel = kernel.value;
  out.pieces.insert(kernel.name);
  out.kernelNames[kernel.value] = kernel.name;
  const auto d = static_cast<double>(inputs);
  if (kernel.value == T::KERNEL_BESSEL_J0) sum.shift = static_cast<Real>(BesselJ0(3.8317));
  if (kernel.value == T::KERNEL_SINC || kernel.value == T::KERNEL_RADIAL_SINC) {
    sum.shift = static_cast<Real>(std::sin(kSincEnd) / kSincEnd);
  }
  if (kernel.value == T::KERNEL_RADIAL_TANH) sum.per_input = static_cast<Real>(1.0 / d);
  if (kernel.value == T::KERNEL_DOT_SIGMOID) {
    const double e = std::exp(1.0);
    sum.shift = static_cast<Real>(e);
    sum.per_input = static_cast<Real>(e / d);
  }
}

bool FitsScaling(const pxrom::CRSData& record, std::size_t inputs) {
  return record.InputScaleSlopes.size() == inputs && record.InputScaleIntercepts.size() == inputs;
}

/// The first `count` samples, scaled if `isScaled`, one after the other.
Vector Centres(const pxrom::CRSData& record, std::size_t count, std::size_t inputs, bool isScaled) {
  Vector centres;
  for (std::size_t j = 0; j < count; ++j) {
    for (std::size_t i = 0; i < inputs; ++i) {
      const double x = record.InputSamples[j][i];
      centres.push_back(isScaled ? record.InputScaleSlopes[i] * x + record.InputScaleIntercepts[i]
                                 : x);
    }
  }
  return centres;
}

}  // namespace

template <class Real>
typename Runtime<Real>::kernel_sum Lowering<Real>::StartKernels(const pxrom::CRSData& record) {
  typename T::kernel_sum sum = {};
  sum.kernel = T::KERNEL_NONE;
  sum.inputs = Count(inputs_);
  sum.trend_kind = -1;
  sum.output_slope = Number(record.OutputScaleSlope);
  sum.output_intercept = Number(record.OutputScaleIntercept);
  out_.pieces.insert("KERNEL_SUM");
  out_.kernelNames[T::KERNEL_NONE] = "KERNEL_NONE";
  return sum;
}

template <class Real>
const typename Runtime<Real>::kernel_sum* Lowering<Real>::KeepKernels(
    const typename T::kernel_sum& sum, const std::string& family) {
  const std::size_t d = inputs_;
  const auto p = static_cast<std::size_t>(sum.trend_count);
  const auto n = static_cast<std::size_t>(sum.centre_count);
  NeedWork(d + p, sum.error != nullptr ? d + 2 * p + 2 * n : 0, 4 * d);
  return Keep(out_.kernelSums, "", sum, family);
}

template <class Real>
const typename Runtime<Real>::kernel_sum* Lowering<Real>::Kriging(const pxrom::CKrigingData& record,
                                                                  bool withError) {
  RequireServed<pxrom::CKrigingEvaluator>(record);
  typename T::kernel_sum sum = StartKernels(record);
  const auto n = static_cast<std::size_t>(std::max(record.NumberOfSamples, 0));
  Scaling(record, sum.input_slopes, sum.input_intercepts);
  sum.centre_count = Count(n);
  sum.centres = Numbers("centres", Centres(record, n, inputs_, true));
  Vector weights = record.CorrelationCoefficients;
  weights.resize(n);
  sum.weights = Numbers("weights", weights);
  if (n > 0) {
    TakeKernel(record.CorrelationFunctionType, inputs_, out_, sum);
    const Vector& scales = record.CorrelationKernels;
    Vector perInput;
    for (std::size_t i = 0; i < inputs_; ++i)
      perInput.push_back(scales[scales.size() == 1 ? 0 : i]);
    sum.scales = Numbers("scales", perInput);
  }
  // An unknown type has no functions.
  const double functions = std::max(BasisCount(record.PolynomialType, inputs_), 0.0);
  sum.trend_kind = functions > 0.0 ? static_cast<int>(record.PolynomialType) : 0;
  sum.trend_count = Count(static_cast<std::size_t>(functions));
  if (functions > 0.0) sum.trend = Numbers("trend", record.PolynomialCoefficients);
  if (withError && HasError<pxrom::CKrigingEvaluator>(record)) {
    sum.error = KrigingError(record, static_cast<std::size_t>(functions));
  }
  return KeepKernels(sum, "Kriging");
}

template <class Real>
const typename Runtime<Real>::kriging_error* Lowering<Real>::KrigingError(
    const pxrom::CKrigingData& record, std::size_t functions) {
  const auto n = static_cast<std::size_t>(std::max(record.NumberOfSamples, 0));
  out_.pieces.insert("KRIGING_ERROR");
  typename T::kriging_error error = {};
  error.functions = Count(functions);
  error.sigma2 = Number(record.Sigma2);
  Vector packed;
  std::vector<std::size_t> lengths;
  for (std::size_t r = 0; r < n; ++r) {
    std::size_t length = n;
    while (length > 0 && record.InvC[r][length - 1] == 0.0) --length;
    lengths.push_back(length);
    packed.insert(packed.end(), record.InvC[r].begin(),
                  record.InvC[r].begin() + static_cast<std::ptrdiff_t>(length));
  }
  error.inv_c = Numbers("inv_c", packed);
  error.lengths = Places("lengths", lengths);
  error.inv_g = Numbers("inv_g", Flat(record.InvG, functions, functions));
  error.ft = Numbers("ft", Flat(record.Ft, functions, n));
  return Keep(out_.krigingErrors, "_error", error);
}

template <class Real>
const typename Runtime<Real>::kernel_sum* Lowering<Real>::SupportVector(
    const pxrom::CSVRData& record) {
  RequireServed<pxrom::CSVREvaluator>(record);
  typename T::kernel_sum sum = StartKernels(record);
  const bool isPaired = record.SVRLossFuncType == pxrom::SVRLossFuncPaired3 ||
                        record.SVRLossFuncType == pxrom::SVRLossFuncPaired4;
  Vector weights = isPaired ? record.AlphasStar : record.Betas;
  for (std::size_t j = 0; isPaired && j < weights.size(); ++j) weights[j] -= record.Alphas[j];
  sum.start = Number(record.ConstantCoefficient);
  sum.centre_count = Count(weights.size());
  sum.weights = Numbers("weights", weights);
  if (!weights.empty()) {
    // A scaling that does not fit is left out.
    const bool isScaled = FitsScaling(record, inputs_);
    if (isScaled) Scaling(record, sum.input_slopes, sum.input_intercepts);
    sum.centres = Numbers("centres", Centres(record, weights.size(), inputs_, isScaled));
    sum.scales = Numbers("scales", record.KernelArray);
    TakeKernel(record.SVRKernType, inputs_, out_, sum);
  }
  return KeepKernels(sum, "support vector regression");
}

template <class Real>
const typename Runtime<Real>::kernel_sum* Lowering<Real>::LinearBasis(
    const pxrom::CLBFData& record) {
  RequireServed<pxrom::CLBFEvaluator>(record);
  typename T::kernel_sum sum = StartKernels(record);
  if (record.NumberOfSamples == 1) {
    // The stored output of the single sample, without scaling.
    sum.start = Number(record.OutputSamples[0]);
    sum.output_slope = Real{1};
    sum.output_intercept = Real{0};
    return KeepKernels(sum, "linear basis functions, a single sample");
  }
  if (FitsScaling(record, inputs_)) Scaling(record, sum.input_slopes, sum.input_intercepts);
  const std::size_t n = record.KernelCoefficients.size();
  sum.centre_count = Count(n);
  sum.weights = Numbers("weights", record.KernelCoefficients);
  // Only the point is scaled, and not the samples.
  sum.centres = Numbers("centres", Centres(record, n, inputs_, false));
  sum.centre_scales =
      Numbers("widths", Vector(record.KernelValues.begin(),
                               record.KernelValues.begin() + static_cast<std::ptrdiff_t>(n)));
  TakeKernel(record.BasisFunctionType, inputs_, out_, sum);
  sum.trend_kind = static_cast<int>(record.PolynomialType);
  sum.trend_count = Count(record.PolynomialCoefficients.size());
  sum.trend = Numbers("trend", record.PolynomialCoefficients);
  return KeepKernels(sum, "linear basis functions");
}

#define INSTANTIATE(Real)                                                                          \
  template typename Runtime<Real>::kernel_sum Lowering<Real>::StartKernels(const pxrom::CRSData&); \
  template const typename Runtime<Real>::kernel_sum* Lowering<Real>::Kriging(                      \
      const pxrom::CKrigingData&, bool);                                                           \
  template const typename Runtime<Real>::kernel_sum* Lowering<Real>::SupportVector(                \
      const pxrom::CSVRData&);                                                                     \
  template const typename Runtime<Real>::kernel_sum* Lowering<Real>::LinearBasis(                  \
      const pxrom::CLBFData&);
INSTANTIATE(double)
INSTANTIATE(float)
#undef INSTANTIATE

}  // namespace pxrom_codegen
