#pragma once

#include <cstddef>
#include <memory>
#include <vector>

#include "kernels/loops/loop_table.h"
#include "pxrom/rs_data.h"
#include "pxrom/rs_evaluator.h"
#include "records/sharing.h"

namespace Tarvane::Plexura::PXROM::batch {

using kernels::Question;
using simd::kBlock;
using simd::LoopTable;
using simd::Monomial;
using simd::Polynomial;

/// Divides a working area into parts, each a whole number of cache lines. Without an area it only
/// counts, so one function gives both the size of an area and the places in it.
class WorkArea {
 public:
  explicit WorkArea(double* start = nullptr) : start_(start) {}
  double* Take(std::size_t count) {
    constexpr std::size_t kLine = 8;
    double* const part = start_ != nullptr ? start_ + used_ : nullptr;
    used_ += (count + kLine - 1) / kLine * kLine;
    return part;
  }
  std::size_t Used() const { return used_; }

 private:
  double* start_;
  std::size_t used_ = 0;
};

/// What a surface needs besides its own data: the loops and a working area.
struct Tools {
  const kernels::LoopTable* exact = nullptr;
  const kernels::LoopTable* fast = nullptr;
  double* work = nullptr;         ///< WorkSize values
  Question* questions = nullptr;  ///< QuestionCount of them
  /// By the slots of Sharing; null where nothing is shared.
  SharedValues* shared = nullptr;
  SharedErrors* sharedErrors = nullptr;

  /// Null where other surfaces do not need them.
  SharedValues* SharedAt(std::size_t slot) const {
    const bool isShared =
        slot != Sharing::kNoSlot && shared != nullptr && shared[slot].values != nullptr;
    return isShared ? &shared[slot] : nullptr;
  }
  SharedErrors* SharedErrorsAt(std::size_t slot) const {
    return slot != Sharing::kNoSlot && sharedErrors != nullptr ? &sharedErrors[slot] : nullptr;
  }
};

/// The points of one or more blocks, in the space that the candidate hands to its surfaces.
struct Points {
  const double* x = nullptr;   ///< block by block, in each of them input by input, see kBlock
  std::size_t count = 0;       ///< 1 or more; copies of the last one fill up the last block
  std::size_t firstBlock = 0;  ///< which of the blocks for which values are shared
};

/// Errors in the unit of the values that they belong to. None is negative.
struct ErrorsInUnit {
  double* errors = nullptr;
  // From the value to both ends of the interval; different where a transformation bends it.
  double* below = nullptr;
  double* above = nullptr;
};

/// The results of the blocks: kBlock values for each of them, of which the first Points::count
/// count.
struct Results {
  double* values = nullptr;
  double* errors = nullptr;  ///< null for the form without errors
  int* statuses = nullptr;   ///< as the evaluator's: 0, 1 or, with errors, -2
  /// Asked for only with errors, from a surface that HasErrors.
  ErrorsInUnit inUnit = {};

  /// For a surface whose errors are in the unit of its values. Does nothing unless they are asked
  /// for.
  void FillInUnit(std::size_t count) const;
};

/// One surface, prepared for many points. It never changes after Share.
class PreparedSurface {
 public:
  PreparedSurface() = default;
  PreparedSurface(const PreparedSurface&) = delete;
  PreparedSurface& operator=(const PreparedSurface&) = delete;
  virtual ~PreparedSurface() = default;

  /// Called once, before any evaluation: replaces what other surfaces have too. Returns the slot of
  /// its kernel values, or kNoSlot.
  virtual std::size_t Share(Sharing& /*sharing*/) { return Sharing::kNoSlot; }

  /// How many blocks Evaluate takes at a time; with errors several where their time goes into
  /// products with a matrix, which is then read less often.
  virtual std::size_t BlocksAtOnce(bool /*withErrors*/) const { return 1; }
  /// For an evaluation of up to `blocks`.
  virtual std::size_t WorkSize(bool /*withErrors*/, std::size_t /*blocks*/) const { return 0; }
  virtual std::size_t QuestionCount() const { return 0; }
  /// Gives what the surface's evaluator gives at each of the points. Where a status is 1, value and
  /// error have no meaning.
  virtual void Evaluate(const Points& points, const Tools& tools, const Results& results) const = 0;

  /// Whether Evaluate with errors gives them.
  virtual bool HasErrors() const { return false; }
  /// Whether they go through an output transformation, by its derivative.
  virtual bool AreErrorsFirstOrder() const { return false; }

  /// Whether FastValues differs from Evaluate without errors.
  virtual bool HasFastForm() const { return false; }
  /// The largest difference of the two, for values up to `magnitude`.
  virtual double FastDeviation(double /*magnitude*/) const { return 0.0; }
  virtual void FastValues(const Points& points, const Tools& tools, const Results& results) const {
    Evaluate(points, tools, results);
  }

  virtual std::size_t GradientWorkSize() const { return 0; }
  /// The derivative of the value at `x` with respect to `x`, in the candidate's space. 1 where the
  /// value has the status 1 or no derivative; `gradient` then has no meaning.
  virtual int Gradient(const double* x, double* work, double* gradient) const = 0;
};

/// A surface with the status 1 at every point, which is what an evaluator gives for a record that
/// is not ready, stopped, or inconsistent.
std::unique_ptr<PreparedSurface> PrepareRefused();

/// PreparedSurface::Evaluate by the evaluator itself, one point of `inputs` values after the other.
void EvaluateOneByOne(const CRSEvaluator& evaluator, const CRSData& record, std::size_t inputs,
                      const Points& points, const Results& results);

}  // namespace Tarvane::Plexura::PXROM::batch
