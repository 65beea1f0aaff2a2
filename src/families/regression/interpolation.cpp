// The interpolation over a hole of the surface, from the corners of a small box around the point: a
// multilinear interpolation (Press et al., Numerical Recipes in C, 1992, section 3.6).

#include <algorithm>
#include <cstddef>

#include "families/regression/record_parts.h"
#include "pxrom/regression.h"

namespace Tarvane::Plexura::PXROM {

namespace {

constexpr int kMostVariables = 13;
constexpr int kMostCorners = 1 << 15;
constexpr int kDeepestBox = 8;

/// The range of the samples on one axis.
struct Extent {
  double lower;
  double upper;
  double range;
};

/// False without samples, or with a sample that lacks an input.
bool HasFullSamples(const CQRSData& record) {
  const auto inputs = static_cast<std::size_t>(record.NumberOfInputVariables);
  return !record.InputSamples.empty() &&
         std::all_of(record.InputSamples.begin(), record.InputSamples.end(),
                     [&](const std::vector<double>& row) { return row.size() >= inputs; });
}

std::vector<Extent> ExtentsOf(const CQRSData& record) {
  std::vector<Extent> extents;
  for (int j = 0; j < record.NumberOfInputVariables; ++j) {
    const double lower = record.ComputeInputSamplesWrtInputVariableMin(j);
    const double upper = record.ComputeInputSamplesWrtInputVariableMax(j);
    extents.push_back({lower, upper, upper - lower});
  }
  return extents;
}

/// The point `x` in the coded range: -1 at the lower end of each axis, 1 at the upper one.
std::vector<double> CodedPoint(const std::vector<Extent>& extents, const double* x) {
  std::vector<double> coded;
  coded.reserve(extents.size());
  for (const Extent& axis : extents) {
    const double value = x[coded.size()];
    coded.push_back(2.0 * (value - axis.lower) / axis.range - 1.0);
  }
  return coded;
}

/// The direction in which a retry moves a variable with value `x`: towards the middle of its range.
/// Exactly in the middle neither test holds, or by rounding both do.
struct Move {
  Move(double x, const Extent& axis)
      : down(x > axis.upper - axis.range * 0.5), up(axis.lower + axis.range * 0.5 > x) {}
  bool IsDecided() const { return down != up; }

