#include <algorithm>

#include "families/constant/constant_fields.h"

namespace Tarvane::Plexura::PXROM {

namespace {

class ConstantSurface : public batch::PreparedSurface {
 public:
  ConstantSurface(double value, std::size_t inputs) : value_(value), inputs_(inputs) {}

  void Evaluate(const batch::Points& points, const batch::Tools&,
                const batch::Results& results) const override {
    std::fill_n(results.values, points.count, value_);
    // As CConstantEvaluator does.
    const bool hasError = results.errors != nullptr && inputs_ == 0;
    if (hasError) {
      std::fill_n(results.errors, points.count, 0.0);
      results.FillInUnit(points.count);
    }
    std::fill_n(results.statuses, points.count, results.errors != nullptr && !hasError ? -2 : 0);
  }

  bool HasErrors() const override { return inputs_ == 0; }

  int Gradient(const double*, double*, double* gradient) const override {
    std::fill_n(gradient, inputs_, 0.0);
    return 0;
  }

 private:
  double value_;
  std::size_t inputs_;
};

void TakeValue(const CRSData& record, double& value) {
  static_cast<const CConstantData&>(record).GetConstantValue(value);
}

std::unique_ptr<batch::PreparedSurface> Prepare(const CRSData& record, std::size_t inputs) {
  double value = 0.0;
  TakeValue(record, value);
  return std::make_unique<ConstantSurface>(value, inputs);
}

costing::SurfaceCost CostOf(const CRSData&, double) { return {}; }

constexpr Family Describe() {
  Family family = StartFamily<CConstantData, CConstantEvaluator>();
  family.hasErrorForm = true;
  family.cost = &CostOf;
  family.constantValue = &TakeValue;
  family.prepare = &Prepare;
  return family;
}

}  // namespace

const Family FamilyOf<CConstantData>::family = Describe();

}  // namespace Tarvane::Plexura::PXROM
