#include "batch/prepare_surface.h"

#include <algorithm>
#include <memory>
#include <vector>

#include "families/family.h"

namespace Tarvane::Plexura::PXROM::batch {

namespace {

/// A surface of a family that does not prepare its records: a copy of the record, which the
/// family's evaluator evaluates point by point. Not for a family that changes records, since
/// threads share the copy.
class EvaluatedSurface : public PreparedSurface {
 public:
  EvaluatedSurface(const Family& family, const CRSData& record, std::size_t inputs)
      : family_(family), record_(record.Clone()), inputs_(inputs) {}

  void Evaluate(const Points& points, const Tools&, const Results& results) const override {
    EvaluateOneByOne(family_.evaluator(), *record_, inputs_, points, results);
    if (results.inUnit.errors == nullptr) return;
    results.FillInUnit(points.count);
    // A value remains where only the form with an error refuses.
    double values[kBlock];
    int statuses[kBlock];
    EvaluateOneByOne(family_.evaluator(), *record_, inputs_, points, {values, nullptr, statuses});
    for (std::size_t point = 0; point < points.count; ++point) {
      if (results.statuses[point] != 1 || statuses[point] == 1) continue;
      results.values[point] = values[point];
      results.statuses[point] = -2;
    }
  }

  bool HasErrors() const override { return family_.hasErrorForm; }

  int Gradient(const double* x, double*, double* gradient) const override {
    const bool isOff = family_.derivative != Derivative::OfValue ||
                       (family_.isDerivativeOff != nullptr && family_.isDerivativeOff(*record_));
    std::vector<double> slopes;
    if (isOff ||
        family_.evaluator().EvaluateResponseSurfaceDerivativeWrtInputVariables(
            record_.get(), std::vector<double>(x, x + inputs_), slopes) != 0 ||
        slopes.size() != inputs_) {
      return 1;
    }
    std::copy(slopes.begin(), slopes.end(), gradient);
    return 0;
  }

 private:
  const Family& family_;
  std::unique_ptr<const CRSData> record_;
  std::size_t inputs_;
};

/// Whether the evaluator gives `record` a value at all, where that does not depend on the point.
bool IsServed(const Family& family, const CRSData& record, std::size_t inputs) {
  double y = 0.0;
  // The form without an error writes no record.
  const std::vector<double> origin(inputs, 0.0);
  return family.evaluator().EvaluateResponseSurface(&record, origin, y) != 1;
}

}  // namespace

std::unique_ptr<PreparedSurface> PrepareSurface(const CRSData& record, std::size_t inputs) {
  const Family* const family = FindFamily(record.DataType());
  if (family == nullptr || !family->hasValue) return PrepareRefused();
  if (family->prepare == nullptr)
    return std::make_unique<EvaluatedSurface>(*family, record, inputs);
  if (!family->valueDependsOnPoint && !IsServed(*family, record, inputs)) return PrepareRefused();
  return family->prepare(record, inputs);
}

}  // namespace Tarvane::Plexura::PXROM::batch
