#include "records/rs_text.h"

#include "records/rs_fields.h"

namespace Tarvane::Plexura::PXROM {

int reading::ResumeRSData(AttributeRange& in, CRSData* data) {
  if (data == nullptr) return 1;
  fields::FieldReader reader(in);
  return BaseFields(reader, *data);
}

void writing::WriteRSData(AttributeSink& out, const CRSData& record) {
  if (record.RSDataVersion_ != RSDataVersion162) {
    out.Refuse("no reader restores its RSDataVersion");
  }
  fields::FieldWriter writer(out);
  BaseFields(writer, record);
}

}  // namespace Tarvane::Plexura::PXROM
