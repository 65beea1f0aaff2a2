#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "pxrom/discrete_combinations.h"
#include "pxrom/evaluation_cost.h"
#include "pxrom/export.h"

namespace Tarvane::Plexura::PXROM {

/// How close the results of a batch are to those of CDiscreteCombinations::Evaluate.
enum E_PrecisionMode : std::int32_t {
  /// The same to the last bit, with any instruction set.
  PrecisionExact = 0,
  /// Values, and errors from cross-validation, within 1e-11 of the largest one that the output has
  /// in the batch. Two to three times as fast for surfaces that sum kernels. Where rounding errors
  /// could exceed this tolerance, for example with large coefficients that cancel, this mode works
  /// like the exact one. It bounds the rounding errors for each block of points, so a result can
  /// depend on its neighbours within the tolerance. The errors of single surfaces are always exact.
  PrecisionFast = 1,
};

/// Whose error the error of an output is.
enum E_ErrorOrigin : std::int32_t {
  /// The output has no error.
  ErrorNone = 0,
  /// The spread of the predictions that leave out one fold each (fitting_candidates.h).
  ErrorFromCrossValidation = 1,
  /// Those of all surfaces of the ensemble together; also of a single surface.
  ErrorFromAllSurfaces = 2,
  /// That of one surface, since others of the ensemble report none: **not that of the ensemble.**
  ErrorFromOneSurface = 3,
};

/// Where the error of an output comes from, which is the same at every point.
struct CErrorOrigin {
  E_ErrorOrigin origin = ErrorNone;
  /// With ErrorFromOneSurface: the surface, from 0.
  std::size_t surface = 0;
  /// The number of surfaces of the ensemble.
  std::size_t surfaces = 0;
  /// Whether it went through an output transformation to first order: multiplied by the magnitude
  /// of the derivative there (the delta method).
  bool firstOrder = false;
};

/// Where results go: tables of one row for each point and one column for each output. Any may be
/// null.
struct CResultsInUnits {
  double* values = nullptr;
  /// In the unit of the output, never negative.
  double* errors = nullptr;
  /// The ends of the interval that the error means: value - error and value + error, and
  /// through an output transformation the images of the ends before it, which need not be as far
  /// from the value as the error is. An end that the transformation refuses is infinite. Where the
  /// transformation is not monotonic between the ends, value - error and value + error again.
  double* lower = nullptr;
  double* upper = nullptr;
  /// The raw error: as Evaluate gives it, in the space of the surface that reports it.
  double* rawErrors = nullptr;
  int* statuses = nullptr;
};

/// Where the locations of points go. Any may be null.
struct CLocations {
  /// For each row and output 1 if the point is inside the ranges of the samples, 0 if it is outside
  /// one of them, -1 if the model does not hold the samples.
  int* inside = nullptr;
  /// For each row and output the distance to the nearest sample, see LocatePoints.
  double* distances = nullptr;
  /// For each row, output and input -1 if the input lies below its range, 1 if it lies above or is
  /// not a number, else 0.
  signed char* sides = nullptr;
};

/// One combination of discrete values, prepared for evaluation at many points. It holds its own
/// copy of all that it needs, laid out for speed: scaled samples, contiguous matrices, and
/// everything that does not depend on the point, computed in advance. Preparing only reads the
/// model, which may change or be destroyed afterwards.
///
/// What surfaces have in common, in all outputs, is held once: equal samples and matrices of
/// errors. If they also have the kernel and its scales in common, as outputs that were fitted
/// together, the kernels are computed once for all of them; so are errors, up to their variance.
///
/// Preparing chooses the instructions by what the machine offers (AVX-512, AVX2, or plain code that
/// runs anywhere).
///
/// Points are a table, row by row, with one value per input in the order of InputIDs, in physical
/// units. Results are tables too, row by row, with one value per output in the order of OutputIDs.
/// Arguments are plain pointers: **the sizes are the caller's responsibility.**
///
/// Threads: an object never changes, so any number of threads may use it, also for outputs whose
/// errors CDiscreteCombinations::Evaluate cannot compute in several threads. Copies are cheap and
/// share what is prepared. Nothing is kept between calls. Each call takes one working area of some
/// 60 kilobytes, and with Kriging errors 500 bytes more per sample of the largest surface.
/// Kernels that surfaces have in common take up to 16 megabytes more.
class PXROM_API CPreparedModel {
 public:
  /// An object with nothing prepared: every evaluation returns 1.
  CPreparedModel();
  CPreparedModel(const CPreparedModel&);
  CPreparedModel(CPreparedModel&&) noexcept;
  CPreparedModel& operator=(const CPreparedModel&);
  CPreparedModel& operator=(CPreparedModel&&) noexcept;
  ~CPreparedModel();

