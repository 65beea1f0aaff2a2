#include "families/kernel_sum/kernel_surface.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "kernels/loops/row_pieces.h"
#include "numerics/polynomial_basis.h"

namespace Tarvane::Plexura::PXROM::batch {

namespace {

/// The parts of an evaluation's working area.
struct KernelWork {
  /// `errorBlocks` is 0 without errors.
  KernelWork(const KernelModel& model, std::size_t errorBlocks, double* start) {
    WorkArea area(start);
    const std::size_t n = model.centreCount;
    const bool withErrors = errorBlocks > 0;
    x = area.Take((model.inputs + 1) * kBlock);
    sums = area.Take(kBlock);
    trend = area.Take(kBlock);
    values = area.Take(withErrors ? errorBlocks * n * kBlock
                                  : std::max(n, std::min(n, kernels::kChunk) * kBlock));
    steps = area.Take(2 * model.inputs * kBlock);
    if (withErrors) {
      w = area.Take(errorBlocks * model.error->norms->FunctionRows() * kBlock);
      squaresOfV = area.Take(errorBlocks * kBlock);
      squaresOfG = area.Take(errorBlocks * kBlock);
      norms = area.Take(model.error->norms->WorkSize(errorBlocks));
    }
    size = area.Used();
  }

  double* x;  ///< the scaled points, and a row of ones after them
  double* sums;
  double* trend;
  double* values;
  double* steps;
  double* w = nullptr;
  double* squaresOfV = nullptr;
  double* squaresOfG = nullptr;
  double* norms = nullptr;
  std::size_t size;
};

Sharing::Array ArrayOf(std::vector<double> values) {
  return std::make_shared<const std::vector<double>>(std::move(values));
}

class KernelSurface : public PreparedSurface {
 public:
  explicit KernelSurface(KernelModel model)
      : model_(std::move(model)),
        fast_(FindFastKernels(model_)),
        centres_(ArrayOf(std::move(model_.centres))),
        fastCentres_(ArrayOf(std::move(fast_.centres))) {}

  std::size_t Share(Sharing& sharing) override {
    if (model_.kernel == nullptr) return Sharing::kNoSlot;
    centres_ = sharing.Pooled(centres_);
    fastCentres_ = sharing.Pooled(fastCentres_);
    slot_ = sharing.SlotOf(model_.kernel,
                           {ArrayOf(model_.inputSlopes), ArrayOf(model_.inputIntercepts), centres_,
                            ArrayOf(model_.scales), ArrayOf(model_.centreScales)},
                           model_.centreCount);
    if (model_.error != nullptr) {
      model_.error->norms = sharing.Pooled(model_.error->norms);
      std::vector<double> functions;
      for (const Monomial& term : model_.trend) {
        functions.insert(functions.end(),
                         {static_cast<double>(term.first), static_cast<double>(term.second)});
      }
      errorSlot_ = sharing.ErrorSlotOf(slot_, model_.error->norms, ArrayOf(std::move(functions)));
    }
    return slot_;
  }

  std::size_t BlocksAtOnce(bool withErrors) const override {
    return withErrors && model_.error != nullptr ? ErrorNorms::kBlocksAtOnce : 1;
  }

  std::size_t WorkSize(bool withErrors, std::size_t blocks) const override {
    return KernelWork(model_, withErrors && model_.error != nullptr ? blocks : 0, nullptr).size;
  }

  std::size_t QuestionCount() const override {
    return (std::min(model_.centreCount, kernels::kChunk) + model_.inputs) * kBlock;
  }

  void Evaluate(const Points& points, const Tools& tools, const Results& results) const override {
    const bool withErrors = results.errors != nullptr;
    if (withErrors && !model_.hasErrorForm) {
      std::fill_n(results.statuses, points.count, 1);
      return;
    }
    std::fill_n(results.statuses, points.count, withErrors && model_.error == nullptr ? -2 : 0);
    if (withErrors && model_.error != nullptr) {
      EvaluateWithErrors(points, tools, results);
      return;
    }
    const KernelWork work(model_, 0, tools.work);
    Scale(points, work);
    SumExactly(points.count, points.firstBlock, tools, work, nullptr);
    FinishValues(points.count, *tools.exact, work, results.values);
  }

  bool HasErrors() const override { return model_.error != nullptr; }

  bool HasFastForm() const override { return !fast_.inputFactors.empty(); }

  double FastDeviation(double magnitude) const override {
    // Both forms round when they add the trend and scale back, by about as much.
    const double scaled =
        magnitude * std::fabs(model_.outputSlope) + 2.0 * std::fabs(model_.outputIntercept);
    return (fast_.deviation + 0x1p-50 * scaled) / std::fabs(model_.outputSlope);
  }

