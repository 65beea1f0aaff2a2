#pragma once

#include <cstdint>
#include <vector>

#include "pxrom/export.h"
#include "pxrom/types.h"

namespace Tarvane::Plexura::PXROM {

/// Format version of the base record.
enum E_CRSDataVersion : std::int32_t { RSDataVersion162 = 162 };

/// The base record of every fitted response surface: dimensions, training samples, the linear
/// scalings, three life-cycle flags. It is data only; evaluators (rs_evaluator.h) predict from it.
///
/// To fill a record by hand: set the counts, samples and scaling, check them with IsAllRight if you
/// like, then call SetStatusReadyForEvaluation(true).
///
/// Deliberate (accessors-check-nothing): accessors return 0 and validate nothing. **Valid indices
/// and non-empty data are the caller's responsibility** unless a comment says otherwise: an index
/// outside the data is not checked. Set operations store what they get and change no other field,
/// so setting samples does not update the counts.
///
/// Ownership: a record owns all its storage; copies are deep and share nothing.
/// Threads: const operations may run at the same time as long as nothing writes the record. The
/// four-argument evaluation of a Kriging record can write it (kriging.h).
struct PXROM_API CRSData {
  CRSData();
  CRSData(const CRSData&);
  CRSData& operator=(const CRSData&);

  /// A new copy of the same class; the caller owns it and deletes it through CRSData.
  virtual CRSData* Clone() const;
  virtual ~CRSData();
  /// Back to the state of a new record. Always 0.
  virtual int ResetData();
  /// Whether samples and scaling fit together; changes no flag. Families add their own checks.
  virtual bool IsAllRight();
  virtual E_DataType DataType() const;

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

  /// `out` becomes row `s` of InputSamples.
  int GetInputSampleWrtSampleIndex(int s, std::vector<double>& out) const;
  /// `out` becomes column `v`: one value from each of the first NumberOfSamples rows (the count
  /// field decides, not the number of rows).
  int GetInputSampleWrtInputIndex(int v, std::vector<double>& out) const;
  int GetOutputSampleWrtSampleIndex(int s, double& y) const;

  int SetRSDataVersion(E_CRSDataVersion version);
  E_CRSDataVersion RSDataVersion() const;
  int SetStatusReadyForSolve(bool ready);
  bool IsReadyForSolve() const;
  int SetStatusReadyForEvaluation(bool ready);
  bool IsReadyForEvaluation() const;
  int SetStatusStopped(bool stopped);
  bool IsStopped() const;

  /// x[i] = slope[i] * x[i] + intercept[i], physical to scaled. 1 with `x` unchanged unless `x` is
  /// as long as both scale vectors (NumberOfInputVariables is not read).
  int ScaleAndOverwriteInputSample(std::vector<double>& x) const;
  /// The same for each row; 1 at the first row that does not fit, with the rows before it scaled.
  int ScaleAndOverwriteInputSamples(std::vector<std::vector<double>>& rows) const;
  int ScaleAndOverwriteOutputSample(double& y) const;
  int ScaleAndOverwriteOutputSamples(std::vector<double>& ys) const;
  /// y = (y - intercept) / slope, scaled to physical. A slope of zero is not checked: the result is
  /// an infinity or a NaN. Inputs are never scaled back, since no evaluation needs it.
  int BackscaleAndOverwriteOutputSample(double& y) const;
  int BackscaleAndOverwriteOutputSamples(std::vector<double>& ys) const;

  /// Whether counts and shapes of the samples agree; false without samples.
  bool IsSamplingCorrect() const;
  /// Whether the scale vectors have one element per input and no slope is exactly zero.
  bool IsScalingCorrect() const;
  bool IsThisRectangularMatrix(const std::vector<std::vector<double>>& m) const;
  bool IsThisSquareMatrix(const std::vector<std::vector<double>>& m) const;
  /// True only for a 1 by 1 matrix, or when every entry below the diagonal exceeds its mirror entry
  /// by at least 1e-10: **an exactly symmetric matrix of side 2 or more gives false.**
  bool IsThisSymmetricMatrix(const std::vector<std::vector<double>>& m) const;

