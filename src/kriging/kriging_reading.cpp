// Reading of the Kriging record.

#include <utility>

#include "pxrom/database_reader.h"
#include "pxrom/kriging.h"
#include "reading/resume.h"
#include "records/evaluation_frame.h"

namespace Tarvane::Plexura::PXROM {

namespace reading {

int ResumeKrigingData(AttributeRange& in, CRSData* data) {
  auto* const record = RecordOf<CKrigingData>(data, DT_KrigingData);
  if (record == nullptr || ResumeRSData(in, record) != 0) return 1;
  record->PolynomialType = in.CatchEnum<E_PolynomialType>(Labels::attKrigingPolynomialType());
  in.Catch(Labels::attKrigingPolynomialCoefficients(), record->PolynomialCoefficients);
  record->CorrelationFunctionType =
      in.CatchEnum<E_KringingCorrelationFunctionType>(Labels::attKrigingCorrelationFunctionType());
  in.Catch(Labels::attKrigingCorrelationCoefficients(), record->CorrelationCoefficients);
  in.Catch(Labels::attKrigingCorrelationKernels(), record->CorrelationKernels);
  record->KrigingDataVersion_ = in.CatchEnum<E_CKrigingDataVersion>(Labels::attKrigingVersion());

  // Older records have no error data: an attribute that says otherwise is not read.
  if (record->KrigingDataVersion_ < KrigingDataVersion192) return 0;
  bool save = false;
  in.Catch(Labels::attKrigingSavePredictorError(), save);
  record->SavePredictorError = save;
  // Without its error data the surface still has a value, so that their status is not passed on.
  if (save) ResumeKrigingDataPredictorError(in, record);
  return 0;
}

int ResumeKrigingDataPredictorError(AttributeRange& in, CRSData* data) {
  auto* const record = RecordOf<CKrigingData>(data, DT_KrigingData);
  if (record == nullptr) return 1;
  int n = 0;
  int p = 0;
  double variance = 0.0;
  in.Catch(Labels::attRSNumberOfSamples(), n);
  in.Catch(Labels::attKrigingNumberOfPolyCoeff(), p);
  in.Catch(Labels::attKrigingSigmaSquare(), variance);
  // All or nothing: a part of the error data would be worse than none.
  std::vector<std::vector<double>> invC;
  std::vector<std::vector<double>> invG;
  std::vector<std::vector<double>> ft;
  if (in.CatchMatrix(Labels::attKrigingInverseOfC(), n, n, invC) != 0 ||
      in.CatchMatrix(Labels::attKrigingInverseOfG(), p, p, invG) != 0 ||
      in.CatchMatrix(Labels::attKrigingFTilde(), p, n, ft) != 0) {
    return 1;
  }
  record->NumberOfPolyCoeff = p;
  record->Sigma2 = variance;
  record->InvC = std::move(invC);
  record->InvG = std::move(invG);
  record->Ft = std::move(ft);
  return 0;
}

}  // namespace reading

int CReaderPXROMDatabase::ResumeKrigingData(CRSData* data, std::size_t lower,
                                            std::size_t upper) const {
  return ResumeInRange(&reading::ResumeKrigingData, data, lower, upper);
}

int CReaderPXROMDatabase::ResumeKrigingDataPredictorError(CRSData* data, std::size_t lower,
                                                          std::size_t upper) const {
  return ResumeInRange(&reading::ResumeKrigingDataPredictorError, data, lower, upper);
}

}  // namespace Tarvane::Plexura::PXROM
