#include "extra_family/plane.h"

#include "families/surface_text.h"

namespace Tarvane::Plexura::PXROM {

namespace {

void Check(inspection::SurfaceText& surface) {
  if (!surface.shape.inputs) return;
  surface.in.ExpectLength(attPlaneSlopes(), *surface.shape.inputs,
                          inspection::InputsOf(surface.shape));
}

costing::SurfaceCost CostOf(const CRSData& record, double) {
  costing::SurfaceCost cost;
  cost.value = 2.0 * static_cast<double>(static_cast<const CPlaneData&>(record).Slopes.size());
  return cost;
}

constexpr Family Describe() {
  Family family = StartFamily<CPlaneData, CPlaneEvaluator>();
  family.cost = &CostOf;
  family.derivative = Derivative::OfValue;
  family.check = &Check;
  return family;
}

const CPlaneData* PlaneAt(const CRSData* data, const std::vector<double>& x) {
  if (!IsEvaluable(data, DT_PlaneData, x)) return nullptr;
  const auto* const plane = static_cast<const CPlaneData*>(data);
  return plane->Slopes.size() == x.size() ? plane : nullptr;
}

}  // namespace

const Family FamilyOf<CPlaneData>::family = Describe();

const std::string& attPlaneVersion() {
  static const std::string word("PlaneVersion=");
  return word;
}
const std::string& attPlaneStart() {
  static const std::string word("PlaneStart=");
  return word;
}
const std::string& attPlaneSlopes() {
  static const std::string word("PlaneSlopes=");
  return word;
}

int CPlaneEvaluator::EvaluateResponseSurface(const CRSData* data, const std::vector<double>& x,
                                             double& y) const {
  const CPlaneData* const plane = PlaneAt(data, x);
  if (plane == nullptr) return 1;
  y = plane->Start;
  for (std::size_t i = 0; i < x.size(); ++i) y += plane->Slopes[i] * x[i];
  return 0;
}

int CPlaneEvaluator::EvaluateResponseSurfaceDerivativeWrtInputVariables(
    const CRSData* data, const std::vector<double>& x, std::vector<double>& gradient) const {
  const CPlaneData* const plane = PlaneAt(data, x);
  if (plane == nullptr) return 1;
  gradient = plane->Slopes;
  return 0;
}

}  // namespace Tarvane::Plexura::PXROM
