#include "batch/kernel_surface.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "numerics/polynomial_basis.h"

namespace Tarvane::Plexura::PXROM::batch {

namespace {

/// What an evaluation works on, laid out over a working area.
struct KernelWork {
  KernelWork(const KernelModel& model, bool withErrors, double* start) {
    WorkArea area(start);
    const std::size_t n = model.centreCount;
    const std::size_t p = withErrors ? model.error->functions : 0;
    x = area.Take((model.inputs + 1) * kBlock);
    sums = area.Take(kBlock);
    trend = area.Take(kBlock);
    kernels = area.Take((withErrors ? n : std::min(n, kChunk)) * kBlock);
    steps = area.Take(2 * model.inputs * kBlock);
    v = area.Take(withErrors ? n * kBlock : 0);
    f = area.Take(p * kBlock);
    w = area.Take(2 * p * kBlock);
    size = area.Used();
  }

  double* x;  ///< the scaled points, and a row of ones behind them
  double* sums;
  double* trend;
  double* kernels;
  double* steps;
  double* v;
  double* f;
  double* w;
  std::size_t size;
};

class KernelSurface : public PreparedSurface {
 public:
  explicit KernelSurface(KernelModel model)
      : model_(std::move(model)), fast_(FindFastKernels(model_)) {}

  std::size_t WorkSize(bool withErrors) const override {
    return KernelWork(model_, withErrors && model_.error != nullptr, nullptr).size;
  }

  std::size_t QuestionCount() const override {
    return (std::min(model_.centreCount, kChunk) + model_.inputs) * kBlock;
  }

  void Evaluate(const Points& points, const Tools& tools, const Results& results) const override {
    const bool withErrors = results.errors != nullptr;
    if (withErrors && !model_.hasErrorForm) {
      std::fill_n(results.statuses, points.count, 1);
      return;
    }
    const bool hasError = withErrors && model_.error != nullptr;
    const KernelWork work(model_, hasError, tools.work);
    Scale(points, work);
    KernelSum call = Call(points.count, work);
    call.centres = model_.centres.data();
    call.widths = model_.widths.empty() ? nullptr : model_.widths.data();
    call.keepsKernels = hasError;
    call.questions = tools.questions;
    tools.exact->sum(call);
    FinishValues(points.count, *tools.exact, work, results.values);
    std::fill_n(results.statuses, points.count, withErrors && !hasError ? -2 : 0);
    if (hasError) FillErrors(points.count, *tools.exact, work, results.errors);
  }

  bool HasFastForm() const override { return !fast_.factors.empty(); }

  double FastDeviation(double magnitude) const override {
    // Adding the trend and backscaling round both, in much the same way.
    const double scaled =
        magnitude * std::fabs(model_.outputSlope) + 2.0 * std::fabs(model_.outputIntercept);
    return (fast_.deviation + 0x1p-50 * scaled) / std::fabs(model_.outputSlope);
  }

  void FastValues(const Points& points, const Tools& tools, const Results& results) const override {
    const KernelWork work(model_, false, tools.work);
    Scale(points, work);
    // Where nothing is infinite or no number on the way, nothing has to be told apart.
    const auto isModest = [](double value) { return std::fabs(value) <= kLargestFast; };
    if (!HasFastForm() || !std::all_of(work.x, work.x + model_.inputs * kBlock, isModest)) {
      Evaluate(points, tools, results);
      return;
    }
    KernelSum call = Call(points.count, work);
    // The trend is computed first, since the points are overwritten.
    AddTrend(points.count, *tools.exact, work);
    for (std::size_t i = 0; i < model_.inputs; ++i) {
      for (std::size_t lane = 0; lane < kBlock; ++lane) {
        work.x[i * kBlock + lane] *= fast_.factors[i];
      }
    }
    call.centres = fast_.centres.data();
    call.widths = fast_.widths.empty() ? nullptr : fast_.widths.data();
    tools.fast->fastSum(call);
    Backscale(points.count, work, results.values);
    std::fill_n(results.statuses, points.count, 0);
  }

  std::size_t GradientWorkSize() const override { return 5 * model_.inputs + 1; }

  int Gradient(const double* x, double* work, double* gradient) const override {
    const std::size_t d = model_.inputs;
    double* const u = work;
    double* const own = work + d + 1;
    for (std::size_t i = 0; i < d; ++i) {
      u[i] = IsScaled() ? model_.inputSlopes[i] * x[i] + model_.inputIntercepts[i] : x[i];
      gradient[i] = 0.0;
    }
    u[d] = 1.0;
    AddKernelGradients(model_, u, own, gradient);
    for (const Monomial& term : model_.trend) {
      if (term.first < d) gradient[term.first] += term.coefficient * u[term.second];
      if (term.second < d) gradient[term.second] += term.coefficient * u[term.first];
    }
    for (std::size_t i = 0; i < d; ++i) {
      gradient[i] *= (IsScaled() ? model_.inputSlopes[i] : 1.0) / model_.outputSlope;
    }
    return 0;
  }

