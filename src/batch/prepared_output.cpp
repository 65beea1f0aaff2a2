#include "batch/prepared_output.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

#include "batch/prepare_surface.h"
#include "model/candidate_access.h"
#include "model/candidate_evaluation.h"

namespace Tarvane::Plexura::PXROM::batch {

namespace {

using Access = CandidateAccess;

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
// A little less than the fast mode's tolerance, which leaves a margin for the last roundings.
constexpr double kFastTolerance = 0.9e-11;

std::vector<std::unique_ptr<const PreparedSurface>> Prepare(
    const std::vector<std::shared_ptr<CRSData>>& records, std::size_t inputs, Sharing& sharing,
    std::vector<std::size_t>& slots) {
  std::vector<std::unique_ptr<const PreparedSurface>> surfaces;
  surfaces.reserve(records.size());
  for (const auto& record : records) {
    std::unique_ptr<PreparedSurface> surface = PrepareSurface(*record, inputs);
    const std::size_t slot = surface->Share(sharing);
    if (slot != Sharing::kNoSlot) slots.push_back(slot);
    surfaces.push_back(std::move(surface));
  }
  return surfaces;
}

/// The larger of `largest` and the magnitudes of the values with a status other than 1. Infinite if
/// one of them is not finite.
double LargestOf(double largest, const double* values, const int* statuses, std::size_t count) {
  for (std::size_t point = 0; point < count; ++point) {
    if (statuses[point] == 1) continue;
    if (!std::isfinite(values[point])) return std::numeric_limits<double>::infinity();
    largest = std::max(largest, std::fabs(values[point]));
  }
  return largest;
}

}  // namespace

/// The parts of an evaluation's working area.
struct PreparedOutput::Work {
  Work(const PreparedOutput& output, bool withErrors, std::size_t blocks, double* start) {
    WorkArea area(start);
    const bool validates = withErrors && output.validation_ != nullptr;
    x = area.Take(blocks * output.inputs_ * kBlock);
    values = area.Take(blocks * kBlock);
    errors = area.Take(blocks * kBlock);
    inUnit = area.Take(withErrors && !validates ? 3 * blocks * kBlock : 0);
    folds = area.Take(validates ? output.validation_->Folds() * kBlock : 0);
    validation = area.Take(validates ? output.validation_->WorkSize() : 0);
    std::size_t largest = 0;
    for (const auto& each : output.surfaces_) {
      largest = std::max(largest, each->WorkSize(withErrors, blocks));
    }
    for (const auto& each : output.subSurfaces_) {
      largest = std::max(largest, each->WorkSize(false, 1));
    }
    surface = area.Take(largest);
    size = area.Used();
  }

