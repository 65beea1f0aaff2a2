#pragma once

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <vector>

#include "pxrom/kriging.h"
#include "pxrom/support_vector.h"

namespace peers {

/// A model of ours in another program. Points are scaled as the record scales them, beforehand;
/// results come in physical units.
class Peer {
 public:
  Peer() = default;
  Peer(const Peer&) = delete;
  Peer& operator=(const Peer&) = delete;
  virtual ~Peer() = default;

  virtual const char* Name() const = 0;
  virtual void SetPoints(const std::vector<std::vector<double>>& scaled) = 0;
  virtual double EvaluateAt(std::size_t point) const = 0;
  /// All points in one call of the peer, if it has one: the result of the last. Else NaN.
  virtual double EvaluateAll() const { return std::nan(""); }
};

/// OpenTURNS: a Gaussian correlation with one kernel per input and a linear trend. Null when it is
/// not installed. One thread.
bool HasOpenTurns();
std::unique_ptr<Peer> OpenTurnsKriging(const Tarvane::Plexura::PXROM::CKrigingData& record);

/// libsvm: a Gaussian kernel. It has one width for all inputs, so that it gets inputs multiplied by
/// the roots of the record's. Null when it is not installed.
std::unique_ptr<Peer> LibsvmRegression(const Tarvane::Plexura::PXROM::CSVRData& record);

/// Gives `points`, in physical units, to the peer and ends the program unless it then finds
/// `expected` everywhere, but for rounding: there is no point in timing another model.
inline void Check(Peer& peer, const Tarvane::Plexura::PXROM::CRSData& record,
                  const std::vector<std::vector<double>>& points,
                  const std::vector<double>& expected) {
  std::vector<std::vector<double>> scaled = points;
  for (std::vector<double>& x : scaled) record.ScaleAndOverwriteInputSample(x);
  peer.SetPoints(scaled);
  double largest = 0.0;
  for (const double y : expected) largest = std::fmax(largest, std::fabs(y));
  for (std::size_t p = 0; p < points.size(); ++p) {
    const double y = peer.EvaluateAt(p);
    if (std::fabs(y - expected[p]) <= 1e-9 * largest) continue;
    std::fprintf(stderr, "%s finds %.17g instead of %.17g\n", peer.Name(), y, expected[p]);
    std::exit(1);
  }
}

}  // namespace peers
