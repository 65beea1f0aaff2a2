#include "families/gaussian_process/gaussian_process_preparation.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <memory>
#include <vector>

#include "families/gaussian_process/fast_covariance.h"
#include "families/gaussian_process/prepared_error.h"
#include "families/gaussian_process/process.h"

namespace Tarvane::Plexura::PXROM::batch {

namespace {

using gaussian_process::Factor;
using gaussian_process::FastCovariance;
using gaussian_process::kCentresAtOnce;
using gaussian_process::PreparedError;
using gaussian_process::Process;

class ProcessSurface : public PreparedSurface {
 public:
  explicit ProcessSurface(const CGaussianProcessData& record)
      : record_(record),
        process_(record_),
        centres_(process_.Centres()),
        fast_(process_.Kernel(), centres_, record_.Weights),
        n_(process_.SampleCount()),
        d_(process_.Kernel().InputCount()),
        p_(process_.TrendPart().FunctionCount()) {
    if (process_.ErrorPart().IsAvailable()) error_ = std::make_unique<PreparedError>(record_);
  }

  std::size_t WorkSize(bool withErrors) const override {
    return Work(*this, withErrors && error_ != nullptr, nullptr).size;
  }

  std::size_t QuestionCount() const override { return kCentresAtOnce * kBlock; }

  void Evaluate(const Points& points, const Tools& tools, const Results& results) const override {
    const bool withErrors = results.errors != nullptr && error_ != nullptr;
    const Work work(*this, withErrors, tools.work);
    Scale(points, work);
    std::fill_n(work.sums, kBlock, 0.0);
    for (std::size_t first = 0; first < n_; first += kCentresAtOnce) {
      const std::size_t count = std::min(kCentresAtOnce, n_ - first);
      double* const covariances = work.covariances + (withErrors ? first * kBlock : 0);
      FillCovariances(points.count, tools, first, count, work, covariances);
      for (std::size_t row = 0; row < count; ++row) {
        const double weight = record_.Weights[first + row];
        const double* const values = covariances + row * kBlock;
        for (std::size_t point = 0; point < kBlock; ++point) {
          work.sums[point] += values[point] * weight;
        }
      }
    }
    FinishValues(points.count, work, results.values);
    if (withErrors) FillErrors(points.count, tools, work, results.errors);
    std::fill_n(results.statuses, points.count, results.errors != nullptr && !withErrors ? -2 : 0);
  }

  bool HasFastForm() const override { return fast_.IsThere(); }

  double FastDeviation(double magnitude) const override {
    // Adding the trend and backscaling round both, in much the same way.
    const double slope = std::fabs(record_.OutputScaleSlope);
    const double scaled = magnitude * slope + 2.0 * std::fabs(record_.OutputScaleIntercept);
    return (fast_.Deviation() + 0x1p-50 * scaled) / slope;
  }

  void FastValues(const Points& points, const Tools& tools, const Results& results) const override {
    const Work work(*this, false, tools.work);
    Scale(points, work);
    if (!fast_.Serves(work.x)) {
      Evaluate(points, tools, results);
      return;
    }
    std::fill_n(work.sums, kBlock, 0.0);
    fast_.AddSums(points.count, *tools.fast, work.x, work.fast, work.sums);
    FinishValues(points.count, work, results.values);
    std::fill_n(results.statuses, points.count, 0);
  }

  std::size_t GradientWorkSize() const override { return d_ + process_.GradientWorkSize(); }

  int Gradient(const double* x, double* work, double* gradient) const override {
    double* const u = work;
    for (std::size_t i = 0; i < d_; ++i) {
      u[i] = record_.InputScaleSlopes[i] * x[i] + record_.InputScaleIntercepts[i];
      gradient[i] = 0.0;
    }
    process_.AddGradient(u, centres_.data(), record_.Weights.data(),
                         record_.PolynomialCoefficients.data(), u + d_, gradient);
    for (std::size_t i = 0; i < d_; ++i) {
      gradient[i] *= record_.InputScaleSlopes[i] / record_.OutputScaleSlope;
    }
    return 0;
  }

 private:
  /// What an evaluation works on, laid out over a working area.
  struct Work {
    Work(const ProcessSurface& surface, bool withErrors, double* start) {
      WorkArea area(start);
      const std::size_t rows = std::min(surface.n_, kCentresAtOnce);
      x = area.Take(surface.d_ * kBlock);
      sums = area.Take(kBlock);
      unused = area.Take(kBlock);
      scales = area.Take(surface.d_);
      point = area.Take(surface.d_);
      functions = area.Take(surface.p_);
      allFunctions = area.Take(withErrors ? surface.error_->FunctionCount() * kBlock : 0);
      values = area.Take(rows * kBlock);
      products = area.Take(rows * kBlock);
      covariances = area.Take((withErrors ? surface.n_ : rows) * kBlock);
      fast = area.Take(surface.fast_.WorkSize());
      if (withErrors) {
        own = area.Take(surface.n_);
        single = area.Take(surface.process_.ErrorPart().WorkSize());
        error = area.Take(surface.error_->WorkSize());
      }
      size = area.Used();
    }

