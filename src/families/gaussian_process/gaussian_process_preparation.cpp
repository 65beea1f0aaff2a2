#include "families/gaussian_process/gaussian_process_preparation.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <memory>
#include <vector>

#include "families/gaussian_process/fast_covariance.h"
#include "families/gaussian_process/process.h"
#include "records/error_norms.h"

namespace Tarvane::Plexura::PXROM::batch {

namespace {

using gaussian_process::Factor;
using gaussian_process::FastCovariance;
using gaussian_process::kCentresAtOnce;
using gaussian_process::Process;

/// The record has the data of an error.
std::shared_ptr<const ErrorNorms> NormsOf(const CGaussianProcessData& record, std::size_t n) {
  const auto triangle = [](const std::vector<double>& factor) {
    return [&](std::size_t r) { return factor.data() + r * (r + 1) / 2; };
  };
  // w = f - H v: the sign is turned here.
  std::vector<std::vector<double>> trend = record.TrendAtSamples;
  for (auto& row : trend) {
    for (double& value : row) value = -value;
  }
  using simd::Panels;
  return std::make_shared<const ErrorNorms>(
      Panels::OfTriangle(n, triangle(record.InverseFactor)),
      Panels::OfAll(trend.size(), n, [&](std::size_t k) { return trend[k].data(); }),
      Panels::OfTriangle(trend.size(), triangle(record.TrendInverseFactor)));
}

template <class Values>
Sharing::Array ArrayOfNumbers(const Values& values) {
  return std::make_shared<const std::vector<double>>(values.begin(), values.end());
}

class ProcessSurface : public PreparedSurface {
 public:
  explicit ProcessSurface(const CGaussianProcessData& record)
      : record_(record),
        process_(record_),
        centres_(std::make_shared<const std::vector<double>>(process_.Centres())),
        fast_(process_.Kernel(), *centres_, record_.Weights),
        n_(process_.SampleCount()),
        d_(process_.Kernel().InputCount()),
        p_(process_.TrendPart().FunctionCount()) {
    if (!process_.ErrorPart().IsAvailable()) return;
    norms_ = NormsOf(record_, n_);
    errorFunctions_ = record_.TrendAtSamples.size();
    // The panels hold them now. An assignment of nothing would keep the memory.
    std::vector<double>().swap(record_.InverseFactor);
    std::vector<double>().swap(record_.TrendInverseFactor);
    std::vector<std::vector<double>>().swap(record_.TrendAtSamples);
  }

  std::size_t Share(Sharing& sharing) override {
    if (n_ == 0) return Sharing::kNoSlot;
    centres_ = sharing.Pooled(centres_);
    slot_ = sharing.SlotOf(
        nullptr,
        {ArrayOfNumbers(record_.InputScaleSlopes), ArrayOfNumbers(record_.InputScaleIntercepts),
         centres_, ArrayOfNumbers(record_.TermAmplitudes), ArrayOfNumbers(record_.FactorTerms),
         ArrayOfNumbers(record_.FactorFunctions), ArrayOfNumbers(record_.FactorParameters),
         ArrayOfNumbers(record_.FactorLengths)},
        n_);
    if (norms_ != nullptr) {
      norms_ = sharing.Pooled(norms_);
      std::vector<int> trend = record_.Monomials;
      trend.push_back(record_.PolynomialType);
      errorSlot_ = sharing.ErrorSlotOf(slot_, norms_, ArrayOfNumbers(trend));
    }
    return slot_;
  }

  std::size_t BlocksAtOnce(bool withErrors) const override {
    return withErrors && norms_ != nullptr ? ErrorNorms::kBlocksAtOnce : 1;
  }

  std::size_t WorkSize(bool withErrors, std::size_t blocks) const override {
    return Work(*this, withErrors && norms_ != nullptr ? blocks : 0, nullptr).size;
  }

  std::size_t QuestionCount() const override { return kCentresAtOnce * kBlock; }

