#include <utility>

#include "families/kriging/kriging_fields.h"

namespace Tarvane::Plexura::PXROM {

bool kriging::HasErrorData(const CKrigingData& record) {
  return record.NumberOfPolyCoeff != 0 || !writing::IsUnset(record.Sigma2) ||
         !record.InvC.empty() || !record.InvG.empty() || !record.Ft.empty();
}

int reading::ResumeKrigingDataPredictorError(AttributeRange& in, CRSData* data) {
  auto* const record = RecordOf<CKrigingData>(data, DT_KrigingData);
  if (record == nullptr) return 1;
  // All or nothing: a part of the error data would be worse than none.
  CKrigingData read;
  in.Catch(Labels::attRSNumberOfSamples(), read.NumberOfSamples);
  fields::FieldReader reader(in);
  if (FamilyOf<CKrigingData>::ErrorFields(reader, read) != 0) return 1;
  record->NumberOfPolyCoeff = read.NumberOfPolyCoeff;
  record->Sigma2 = read.Sigma2;
  record->InvC = std::move(read.InvC);
  record->InvG = std::move(read.InvG);
  record->Ft = std::move(read.Ft);
  return 0;
}

}  // namespace Tarvane::Plexura::PXROM