  bool down;
  bool up;
};

/// `value` moved inward by `step`, repeated `times`. This is not a product, since the rounding of
/// each step belongs to the result.
double Moved(double value, const Move& move, double step, int times) {
  for (int i = 0; i < times; ++i) {
    const double next = move.down ? value - step : value + step;
    if (next == value) break;
    value = next;
  }
  return value;
}

/// A coordinate at the two sides of the box.
struct Sides {
  double lower;
  double upper;
};

/// The box of one attempt, a hundredth of the samples' box, with `x` at the same relative place.
std::vector<Sides> BoxRound(const double* x, const std::vector<Extent>& extents,
                            const std::vector<double>& coded, double failures, int corners) {
  std::vector<Sides> box;
  for (std::size_t j = 0; j < extents.size(); ++j) {
    const double range = extents[j].range;
    Sides sides{x[j] + 0.005 * range * (-1.0 - coded[j]), x[j] + 0.005 * range * (1.0 - coded[j])};
    if (failures > 0.0) {
      // Both sides move by the same amount, once per corner. This defines the result.
      const Move move(x[j], extents[j]);
      const double step = failures * 0.5 * 0.01 * range;
      sides = {Moved(sides.lower, move, step, corners), Moved(sides.upper, move, step, corners)};
    }
    box.push_back(sides);
  }
  return box;
}

}  // namespace

InterpolationSize MostOfInterpolation(const CQRSData& record) {
  const int n = record.NumberOfInputVariables;
  if (n < 1 || n > kMostVariables || record.InputSamples.empty()) return {};
  const double cornersOfBox = 1 << n;
  constexpr double kBoxes = kDeepestBox + 1;
  return {kMostCorners, kBoxes * cornersOfBox * (n + 1.0) * sizeof(double)};
}

/// The data of an interpolation and how much it has used of its limits, including boxes inside
/// boxes.
struct CQRSEvaluator::InterpolationEffort {
  std::vector<Extent> extents;
  int corners = 0;
  int depth = 0;
};

int CQRSEvaluator::EvalNumHypcubePnt(int numVars, int& numPnts) const {
  if (numVars < 1 || numVars > kMostVariables) return 1;
  numPnts = 1 << numVars;
  return 0;
}

int CQRSEvaluator::GenCodedHypcubePnt(int numVars, double** pnts) const {
  int numPnts = 0;
  const int status = EvalNumHypcubePnt(numVars, numPnts);
  if (status != 0) return status;
  for (int i = 0; i < numPnts; ++i) {
    for (int j = 0; j < numVars; ++j) pnts[i][j] = (i >> j & 1) != 0 ? 1.0 : -1.0;
  }
  return 0;
}

int CQRSEvaluator::EvalCodedUsedInpVar(const CRSData* data, const double* x,
                                       std::vector<double>& coded) const {
  coded.clear();
  const auto& record = static_cast<const CQRSData&>(*data);
  if (!HasFullSamples(record)) return 1;
  coded = CodedPoint(ExtentsOf(record), x);
  return 0;
}

int CQRSEvaluator::EvalHypcubePntWgt(int numVars, const std::vector<double>& coded, int numPnts,
                                     int pntIdx, double** pnts, double& weight) const {
  double product = 1.0;
  for (int j = 0; j < numVars; ++j) {
    product *= coded[static_cast<std::size_t>(j)] * pnts[pntIdx][j] + 1.0;
  }
  weight = product / numPnts;
  return 0;
}

int CQRSEvaluator::Interplt(const CRSData* data, const double* x, double& y) const {
  const auto& record = static_cast<const CQRSData&>(*data);
  std::vector<double> coded;
  if (EvalCodedUsedInpVar(data, x, coded) != 0) return 1;
  InterpolationEffort effort;
  effort.extents = ExtentsOf(record);
  return Interplt(record, x, coded, y, effort);
}

int CQRSEvaluator::Interplt(const CQRSData& record, const double* x,
                            const std::vector<double>& coded, double& y,
                            InterpolationEffort& effort) const {
  const int n = record.NumberOfInputVariables;
  int numPnts = 0;
  const int status = EvalNumHypcubePnt(n, numPnts);
  if (status != 0) return status;

  const auto inputs = static_cast<std::size_t>(n);
  std::vector<double> codes(static_cast<std::size_t>(numPnts) * inputs);
  std::vector<double*> pnts;
  pnts.reserve(static_cast<std::size_t>(numPnts));
  for (std::size_t at = 0; at < codes.size(); at += inputs) pnts.push_back(&codes[at]);
  GenCodedHypcubePnt(n, pnts.data());

  bool canMove = true;
  for (std::size_t j = 0; j < inputs; ++j) {
    canMove = canMove && Move(x[j], effort.extents[j]).IsDecided();
  }
  std::vector<double> point(inputs);
  for (double failures = 0.0;; failures += 1.0) {
    y = 0.0;
    // A box whose point is exactly in the middle of an axis cannot move, so no retry could succeed.
    if (failures > 0.0 && !canMove) return 1;
    effort.corners += numPnts;
    if (effort.corners > kMostCorners) return 1;
    const std::vector<Sides> box = BoxRound(x, effort.extents, coded, failures, numPnts);
    bool isComplete = true;
    for (int p = 0; p < numPnts && isComplete; ++p) {
      double weight = 0.0;
      EvalHypcubePntWgt(n, coded, numPnts, p, pnts.data(), weight);
      const double* const codesOfCorner = pnts[static_cast<std::size_t>(p)];
      for (std::size_t j = 0; j < inputs; ++j) {
        point[j] = codesOfCorner[j] > 0.0 ? box[j].upper : box[j].lower;
      }
      double value = 0.0;
      isComplete = EvaluateCorner(record, point, value, effort) == 0;
      if (isComplete) y += value * weight;
    }
    if (isComplete) return 0;
  }
}

// A corner that is a hole itself is interpolated from here with the depth of its boxes, since an
// evaluator has no state that could hold it. All other corners use the virtual operation, which a
// host may override.
int CQRSEvaluator::EvaluateCorner(const CQRSData& record, const std::vector<double>& point,
                                  double& y, InterpolationEffort& effort) const {
  WorkingPoint transformed(point);
  double b = 0.0;
  if (BacktransformedSum(record, transformed, b) != 0 || !IsHole(b)) {
    return EvaluateResponseSurface(&record, point, y);
  }
  if (effort.depth == kDeepestBox) return 1;
  ++effort.depth;
  // The box of the samples is already known: there can be too many corners to go through the
  // samples for each.
  const std::vector<double> coded = CodedPoint(effort.extents, point.data());
  const int status = Interplt(record, point.data(), coded, y, effort);
  --effort.depth;
  return status;
}

}  // namespace Tarvane::Plexura::PXROM
