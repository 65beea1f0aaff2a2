#pragma once

#include "pxrom/rs_data.h"
#include "text/attribute_sink.h"
#include "text/database_text.h"

namespace Tarvane::Plexura::PXROM {

namespace reading {

/// Fills the base of a record of any family from one `Genome` group. 1 when the record is null or
/// its samples are refused, else 0.
int ResumeRSData(AttributeRange& in, CRSData* data);

}  // namespace reading

namespace writing {

/// Puts the base of a record of any family into one `Genome` group.
void WriteRSData(AttributeSink& out, const CRSData& record);

}  // namespace writing

}  // namespace Tarvane::Plexura::PXROM