  /// m[r][c] for each row r.
  std::vector<double> GetColumn(const std::vector<std::vector<double>>& m, int c) const;
  /// Sample covariance of the columns, divisor rows - 1; empty for an empty or ragged matrix.
  std::vector<std::vector<double>> GetVarianceCovarianceMatrix(
      const std::vector<std::vector<double>>& m) const;
  /// The diagonal of the above.
  std::vector<double> GetDiagVarianceCovarianceMatrix(
      const std::vector<std::vector<double>>& m) const;

  // Statistics in element order. Without elements, Max, Min and NormInf give 0.0, the mean gives
  // 0/0 and the norm gives 0. Standard deviations have the divisor n - 1.
  double ComputeMax(const std::vector<double>& v) const;
  double ComputeMin(const std::vector<double>& v) const;
  double ComputeMean(const std::vector<double>& v) const;
  double ComputeNorm2(const std::vector<double>& v) const;
  double ComputeNormInf(const std::vector<double>& v) const;
  double ComputeStandardDeviation(const std::vector<double>& v) const;
  double ComputeColumnMax(const std::vector<std::vector<double>>& m, int c) const;
  double ComputeColumnMin(const std::vector<std::vector<double>>& m, int c) const;
  double ComputeColumnMean(const std::vector<std::vector<double>>& m, int c) const;
  double ComputeColumnNorm2(const std::vector<std::vector<double>>& m, int c) const;
  double ComputeColumnNormInf(const std::vector<std::vector<double>>& m, int c) const;
  /// The mean and the divisor count all rows of `m`, the sum of squares as many rows as there are
  /// OutputSamples. Both agree for the record's own InputSamples. If `m` has fewer rows
  /// than that, all its rows are summed.
  double ComputeColumnStandardDeviation(const std::vector<std::vector<double>>& m, int c) const;
  double ComputeInputSamplesWrtInputVariableMax(int v) const;
  double ComputeInputSamplesWrtInputVariableMin(int v) const;
  double ComputeInputSamplesWrtInputVariableMean(int v) const;
  double ComputeInputSamplesWrtInputVariableNorm2(int v) const;
  double ComputeInputSamplesWrtInputVariableNormInf(int v) const;
  double ComputeInputSamplesWrtInputVariableStandardDeviation(int v) const;
  double ComputeOutputSamplesMax() const;
  double ComputeOutputSamplesMin() const;
  double ComputeOutputSamplesMean() const;
  double ComputeOutputSamplesNorm2() const;
  double ComputeOutputSamplesNormInf() const;
  double ComputeOutputSamplesStandardDeviation() const;
  /// 0.0 when the sizes differ or both are empty.
  double ComputeEuclideanDistance(const std::vector<double>& a, const std::vector<double>& b) const;

  int NumberOfInputVariables = 0;
  int NumberOfSamples = 0;
  /// [sample][variable], in physical units.
  std::vector<std::vector<double>> InputSamples;
  std::vector<double> OutputSamples;
  std::vector<double> InputScaleSlopes;
  std::vector<double> InputScaleIntercepts;
  /// Zero until a host sets it, so IsScalingCorrect is false for a record that nobody has filled.
  double OutputScaleSlope = 0.0;
  double OutputScaleIntercept = 0.0;
  bool ReadyForSolve = false;
  bool ReadyForEvaluation = false;
  bool Stopped = false;
  /// A record read from a database always has 162: "RSDataVersion=" is not read. The underscore
  /// keeps the field apart from the getter.
  E_CRSDataVersion RSDataVersion_ = RSDataVersion162;
};

}  // namespace Tarvane::Plexura::PXROM
