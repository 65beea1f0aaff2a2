// Gaussian processes and moving least squares.

#include "codegen/lowering.h"

namespace pxrom_codegen {

namespace {

template <class T>
std::pair<int, const char*> FunctionOf(int type) {
  switch (type) {
    case pxrom::CovMatern12:
      return {T::COVARIANCE_EXPONENTIAL, "COVARIANCE_EXPONENTIAL"};
    case pxrom::CovMatern32:
      return {T::COVARIANCE_MATERN32, "COVARIANCE_MATERN32"};
    case pxrom::CovMatern52:
      return {T::COVARIANCE_MATERN52, "COVARIANCE_MATERN52"};
    case pxrom::CovGaussian:
      return {T::COVARIANCE_GAUSSIAN, "COVARIANCE_GAUSSIAN"};
    case pxrom::CovRationalQuadratic:
      return {T::COVARIANCE_RATIONAL_QUADRATIC, "COVARIANCE_RATIONAL_QUADRATIC"};
    case pxrom::CovGeneralisedExponential:
      return {T::COVARIANCE_POWER_EXPONENTIAL, "COVARIANCE_POWER_EXPONENTIAL"};
    case pxrom::CovConstant:
      return {T::COVARIANCE_CONSTANT, "COVARIANCE_CONSTANT"};
    case pxrom::CovThinPlateSpline:
      return {T::COVARIANCE_THIN_PLATE, "COVARIANCE_THIN_PLATE"};
    case pxrom::CovLinear:
      return {T::COVARIANCE_LINEAR, "COVARIANCE_LINEAR"};
    case pxrom::CovCubic:
      return {T::COVARIANCE_CUBIC, "COVARIANCE_CUBIC"};
    case pxrom::CovQuintic:
      return {T::COVARIANCE_QUINTIC, "COVARIANCE_QUINTIC"};
    case pxrom::CovMultiquadric:
      return {T::COVARIANCE_MULTIQUADRIC, "COVARIANCE_MULTIQUADRIC"};
    case pxrom::CovInverseMultiquadric:
      return {T::COVARIANCE_INVERSE_MULTIQUADRIC, "COVARIANCE_INVERSE_MULTIQUADRIC"};
    case pxrom::CovInverseQuadratic:
      return {T::COVARIANCE_INVERSE_QUADRATIC, "COVARIANCE_INVERSE_QUADRATIC"};
    default:
      return {T::COVARIANCE_NONE, "COVARIANCE_NONE"};
  }
}

template <class T>
std::pair<int, const char*> WeightOf(pxrom::E_WeightFunction type) {
  switch (type) {
    case pxrom::WeightConstant:
      return {T::WEIGHT_CONSTANT, "WEIGHT_CONSTANT"};
    case pxrom::WeightGaussian:
      return {T::WEIGHT_GAUSSIAN, "WEIGHT_GAUSSIAN"};
    case pxrom::WeightCompact:
      return {T::WEIGHT_COMPACT, "WEIGHT_COMPACT"};
    case pxrom::WeightRational:
      return {T::WEIGHT_RATIONAL, "WEIGHT_RATIONAL"};
    case pxrom::WeightInverse:
      return {T::WEIGHT_INVERSE, "WEIGHT_INVERSE"};
  }
  return {T::WEIGHT_NONE, "WEIGHT_NONE"};
}

}  // namespace

template <class Real>
const typename Runtime<Real>::process* Lowering<Real>::Process(
    const pxrom::CGaussianProcessData& record, bool withError) {
  RequireServed<pxrom::CGaussianProcessEvaluator>(record);
  out_.pieces.insert("PROCESS");
  const std::size_t d = inputs_;
  const auto n = static_cast<std::size_t>(std::max(record.NumberOfSamples, 0));
  typename T::process process = {};
  process.inputs = Count(d);
  process.centre_count = Count(n);
  Scaling(record, process.input_slopes, process.input_intercepts);
  Vector centres;
  for (std::size_t at = 0; at < n * d; ++at) {
    const std::size_t i = at % d;
    centres.push_back(record.InputScaleSlopes[i] * record.InputSamples[at / d][i] +
                      record.InputScaleIntercepts[i]);
  }
  process.centres = Numbers("centres", centres);
  process.weights = Numbers(
      "weights",
      Vector(record.Weights.begin(), record.Weights.begin() + static_cast<std::ptrdiff_t>(n)));

  if (n > 0) {
    const std::size_t count = record.FactorFunctions.size();
    const bool hasOneLength = record.FactorLengths.size() == count;
    std::vector<typename T::covariance_factor> factors;
    for (std::size_t f = 0; f < count; ++f) {
      const auto function = FunctionOf<T>(record.FactorFunctions[f]);
      out_.pieces.insert(function.second);
      out_.functionNames[function.first] = function.second;
      Vector rates;
      for (std::size_t i = 0; i < d; ++i) {
        rates.push_back(1.0 / record.FactorLengths[hasOneLength ? f : f * d + i]);
      }
      factors.push_back({function.first, Number(record.FactorParameters[f]),
                         Numbers("rates" + std::to_string(f + 1), rates)});
    }
    std::vector<typename T::covariance_term> terms;
    std::size_t f = 0;
    for (std::size_t t = 0; t < record.TermAmplitudes.size(); ++t) {
      const std::size_t first = f;
      while (f < count && record.FactorTerms[f] == static_cast<int>(t)) ++f;
      terms.push_back({Number(record.TermAmplitudes[t]), Count(first), Count(f)});
    }
    process.term_count = Count(terms.size());
    process.factors = KeepArray(out_.factors, "_factors", std::move(factors));
    process.terms = KeepArray(out_.terms, "_terms", std::move(terms));
  }

  const std::size_t functions = record.PolynomialCoefficients.size();
  const std::size_t monomials = d > 0 ? record.Monomials.size() / d : 0;
  process.trend_kind = static_cast<int>(record.PolynomialType);
  process.trend_count = Count(functions);
  process.basis_count = Count(functions - monomials);
  process.trend = Numbers("trend", record.PolynomialCoefficients);
  if (monomials > 0) {
    out_.pieces.insert("MONOMIALS");
    process.exponents = Places("exponents", record.Monomials);
  }
  process.output_slope = Number(record.OutputScaleSlope);
  process.output_intercept = Number(record.OutputScaleIntercept);

  if (withError && HasError<pxrom::CGaussianProcessEvaluator>(record)) {
    out_.pieces.insert("PROCESS_ERROR");
    typename T::process_error error = {};
    const std::size_t own = record.TrendInverseFactor.empty() ? 0 : functions;
    error.functions = Count(own);
    error.inverse_factor = Numbers("inverse_factor", record.InverseFactor);
    error.trend_at_samples = Numbers("trend_at_samples", Flat(record.TrendAtSamples, own, n));
    error.trend_inverse_factor = Numbers("trend_inverse_factor", record.TrendInverseFactor);
    error.includes_noise = record.ErrorIncludesNoise ? 1 : 0;
    error.noise_variance = Number(record.NoiseVariance);
    process.error = Keep(out_.processErrors, "_error", error);
  }
  NeedWork(d + functions, process.error != nullptr ? d + 2 * functions + 2 * n : 0, d);
  return Keep(out_.processes, "", process, "Gaussian process");
}

template <class Real>
const typename Runtime<Real>::local_fit* Lowering<Real>::LocalFit(const pxrom::CMLSData& record) {
  const int p = record.NumberOfBasisFunctions;
  const int used = std::max(record.NumberOfUsedPoints, 0);
  const int n = record.NumberOfSamples;
  const bool isKnown = record.MLSDataVersion_ == pxrom::MLSDataVersion162 ||
                       record.MLSDataVersion_ == pxrom::MLSDataVersion170;
  const bool isCounted = p > 0 && BasisCount(record.PolynomialType, inputs_) == p;
  const bool isCovered = n > 0 && static_cast<std::size_t>(n) <= record.InputSamples.size() &&
                         p <= n && used <= n && used >= p &&
                         static_cast<std::size_t>(used) <= record.OutputSamples.size();
  const bool isLine =
      record.PolynomialType == pxrom::PolyLinear && record.WeightFunction == pxrom::WeightConstant;
  if (!IsEvaluable(record) || !isKnown || !isCounted || !isCovered || isLine) {
    Refuse("cannot be evaluated; pxrom check says why");
  }
  const auto samples = static_cast<std::size_t>(n);
  for (std::size_t j = 0; j < samples; ++j) {
    if (record.InputSamples[j].size() != inputs_) Refuse("has a sample of another length");
  }
  out_.pieces.insert("LOCAL_FIT");
  const auto weight = WeightOf<T>(record.WeightFunction);
  out_.pieces.insert(weight.second);
  out_.weightNames[weight.first] = weight.second;
  typename T::local_fit fit = {};
  fit.inputs = Count(inputs_);
  fit.sample_count = n;
  fit.used_count = used;
  fit.kind = static_cast<int>(record.PolynomialType);
  fit.functions = p;
  fit.weight = weight.first;
  fit.is_old = record.MLSDataVersion_ == pxrom::MLSDataVersion162 ? 1 : 0;
  fit.root_of_inputs = Number(std::sqrt(static_cast<double>(inputs_)));
  const auto functions = static_cast<double>(p);
  fit.ridge = Number(std::sqrt(functions) * 1e-08 + (functions + 10.0) * 1e-14);
  fit.samples = Numbers("samples", Flat(record.InputSamples, samples, inputs_));
  fit.outputs =
      Numbers("outputs", Vector(record.OutputSamples.begin(), record.OutputSamples.begin() + used));
  const auto order = static_cast<std::size_t>(p);
  NeedWork(2 * samples + order * (order + 2) + 1, 0, 3 * samples + order * (order + 3) + 1);
  return Keep(out_.fits, "", fit, "moving least squares");
}

#define INSTANTIATE(Real)                                                     \
  template const typename Runtime<Real>::process* Lowering<Real>::Process(    \
      const pxrom::CGaussianProcessData&, bool);                              \
  template const typename Runtime<Real>::local_fit* Lowering<Real>::LocalFit( \
      const pxrom::CMLSData&);
INSTANTIATE(double)
INSTANTIATE(float)
#undef INSTANTIATE

}  // namespace pxrom_codegen
