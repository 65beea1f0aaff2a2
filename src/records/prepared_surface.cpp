#include "records/prepared_surface.h"

#include <algorithm>

namespace Tarvane::Plexura::PXROM::batch {

namespace {

class RefusedSurface : public PreparedSurface {
 public:
  void Evaluate(const Points& points, const Tools&, const Results& results) const override {
    std::fill_n(results.statuses, points.count, 1);
  }
  int Gradient(const double*, double*, double*) const override { return 1; }
};

}  // namespace

std::unique_ptr<const PreparedSurface> PrepareRefused() {
  return std::make_unique<RefusedSurface>();
}

}  // namespace Tarvane::Plexura::PXROM::batch
