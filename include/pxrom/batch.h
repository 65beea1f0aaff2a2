#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "pxrom/discrete_combinations.h"
#include "pxrom/export.h"

namespace Tarvane::Plexura::PXROM {

/// How near the results of a batch are to those of CDiscreteCombinations::Evaluate.
enum E_PrecisionMode : std::int32_t {
  /// The same to the last bit, with whatever instructions the machine has.
  PrecisionExact = 0,
  /// Values, and errors from cross-validation, within 1e-11 of the largest one that the output has
  /// in the batch. Two to three times as fast where kernels are summed. Where rounding errors could
  /// lead further off, as with large coefficients that cancel, this mode works like the other: it
  /// bounds them block by block of points, so that a result may depend on its neighbours within the
  /// tolerance. The errors of single surfaces are always exact.
  PrecisionFast = 1,
};

/// One combination of discrete values, prepared to answer many points at once. It holds its own
/// copy of all that it needs, laid out for speed: scaled samples, matrices in one piece, everything
/// that does not depend on the point computed beforehand. The object it was made from is only read
/// and may change or go afterwards.
///
/// Instructions are chosen when it is prepared, by what the machine can do (AVX-512, AVX2, or plain
/// code that runs anywhere).
///
/// Points are a table, row by row, with one value per input in the order of InputIDs, in physical
/// units. Results come as tables too, row by row, with one value per output in the order of
/// OutputIDs. Plain pointers: **the sizes are the caller's responsibility.**
///
/// Threads: an object never changes, so any number of threads may use one, also for outputs whose
/// errors CDiscreteCombinations::Evaluate cannot give to several threads. Copies are cheap and
/// share what is prepared. Nothing is kept between calls; each takes one working area of some 60
/// kilobytes, and with Kriging errors 500 bytes more per sample of the largest surface.
class PXROM_API CPreparedModel {
 public:
  /// Answers 1 to everything.
  CPreparedModel();
  CPreparedModel(const CPreparedModel&);
  CPreparedModel(CPreparedModel&&) noexcept;
  CPreparedModel& operator=(const CPreparedModel&);
  CPreparedModel& operator=(CPreparedModel&&) noexcept;
  ~CPreparedModel();

  /// Prepares the combination that `discreteValues` names, each enabled discrete input once and in
  /// any order. 0; 1 with `out` untouched and a sentence in `reason` (unless it is null) when a
  /// name or the number of them doesn't fit or there is no such combination. An output that cannot
  /// be evaluated is no reason to refuse the rest: it has the status 1 at every point.
  static int Prepare(const CDiscreteCombinations& model,
                     const std::vector<std::pair<std::string, int>>& discreteValues,
                     CPreparedModel& out, std::string* reason = nullptr);

  /// The enabled continuous inputs by rank: what a row of points consists of.
  const std::vector<std::string>& InputIDs() const;
  /// By ID: what a row of results consists of.
  const std::vector<std::string>& OutputIDs() const;

  /// Values, errors and statuses at `rows` points. `errors` may be null: that is the form without
  /// errors, which serves families that know none; asked for errors, those answer 1, as their
  /// evaluators do. `statuses` may be null.
  ///
  /// A status tells about one output at one point:
  ///   0   value and error are good.
  ///   -2  the value is good, there is no error: NaN.
  ///   1   failed: NaN for both.
  /// Each stands for itself: a failure in one output or row does not end the others.
  ///
  /// A Kriging error is that of the first call on a fresh record: the record's drift of repeated
  /// calls (kriging.h) is none here.
  ///
  /// 0, whatever the statuses are; 1 with nothing written when nothing is prepared, `mode` is none,
  /// or a pointer is null that has to be there.
  int Evaluate(const double* points, std::size_t rows, E_PrecisionMode mode, double* values,
               double* errors, int* statuses) const;

  /// The derivatives of the values with respect to the inputs, in physical units: for each row and
  /// output one number per input. They are those of the formulas, through all scalings and
  /// transformations, for every family; the evaluators' own derivatives, where they have one,
  /// differ in places (regression.h). `statuses`, one per row and output, may be null.
  ///
  /// Where a formula has no derivative:
  ///   - at a kink, such as that of |x| in an exponential correlation at a sample, it counts as 0
  ///     for the coordinate that has it: the mean of both sides;
  ///   - at a cut-off, the limit of a transformation, or where a branch ends, it is that of the
  ///     branch that the value takes; a component that an input transformation refuses is passed on
  ///     as it is, and so it counts here;
  ///   - where the distance of two samples from a point of a moving least squares surface ties for
  ///     its reference distance, the first of them is taken;
  ///   - over a hole of a regression surface, whose value is an interpolation, and where a moving
  ///     least squares value is no finite number, there is none: status 1.
  /// A derivative may be infinite, as that of a root at 0 is.
  ///
  /// A status is 0, or 1 with NaN where there is no value or no derivative. Returns what Evaluate
  /// does.
  int EvaluateGradients(const double* points, std::size_t rows, double* gradients,
                        int* statuses) const;

 private:
  friend struct PreparedModelAccess;

  struct Parts;

  std::shared_ptr<const Parts> parts_;
};

}  // namespace Tarvane::Plexura::PXROM