  void Evaluate(const Points& points, const Tools& tools, const Results& results) const override {
    const bool withErrors = results.errors != nullptr;
    std::fill_n(results.statuses, points.count, withErrors && norms_ == nullptr ? -2 : 0);
    if (withErrors && norms_ != nullptr) {
      EvaluateWithErrors(points, tools, results);
      return;
    }
    const Work work(*this, 0, tools.work);
    EvaluateBlock(points, tools, work, nullptr, results.values);
  }

  bool HasErrors() const override { return norms_ != nullptr; }

  bool HasFastForm() const override { return fast_.IsThere(); }

  double FastDeviation(double magnitude) const override {
    // Adding the trend and backscaling round both, in much the same way.
    const double slope = std::fabs(record_.OutputScaleSlope);
    const double scaled = magnitude * slope + 2.0 * std::fabs(record_.OutputScaleIntercept);
    return (fast_.Deviation() + 0x1p-50 * scaled) / slope;
  }

  void FastValues(const Points& points, const Tools& tools, const Results& results) const override {
    const Work work(*this, 0, tools.work);
    Scale(points, work);
    if (!fast_.Serves(work.x)) {
      Evaluate(points, tools, results);
      return;
    }
    std::fill_n(work.sums, kBlock, 0.0);
    fast_.AddSums(points.count, *tools.fast, work.x, work.fast, work.sums, tools.SharedAt(slot_),
                  points.firstBlock);
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
    process_.AddGradient(u, centres_->data(), record_.Weights.data(),
                         record_.PolynomialCoefficients.data(), u + d_, gradient);
    for (std::size_t i = 0; i < d_; ++i) {
      gradient[i] *= record_.InputScaleSlopes[i] / record_.OutputScaleSlope;
    }
    return 0;
  }

 private:
  /// What an evaluation works on, laid out over a working area.
  struct Work {
    /// `errorBlocks` is 0 without errors.
    Work(const ProcessSurface& surface, std::size_t errorBlocks, double* start) {
      WorkArea area(start);
      const std::size_t rows = std::min(surface.n_, kCentresAtOnce);
      x = area.Take(surface.d_ * kBlock);
      sums = area.Take(kBlock);
      unused = area.Take(kBlock);
      scales = area.Take(surface.d_);
      point = area.Take(surface.d_);
      functions = area.Take(surface.p_);
      values = area.Take(rows * kBlock);
      products = area.Take(rows * kBlock);
      covariances = area.Take((errorBlocks > 0 ? errorBlocks * surface.n_ : rows) * kBlock);
      fast = area.Take(surface.fast_.WorkSize());
      if (errorBlocks > 0) {
        w = area.Take(errorBlocks * surface.norms_->FunctionRows() * kBlock);
        squaresOfV = area.Take(errorBlocks * kBlock);
        squaresOfG = area.Take(errorBlocks * kBlock);
        norms = area.Take(surface.norms_->WorkSize(errorBlocks));
      }
      size = area.Used();
    }

    double* x;  ///< the scaled points
    double* sums;
    double* unused;
    double* scales;
    double* point;  ///< one of the scaled points, and its trend functions
    double* functions;
    double* values;
    double* products;
    double* covariances;
    double* fast;
    double* w = nullptr;  ///< block by block, first the trend functions
    double* squaresOfV = nullptr;
    double* squaresOfG = nullptr;
    double* norms = nullptr;
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
    call.centres = centres_->data() + first * d_;
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