  /// Prepares the combination that `discreteValues` names, each enabled discrete input once and in
  /// any order. 0; 1 with `out` untouched and a sentence in `reason` (unless it is null) when a
  /// name or the number of names doesn't fit or there is no such combination. An output that cannot
  /// be evaluated does not prevent the others: it has the status 1 at every point.
  ///
  /// Also 1 when an evaluation would cost more than `limit`; the sentence then gives the cost and
  /// the limit that would be enough. The cost follows from sizes, before anything is prepared. A
  /// host that evaluates models from strangers should set a limit; without one nothing is refused.
  static int Prepare(const CDiscreteCombinations& model,
                     const std::vector<std::pair<std::string, int>>& discreteValues,
                     CPreparedModel& out, std::string* reason = nullptr,
                     const CEvaluationLimit& limit = CEvaluationLimit());

  /// What Evaluate would cost for a combination, all outputs together, without preparing it. 0; 1
  /// with `cost` untouched where Prepare would find no combination.
  static int EstimateCost(const CDiscreteCombinations& model,
                          const std::vector<std::pair<std::string, int>>& discreteValues,
                          CEvaluationCost& cost, std::string* reason = nullptr);

  /// The same model with only the outputs that `outputIDs` name, in that order. It shares what is
  /// prepared, and an evaluation costs only what these outputs cost. 0; 1 with `out` untouched and
  /// a sentence in `reason` (unless it is null) when there is no such output. `out` may be this.
  int Select(const std::vector<std::string>& outputIDs, CPreparedModel& out,
             std::string* reason = nullptr) const;

  /// What Evaluate, with errors, EvaluateGradients and LocatePoints cost at each point. Zeros when
  /// nothing is prepared.
  CEvaluationCost Cost() const;
  CEvaluationCost GradientCost() const;
  CEvaluationCost LocationCost() const;

  /// The enabled continuous inputs by rank: what a row of points consists of.
  const std::vector<std::string>& InputIDs() const;
  /// What a row of results consists of: by ID, or as Select was told.
  const std::vector<std::string>& OutputIDs() const;

  /// Values, errors and statuses at `rows` points. With null `errors` this is the form without
  /// errors, which families without a predicted error need: with errors they return 1, as their
  /// evaluators do. `statuses` may be null.
  ///
  /// Each status is for one output at one point:
  ///   0   value and error are valid.
  ///   -2  the value is valid; there is no error, it is NaN.
  ///   1   failed: both are NaN.
  /// Statuses are independent: a failure in one output or row does not affect the others.
  ///
  /// A Kriging error is the error of the first call on a fresh record. Repeated calls give the same
  /// error, unlike those of CKrigingEvaluator (kriging.h).
  ///
  /// Returns 0 whatever the statuses are; 1 with nothing written when nothing is prepared, `mode`
  /// is unknown, or a required pointer is null.
  int Evaluate(const double* points, std::size_t rows, E_PrecisionMode mode, double* values,
               double* errors, int* statuses) const;

  /// Where the errors of output number `output` come from, in the order of OutputIDs. ErrorNone for
  /// a number without an output.
  CErrorOrigin ErrorOrigin(std::size_t output) const;

  /// Values at `rows` points with errors in the unit of their outputs. No family loses its values
  /// here: a status is 1 only where the form of Evaluate without errors gives 1.
  ///   0   value and error are valid; the value alone if no error is asked for.
  ///   -2  the value is valid; there is no error, and its numbers are NaN.
  ///   1   failed: all are NaN.
  ///
  /// What an error means is for its family to say: a standard deviation (Kriging, Gaussian
  /// processes), a standard error (polynomials), half the width of a one-sided prediction interval
  /// (regression), three times the spread of the folds (cross-validation). Linear scalings divide
  /// it by the magnitude of their slope. An ensemble whose surfaces all report an error has the sum
  /// of these errors, each times the magnitude of its weight. No standard deviation of the weighted
  /// sum is larger, however the surfaces depend on each other (Minkowski's inequality). They were
  /// fitted to the same samples, so that a smaller number would have to assume something. A weight
  /// of 0 leaves a surface out. An ensemble where only some report an error has that of the last
  /// one that does, without its weight: see ErrorFromOneSurface.
  ///
  /// The modes are those of Evaluate, and so is what it returns; here `results.values` may be null.
  int EvaluateWithUnits(const double* points, std::size_t rows, E_PrecisionMode mode,
                        const CResultsInUnits& results) const;

