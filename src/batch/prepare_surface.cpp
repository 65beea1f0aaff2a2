#include <algorithm>

#include "batch/prepared_surface.h"
#include "ensemble/families.h"
#include "pxrom/constant.h"

namespace Tarvane::Plexura::PXROM::batch {

namespace {

class RefusedSurface : public PreparedSurface {
 public:
  void Evaluate(const Points& points, const Tools&, const Results& results) const override {
    std::fill_n(results.statuses, points.count, 1);
  }
  int Gradient(const double*, double*, double*) const override { return 1; }
};

class ConstantSurface : public PreparedSurface {
 public:
  ConstantSurface(double value, std::size_t inputs) : value_(value), inputs_(inputs) {}

  void Evaluate(const Points& points, const Tools&, const Results& results) const override {
    std::fill_n(results.values, points.count, value_);
    // Only a constant without any input knows its error.
    const bool hasError = results.errors != nullptr && inputs_ == 0;
    if (hasError) std::fill_n(results.errors, points.count, 0.0);
    std::fill_n(results.statuses, points.count, results.errors != nullptr && !hasError ? -2 : 0);
  }

  int Gradient(const double*, double*, double* gradient) const override {
    std::fill_n(gradient, inputs_, 0.0);
    return 0;
  }

 private:
  double value_;
  std::size_t inputs_;
};

/// How a family is prepared.
struct Preparation {
  E_DataType type;
  std::unique_ptr<const PreparedSurface> (*prepare)(const CRSData& record, std::size_t inputs);
  /// Whether a point decides if the record gives a value, so that no trial can tell.
  bool dependsOnPoint;
};

constexpr Preparation kPreparations[] = {
    {DT_ConstantData, &PrepareConstant, false},     {DT_KrigingData, &PrepareKriging, false},
    {DT_QRSData, &PrepareRegression, true},         {DT_SVRData, &PrepareSupportVector, false},
    {DT_MLSData, &PrepareMovingLeastSquares, true}, {DT_LBFData, &PrepareLinearBasis, false},
};

}  // namespace

bool IsServed(const CRSData& record, std::size_t inputs) {
  const Family* const family = FindFamily(record.DataType());
  if (family == nullptr) return false;
  double y = 0.0;
  // The form without an error writes no record.
  const std::vector<double> origin(inputs, 0.0);
  return family->evaluator().EvaluateResponseSurface(&record, origin, y) != 1;
}

std::unique_ptr<const PreparedSurface> PrepareRefused() {
  return std::make_unique<RefusedSurface>();
}

std::unique_ptr<const PreparedSurface> PrepareConstant(const CRSData& record, std::size_t inputs) {
  double value = 0.0;
  static_cast<const CConstantData&>(record).GetConstantValue(value);
  return std::make_unique<ConstantSurface>(value, inputs);
}

std::unique_ptr<const PreparedSurface> PrepareSurface(const CRSData& record, std::size_t inputs) {
  for (const Preparation& preparation : kPreparations) {
    if (preparation.type != record.DataType()) continue;
    if (!preparation.dependsOnPoint && !IsServed(record, inputs)) break;
    return preparation.prepare(record, inputs);
  }
  return PrepareRefused();
}

}  // namespace Tarvane::Plexura::PXROM::batch
