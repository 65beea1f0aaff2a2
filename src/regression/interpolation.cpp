// The interpolation over a hole of the surface, from the corners of a small box round the point.

#include <algorithm>
#include <array>
#include <cstddef>

#include "pxrom/regression.h"
#include "regression/record_parts.h"

namespace Tarvane::Plexura::PXROM {

namespace {

constexpr int kMostVariables = 13;
constexpr int kMostCorners = 1 << 16;
constexpr int kDeepestBox = 8;

/// Where the samples lie on one axis.
struct Extent {
  double lower;
  double upper;
  double range;
};

/// False when there is no sample or one without all inputs.
bool HasFullSamples(const CQRSData& record) {
  const auto inputs = static_cast<std::size_t>(record.NumberOfInputVariables);
  return !record.InputSamples.empty() &&
         std::all_of(record.InputSamples.begin(), record.InputSamples.end(),
                     [&](const std::vector<double>& row) { return row.size() >= inputs; });
}

std::vector<Extent> ExtentsOf(const CQRSData& record) {
  std::vector<Extent> extents;
  extents.reserve(static_cast<std::size_t>(record.NumberOfInputVariables));
  for (int j = 0; j < record.NumberOfInputVariables; ++j) {
    const double lower = record.ComputeInputSamplesWrtInputVariableMin(j);
    const double upper = record.ComputeInputSamplesWrtInputVariableMax(j);
    extents.push_back({lower, upper, upper - lower});
  }
  return extents;
}

/// Which way a retry moves a variable with value `x`: towards the middle of its range, both or
/// neither of the tests where that is not decided.
struct Move {
  Move(double x, const Extent& axis)
      : down(x > axis.upper - axis.range * 0.5), up(axis.lower + axis.range * 0.5 > x) {}
  bool IsDecided() const { return down != up; }

  bool down;
  bool up;
};

/// `value` moved inward by `step`, `times` over: the sum of roundings is what it is meant to be, so
/// it is no product.
double Moved(double value, const Move& move, double step, int times) {
  for (int i = 0; i < times; ++i) {
    const double next = move.down ? value - step : value + step;
    if (next == value) break;
    value = next;
  }
  return value;
}

}  // namespace

/// What an interpolation has used up, boxes inside boxes included.
struct CQRSEvaluator::InterpolationEffort {
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
  for (const Extent& axis : ExtentsOf(record)) {
    const double value = x[coded.size()];
    coded.push_back(2.0 * (value - axis.lower) / axis.range - 1.0);
  }
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
  InterpolationEffort effort;
  return Interplt(static_cast<const CQRSData&>(*data), x, y, effort);
}

int CQRSEvaluator::Interplt(const CQRSData& record, const double* x, double& y,
                            InterpolationEffort& effort) const {
  const int n = record.NumberOfInputVariables;
  int numPnts = 0;
  const int status = EvalNumHypcubePnt(n, numPnts);
  if (status != 0) return status;
  std::vector<double> coded;
  if (EvalCodedUsedInpVar(&record, x, coded) != 0) return 1;

  const auto inputs = static_cast<std::size_t>(n);
  std::vector<double> codes(static_cast<std::size_t>(numPnts) * inputs);
  std::vector<double*> pnts;
  pnts.reserve(static_cast<std::size_t>(numPnts));
  for (std::size_t at = 0; at < codes.size(); at += inputs) pnts.push_back(&codes[at]);
  GenCodedHypcubePnt(n, pnts.data());

  const std::vector<Extent> extents = ExtentsOf(record);
  std::vector<Move> moves;
  moves.reserve(inputs);
  for (std::size_t j = 0; j < inputs; ++j) moves.emplace_back(x[j], extents[j]);
  const bool canMove =
      std::all_of(moves.begin(), moves.end(), [](const Move& move) { return move.IsDecided(); });

  // A coordinate takes two values only, one per side of the box.
  std::vector<std::array<double, 2>> sides(inputs);
  std::vector<double> point(inputs);
  for (double failures = 0.0;; failures += 1.0) {
    y = 0.0;
    // A point in the very middle of an axis has no way to move inward: no retry could succeed.
    if (failures > 0.0 && !canMove) return 1;
    effort.corners += numPnts;
    if (effort.corners > kMostCorners) return 1;
    for (std::size_t j = 0; j < inputs; ++j) {
      const double range = extents[j].range;
      for (std::size_t side = 0; side < 2; ++side) {
        const double code = side == 0 ? -1.0 : 1.0;
        sides[j][side] = x[j] + 0.005 * range * (code - coded[j]);
        // All sides move alike and once per corner, on purpose.
        if (failures > 0.0) {
          sides[j][side] = Moved(sides[j][side], moves[j], failures * 0.5 * 0.01 * range, numPnts);
        }
      }
    }
    bool isComplete = true;
    for (int p = 0; p < numPnts && isComplete; ++p) {
      double weight = 0.0;
      EvalHypcubePntWgt(n, coded, numPnts, p, pnts.data(), weight);
      for (std::size_t j = 0; j < inputs; ++j)
        point[j] = sides[j][pnts[static_cast<std::size_t>(p)][j] > 0.0 ? 1 : 0];
      double value = 0.0;
      isComplete = EvaluateCorner(record, point, value, effort) == 0;
      if (isComplete) y += value * weight;
    }
    if (isComplete) return 0;
  }
}

// A corner that is a hole itself is interpolated from here, with the count of the boxes around it,
// since an evaluator keeps no state that could carry one. All others go through the virtual
// operation, which an override may answer.
int CQRSEvaluator::EvaluateCorner(const CQRSData& record, const std::vector<double>& point,
                                  double& y, InterpolationEffort& effort) const {
  WorkingPoint transformed(point);
  double b = 0.0;
  if (BacktransformedSum(record, transformed, b) != 0 || !IsHole(b)) {
    return EvaluateResponseSurface(&record, point, y);
  }
  if (effort.depth == kDeepestBox) return 1;
  ++effort.depth;
  const int status = Interplt(record, point.data(), y, effort);
  --effort.depth;
  return status;
}

}  // namespace Tarvane::Plexura::PXROM
