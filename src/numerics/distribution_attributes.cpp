#include "numerics/distribution_attributes.h"

#include <array>
#include <cstddef>

DistAttr::~DistAttr() = default;

int DistAttr::SetValue(const double&, const double&) { return 1; }

int DistAttr::GetValue(double&, double&) const { return 1; }

int DistAttr::GetValue(double& value) const {
  value = Value;
  return 0;
}

int DistAttr::GetAttrType(int& type) const {
  type = AttrType;
  return 0;
}

int DistAttr::GetAttrStatus() const { return AttrStatus; }

int DistAttr::CopyTo(DistAttr* target) const {
  if (target == nullptr) return 1;
  target->Value = Value;
  target->AttrType = AttrType;
  target->AttrStatus = AttrStatus;
  return 0;
}

Prct::Prct() : DistAttr(6) {}

int Prct::SetValue(const double& value, const double& prob) {
  Value = value;
  if (!(prob > 0.0)) {
    AttrStatus = DistAttrNotAboveLower;
    return 1;
  }
  if (prob >= 1.0) {
    AttrStatus = DistAttrNotBelowUpper;
    return 1;
  }
  Prob = prob;
  AttrStatus = DistAttrSet;
  return 0;
}

int Prct::SetValue(const double& prob) { return SetValue(1.0, prob); }

int Prct::GetValue(double& value, double& prob) const {
  value = Value;
  prob = Prob;
  return 0;
}

int Prct::GetValue(double& prob) const {
  prob = Prob;
  return 0;
}

int Prct::CopyTo(DistAttr* target) const {
  auto* const prct = dynamic_cast<Prct*>(target);
  if (prct == nullptr) return 1;
  *prct = *this;
  return 0;
}

namespace {

template <class Attribute>
std::unique_ptr<DistAttr> New() {
  return std::make_unique<Attribute>();
}

// In the order of their types, which count from 1.
constexpr std::array<std::unique_ptr<DistAttr> (*)(), 20> kAttributes = {
    &New<LwrBnd>,     &New<UprBnd>,     &New<Range>,      &New<Mean>,       &New<StdDev>,
    &New<Prct>,       &New<MaxLikeVal>, &New<LogMean>,    &New<LogStdDev>,  &New<ExpoDecay>,
    &New<BetaShapeR>, &New<BetaShapeT>, &New<GammaDecay>, &New<GammaExpo>,  &New<WeibExpo>,
    &New<WeibChar>,   &New<StudTDOF>,   &New<FishFNumer>, &New<FishFDenom>, &New<Mode>,
};

}  // namespace

std::unique_ptr<DistAttr> NewDistAttr(int type) {
  if (type < 1 || type > static_cast<int>(kAttributes.size())) return nullptr;
  return kAttributes[static_cast<std::size_t>(type - 1)]();
}