  /// The values of one block. Stores the covariances with all centres in `covariances` unless that
  /// is null, or where they are shared.
  void EvaluateBlock(const Points& points, const Tools& tools, const Work& work,
                     double* covariances, double* values) const {
    Scale(points, work);
    std::fill_n(work.sums, kBlock, 0.0);
    bool areThere = false;
    if (SharedValues* const shared = tools.SharedAt(slot_)) {
      SharedValues::Form& form = shared->forms[points.firstBlock];
      areThere = form == SharedValues::Form::Exact;
      form = SharedValues::Form::Exact;
      covariances = shared->Of(points.firstBlock, n_);
    }
    for (std::size_t first = 0; first < n_; first += kCentresAtOnce) {
      const std::size_t count = std::min(kCentresAtOnce, n_ - first);
      double* const own = covariances != nullptr ? covariances + first * kBlock : work.covariances;
      if (!areThere) FillCovariances(points.count, tools, first, count, work, own);
      for (std::size_t row = 0; row < count; ++row) {
        const double weight = record_.Weights[first + row];
        for (std::size_t point = 0; point < kBlock; ++point) {
          work.sums[point] += own[row * kBlock + point] * weight;
        }
      }
    }
    FinishValues(points.count, work, values);
  }

  /// All blocks of the points.
  void EvaluateWithErrors(const Points& points, const Tools& tools, const Results& results) const {
    const std::size_t blocks = (points.count + kBlock - 1) / kBlock;
    const Work work(*this, blocks, tools.work);
    SharedErrors* const shared = tools.SharedErrorsAt(errorSlot_);
    const bool areNormsThere =
        shared != nullptr && shared->AreFilled(points.firstBlock, points.firstBlock + blocks);
    for (std::size_t b = 0; b < blocks; ++b) {
      const std::size_t first = b * kBlock;
      const Points block = {points.x + first * d_, std::min(kBlock, points.count - first),
                            points.firstBlock + b};
      EvaluateBlock(block, tools, work, work.covariances + first * n_, results.values + first);
      if (areNormsThere) continue;
      double* const w = work.w + first * norms_->FunctionRows();
      for (std::size_t point = 0; errorFunctions_ > 0 && point < kBlock; ++point) {
        FillFunctions(point, work);
        for (std::size_t k = 0; k < errorFunctions_; ++k) {
          w[k * kBlock + point] = work.functions[k];
        }
      }
    }
    double* squaresOfV = work.squaresOfV;
    double* squaresOfG = work.squaresOfG;
    if (shared != nullptr) {
      squaresOfV = shared->squaresOfV + points.firstBlock * kBlock;
      squaresOfG = shared->squaresOfG + points.firstBlock * kBlock;
    }
    if (!areNormsThere) {
      const SharedValues* const values = tools.SharedAt(slot_);
      const double* const r =
          values != nullptr ? values->Of(points.firstBlock, n_) : work.covariances;
      norms_->Fill(*tools.exact, {points.count, r, work.w, work.norms, squaresOfV, squaresOfG});
      if (shared != nullptr) shared->SetFilled(points.firstBlock, points.firstBlock + blocks);
    }
    const double atDistance0 = process_.Kernel().AtDistance0();
    for (std::size_t point = 0; point < points.count; ++point) {
      const double variance = atDistance0 - squaresOfV[point] + squaresOfG[point];
      results.errors[point] = process_.ErrorPart().Of(variance < 0.0 ? 0.0 : variance) /
                              std::fabs(record_.OutputScaleSlope);
    }
    results.FillInUnit(points.count);
  }

  CGaussianProcessData record_;
  Process process_;
  Sharing::Array centres_;  ///< scaled
  FastCovariance fast_;
  std::size_t n_;
  std::size_t d_;
  std::size_t p_;
  std::shared_ptr<const ErrorNorms> norms_;  ///< null without the data of an error
  std::size_t errorFunctions_ = 0;           ///< 0 for a trend that is known
  std::size_t slot_ = Sharing::kNoSlot;
  std::size_t errorSlot_ = Sharing::kNoSlot;
};

}  // namespace

std::unique_ptr<PreparedSurface> PrepareGaussianProcess(const CRSData& record, std::size_t) {
  return std::make_unique<ProcessSurface>(static_cast<const CGaussianProcessData&>(record));
}

}  // namespace Tarvane::Plexura::PXROM::batch
