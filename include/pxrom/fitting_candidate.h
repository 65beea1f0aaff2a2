#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "pxrom/export.h"
#include "pxrom/rs_data.h"
#include "pxrom/types.h"

namespace Tarvane::Plexura::PXROM {

/// Version of a candidate record.
///
/// Deliberate (versions-mostly-ignored): a candidate read from a database always reports 192. The
/// number in the text only decides whether cross-validation data follow. CRSData treats its version
/// in the same way.
enum E_FittingCandidateVersion : std::int32_t {
  FittingCandidateVersion170 = 170,
  FittingCandidateVersion192 = 192,
};

/// One ensemble: a weighted list of surfaces that predict one output together, the scaling of the
/// ensemble's own input and output space, and the samples that it was fitted to. It may also hold
/// cross-validation data for a predicted error: for each surface and each fold a sub surface that
/// was fitted without that fold, and the scaled samples sorted fold by fold.
/// CFittingCandidatesEvaluator predicts from it.
///
/// Expected, and not checked here: as many weights as surfaces; a number of sub surfaces that is a
/// whole multiple of the number of surfaces; fold counts that add up to the sorted rows.
///
/// Ownership: Add and Set operations and the copy constructor clone surfaces, so the caller keeps
/// what it passed.
///
/// Deliberate (assignment-shares): **assignment shares.** Nothing is cloned, and both candidates
/// hold the same surfaces. A surface is destroyed when the last candidate that holds it is reset,
/// assigned over or destroyed, in any order. Use the copy constructor to get surfaces of your own.
///
/// Memory: candidates that were read from the same group of a text, and copies of them, hold one
/// content together. Nobody sees this: before a candidate changes, and before it hands out a
/// pointer to a surface, it makes a copy of its own, so GetRSPtr and GetSubRSPtr can throw
/// std::bad_alloc.
///
/// Statuses: 0 unless a comment says otherwise. Indices are the caller's responsibility unless a
/// comment says that they are checked.
/// Threads: const operations may run at the same time as long as nothing changes the object or a
/// surface that it shares.
class PXROM_API CFittingCandidate {
 public:
  CFittingCandidate();
  CFittingCandidate(const CFittingCandidate&);
  CFittingCandidate& operator=(const CFittingCandidate&);

  /// A new candidate by the copy constructor; the caller owns it.
  virtual CFittingCandidate* Clone() const;
  virtual ~CFittingCandidate();
  /// Empties the candidate; the distance scale keeps its value.
  ///
  /// Deliberate (reset-slope-is-zero): **the output slope becomes 0.0**, not the 1.0 of a new
  /// candidate, so every evaluation fails until a slope is set.
  virtual int ResetData();

  E_DataType DataType() const;

  /// Appends a clone of `rs` and its weight. A null `rs` gives 1.
  int AddRSAndWeight(const CRSData* rs, double weight);
  /// Appends a clone of `rs` to the sub surfaces. A null `rs` gives 1.
  int AddSubRS(const CRSData* rs);
  /// Sets the flag of error prediction first, also when the call is then refused with 1.
  ///
  /// Without error prediction: one surface per weight, else 1.
  /// With error prediction: `surfaces` is each surface followed by its sub surfaces. Its length has
  /// to be a multiple of the number of weights, else 1 (also without weights).
  /// Null surfaces give 1.
  ///
  /// Deliberate (set-rs-appends-with-errors): without error prediction the candidate is **reset**
  /// and gets clones, so set samples and output scaling afterwards. With it, clones are
  /// **appended** to the lists, and the sample data stay.
  int SetRSAndWeights(const std::vector<CRSData*>& surfaces, const std::vector<double>& weights,
                      bool errorPrediction);
  std::size_t GetRSCount() const;
  std::size_t GetSubRSCounts() const;
  /// The surface, owned by the candidate; null for an index outside the list. Several threads may
  /// ask for it at once, as for anything that is const.
  const CRSData* GetRSPtr(int i) const;
  const CRSData* GetSubRSPtr(int i) const;
  /// The weight at `i`, which is not checked.
  double GetRSWeight(int i) const;

