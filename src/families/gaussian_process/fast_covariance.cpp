#include "families/gaussian_process/fast_covariance.h"

#include <algorithm>
#include <cmath>

namespace Tarvane::Plexura::PXROM::gaussian_process {

namespace {

using batch::kBlock;

constexpr double kUnit = 0x1p-53;  // what one rounding may do, relative
/// No coordinate of a point or a centre in a fast sum is larger, and no parameter.
constexpr double kLargest = 1e100;
/// Each factor has centres of its own: with more of them the memory would grow out of proportion.
constexpr std::size_t kMostFactors = 16;

bool IsModest(double value) { return std::fabs(value) <= kLargest; }

}  // namespace

FastCovariance::FastCovariance(const Covariance& covariance, const std::vector<double>& centres,
                               const std::vector<double>& weights)
    : inputs_(covariance.InputCount()), centreCount_(inputs_ == 0 ? 0 : centres.size() / inputs_) {
  if (centreCount_ == 0 || covariance.FactorCount() > kMostFactors) return;
  std::vector<Term> terms;
  bool isThere = true;
  double perKernel = 0.0;
  covariance.ForEachTerm(
      [&](double amplitude) {
        terms.emplace_back();
        for (std::size_t j = 0; j < centreCount_; ++j) {
          terms.back().weights.push_back(amplitude * weights[j]);
        }
        perKernel = 0.0;
      },
      [&](const Factor& factor) {
        isThere =
            isThere && Take(factor, covariance.HasOneRate(), centres, terms.back(), perKernel);
      },
      [&] {
        double weight = 0.0;
        for (const double w : terms.back().weights) weight += std::fabs(w);
        // Rounding errors of a long sum grow with the root of its length, in all likelihood: eight
        // times that leaves no more than one in 10^13 sums beyond.
        const double perSum = 8.0 * std::sqrt(static_cast<double>(centreCount_));
        deviation_ += (perKernel + perSum) * weight * kUnit;
      });
  if (isThere && std::isfinite(deviation_)) terms_ = std::move(terms);
}

bool FastCovariance::Take(const Factor& factor, bool hasOneRate, const std::vector<double>& centres,
                          Term& term, double& deviation) const {
  const kernels::FastForm* const form = factor.kernel->fast;
  const double parameter = factor.constants.parameter;
  if (form == nullptr || !IsModest(parameter) || !IsModest(1.0 / parameter)) return false;
  Prepared own;
  own.kernel = factor.kernel;
  own.constants = factor.constants;
  for (std::size_t i = 0; i < inputs_; ++i) {
    own.inputFactors.push_back(form->inputFactor(factor.rates[hasOneRate ? 0 : i]));
  }
  own.centres = centres;
  double norm1 = 0.0;
  double norm2 = 0.0;
  for (std::size_t j = 0; j < centreCount_; ++j) {
    double sum = 0.0;
    double squares = 0.0;
    for (std::size_t i = 0; i < inputs_; ++i) {
      double& value = own.centres[j * inputs_ + i];
      value *= own.inputFactors[i];
      sum += std::fabs(value);
      squares += value * value;
    }
    norm1 = std::max(norm1, sum);
    norm2 = std::max(norm2, std::sqrt(squares));
  }
  if (!std::all_of(own.inputFactors.begin(), own.inputFactors.end(), IsModest) ||
      !std::all_of(own.centres.begin(), own.centres.end(), IsModest)) {
    return false;
  }
  // No function that has a fast form is larger than 1.
  deviation += form->deviation(static_cast<double>(inputs_), norm1, norm2) + 1.0;
  term.factors.push_back(std::move(own));
  return true;
}

bool FastCovariance::Serves(const double* x) const {
  return IsThere() && std::all_of(x, x + inputs_ * kBlock, IsModest);
}

std::size_t FastCovariance::WorkSize() const {
  return (inputs_ + 1 + 2 * std::min(centreCount_, kCentresAtOnce)) * kBlock;
}

void FastCovariance::AddSums(std::size_t points, const kernels::LoopTable& loops, const double* x,
                             double* work, double* sums, batch::SharedValues* shared,
                             std::size_t block) const {
  kernels::KernelSum call;
  call.inputs = inputs_;
  call.points = points;
  call.x = work;
  call.sums = work + inputs_ * kBlock;
  call.values = call.sums + kBlock;
  double* const products = call.values + std::min(centreCount_, kCentresAtOnce) * kBlock;
  const auto take = [&](const Prepared& factor, std::size_t first, std::size_t count) {
    for (std::size_t i = 0; i < inputs_; ++i) {
      const double own = factor.inputFactors[i];
      for (std::size_t at = i * kBlock; at < (i + 1) * kBlock; ++at) work[at] = x[at] * own;
    }
    call.kernel = factor.kernel;
    call.constants = factor.constants;
    call.centres = factor.centres.data() + first * inputs_;
    call.centreCount = count;
  };
  for (const Term& term : terms_) {
    if (term.factors.size() == 1) {
      take(term.factors[0], 0, centreCount_);
      call.weights = term.weights.data();
      if (shared == nullptr || !IsOneKernel()) {
        loops.byKernel[call.kernel->index].fastSum(call);
      } else {
        using Form = batch::SharedValues::Form;
        call.values = shared->Of(block, centreCount_);
        if (shared->forms[block] != Form::Fast) {
          loops.byKernel[call.kernel->index].fastValues(call);
          shared->forms[block] = Form::Fast;
        }
        loops.fastWeigh(call);
      }
      for (std::size_t point = 0; point < kBlock; ++point) sums[point] += call.sums[point];
      continue;
    }
    for (std::size_t first = 0; first < centreCount_; first += kCentresAtOnce) {
      const std::size_t count = std::min(kCentresAtOnce, centreCount_ - first);
      for (std::size_t row = 0; row < count; ++row) {
        std::fill_n(products + row * kBlock, kBlock, term.weights[first + row]);
      }
      for (const Prepared& factor : term.factors) {
        take(factor, first, count);
        loops.byKernel[call.kernel->index].fastValues(call);
        for (std::size_t at = 0; at < count * kBlock; ++at) products[at] *= call.values[at];
      }
      for (std::size_t row = 0; row < count; ++row) {
        const double* const values = products + row * kBlock;
        for (std::size_t point = 0; point < kBlock; ++point) sums[point] += values[point];
      }
    }
  }
}

}  // namespace Tarvane::Plexura::PXROM::gaussian_process
