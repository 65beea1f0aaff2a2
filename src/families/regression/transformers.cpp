#include "families/regression/transformers.h"

#include <cmath>
#include <cstddef>
#include <iterator>

namespace Tarvane::Plexura::PXROM {

namespace {

/// The back-transformation of CTransformerExpo accepts only larger values.
constexpr double kLeastOfLog = 1e-99;

// The arguments at which exp, and exp of exp, reach the largest result of a back-transformation.
double LimitOfExp() { return std::log(TransformValueLimit); }
double LimitOfExpExp() { return std::log(std::log(TransformValueLimit)); }

bool CountsAsZero(double lambda) { return !(std::fabs(lambda) >= LambdaZeroTolerance); }

/// (lambda * x + 1)^(1 / lambda), the inverse of Box-Cox. The upper limit of the base is
/// `limit(1e99^lambda)`, which is computed only for an exponent above 1.
template <class Limit>
int InverseBox(double x, double lambda, Limit limit, double& out) {
  const double base = lambda * x + 1.0;
  const double exponent = 1.0 / lambda;
  if (base < 0.0) return 1;
  if (exponent > 1.0 && base > limit(std::pow(TransformValueLimit, lambda))) return 1;
  out = std::pow(base, exponent);
  return 0;
}

int InverseBox(double x, double lambda, double& out) {
  // 1e99^lambda is above 1 + lambda ln 1e99, and ln 1e99 is above 227. So for a smaller x the base
  // is below the limit, and the power is not needed.
  constexpr double kBelowLimit = 227.0;
  const double base = lambda * x + 1.0;
  if (lambda > 0.0 && base >= 0.0 && base < 1.0 + kBelowLimit * lambda) {
    out = std::pow(base, 1.0 / lambda);
    return 0;
  }
  return InverseBox(
      x, lambda, [](double limit) { return limit; }, out);
}

}  // namespace

CTransformer::~CTransformer() = default;
E_QRSTransformationType CTransformer::TransformationType() const { return TransformNone; }
CTransformer* CTransformer::Clone() const { return new CTransformer(*this); }

int CTransformer::Transform(const double& in, double& out) const {
  out = in;
  return 0;
}

int CTransformer::Backtransform(const double& in, double& out) const {
  out = in;
  return 0;
}

int CTransformer::TransformAndOverwrite(std::vector<double>&, const std::vector<double>&,
                                        const std::vector<double>&) const {
  return 0;
}

int CTransformer::TransformAndOverwrite(double&, double, double) const { return 0; }

int CTransformer::BacktransformAndOverwrite(std::vector<double>&, const std::vector<double>&,
                                            const std::vector<double>&) const {
  return 0;
}

int CTransformer::BacktransformAndOverwrite(double&, double, double) const { return 0; }

int CTransformerExpo::Forward(double x, double, double, double& out) {
  out = std::exp(x);
  return 0;
}

int CTransformerExpo::Backward(double x, double, double, double& out) {
  if (!(x > kLeastOfLog)) return 1;
  out = std::log(x);
  return 0;
}

int CTransformerLogA::Forward(double x, double value, double, double& out) {
  out = std::log(x) * (1.0 / std::log(value));
  return 0;
}

int CTransformerLogA::Backward(double x, double value, double, double& out) {
  if (x > LimitOfExp()) return 1;
  out = std::log(value) * std::exp(x);
  return 0;
}

int CTransformerLogE::Forward(double x, double, double, double& out) {
  out = std::log(x);
  return 0;
}

int CTransformerLogE::Backward(double x, double, double, double& out) {
  if (x > LimitOfExp()) return 1;
  out = std::exp(x);
  return 0;
}

int CTransformerLog10::Forward(double x, double, double, double& out) {
  out = std::log10(x);
  return 0;
}

int CTransformerLog10::Backward(double x, double, double, double& out) {
  if (x > LimitOfExp()) return 1;
  out = std::pow(10.0, x);
  return 0;
}

int CTransformerSquare::Forward(double x, double, double, double& out) {
  out = std::sqrt(x);
  return 0;
}

int CTransformerSquare::Backward(double x, double, double, double& out) {
  out = std::pow(x, 2.0);
  return 0;
}

int CTransformerPower::Forward(double x, double value, double, double& out) {
  out = std::pow(x, value);
  return 0;
}

int CTransformerPower::Backward(double x, double value, double, double& out) {
  const double exponent = 1.0 / value;
  double limit = 0.0;
  if (exponent > 1.0) {
    if (x < 0.0) return 1;
    limit = std::pow(TransformValueLimit, value);
  }
  if (x < limit) return 1;
  out = std::pow(x, exponent);
  return 0;
}

int CTransformerBox::Forward(double x, double, double lambda, double& out) {
  if (CountsAsZero(lambda)) {
    if (!(x > 0.0)) return 1;
    out = std::log(x);
    return 0;
  }
  if (x < 0.0 || (x == 0.0 && !(lambda > 0.0))) return 1;
  out = (std::pow(x, lambda) - 1.0) / lambda;
  return 0;
}

int CTransformerBox::Backward(double x, double, double lambda, double& out) {
  if (!CountsAsZero(lambda)) return InverseBox(x, lambda, out);
  if (x > LimitOfExp()) return 1;
  out = std::exp(x);
  return 0;
}

int CTransformerLogBox::Forward(double x, double value, double lambda, double& out) {
  return Backward(x, value, lambda, out);
}

int CTransformerLogBox::Backward(double x, double, double lambda, double& out) {
  if (CountsAsZero(lambda)) {
    if (x > LimitOfExpExp()) return 1;
    out = std::exp(std::exp(x));
    return 0;
  }
  double power = 0.0;
  if (InverseBox(
          x, lambda, [](double limit) { return std::log(limit); }, power) != 0)
    return 1;
  out = std::exp(power);
  return 0;
}

int CTransformerYeo::Forward(double x, double, double lambda, double& out) {
  if (x < 0.0) {
    const double mirrored = 2.0 - lambda;
    out = CountsAsZero(mirrored) ? -std::log(1.0 - x)
                                 : (1.0 - std::pow(1.0 - x, mirrored)) / mirrored;
  } else {
    out = CountsAsZero(lambda) ? std::log(x + 1.0) : (std::pow(x + 1.0, lambda) - 1.0) / lambda;
  }
  return 0;
}

int CTransformerYeo::Backward(double x, double, double lambda, double& out) {
  // The branch below zero is that above zero with -x and 2 - lambda.
  const bool below = x < 0.0;
  const double shape = below ? 2.0 - lambda : lambda;
  const double argument = below ? -x : x;
  out = YeoFailureValue;
  double power = 0.0;
  if (!CountsAsZero(shape)) {
    if (InverseBox(argument, shape, power) != 0) return 1;
  } else {
    if (argument > LimitOfExp()) return 1;
    power = std::exp(argument);
  }
  out = below ? 1.0 - power : power - 1.0;
  return 0;
}

template <class Child, E_QRSTransformationType kType>
E_QRSTransformationType FormulaTransformer<Child, kType>::TransformationType() const {
  return kType;
}

template <class Child, E_QRSTransformationType kType>
CTransformer* FormulaTransformer<Child, kType>::Clone() const {
  return new Child(static_cast<const Child&>(*this));
}

template <class Child, E_QRSTransformationType kType>
int FormulaTransformer<Child, kType>::TransformAndOverwrite(
    std::vector<double>& x, const std::vector<double>& values,
    const std::vector<double>& lambdas) const {
  FormulaTransformer::TransformBlock(x.size(), x.data(), values.data(), lambdas.data());
  return 0;
}

template <class Child, E_QRSTransformationType kType>
int FormulaTransformer<Child, kType>::TransformAndOverwrite(double& x, double value,
                                                            double lambda) const {
  return Child::Forward(x, value, lambda, x);
}

template <class Child, E_QRSTransformationType kType>
int FormulaTransformer<Child, kType>::BacktransformAndOverwrite(
    std::vector<double>& x, const std::vector<double>& values,
    const std::vector<double>& lambdas) const {
  for (std::size_t i = 0; i < x.size(); ++i) Child::Backward(x[i], values[i], lambdas[i], x[i]);
  return 0;
}

template <class Child, E_QRSTransformationType kType>
int FormulaTransformer<Child, kType>::BacktransformAndOverwrite(double& x, double value,
                                                                double lambda) const {
  return Child::Backward(x, value, lambda, x);
}

template <class Child, E_QRSTransformationType kType>
void FormulaTransformer<Child, kType>::TransformBlock(std::size_t count, double* x,
                                                      const double* values, const double* lambdas) {
  for (std::size_t i = 0; i < count; ++i) Child::Forward(x[i], values[i], lambdas[i], x[i]);
}

template <class Child, E_QRSTransformationType kType>
int FormulaTransformer<Child, kType>::Transform(double x, double& out, double value,
                                                double lambda) const {
  return Child::Forward(x, value, lambda, out);
}

template <class Child, E_QRSTransformationType kType>
int FormulaTransformer<Child, kType>::Backtransform(double x, double& out, double value,
                                                    double lambda) const {
  return Child::Backward(x, value, lambda, out);
}

template class FormulaTransformer<CTransformerExpo, TransformExpo>;
template class FormulaTransformer<CTransformerLogA, TransformLogA>;
template class FormulaTransformer<CTransformerLogE, TransformLogE>;
template class FormulaTransformer<CTransformerLog10, TransformLog10>;
template class FormulaTransformer<CTransformerSquare, TransformSquare>;
template class FormulaTransformer<CTransformerPower, TransformPower>;
template class FormulaTransformer<CTransformerBox, TransformBox>;
template class FormulaTransformer<CTransformerLogBox, TransformLogBox>;
template class FormulaTransformer<CTransformerYeo, TransformYeo>;

namespace {

const CTransformer kIdentity;
const CTransformerExpo kExpo;
const CTransformerLogA kLogA;
const CTransformerLogE kLogE;
const CTransformerLog10 kLog10;
const CTransformerSquare kSquare;
const CTransformerPower kPower;
const CTransformerBox kBox;
const CTransformerLogBox kLogBox;
const CTransformerYeo kYeo;

void KeepBlock(std::size_t, double*, const double*, const double*) {}

struct Entry {
  const CTransformer* transformer;
  BlockTransform block;
};

template <class Transformer>
constexpr Entry EntryOf(const Transformer& transformer) {
  return {&transformer, &Transformer::TransformBlock};
}

// By the number of the type.
const Entry kTransformers[] = {
    {&kIdentity, &KeepBlock}, EntryOf(kExpo),  EntryOf(kLogA), EntryOf(kLogE),   EntryOf(kLog10),
    EntryOf(kSquare),         EntryOf(kPower), EntryOf(kBox),  EntryOf(kLogBox), EntryOf(kYeo)};

Entry EntryOf(E_QRSTransformationType type) noexcept {
  const auto index = static_cast<std::size_t>(type);
  return index < std::size(kTransformers) ? kTransformers[index] : Entry{};
}

}  // namespace

const CTransformer* FindTransformer(E_QRSTransformationType type) noexcept {
  return EntryOf(type).transformer;
}

BlockTransform FindBlockTransform(E_QRSTransformationType type) noexcept {
  return EntryOf(type).block;
}

}  // namespace Tarvane::Plexura::PXROM
