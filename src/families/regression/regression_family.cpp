#include "families/regression/regression_checks.h"
#include "families/regression/regression_fields.h"
#include "families/regression/regression_preparation.h"

namespace Tarvane::Plexura::PXROM {

namespace {

const fields::KeyTable& TermKeys() {
  static const fields::KeyTable keys = [] {
    fields::FieldLister lister;
    regression::TermText term;
    regression::TermFields(lister, term);
    return lister.Keys();
  }();
  return keys;
}

bool LacksErrorData(const CRSData& surface) {
  return !static_cast<const CQRSData&>(surface).SavePredictorError;
}

// The derivative ignores input transformations and is right for only some output transformations.
bool IsDerivativeOff(const CRSData& surface) {
  const auto& record = static_cast<const CQRSData&>(surface);
  return record.InputTransformType != TransformNone ||
         (record.OutputTransformType != TransformNone &&
          record.OutputTransformType != TransformBox &&
          record.OutputTransformType != TransformLogBox);
}

const char* CauseOfRefusal(const CRSData& surface) {
  return static_cast<const CQRSData&>(surface).OutputTransformType == TransformNone
             ? ""
             : ": its output transformation has no way back from the sum of its terms";
}

constexpr Family Describe() {
  Family family = StartFamily<CQRSData, CQRSEvaluator>();
  family.innerGroup = &fields::Labels::tagQRSRegTerm;
  family.innerKeys = &TermKeys;
  family.hasErrorForm = true;
  family.derivative = Derivative::OfValue;
  family.scalesInput = true;
  family.scalesOutput = true;
  family.cost = &FamilyOf<CQRSData>::CostOf;
  family.check = &inspection::CheckRegression;
  family.prepare = &batch::PrepareRegression;
  family.valueDependsOnPoint = true;
  family.lacksErrorData = &LacksErrorData;
  family.isDerivativeOff = &IsDerivativeOff;
  family.causeOfRefusal = &CauseOfRefusal;
  return family;
}

}  // namespace

const Family FamilyOf<CQRSData>::family = Describe();

}  // namespace Tarvane::Plexura::PXROM