  void FastValues(const Points& points, const Tools& tools, const Results& results) const override {
    const KernelWork work(model_, 0, tools.work);
    Scale(points, work);
    // With moderate coordinates no infinity and no NaN occurs that the fast form could lose.
    const auto isModest = [](double value) { return std::fabs(value) <= kLargestFast; };
    if (!HasFastForm() || !std::all_of(work.x, work.x + model_.inputs * kBlock, isModest)) {
      Evaluate(points, tools, results);
      return;
    }
    // The trend is computed first, since the points are overwritten below.
    AddTrend(points.count, *tools.exact, work);
    SumFast(points.count, points.firstBlock, tools, work);
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
    if (model_.kernel != nullptr) model_.kernel->addGradients(Centres(), u, own, gradient);
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
      for (std::size_t point = 0; point < kBlock; ++point)
        to[point] = slope * from[point] + intercept;
    }
    std::fill_n(work.x + model_.inputs * kBlock, kBlock, 1.0);
  }

  kernels::WeightedKernels Centres() const {
    kernels::WeightedKernels call;
    call.kernel = model_.kernel;
    call.inputs = model_.inputs;
    call.constants = model_.constants;
    call.centreCount = model_.centreCount;
    call.centres = centres_->data();
    call.scales = model_.scales.data();
    call.centreScales = model_.centreScales.empty() ? nullptr : model_.centreScales.data();
    call.weights = model_.weights.data();
    return call;
  }

  kernels::KernelSum Call(std::size_t count, const KernelWork& work) const {
    kernels::KernelSum call;
    static_cast<kernels::WeightedKernels&>(call) = Centres();
    call.start = model_.start;
    call.x = work.x;
    call.points = count;
    call.sums = work.sums;
    call.values = work.values;
    call.steps = work.steps;
    return call;
  }

  /// Stores the kernels of all centres in `values` unless that is null, or where they are shared.
  void SumExactly(std::size_t count, std::size_t block, const Tools& tools, const KernelWork& work,
                  double* values) const {
    if (model_.kernel == nullptr) {
      std::fill_n(work.sums, kBlock, model_.start);
      return;
    }
    kernels::KernelSum call = Call(count, work);
    call.keepsValues = values != nullptr;
    if (call.keepsValues) call.values = values;
    call.questions = tools.questions;
    if (SharedValues* const shared = tools.SharedAt(slot_)) {
      call.keepsValues = true;
      call.values = shared->Of(block, model_.centreCount);
      if (shared->forms[block] == SharedValues::Form::Exact) {
        tools.exact->weigh(call);
        return;
      }
      shared->forms[block] = SharedValues::Form::Exact;
    }
    if (count == 1 && !call.keepsValues) {
      work.sums[0] = SumAtOnePoint(*tools.exact, call, work.steps);
    } else {
      tools.exact->byKernel[model_.kernel->index].sum(call);
    }
  }

  /// The same sum by the loops in which the lanes of a vector are samples: for a single point those
  /// of a block would compute copies of it. `x` holds a value per input.
  double SumAtOnePoint(const kernels::LoopTable& loops, const kernels::KernelSum& sums,
                       double* x) const {
    for (std::size_t i = 0; i < model_.inputs; ++i) x[i] = sums.x[i * kBlock];
    kernels::RowKernels call;
    static_cast<kernels::KernelCall&>(call) = sums;
    call.x = x;
    call.scales = sums.scales;
    double sum = sums.start;
    kernels::ForRowKernels(&loops, call, kernels::FlatRows{sums.centres, model_.inputs},
                           sums.centreCount, sums.centreScales, sums.values,
                           [&](std::size_t first, std::size_t last) {
                             for (std::size_t j = first; j < last; ++j) {
                               sum += sums.values[j] * sums.weights[j];
                             }
                           });
    return sum;
  }

  void SumFast(std::size_t count, std::size_t block, const Tools& tools,
               const KernelWork& work) const {
    kernels::KernelSum call = Call(count, work);
    const kernels::KernelLoops& loops = tools.fast->byKernel[model_.kernel->index];
    SharedValues* const shared = tools.SharedAt(slot_);
    if (shared != nullptr) {
      call.values = shared->Of(block, model_.centreCount);
      if (shared->forms[block] == SharedValues::Form::Fast) {
        tools.fast->fastWeigh(call);
        return;
      }
    }
    for (std::size_t i = 0; i < model_.inputs; ++i) {
      for (std::size_t point = 0; point < kBlock; ++point) {
        work.x[i * kBlock + point] *= fast_.inputFactors[i];
      }
    }
    call.centres = fastCentres_->data();
    call.centreScales = fast_.centreFactors.empty() ? nullptr : fast_.centreFactors.data();
    if (shared == nullptr) {
      loops.fastSum(call);
      return;
    }
    loops.fastValues(call);
    tools.fast->fastWeigh(call);
    shared->forms[block] = SharedValues::Form::Fast;
  }