 private:
  bool IsScaled() const { return !model_.inputSlopes.empty(); }

  void Scale(const Points& points, const KernelWork& work) const {
    for (std::size_t i = 0; i < model_.inputs; ++i) {
      const double* const from = points.x + i * kBlock;
      double* const to = work.x + i * kBlock;
      if (!IsScaled()) {
        std::copy_n(from, kBlock, to);
        continue;
      }
      const double slope = model_.inputSlopes[i];
      const double intercept = model_.inputIntercepts[i];
      for (std::size_t lane = 0; lane < kBlock; ++lane) to[lane] = slope * from[lane] + intercept;
    }
    std::fill_n(work.x + model_.inputs * kBlock, kBlock, 1.0);
  }

  KernelSum Call(std::size_t count, const KernelWork& work) const {
    KernelSum call;
    call.kernel = model_.kernel;
    call.inputs = model_.inputs;
    call.centreCount = model_.centreCount;
    call.kernels = model_.kernels.data();
    call.weights = model_.weights.data();
    call.start = model_.start;
    call.shift = model_.shift;
    call.perInput = model_.perInput;
    call.x = work.x;
    call.points = count;
    call.sums = work.sums;
    call.values = work.kernels;
    call.steps = work.steps;
    return call;
  }

  void AddTrend(std::size_t count, const Lanes& lanes, const KernelWork& work) const {
    if (!model_.hasTrend) return;
    lanes.polynomial({model_.trend.data(), model_.trend.size(), false}, work.x, count, work.trend);
  }

  void Backscale(std::size_t count, const KernelWork& work, double* values) const {
    for (std::size_t lane = 0; lane < count; ++lane) {
      const double sum = model_.hasTrend ? work.trend[lane] + work.sums[lane] : work.sums[lane];
      values[lane] = (sum - model_.outputIntercept) / model_.outputSlope;
    }
  }

  void FinishValues(std::size_t count, const Lanes& lanes, const KernelWork& work,
                    double* values) const {
    AddTrend(count, lanes, work);
    Backscale(count, work, values);
  }

  void FillErrors(std::size_t count, const Lanes& lanes, const KernelWork& work,
                  double* errors) const {
    const KrigingErrorData& data = *model_.error;
    lanes.products({model_.trend.data(), model_.trend.size(), false}, work.x, count, work.f);
    KrigingErrorSum call;
    call.samples = model_.centreCount;
    call.functions = data.functions;
    call.invC = data.invC.data();
    call.lengths = data.lengths.data();
    call.invG = data.invG.data();
    call.ft = data.ft.data();
    call.sigma2 = data.sigma2;
    call.r = work.kernels;
    call.f = work.f;
    call.points = count;
    call.v = work.v;
    call.w = work.w;
    call.errors = errors;
    lanes.krigingError(call);
  }

  KernelModel model_;
  FastKernels fast_;
};

}  // namespace

std::vector<Monomial> TrendTerms(E_PolynomialType type, std::size_t inputs,
                                 const std::vector<double>& coefficients) {
  // The order is that of EvaluatePolynomialBasis.
  const auto one = static_cast<std::uint32_t>(inputs);
  std::vector<Monomial> terms;
  terms.reserve(coefficients.size());
  const auto add = [&](std::uint32_t first, std::uint32_t second) {
    if (terms.size() < coefficients.size()) {
      terms.push_back({coefficients[terms.size()], first, second});
    }
  };
  if (type >= PolyConstant) add(one, one);
  for (std::uint32_t i = 0; type >= PolyLinear && i < one; ++i) add(i, one);
  for (std::uint32_t i = 0; type == PolyPureQuadratic && i < one; ++i) add(i, i);
  for (std::uint32_t i = 0; type == PolyFullQuadratic && i < one; ++i) {
    for (std::uint32_t j = i; j < one && terms.size() < coefficients.size(); ++j) add(i, j);
  }
  return terms;
}

std::unique_ptr<const PreparedSurface> MakeKernelSurface(KernelModel model) {
  return std::make_unique<KernelSurface>(std::move(model));
}

}  // namespace Tarvane::Plexura::PXROM::batch
