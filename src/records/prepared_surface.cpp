#include "records/prepared_surface.h"

#include <algorithm>
#include <cmath>

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

void Results::FillInUnit(std::size_t count) const {
  if (inUnit.errors == nullptr) return;
  for (std::size_t point = 0; point < count; ++point) {
    inUnit.errors[point] = std::fabs(errors[point]);
    inUnit.below[point] = inUnit.errors[point];
    inUnit.above[point] = inUnit.errors[point];
  }
}

std::unique_ptr<PreparedSurface> PrepareRefused() { return std::make_unique<RefusedSurface>(); }

void EvaluateOneByOne(const CRSEvaluator& evaluator, const CRSData& record, std::size_t inputs,
                      const Points& points, const Results& results) {
  std::vector<double> x(inputs);
  for (std::size_t p = 0; p < points.count; ++p) {
    for (std::size_t i = 0; i < inputs; ++i) x[i] = points.x[i * kBlock + p];
    double& value = results.values[p];
    value = 0.0;
    results.statuses[p] =
        results.errors == nullptr
            ? evaluator.EvaluateResponseSurface(&record, x, value)
            : evaluator.EvaluateResponseSurface(&record, x, value, results.errors[p]);
  }
}

}  // namespace Tarvane::Plexura::PXROM::batch