  void AddTrend(std::size_t count, const LoopTable& loops, const KernelWork& work) const {
    if (!model_.hasTrend) return;
    loops.polynomial({model_.trend.data(), model_.trend.size(), false}, work.x, count, work.trend);
  }

  void Backscale(std::size_t count, const KernelWork& work, double* values) const {
    for (std::size_t point = 0; point < count; ++point) {
      const double sum = model_.hasTrend ? work.trend[point] + work.sums[point] : work.sums[point];
      values[point] = (sum - model_.outputIntercept) / model_.outputSlope;
    }
  }

  void FinishValues(std::size_t count, const LoopTable& loops, const KernelWork& work,
                    double* values) const {
    AddTrend(count, loops, work);
    Backscale(count, work, values);
  }

  /// All blocks of the points.
  void EvaluateWithErrors(const Points& points, const Tools& tools, const Results& results) const {
    const KrigingErrorData& data = *model_.error;
    const std::size_t n = model_.centreCount;
    const std::size_t blocks = (points.count + kBlock - 1) / kBlock;
    const KernelWork work(model_, blocks, tools.work);
    SharedErrors* const shared = tools.SharedErrorsAt(errorSlot_);
    const bool areNormsThere =
        shared != nullptr && shared->AreFilled(points.firstBlock, points.firstBlock + blocks);
    for (std::size_t b = 0; b < blocks; ++b) {
      const std::size_t first = b * kBlock;
      const Points block = {points.x + first * model_.inputs,
                            std::min(kBlock, points.count - first), points.firstBlock + b};
      Scale(block, work);
      SumExactly(block.count, block.firstBlock, tools, work, work.values + first * n);
      FinishValues(block.count, *tools.exact, work, results.values + first);
      if (areNormsThere) continue;
      double* const w = work.w + first * data.norms->FunctionRows();
      tools.exact->products({model_.trend.data(), model_.trend.size(), false}, work.x, block.count,
                            w);
      for (std::size_t k = 0; k < data.functions * kBlock; ++k) w[k] = -w[k];
    }
    double* squaresOfV = work.squaresOfV;
    double* squaresOfG = work.squaresOfG;
    if (shared != nullptr) {
      squaresOfV = shared->squaresOfV + points.firstBlock * kBlock;
      squaresOfG = shared->squaresOfG + points.firstBlock * kBlock;
    }
    if (!areNormsThere) {
      const SharedValues* const values = tools.SharedAt(slot_);
      const double* const r = values != nullptr ? values->Of(points.firstBlock, n) : work.values;
      data.norms->Fill(*tools.exact, {points.count, r, work.w, work.norms, squaresOfV, squaresOfG});
      if (shared != nullptr) shared->SetFilled(points.firstBlock, points.firstBlock + blocks);
    }
    for (std::size_t point = 0; point < points.count; ++point) {
      const double nc = std::sqrt(squaresOfV[point]);
      const double ng = std::sqrt(squaresOfG[point]);
      results.errors[point] = std::sqrt(std::fabs((ng * ng + 1.0 - nc * nc) * data.sigma2));
    }
    // A record holds its variance in the unit of its values.
    results.FillInUnit(points.count);
  }

  KernelModel model_;  ///< without the centres
  FastKernels fast_;   ///< also without them
  Sharing::Array centres_;
  Sharing::Array fastCentres_;
  std::size_t slot_ = Sharing::kNoSlot;
  std::size_t errorSlot_ = Sharing::kNoSlot;
};

}  // namespace

std::vector<Monomial> TrendTerms(E_PolynomialType type, std::size_t inputs,
                                 const std::vector<double>& coefficients) {
  const auto one = static_cast<std::uint32_t>(inputs);
  std::vector<Monomial> terms;
  terms.reserve(coefficients.size());
  const auto add = [&](std::size_t first, std::size_t second) {
    terms.push_back({coefficients[terms.size()], static_cast<std::uint32_t>(first),
                     static_cast<std::uint32_t>(second)});
  };
  ForEachBasisFunction(
      type, inputs, coefficients.size(), [&] { add(one, one); },
      [&](std::size_t i) { add(i, one); }, add);
  return terms;
}

std::unique_ptr<PreparedSurface> MakeKernelSurface(KernelModel model) {
  return std::make_unique<KernelSurface>(std::move(model));
}

}  // namespace Tarvane::Plexura::PXROM::batch
