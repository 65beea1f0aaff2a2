#include "families/gaussian_process/covariance.h"

#include <algorithm>
#include <cstdint>
#include <utility>

#include "kernels/loops/row_pieces.h"

namespace Tarvane::Plexura::PXROM::gaussian_process {

namespace {

/// Whether there are lengths for `factors` factors: one each, or one per input each.
bool HaveLengths(const std::vector<double>& lengths, std::size_t factors, std::size_t inputs) {
  const bool isCount = lengths.size() == factors || (inputs > 0 && lengths.size() % inputs == 0 &&
                                                     lengths.size() / inputs == factors);
  return isCount &&
         std::all_of(lengths.begin(), lengths.end(), [](double length) { return length > 0.0; });
}

}  // namespace

Covariance::Covariance(const CGaussianProcessData& record)
    : inputs_(static_cast<std::size_t>(std::max(record.NumberOfInputVariables, 0))) {
  const std::size_t count = record.FactorFunctions.size();
  if (record.FactorTerms.size() != count || record.FactorParameters.size() != count ||
      !HaveLengths(record.FactorLengths, count, inputs_)) {
    return;
  }
  hasOneRate_ = record.FactorLengths.size() == count;
  rates_.reserve(record.FactorLengths.size());
  for (const double length : record.FactorLengths) rates_.push_back(1.0 / length);

  std::vector<Term> terms;
  std::size_t f = 0;
  for (std::size_t t = 0; t < record.TermAmplitudes.size(); ++t) {
    terms.push_back({record.TermAmplitudes[t], f, f});
    for (; f < count && record.FactorTerms[f] == static_cast<std::int64_t>(t); ++f) {
      const int function = record.FactorFunctions[f];
      const double parameter = record.FactorParameters[f];
      Factor factor;
      factor.kernel = kernels::FindKernel(static_cast<E_CovarianceFunctionType>(function));
      if (factor.kernel == nullptr || (HasParameter(function) && !(parameter > 0.0))) return;
      factor.constants = factor.kernel->constants(static_cast<double>(inputs_));
      if (HasParameter(function)) factor.constants.parameter = parameter;
      factor.rates = rates_.data() + (hasOneRate_ ? f : f * inputs_);
      factors_.push_back(factor);
    }
    terms.back().end = f;
  }
  // Factors out of order, or of no term, are left over.
  if (f == count) terms_ = std::move(terms);
}

double Covariance::AtDistance0() const {
  double sum = 0.0;
  double product = 0.0;
  ForEachTerm(
      [&](double amplitude) { product = amplitude; },
      [&](const Factor& factor) { product *= factor.kernel->value(factor.constants, 0.0, 1.0); },
      [&] { sum += product; });
  return sum;
}

void Covariance::OfRows(const double* u, const std::vector<double>* rows, std::size_t count,
                        const double* slopes, const double* intercepts, double* covariances) const {
  const kernels::LoopTable* const loops = kernels::LoopsForRows();
  kernels::RowKernels call;
  call.inputs = inputs_;
  call.x = u;
  call.slopes = slopes;
  call.intercepts = intercepts;
  call.isOneScale = hasOneRate_;
  double product[kernels::kRows];
  double values[kernels::kRows];
  for (std::size_t first = 0; first < count; first += kernels::kRows) {
    const std::size_t size = std::min(kernels::kRows, count - first);
    double* const sums = covariances + first;
    std::fill_n(sums, size, 0.0);
    ForEachTerm([&](double amplitude) { std::fill_n(product, size, amplitude); },
                [&](const Factor& factor) {
                  call.kernel = factor.kernel;
                  call.constants = factor.constants;
                  call.scales = factor.rates;
                  kernels::ForRowKernels(loops, call, rows + first, size, nullptr, values,
                                         [](std::size_t, std::size_t) {});
                  for (std::size_t k = 0; k < size; ++k) product[k] *= values[k];
                },
                [&] {
                  for (std::size_t k = 0; k < size; ++k) sums[k] += product[k];
                });
  }
}

std::size_t Covariance::GradientWorkSize() const {
  std::size_t most = 0;
  for (const Term& term : terms_) most = std::max(most, term.end - term.begin);
  return inputs_ + (3 + most) * kCentresAtOnce;
}

void Covariance::AddGradient(const double* u, const double* centres, std::size_t count,
                             const double* weights, double* work, double* gradient) const {
  for (std::size_t first = 0; first < count; first += kCentresAtOnce) {
    AddGradientOfSome(u, centres + first * inputs_, std::min(kCentresAtOnce, count - first),
                      weights + first, work, gradient);
  }
}

void Covariance::AddGradientOfSome(const double* u, const double* centres, std::size_t count,
                                   const double* weights, double* work, double* gradient) const {
  double* const scales = work;
  double* const before = scales + inputs_;
  double* const others = before + count;
  double* const values = others + count;
  double* const after = values + count;
  kernels::WeightedKernels call;
  call.inputs = inputs_;
  call.centreCount = count;
  call.centres = centres;
  call.weights = others;
  for (const Term& term : terms_) {
    // The product rule: each factor is weighted by those before it and after it.
    const std::size_t factors = term.end - term.begin;
    for (std::size_t f = factors; f-- > 1;) {
      double* const own = after + (f - 1) * count;
      FactorAtCentres(factors_[term.begin + f], u, centres, count, own);
      for (std::size_t j = 0; f + 1 < factors && j < count; ++j) own[j] *= own[count + j];
    }
    for (std::size_t j = 0; j < count; ++j) before[j] = weights[j] * term.amplitude;
    for (std::size_t f = 0; f < factors; ++f) {
      const Factor& factor = factors_[term.begin + f];
      const bool isLast = f + 1 == factors;
      for (std::size_t j = 0; j < count; ++j) {
        others[j] = isLast ? before[j] : before[j] * after[f * count + j];
      }
      if (hasOneRate_) std::fill_n(scales, inputs_, factor.rates[0]);
      call.kernel = factor.kernel;
      call.constants = factor.constants;
      call.scales = hasOneRate_ ? scales : factor.rates;
      call.kernel->addGradients(call, u, nullptr, gradient);
      if (isLast) break;
      FactorAtCentres(factor, u, centres, count, values);
      for (std::size_t j = 0; j < count; ++j) before[j] *= values[j];
    }
  }
}

void Covariance::FactorAtCentres(const Factor& factor, const double* u, const double* centres,
                                 std::size_t count, double* values) const {
  kernels::RowKernels call;
  call.kernel = factor.kernel;
  call.constants = factor.constants;
  call.inputs = inputs_;
  call.x = u;
  call.scales = factor.rates;
  call.isOneScale = hasOneRate_;
  call.count = 1;
  for (std::size_t j = 0; j < count; ++j) {
    const double* const centre = centres + j * inputs_;
    call.rows = &centre;
    call.values = values + j;
    call.kernel->rows(call);
  }
}

}  // namespace Tarvane::Plexura::PXROM::gaussian_process
