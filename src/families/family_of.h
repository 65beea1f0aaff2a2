#pragma once

#include <memory>

#include "families/family.h"
#include "records/evaluation_frame.h"
#include "records/rs_text.h"
#include "text/fields.h"

namespace Tarvane::Plexura::PXROM {

/// Describes the family of `Record`: its number, its names, its fields (text/fields.h), and
/// `family`, which says the rest. Each family specialises it in its folder:
///
///   template <>
///   struct FamilyOf<CXData> {
///     static constexpr E_DataType kType = DT_XData;
///     static constexpr const char* kName = "x";
///     static constexpr const char* kRecordName = "CXData";
///     static const Family family;
///     template <class Visitor, class Record>
///     static int Fields(Visitor& visit, Record& record);
///   };
template <class Record>
struct FamilyOf;

/// The frame of every family's reading: the base of the record, then the family's fields.
template <class Record>
int ResumeRecord(reading::AttributeRange& in, CRSData* data) {
  auto* const record = RecordOf<Record>(data, FamilyOf<Record>::kType);
  if (record == nullptr || reading::ResumeRSData(in, record) != 0) return 1;
  fields::FieldReader reader(in);
  return FamilyOf<Record>::Fields(reader, *record);
}

template <class Record>
void WriteRecord(writing::AttributeSink& out, const CRSData& data) {
  writing::WriteRSData(out, data);
  fields::FieldWriter writer(out);
  FamilyOf<Record>::Fields(writer, static_cast<const Record&>(data));
}

template <class Record>
const FamilyKeys& KeysOfRecord() {
  static const FamilyKeys keys = [] {
    fields::FieldLister lister;
    Record record;
    FamilyOf<Record>::Fields(lister, record);
    return FamilyKeys{lister.Keys(), lister.KeysOfPart()};
  }();
  return keys;
}

template <class Record>
std::unique_ptr<CRSData> NewRecord() {
  return std::make_unique<Record>();
}

template <class Evaluator>
const CRSEvaluator& TheEvaluator() {
  static const Evaluator evaluator;
  return evaluator;
}

/// The part of a Family that follows from its classes and its description.
template <class Record, class Evaluator>
constexpr Family StartFamily() {
  Family family;
  family.type = FamilyOf<Record>::kType;
  family.name = FamilyOf<Record>::kName;
  family.recordName = FamilyOf<Record>::kRecordName;
  family.newRecord = &NewRecord<Record>;
  family.evaluator = &TheEvaluator<Evaluator>;
  family.resume = &ResumeRecord<Record>;
  family.write = &WriteRecord<Record>;
  family.keys = &KeysOfRecord<Record>;
  return family;
}

}  // namespace Tarvane::Plexura::PXROM
