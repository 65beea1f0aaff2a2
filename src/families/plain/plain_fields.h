#pragma once

#include "families/family_of.h"
#include "pxrom/rs_data.h"

namespace Tarvane::Plexura::PXROM {

/// A record of no family. It is read and written, and every evaluation refuses it.
template <>
struct FamilyOf<CRSData> {
  static constexpr E_DataType kType = DT_RSData;
  static constexpr const char* kName = "plain";
  static constexpr const char* kRecordName = "CRSData";
  static const Family family;

  /// No more than the base.
  template <class Visitor, class Record>
  static int Fields(Visitor&, Record&) {
    return 0;
  }
};

}  // namespace Tarvane::Plexura::PXROM
