#pragma once

#include "families/family_of.h"
#include "kernels/table.h"
#include "pxrom/moving_least_squares.h"

namespace Tarvane::Plexura::PXROM {

template <>
struct FamilyOf<CMLSData> {
  static constexpr E_DataType kType = DT_MLSData;
  static constexpr const char* kName = "moving least squares";
  static constexpr const char* kRecordName = "CMLSData";
  static const Family family;
  static costing::SurfaceCost CostOf(const CRSData& record, double reach);

  template <class Visitor, class Record>
  static int Fields(Visitor& visit, Record& record);
};

template <class Visitor, class Record>
int FamilyOf<CMLSData>::Fields(Visitor& visit, Record& record) {
  using fields::Key;
  using fields::Labels;
  const auto setPercent = [](auto& to, double percent) {
    return to.SetUsedPointOption(to.UsedPointOption, percent);
  };
  if constexpr (Visitor::kWrites) {
    // A reader sets option and percentage together, which leaves the percentage 0 for most options.
    CMLSData read;
    read.UsedPointOption = record.UsedPointOption;
    setPercent(read, record.ExtraPointPercent);
    if (writing::IsUnset(read.ExtraPointPercent) && !writing::IsUnset(record.ExtraPointPercent)) {
      visit.Text().Refuse("an MLSExtraPointPercent other than 0 needs option 3 and must not be -1");
    }
  }
  visit(Key(&Labels::attMLSVersion).Version(MLSDataVersion162, MLSDataVersion170).RefusesOthers(),
        "MLSDataVersion", record.MLSDataVersion_);
  visit(Key(&Labels::attMLSWeightFunction)
            .Between(WeightConstant, kernels::Weights::Largest<E_WeightFunction>()),
        "WeightFunction", record.WeightFunction);
  visit(Key(&Labels::attMLSPolynomialType).Between(PolyConstant, PolyFullQuadratic),
        "PolynomialType", record.PolynomialType);
  visit(Key(&Labels::attMLSUsedPointsOption).Optional(), "UsedPointOption", record.UsedPointOption);
  visit.Property(Key(&Labels::attMLSExtraPointPercent).Optional(), "ExtraPointPercent", record,
                 record.ExtraPointPercent, setPercent);
  visit(Key(&Labels::attMLSNumberOfBasisFunctions).Count(), "NumberOfBasisFunctions",
        record.NumberOfBasisFunctions);
  visit(Key(&Labels::attMLSNumberOfUsedPoints).Count(), "NumberOfUsedPoints",
        record.NumberOfUsedPoints);
  return 0;
}

}  // namespace Tarvane::Plexura::PXROM