  /// For each input, in the order of InputIDs, the lowest and the highest value among the samples
  /// that output number `output` was fitted to, in physical units. These are the samples of its
  /// ensemble or, if that holds none, of its surfaces. A range of samples is not a bound of the
  /// registry: a designer may allow more than was sampled. 0; 1 with both untouched for a number
  /// without an output and where the model holds no samples, as often without inputs.
  int SampleRanges(std::size_t output, std::vector<double>& lower,
                   std::vector<double>& upper) const;

  /// The first output that was fitted to the same samples as output number `output`, and so has
  /// the same ranges and locations: often 0 for all of them. `output` itself if no other has them.
  std::size_t FirstWithSamplesOf(std::size_t output) const;

  /// Where points are relative to the samples of each output.
  ///
  /// A point is outside if one of its inputs is: if it lies beyond the range of the samples by more
  /// than 1e-9 of its width and 1e-14 of its larger end, which is what rounding in the scaling of
  /// an ensemble may cause.
  ///
  /// The distance is that to the nearest sample, in units of the typical spacing of the samples:
  /// below 1 a point is nearer to a sample than samples usually are to each other, and far above 1
  /// the surfaces have little to go by, also inside the ranges. It is Euclidean, with each input
  /// divided by the width of its range; inputs whose samples are all equal do not count. The
  /// typical spacing is the median of the distances from each sample to the nearest other one.
  /// Equal samples count once. Of more than 1,024 samples, 1,024 count, evenly spread in the order
  /// of their values by input; the distance is always that to the nearest of all. It is NaN with
  /// fewer than two different samples and for a point with a NaN, and infinite for one with an
  /// infinity.
  ///
  /// Exact to the last bit, with any instruction set. The first call with `distances` finds the
  /// typical spacing, in at most 3,000 operations for each number of the samples. Returns what
  /// EvaluateGradients does.
  int LocatePoints(const double* points, std::size_t rows, const CLocations& locations,
                   std::string* reason = nullptr) const;

  /// The derivatives of the values with respect to the inputs, in physical units: for each row and
  /// output one number per input. They are the derivatives of the formulas, through all scalings
  /// and transformations, for every family. The evaluators' own derivatives, if they have one,
  /// differ in places (regression.h). `statuses`, one per row and output, may be null.
  ///
  /// Where a formula has no derivative:
  ///   - at a kink, such as that of |x| in an exponential correlation at a sample, the derivative
  ///     counts as 0 in that coordinate: the mean of both sides;
  ///   - at a cut-off, at the limit of a transformation, or at the end of a branch, it is the
  ///     derivative of the branch that the value takes; a component that an input transformation
  ///     refuses stays untransformed, and so does its derivative;
  ///   - where two samples tie for the reference distance of a moving least squares surface, the
  ///     first of them counts;
  ///   - over a hole of a regression surface, whose value is an interpolation, and where a moving
  ///     least squares value is not finite, there is no derivative: status 1.
  /// A derivative may be infinite, such as that of a root at 0.
  ///
  /// A status is 0, or 1 with NaN where there is no value or no derivative. Returns what Evaluate
  /// does, and 1 with nothing written but a sentence in `reason` (unless it is null) when
  /// GradientCost exceeds the limit that Prepare was given.
  int EvaluateGradients(const double* points, std::size_t rows, double* gradients, int* statuses,
                        std::string* reason = nullptr) const;

 private:
  friend struct PreparedModelAccess;

  struct Parts;
  class SharedArea;
  enum class Form { Values, Errors, Units };

  void Run(const double* points, std::size_t rows, E_PrecisionMode mode, Form form,
           const CResultsInUnits& results) const;

  std::shared_ptr<const Parts> parts_;
};

}  // namespace Tarvane::Plexura::PXROM