  /// Stores the sorted samples, in the candidate's scaled space, and the number of rows per fold,
  /// and turns error prediction on. It does not set the distance scale.
  int SetCrossValidationData(std::vector<std::vector<double>>& scaledSortedInput,
                             std::vector<int>& numPtsPerFold);
  int SetbIsErrPredRequired(bool required);
  bool GetIsErrPredRequired() const;
  /// The distance scale of the fold weights, which is a squared distance. 0.0 until it is set.
  int SetDPMinDist(double& distance);
  double GetDPMinDist() const;
  std::vector<int> GetviNumPtsPerFold() const;
  std::vector<std::vector<double>> GetvvdScSortedInput() const;

  int GetNumberOfInputVariables(int& count) const;
  int SetNumberOfInputVariables(int count);
  int GetNumberOfSamples(int& count) const;
  int SetNumberOfSamples(int count);
  int GetInputSamples(std::vector<std::vector<double>>& rows) const;
  int SetInputSamples(const std::vector<std::vector<double>>& rows);
  int GetOutputSamples(std::vector<double>& ys) const;
  int SetOutputSamples(const std::vector<double>& ys);
  int GetInputScaleSlopes(std::vector<double>& slopes) const;
  int SetInputScaleSlopes(const std::vector<double>& slopes);
  int GetInputScaleIntercepts(std::vector<double>& intercepts) const;
  int SetInputScaleIntercepts(const std::vector<double>& intercepts);
  int GetOutputScaleSlope(double& slope) const;
  int SetOutputScaleSlope(double slope);
  int GetOutputScaleIntercept(double& intercept) const;
  int SetOutputScaleIntercept(double intercept);
  E_FittingCandidateVersion DataVersion() const;
  void setDataVersion(E_FittingCandidateVersion& version);

  int GetInputSampleWrtSampleIndex(int i, std::vector<double>& out) const;
  /// Column `j`: one value from each of the first NumberOfSamples rows.
  int GetInputSampleWrtInputIndex(int j, std::vector<double>& out) const;
  int GetOutputSampleWrtSampleIndex(int i, double& out) const;

  /// x[j] = slope[j] * x[j] + intercept[j]. 1 with `x` unchanged unless all three have one length.
  int ScaleAndOverwriteInputSample(std::vector<double>& x) const;
  /// The same for each row; 1 at the first row that does not fit, with the rows before it scaled.
  int ScaleAndOverwriteInputSamples(std::vector<std::vector<double>>& rows) const;
  int ScaleAndOverwriteOutputSample(double& y) const;
  int ScaleAndOverwriteOutputSamples(std::vector<double>& y) const;
  /// y = (y - intercept) / slope. 1 with `y` unchanged when the slope is 0.0.
  int BackscaleAndOverwriteOutputSample(double& y) const;
  /// The same for each element; an empty vector gives 0 with any slope.
  int BackscaleAndOverwriteOutputSamples(std::vector<double>& y) const;

  /// Stops every surface of the ensemble, so each evaluation is refused with 1.
  ///
  /// Deliberate (stop-skips-sub-surfaces): sub surfaces are not stopped.
  int SetStatusStopped();

 protected:
  /// Sets the distance scale to the largest squared distance of a sorted row from its nearest other
  /// row. Row 0 contributes nothing, since its search has no start value.
  int computeMinDist();

 private:
  friend struct CandidateAccess;

  struct Content;
  using Surfaces = std::vector<std::shared_ptr<CRSData>>;

  const Content& Read() const;
  Content& OwnContent() const;
  void Replace(Content content);

  /// The content that nobody else holds. While it is null, the candidate reads Shared.
  mutable std::atomic<Content*> Own;
  /// Never changes. It stays after the candidate got its own content, since another thread may read
  /// it at that moment.
  std::shared_ptr<const Content> Shared;
};

}  // namespace Tarvane::Plexura::PXROM
