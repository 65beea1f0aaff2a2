#include "pxrom/database_reader.h"
#include "pxrom/support_vector.h"
#include "reading/resume.h"
#include "records/evaluation_frame.h"

namespace Tarvane::Plexura::PXROM {

namespace reading {

int ResumeSVRData(AttributeRange& in, CRSData* data) {
  auto* const record = RecordOf<CSVRData>(data, DT_SVRData);
  if (record == nullptr || ResumeRSData(in, record) != 0) return 1;
  record->SVRDataVersion_ = in.CatchEnum<E_CSVRDataVersion>(Labels::attSVRVersion());
  record->SVRKernType = in.CatchEnum<E_SVRKernType>(Labels::attSVRKernType());
  record->SVRKernCompType = in.CatchEnum<E_SVRKernCompType>(Labels::attSVRCompType());
  record->SVRLossFuncType = in.CatchEnum<E_SVRLossFuncType>(Labels::attSVRLossFuncType());

  // A value out of its range, and so a missing one too, leaves the default without a word.
  double epsilon = 0.0;
  in.Catch(Labels::attSVREpsilonValue(), epsilon);
  record->SetEpsVal(epsilon);
  double nu = 0.0;
  in.Catch(Labels::attSVRNuValue(), nu);
  record->SetNuVal(nu);
  double constant = 0.0;
  in.Catch(Labels::attSVRConstantValue(), constant);
  record->SetConstVal(constant);

  in.Catch(Labels::attSVRAlpha(), record->Alphas);
  in.Catch(Labels::attSVRAlphaStar(), record->AlphasStar);
  in.Catch(Labels::attSVRBeta(), record->Betas);
  double bias = 0.0;
  in.Catch(Labels::attSVRConstCoeff(), bias);
  record->ConstantCoefficient = bias;

  if (record->SVRDataVersion_ >= SVRDataVersion171) {
    in.Catch(Labels::attSVRKernelArray(), record->KernelArray);
    return 0;
  }
  // Older databases hold no widths. Samples without any spread have none either: the record is
  // read all the same, and its evaluator then refuses it.
  std::vector<std::vector<double>> scaled = record->InputSamples;
  record->ScaleAndOverwriteInputSamples(scaled);
  record->EvaluateKernelArray(scaled, record->KernelArray);
  record->SVRDataVersion_ = SVRDataVersion171;
  return 0;
}

}  // namespace reading

int CReaderPXROMDatabase::ResumeSVRData(CRSData* data, std::size_t lower, std::size_t upper) const {
  return ResumeInRange(&reading::ResumeSVRData, data, lower, upper);
}

}  // namespace Tarvane::Plexura::PXROM
