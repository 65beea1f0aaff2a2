#pragma once

#include <cstddef>
#include <memory>
#include <vector>

#include "batch/prepared_cross_validation.h"
#include "pxrom/batch.h"
#include "pxrom/fitting_candidates.h"
#include "records/prepared_surface.h"

namespace Tarvane::Plexura::PXROM::batch {

/// The results of the fast mode for the blocks so far.
struct FastProgress {
  bool isFirst = true;
  double largestValue = 0.0;
  double largestError = 0.0;
  double largestSurface = 0.0;  ///< of the values of surfaces and sub surfaces
};

/// One prepared output: the ensemble of the candidate that its list has chosen. It never changes.
class PreparedOutput {
 public:
  PreparedOutput(const CFittingCandidates& candidates, std::size_t inputs, Sharing& sharing);

  /// The slots of the kernel values that an evaluation takes, one for each surface that has one.
  std::vector<std::size_t> Slots(bool withErrors) const;

  /// How many blocks Evaluate takes at a time, see PreparedSurface.
  std::size_t BlocksAtOnce(bool withErrors) const;
  std::size_t WorkSize(bool withErrors, std::size_t blocks) const;
  std::size_t QuestionCount() const;

  /// Gives what CFittingCandidatesEvaluator gives at each of the points, in physical units; with
  /// `progress` in the fast mode. Values and errors that are missing by their status become NaN.
  void Evaluate(const Points& points, const Tools& tools, const Results& results,
                FastProgress* progress) const;

  const CErrorOrigin& ErrorOrigin() const { return origin_; }
  bool HasErrors() const { return origin_.origin != ErrorNone; }
  /// The same with errors in the unit of the output, for an output that HasErrors; its working area
  /// is that of Evaluate with errors. A value is there wherever it is without errors.
  void EvaluateWithUnits(const Points& points, const Tools& tools, const CResultsInUnits& results,
                         FastProgress* progress) const;

  std::size_t GradientWorkSize() const;
  /// The derivative of the value at `x` with respect to `x`, both in physical units. 1, with NaN in
  /// `gradient`, where there is no derivative.
  int Gradient(const double* x, double* work, double* gradient) const;

 private:
  using Surfaces = std::vector<std::unique_ptr<const PreparedSurface>>;
  struct Work;

  bool HasFastForm(bool withErrors) const;
  bool IsNearEnough(const FastProgress& progress, bool withErrors) const;
  void Run(const Points& points, const Tools& tools, const Results& results,
           FastProgress* progress) const;
  void AddWithErrors(std::size_t surface, const Work& work, const Points& scaled,
                     const Tools& tools, const Results& results) const;
  void AddValue(const PreparedSurface& surface, double weight, const Work& work,
                const Points& scaled, const Tools& tools, int* statuses, double* sums,
                FastProgress* progress) const;
  void Backscale(std::size_t count, const Results& results) const;
  void Scale(const Points& points, std::size_t blocks, double* scaled) const;
  void FindErrorOrigin();
  /// Which part of the error comes from that of a surface.
  double ShareOfError(std::size_t surface) const;
  void AddInUnits(std::size_t surface, const Work& work, const Points& scaled, const Tools& tools,
                  const CResultsInUnits& results) const;
  void RunInUnits(const Points& points, const Tools& tools, const CResultsInUnits& results) const;
  void ValidateInUnits(const Points& points, const Tools& tools, const CResultsInUnits& results,
                       FastProgress* progress) const;

  std::size_t inputs_;
  bool isRefused_ = false;         ///< every point has the status 1
  bool areErrorsRefused_ = false;  ///< every point has it when errors are asked for
  std::vector<double> inputSlopes_;
  std::vector<double> inputIntercepts_;
  double outputSlope_ = 1.0;
  double outputIntercept_ = 0.0;
  Surfaces surfaces_;
  std::vector<double> weights_;
  Surfaces subSurfaces_;
  std::vector<std::size_t> slots_;
  std::vector<std::size_t> subSlots_;
  std::unique_ptr<const PreparedCrossValidation> validation_;
  CErrorOrigin origin_;
};

}  // namespace Tarvane::Plexura::PXROM::batch
