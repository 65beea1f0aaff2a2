#pragma once

#include "families/family_of.h"
#include "pxrom/constant.h"

namespace Tarvane::Plexura::PXROM {

template <>
struct FamilyOf<CConstantData> {
  static constexpr E_DataType kType = DT_ConstantData;
  static constexpr const char* kName = "constant";
  static constexpr const char* kRecordName = "CConstantData";
  static const Family family;

  template <class Visitor, class Record>
  static int Fields(Visitor& visit, Record& record) {
    using fields::Key;
    using fields::Labels;
    visit.Property(Key(&Labels::attConstantVersion).Version(ConstantDataVersion170),
                   "ConstantDataVersion", record, record.ConstantDataVersion(),
                   [](auto& to, E_CConstantDataVersion version) {
                     return to.SetConstantDataVersion(version);
                   });
    double constant = 0.0;
    record.GetConstantValue(constant);
    visit.Property(Key(&Labels::attConstantValue), "ConstantValue", record, constant,
                   [](auto& to, double value) { return to.SetConstantValue(value); });
    return 0;
  }
};

}  // namespace Tarvane::Plexura::PXROM
