#include "pxrom/database_reader.h"
#include "pxrom/linear_basis.h"
#include "reading/resume.h"
#include "records/evaluation_frame.h"

namespace Tarvane::Plexura::PXROM {

namespace reading {

int ResumeLBFData(AttributeRange& in, CRSData* data) {
  auto* const record = RecordOf<CLBFData>(data, DT_LBFData);
  if (record == nullptr || ResumeRSData(in, record) != 0) return 1;
  record->LBFDataVersion_ = in.CatchEnum<E_CLBFDataVersion>(Labels::attLBFVersion());
  record->BasisFunctionType = in.CatchEnum<E_LinearBasisFunction>(Labels::attLBFFunction());
  record->PolynomialType = in.CatchEnum<E_PolynomialType>(Labels::attLBFPolynomialType());
  in.Catch(Labels::attLBFKernelValues(), record->KernelValues);
  in.Catch(Labels::attLBFPolynomialCoefficients(), record->PolynomialCoefficients);
  in.Catch(Labels::attLBFKernelCoefficients(), record->KernelCoefficients);
  return 0;
}

}  // namespace reading

int CReaderPXROMDatabase::ResumeLBFData(CRSData* data, std::size_t lower, std::size_t upper) const {
  return ResumeInRange(&reading::ResumeLBFData, data, lower, upper);
}

}  // namespace Tarvane::Plexura::PXROM