  double* x;
  double* values;
  double* errors;
  double* inUnit;
  double* folds;
  double* validation;
  double* surface;
  std::size_t size;
};

PreparedOutput::PreparedOutput(const CFittingCandidates& candidates, std::size_t inputs,
                               Sharing& sharing)
    : inputs_(inputs) {
  const CFittingCandidate* const candidate = candidates.GetEvaluationCandidatePtr();
  if (candidate == nullptr || Access::InputScaleSlopes(*candidate).size() != inputs ||
      Access::InputScaleIntercepts(*candidate).size() != inputs ||
      Access::Weights(*candidate).size() < Access::Surfaces(*candidate).size()) {
    isRefused_ = true;
    return;
  }
  inputSlopes_ = Access::InputScaleSlopes(*candidate);
  inputIntercepts_ = Access::InputScaleIntercepts(*candidate);
  candidate->GetOutputScaleSlope(outputSlope_);
  candidate->GetOutputScaleIntercept(outputIntercept_);
  sharing.Enter(inputSlopes_, inputIntercepts_);
  surfaces_ = Prepare(Access::Surfaces(*candidate), inputs, sharing, slots_);
  weights_ = Access::Weights(*candidate);
  origin_.surfaces = surfaces_.size();
  if (!candidate->GetIsErrPredRequired()) {
    FindErrorOrigin();
    return;
  }

  const std::optional<CrossValidation> validation = ValidationOf(*candidate, inputs);
  areErrorsRefused_ = !validation.has_value();
  if (areErrorsRefused_) return;
  subSurfaces_ = Prepare(Access::SubSurfaces(*candidate), inputs, sharing, subSlots_);
  validation_ = std::make_unique<PreparedCrossValidation>(*validation, inputs);
  origin_.origin = ErrorFromCrossValidation;
}

void PreparedOutput::FindErrorOrigin() {
  bool doAll = true;
  bool isTransformed = false;
  for (std::size_t i = 0; i < surfaces_.size(); ++i) {
    if (weights_[i] == 0.0) continue;
    if (!surfaces_[i]->HasErrors()) {
      doAll = false;
      continue;
    }
    origin_.origin = ErrorFromOneSurface;
    origin_.surface = i;
    origin_.firstOrder = surfaces_[i]->AreErrorsFirstOrder();
    isTransformed = isTransformed || origin_.firstOrder;
  }
  if (!doAll || origin_.origin == ErrorNone) return;
  origin_.origin = ErrorFromAllSurfaces;
  origin_.surface = 0;
  origin_.firstOrder = isTransformed;
}

double PreparedOutput::ShareOfError(std::size_t surface) const {
  if (origin_.origin == ErrorFromAllSurfaces) return std::fabs(weights_[surface]);
  return origin_.origin == ErrorFromOneSurface && surface == origin_.surface ? 1.0 : 0.0;
}

std::vector<std::size_t> PreparedOutput::Slots(bool withErrors) const {
  std::vector<std::size_t> slots = slots_;
  if (withErrors) slots.insert(slots.end(), subSlots_.begin(), subSlots_.end());
  return slots;
}

std::size_t PreparedOutput::BlocksAtOnce(bool withErrors) const {
  std::size_t most = 1;
  if (validation_ != nullptr) return most;
  for (const auto& surface : surfaces_) most = std::max(most, surface->BlocksAtOnce(withErrors));
  return most;
}

std::size_t PreparedOutput::WorkSize(bool withErrors, std::size_t blocks) const {
  return Work(*this, withErrors, blocks, nullptr).size;
}

std::size_t PreparedOutput::QuestionCount() const {
  std::size_t largest = 0;
  for (const auto& surface : surfaces_) largest = std::max(largest, surface->QuestionCount());
  for (const auto& surface : subSurfaces_) largest = std::max(largest, surface->QuestionCount());
  return largest;
}

bool PreparedOutput::HasFastForm(bool withErrors) const {
  // The errors of single surfaces are small differences of large numbers, so approximations are not
  // good enough. The exact error also gives the exact value.
  if (withErrors && validation_ == nullptr) return false;
  const auto hasOne = [](const auto& surface) { return surface->HasFastForm(); };
  return std::any_of(surfaces_.begin(), surfaces_.end(), hasOne) ||
         (withErrors && std::any_of(subSurfaces_.begin(), subSurfaces_.end(), hasOne));
}

bool PreparedOutput::IsNearEnough(const FastProgress& progress, bool withErrors) const {
  const auto deviationOf = [&](const Surfaces& surfaces, std::size_t first, std::size_t stride) {
    double sum = 0.0;
    for (std::size_t i = 0; i < surfaces_.size(); ++i) {
      const double magnitude = progress.largestSurface;
      const double own = surfaces[i * stride + first]->FastDeviation(magnitude);
      sum += std::fabs(weights_[i]) * (own + 0x1p-50 * magnitude);
    }
    return sum;
  };
  // A result that is not finite may come only from the fast form.
  const bool isFinite = std::isfinite(progress.largestValue) &&
                        std::isfinite(progress.largestError) &&
                        std::isfinite(progress.largestSurface);
  if (!isFinite) return false;
  const double slope = std::fabs(outputSlope_);
  const double value = deviationOf(surfaces_, 0, 1);
  const double rounding = 0x1p-50 * std::fabs(outputIntercept_);
  // Also false for a NaN.
  if (!((value + rounding) / slope <= kFastTolerance * progress.largestValue)) return false;
  if (!withErrors) return true;
  double fold = value;
  for (std::size_t f = 0; f < validation_->Folds(); ++f) {
    fold = std::max(fold, deviationOf(subSurfaces_, f, validation_->Folds()));
  }
  // Three times a root mean square of the differences of two predictions.
  return 6.0 * fold / slope <= kFastTolerance * progress.largestError;
}

void PreparedOutput::Evaluate(const Points& points, const Tools& tools, const Results& results,
                              FastProgress* progress) const {
  const bool withErrors = results.errors != nullptr;
  if (isRefused_ || (withErrors && areErrorsRefused_)) {
    std::fill_n(results.statuses, points.count, 1);
  } else if (progress == nullptr || !HasFastForm(withErrors)) {
    Run(points, tools, results, nullptr);
  } else {
    // Tried on the first block, and on others if it has been accurate enough so far.
    const bool isTried = progress->isFirst || IsNearEnough(*progress, withErrors);
    FastProgress next = *progress;
    next.isFirst = false;
    if (isTried) Run(points, tools, results, &next);
    if (!isTried || !IsNearEnough(next, withErrors)) {
      next.largestValue = progress->largestValue;
      next.largestError = progress->largestError;
      if (!std::isfinite(next.largestSurface)) next.largestSurface = progress->largestSurface;
      Run(points, tools, results, nullptr);
      next.largestValue =
          LargestOf(next.largestValue, results.values, results.statuses, points.count);
      if (withErrors) {
        next.largestError =
            LargestOf(next.largestError, results.errors, results.statuses, points.count);
      }
      if (!std::isfinite(next.largestValue)) next.largestValue = progress->largestValue;
      if (!std::isfinite(next.largestError)) next.largestError = progress->largestError;
    }
    *progress = next;
  }
  for (std::size_t point = 0; point < points.count; ++point) {
    if (results.statuses[point] == 1) results.values[point] = kNaN;
    if (withErrors && results.statuses[point] != 0) results.errors[point] = kNaN;
  }
}

void PreparedOutput::Scale(const Points& points, std::size_t blocks, double* scaled) const {
  for (std::size_t row = 0; row < blocks * inputs_; ++row) {
    const std::size_t i = row % inputs_;
    const double* const from = points.x + row * kBlock;
    double* const to = scaled + row * kBlock;
    for (std::size_t point = 0; point < kBlock; ++point) {
      to[point] = inputSlopes_[i] * from[point] + inputIntercepts_[i];
    }
  }
}

void PreparedOutput::AddValue(const PreparedSurface& surface, double weight, const Work& work,
                              const Points& scaled, const Tools& tools, int* statuses, double* sums,
                              FastProgress* progress) const {
  int own[kBlock];
  const Results results = {work.values, nullptr, own};
  if (progress != nullptr) {
    surface.FastValues(scaled, tools, results);
    progress->largestSurface = LargestOf(progress->largestSurface, work.values, own, scaled.count);
  } else {
    surface.Evaluate(scaled, tools, results);
  }
  for (std::size_t point = 0; point < scaled.count; ++point) {
    if (own[point] == 1) statuses[point] = 1;
    sums[point] += weight * work.values[point];
  }
}

void PreparedOutput::AddWithErrors(std::size_t surface, const Work& work, const Points& scaled,
                                   const Tools& tools, const Results& results) const {
  const std::size_t atOnce = surfaces_[surface]->BlocksAtOnce(true) * kBlock;
  std::vector<int> own(scaled.count);
  for (std::size_t first = 0; first < scaled.count; first += atOnce) {
    surfaces_[surface]->Evaluate(
        {scaled.x + first * inputs_, std::min(atOnce, scaled.count - first),
         scaled.firstBlock + first / kBlock},
        tools, {work.values + first, work.errors + first, own.data() + first});
  }
  for (std::size_t point = 0; point < scaled.count; ++point) {
    // Status 1 takes precedence over -2, and -2 over 0.
    if (results.statuses[point] != 1 && own[point] != 0) results.statuses[point] = own[point];
    // The errors are not combined: the last one remains.
    if (own[point] == 0) results.errors[point] = work.errors[point];
    results.values[point] += weights_[surface] * work.values[point];
  }
}

// With `progress` it uses the surfaces' fast forms and stores their largest results there.
void PreparedOutput::Run(const Points& points, const Tools& tools, const Results& results,
                         FastProgress* progress) const {
  const bool withErrors = results.errors != nullptr;
  const std::size_t blocks = (points.count + kBlock - 1) / kBlock;
  const Work work(*this, withErrors, blocks, tools.work);
  Scale(points, blocks, work.x);
  const Points scaled = {work.x, points.count, points.firstBlock};
  Tools surfaceTools = tools;
  surfaceTools.work = work.surface;
  std::fill_n(results.values, points.count, 0.0);
  std::fill_n(results.statuses, points.count, 0);

  if (withErrors && validation_ == nullptr) {
    std::fill_n(results.errors, points.count, 0.0);
    for (std::size_t i = 0; i < surfaces_.size(); ++i) {
      AddWithErrors(i, work, scaled, surfaceTools, results);
    }
    Backscale(points.count, results);
    return;
  }

  for (std::size_t i = 0; i < surfaces_.size(); ++i) {
    AddValue(*surfaces_[i], weights_[i], work, scaled, surfaceTools, results.statuses,
             results.values, progress);
  }
  if (withErrors) {
    const std::size_t folds = validation_->Folds();
    std::fill_n(work.folds, folds * kBlock, 0.0);
    for (std::size_t k = 0; k < subSurfaces_.size(); ++k) {
      AddValue(*subSurfaces_[k], weights_[k / folds], work, scaled, surfaceTools, results.statuses,
               work.folds + k % folds * kBlock, progress);
    }
    validation_->Evaluate(scaled, *tools.exact, work.folds, results.values, work.validation,
                          results.errors, results.statuses);
  }
  Backscale(points.count, results);
  if (progress == nullptr) return;
  progress->largestValue =
      LargestOf(progress->largestValue, results.values, results.statuses, points.count);
  if (withErrors) {
    progress->largestError =
        LargestOf(progress->largestError, results.errors, results.statuses, points.count);
  }
}

void PreparedOutput::Backscale(std::size_t count, const Results& results) const {
  for (std::size_t point = 0; point < count; ++point) {
    if (outputSlope_ != 0.0) {
      results.values[point] = (results.values[point] - outputIntercept_) / outputSlope_;
    } else if (results.statuses[point] == 0) {
      // The status -2 of a missing error has precedence, and the value remains in the scaled space.
      results.statuses[point] = 1;
    }
  }
}

void PreparedOutput::EvaluateWithUnits(const Points& points, const Tools& tools,
                                       const CResultsInUnits& results,
                                       FastProgress* progress) const {
  if (validation_ != nullptr) {
    ValidateInUnits(points, tools, results, progress);
  } else {
    RunInUnits(points, tools, results);
  }
  for (std::size_t point = 0; point < points.count; ++point) {
    int& status = results.statuses[point];
    if (status == 0 && std::isnan(results.errors[point])) status = -2;
    if (status == 1) results.values[point] = kNaN;
    if (status == 0) continue;
    results.errors[point] = kNaN;
    results.lower[point] = kNaN;
    results.upper[point] = kNaN;
    results.rawErrors[point] = kNaN;
  }
}

void PreparedOutput::ValidateInUnits(const Points& points, const Tools& tools,
                                     const CResultsInUnits& results, FastProgress* progress) const {
  Evaluate(points, tools, {results.values, results.rawErrors, results.statuses}, progress);
  for (std::size_t point = 0; point < points.count; ++point) {
    results.errors[point] = std::fabs(results.rawErrors[point]);
    results.lower[point] = results.values[point] - results.errors[point];
    results.upper[point] = results.values[point] + results.errors[point];
  }
  if (std::count(results.statuses, results.statuses + points.count, 1) == 0) return;
  // A fold that fails takes only the error with it.
  double values[kBlock];
  int statuses[kBlock];
  Evaluate(points, tools, {values, nullptr, statuses}, nullptr);
  for (std::size_t point = 0; point < points.count; ++point) {
    if (results.statuses[point] != 1 || statuses[point] != 0) continue;
    results.values[point] = values[point];
    results.statuses[point] = -2;
  }
}

void PreparedOutput::AddInUnits(std::size_t surface, const Work& work, const Points& scaled,
                                const Tools& tools, const CResultsInUnits& results) const {
  const double share = ShareOfError(surface);
  const bool hasError = share > 0.0;
  const PreparedSurface& prepared = *surfaces_[surface];
  const std::size_t size = (scaled.count + kBlock - 1) / kBlock * kBlock;
  const ErrorsInUnit inUnit = {work.inUnit, work.inUnit + size, work.inUnit + 2 * size};
  std::vector<int> own(size);
  const std::size_t atOnce = prepared.BlocksAtOnce(hasError) * kBlock;
  for (std::size_t first = 0; first < scaled.count; first += atOnce) {
    Results some = {work.values + first, nullptr, own.data() + first};
    if (hasError) {
      some.errors = work.errors + first;
      some.inUnit = {inUnit.errors + first, inUnit.below + first, inUnit.above + first};
    }
    prepared.Evaluate({scaled.x + first * inputs_, std::min(atOnce, scaled.count - first),
                       scaled.firstBlock + first / kBlock},
                      tools, some);
  }
  const bool isTurned = origin_.origin == ErrorFromAllSurfaces && weights_[surface] < 0.0;
  const double* const below = isTurned ? inUnit.above : inUnit.below;
  const double* const above = isTurned ? inUnit.below : inUnit.above;
  for (std::size_t point = 0; point < scaled.count; ++point) {
    if (own[point] == 1) results.statuses[point] = 1;
    results.values[point] += weights_[surface] * work.values[point];
    if (!hasError) continue;
    results.rawErrors[point] = work.errors[point];
    results.errors[point] += share * (own[point] == 0 ? inUnit.errors[point] : kNaN);
    results.lower[point] += share * below[point];
    results.upper[point] += share * above[point];
  }
}

void PreparedOutput::RunInUnits(const Points& points, const Tools& tools,
                                const CResultsInUnits& results) const {
  const std::size_t blocks = (points.count + kBlock - 1) / kBlock;
  const Work work(*this, true, blocks, tools.work);
  Scale(points, blocks, work.x);
  Tools surfaceTools = tools;
  surfaceTools.work = work.surface;
  for (double* const sums : {results.values, results.errors, results.lower, results.upper}) {
    std::fill_n(sums, points.count, 0.0);
  }
  std::fill_n(results.statuses, points.count, 0);
  for (std::size_t i = 0; i < surfaces_.size(); ++i) {
    AddInUnits(i, work, {work.x, points.count, points.firstBlock}, surfaceTools, results);
  }
  Backscale(points.count, {results.values, results.errors, results.statuses});
  const double slope = std::fabs(outputSlope_);
  for (std::size_t point = 0; point < points.count; ++point) {
    double below = results.lower[point] / slope;
    double above = results.upper[point] / slope;
    if (outputSlope_ < 0.0) std::swap(below, above);
    results.errors[point] /= slope;
    results.lower[point] = results.values[point] - below;
    results.upper[point] = results.values[point] + above;
  }
}

std::size_t PreparedOutput::GradientWorkSize() const {
  std::size_t largest = 0;
  for (const auto& surface : surfaces_) {
    largest = std::max(largest, surface->GradientWorkSize());
  }
  return 2 * inputs_ + largest;
}

int PreparedOutput::Gradient(const double* x, double* work, double* gradient) const {
  double* const scaled = work;
  double* const own = work + inputs_;
  double* const rest = own + inputs_;
  bool isThere = !isRefused_ && outputSlope_ != 0.0;
  std::fill_n(gradient, inputs_, 0.0);
  for (std::size_t i = 0; isThere && i < inputs_; ++i) {
    scaled[i] = inputSlopes_[i] * x[i] + inputIntercepts_[i];
  }
  for (std::size_t k = 0; isThere && k < surfaces_.size(); ++k) {
    isThere = surfaces_[k]->Gradient(scaled, rest, own) == 0;
    for (std::size_t i = 0; isThere && i < inputs_; ++i) gradient[i] += weights_[k] * own[i];
  }
  if (!isThere) {
    std::fill_n(gradient, inputs_, kNaN);
    return 1;
  }
  for (std::size_t i = 0; i < inputs_; ++i) gradient[i] *= inputSlopes_[i] / outputSlope_;
  return 0;
}

}  // namespace Tarvane::Plexura::PXROM::batch
