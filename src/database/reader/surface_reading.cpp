// The reader's operations for one surface, for derived readers.

#include "families/families.h"
#include "pxrom/database_reader.h"

namespace Tarvane::Plexura::PXROM {

int CReaderPXROMDatabase::ResumeInRange(int (*resume)(reading::AttributeRange&, CRSData*),
                                        CRSData* data, std::size_t lower, std::size_t upper) const {
  reading::DatabaseText text(DataStream);
  reading::AttributeRange range(text, {lower, upper});
  const int status = resume(range, data);
  return text.IsExhausted() ? 1 : status;
}

int CReaderPXROMDatabase::ResumeRSData(CRSData* data, std::size_t lower, std::size_t upper) const {
  return ResumeInRange(&reading::ResumeRSData, data, lower, upper);
}

int CReaderPXROMDatabase::ResumeConstantData(CRSData* data, std::size_t lower,
                                             std::size_t upper) const {
  return ResumeInRange(FamilyOf<CConstantData>::family.resume, data, lower, upper);
}

int CReaderPXROMDatabase::ResumeKrigingData(CRSData* data, std::size_t lower,
                                            std::size_t upper) const {
  return ResumeInRange(FamilyOf<CKrigingData>::family.resume, data, lower, upper);
}

int CReaderPXROMDatabase::ResumeQRSData(CRSData* data, std::size_t lower, std::size_t upper) const {
  return ResumeInRange(FamilyOf<CQRSData>::family.resume, data, lower, upper);
}

int CReaderPXROMDatabase::ResumeSVRData(CRSData* data, std::size_t lower, std::size_t upper) const {
  return ResumeInRange(FamilyOf<CSVRData>::family.resume, data, lower, upper);
}

int CReaderPXROMDatabase::ResumeMLSData(CRSData* data, std::size_t lower, std::size_t upper) const {
  return ResumeInRange(FamilyOf<CMLSData>::family.resume, data, lower, upper);
}

int CReaderPXROMDatabase::ResumeLBFData(CRSData* data, std::size_t lower, std::size_t upper) const {
  return ResumeInRange(FamilyOf<CLBFData>::family.resume, data, lower, upper);
}

int CReaderPXROMDatabase::ResumeKrigingDataPredictorError(CRSData* data, std::size_t lower,
                                                          std::size_t upper) const {
  return ResumeInRange(&reading::ResumeKrigingDataPredictorError, data, lower, upper);
}

int CReaderPXROMDatabase::ResumeQRSDataPredictorError(CRSData* data, std::size_t lower,
                                                      std::size_t upper) const {
  return ResumeInRange(&reading::ResumeQRSDataPredictorError, data, lower, upper);
}

}  // namespace Tarvane::Plexura::PXROM
