#pragma once

#include "pxrom/rs_data.h"
#include "writing/attribute_sink.h"

namespace Tarvane::Plexura::PXROM::writing {

// One Write operation per family, the counterpart of its Resume operation (reading/resume.h) and
// defined beside that: puts the attributes of a record into one `Genome` group, or refuses what
// that Resume operation would not restore. The record must be of the family.

/// A Write operation as the table of families holds it.
using WriteOperation = void (*)(AttributeSink&, const CRSData&);

/// The base record's attributes, of a record of any family.
void WriteRSData(AttributeSink& out, const CRSData& record);
void WriteConstantData(AttributeSink& out, const CRSData& data);
void WriteKrigingData(AttributeSink& out, const CRSData& data);
void WriteQRSData(AttributeSink& out, const CRSData& data);
void WriteSVRData(AttributeSink& out, const CRSData& data);
void WriteMLSData(AttributeSink& out, const CRSData& data);
void WriteLBFData(AttributeSink& out, const CRSData& data);

}  // namespace Tarvane::Plexura::PXROM::writing
