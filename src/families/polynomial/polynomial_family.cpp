#include "families/polynomial/polynomial_checks.h"
#include "families/polynomial/polynomial_fields.h"
#include "families/polynomial/polynomial_preparation.h"

namespace Tarvane::Plexura::PXROM {

namespace {

const char* CauseOfRefusal(const CRSData& surface) {
  const auto& record = static_cast<const CPolynomialData&>(surface);
  const bool isTransformed =
      !record.VariableTransformTypes.empty() || record.OutputTransformType != TransformNone;
  return isTransformed ? ": one of its transformations has no value there" : "";
}

constexpr Family Describe() {
  Family family = StartFamily<CPolynomialData, CPolynomialEvaluator>();
  family.hasErrorForm = true;
  family.derivative = Derivative::OfValue;
  family.scalesInput = true;
  family.scalesOutput = true;
  family.cost = &FamilyOf<CPolynomialData>::CostOf;
  family.check = &inspection::CheckPolynomial;
  family.prepare = &batch::PreparePolynomial;
  family.valueDependsOnPoint = true;
  family.causeOfRefusal = &CauseOfRefusal;
  return family;
}

}  // namespace

const Family FamilyOf<CPolynomialData>::family = Describe();

}  // namespace Tarvane::Plexura::PXROM
