#pragma once

#include "pxrom/rs_data.h"
#include "reading/database_text.h"

namespace Tarvane::Plexura::PXROM::reading {

// One Resume operation per family: fills the record from the attributes of one `Genome` group. Each
// is defined next to the record that it fills; the operation of CReaderPXROMDatabase with the same
// name forwards to it. Status 1 when the record is null or of another family, which leaves it
// alone, or when the content is refused; else 0.

/// A Resume operation as the table of families holds it.
using ResumeOperation = int (*)(AttributeRange&, CRSData*);

/// The base record's attributes, of a record of any family.
int ResumeRSData(AttributeRange& in, CRSData* data);
int ResumeConstantData(AttributeRange& in, CRSData* data);
int ResumeKrigingData(AttributeRange& in, CRSData* data);
int ResumeKrigingDataPredictorError(AttributeRange& in, CRSData* data);
int ResumeQRSData(AttributeRange& in, CRSData* data);
int ResumeQRSDataPredictorError(AttributeRange& in, CRSData* data);
int ResumeSVRData(AttributeRange& in, CRSData* data);
int ResumeMLSData(AttributeRange& in, CRSData* data);
int ResumeLBFData(AttributeRange& in, CRSData* data);

}  // namespace Tarvane::Plexura::PXROM::reading
