#include "pxrom/database_reader.h"
#include "pxrom/moving_least_squares.h"
#include "reading/resume.h"
#include "records/evaluation_frame.h"

namespace Tarvane::Plexura::PXROM {

namespace reading {

int ResumeMLSData(AttributeRange& in, CRSData* data) {
  auto* const record = RecordOf<CMLSData>(data, DT_MLSData);
  if (record == nullptr || ResumeRSData(in, record) != 0) return 1;
  record->MLSDataVersion_ = in.CatchEnum<E_CMLSDataVersion>(Labels::attMLSVersion());
  record->WeightFunction = in.CatchEnum<E_WeightFunction>(Labels::attMLSWeightFunction());
  record->PolynomialType = in.CatchEnum<E_PolynomialType>(Labels::attMLSPolynomialType());
  const auto option = in.CatchEnum<E_UsedPointsOption>(Labels::attMLSUsedPointsOption());
  double extraPercent = 0.0;
  in.Catch(Labels::attMLSExtraPointPercent(), extraPercent);
  record->SetUsedPointOption(option, extraPercent);
  int basisFunctions = 0;
  in.Catch(Labels::attMLSNumberOfBasisFunctions(), basisFunctions);
  record->NumberOfBasisFunctions = basisFunctions;
  int usedPoints = 0;
  in.Catch(Labels::attMLSNumberOfUsedPoints(), usedPoints);
  record->NumberOfUsedPoints = usedPoints;
  return 0;
}

}  // namespace reading

int CReaderPXROMDatabase::ResumeMLSData(CRSData* data, std::size_t lower, std::size_t upper) const {
  return ResumeInRange(&reading::ResumeMLSData, data, lower, upper);
}

}  // namespace Tarvane::Plexura::PXROM