    double* x;  ///< the scaled points
    double* sums;
    double* unused;
    double* scales;
    double* point;  ///< one of the scaled points, and its trend functions
    double* functions;
    double* allFunctions;  ///< those that the error needs, of all points
    double* values;
    double* products;
    double* covariances;
    double* fast;
    double* own = nullptr;  ///< the covariances of one point, and what its error works with
    double* single = nullptr;
    double* error = nullptr;
    std::size_t size;
  };

  void Scale(const Points& points, const Work& work) const {
    for (std::size_t i = 0; i < d_; ++i) {
      const double slope = record_.InputScaleSlopes[i];
      const double intercept = record_.InputScaleIntercepts[i];
      for (std::size_t at = i * kBlock; at < (i + 1) * kBlock; ++at) {
        work.x[at] = slope * points.x[at] + intercept;
      }
    }
  }

  /// The covariances of the points with `count` centres from `first` on.
  void FillCovariances(std::size_t points, const Tools& tools, std::size_t first, std::size_t count,
                       const Work& work, double* covariances) const {
    const gaussian_process::Covariance& covariance = process_.Kernel();
    kernels::KernelSum call;
    call.inputs = d_;
    call.centreCount = count;
    call.centres = centres_.data() + first * d_;
    call.weights = record_.Weights.data() + first;
    call.x = work.x;
    call.points = points;
    call.sums = work.unused;
    call.values = work.values;
    call.questions = tools.questions;
    const std::size_t size = count * kBlock;
    double amplitude = 0.0;
    bool hasFactor = false;
    // The first product is where the sum begins.
    double* product = covariances;
    const auto multiply = [&](const Factor& factor) {
      call.kernel = factor.kernel;
      call.constants = factor.constants;
      call.scales = factor.rates;
      if (covariance.HasOneRate()) {
        std::fill_n(work.scales, d_, factor.rates[0]);
        call.scales = work.scales;
      }
      tools.exact->byKernel[factor.kernel->index].sum(call);
      if (hasFactor) {
        for (std::size_t at = 0; at < size; ++at) product[at] *= work.values[at];
      } else {
        for (std::size_t at = 0; at < size; ++at) product[at] = amplitude * work.values[at];
      }
      hasFactor = true;
    };
    covariance.ForEachTerm(
        [&](double own) {
          amplitude = own;
          hasFactor = false;
        },
        multiply,
        [&] {
          if (!hasFactor) std::fill_n(product, size, amplitude);
          for (std::size_t at = 0; product != covariances && at < size; ++at) {
            covariances[at] += product[at];
          }
          product = work.products;
        });
  }

  void FillFunctions(std::size_t point, const Work& work) const {
    for (std::size_t i = 0; i < d_; ++i) work.point[i] = work.x[i * kBlock + point];
    process_.TrendPart().FunctionsAt(work.point, work.functions);
  }

  void FinishValues(std::size_t count, const Work& work, double* values) const {
    for (std::size_t point = 0; point < count; ++point) {
      FillFunctions(point, work);
      const double trend =
          gaussian_process::Product(work.functions, record_.PolynomialCoefficients.data(), p_);
      values[point] =
          (trend + work.sums[point] - record_.OutputScaleIntercept) / record_.OutputScaleSlope;
    }
  }

  void FillErrors(std::size_t count, const Tools& tools, const Work& work, double* errors) const {
    const gaussian_process::PredictorError& single = process_.ErrorPart();
    const double atDistance0 = process_.Kernel().AtDistance0();
    for (std::size_t point = 0; error_->FunctionCount() > 0 && point < kBlock; ++point) {
      FillFunctions(point, work);
      for (std::size_t k = 0; k < p_; ++k) {
        work.allFunctions[k * kBlock + point] = work.functions[k];
      }
    }
    double variances[kBlock];
    error_->Variances(*tools.exact, count, work.covariances, work.allFunctions, atDistance0,
                      work.error, variances);
    for (std::size_t point = 0; point < count; ++point) {
      if (!std::isfinite(variances[point])) {
        FillFunctions(point, work);
        for (std::size_t j = 0; j < n_; ++j) work.own[j] = work.covariances[j * kBlock + point];
        variances[point] = single.Variance(work.own, work.functions, atDistance0, work.single);
      }
      errors[point] = single.Of(variances[point]) / std::fabs(record_.OutputScaleSlope);
    }
  }

  CGaussianProcessData record_;
  Process process_;
  std::vector<double> centres_;  ///< scaled
  FastCovariance fast_;
  std::size_t n_;
  std::size_t d_;
  std::size_t p_;
  std::unique_ptr<const PreparedError> error_;  ///< null without its data
};

}  // namespace

std::unique_ptr<const PreparedSurface> PrepareGaussianProcess(const CRSData& record, std::size_t) {
  return std::make_unique<ProcessSurface>(static_cast<const CGaussianProcessData&>(record));
}

}  // namespace Tarvane::Plexura::PXROM::batch
