// Reading of the base record and of the constant surface.

#include "pxrom/constant.h"
#include "pxrom/database_reader.h"
#include "reading/resume.h"
#include "records/evaluation_frame.h"

namespace Tarvane::Plexura::PXROM {

namespace reading {

int ResumeRSData(AttributeRange& in, CRSData* data) {
  if (data == nullptr) return 1;
  int inputVariables = 0;
  int samples = 0;
  in.Catch(Labels::attRSNumberOfInputVariables(), inputVariables);
  in.Catch(Labels::attRSNumberOfSamples(), samples);
  data->NumberOfInputVariables = inputVariables;
  data->NumberOfSamples = samples;
  if (in.CatchMatrix(Labels::attRSInputSamples(), samples, inputVariables, data->InputSamples) !=
      0) {
    return 1;
  }
  in.Catch(Labels::attRSOutputSamples(), data->OutputSamples);
  in.Catch(Labels::attRSInputScaleSlopes(), data->InputScaleSlopes);
  in.Catch(Labels::attRSInputScaleIntercepts(), data->InputScaleIntercepts);

  // One local for both output scale values and one for the three flags, on purpose: an attribute
  // that is missing repeats the one before it.
  double outputScale = 0.0;
  in.Catch(Labels::attRSOutputScaleSlope(), outputScale);
  data->OutputScaleSlope = outputScale;
  in.Catch(Labels::attRSOutputScaleIntercept(), outputScale);
  data->OutputScaleIntercept = outputScale;

  int flag = 0;
  in.Catch(Labels::attRSIsReadyForSolve(), flag);
  data->ReadyForSolve = flag != 0;
  in.Catch(Labels::attRSIsReadyForEvaluation(), flag);
  data->ReadyForEvaluation = flag != 0;
  in.Catch(Labels::attRSIsStopped(), flag);
  data->Stopped = flag != 0;
  return 0;
}

int ResumeConstantData(AttributeRange& in, CRSData* data) {
  auto* const record = RecordOf<CConstantData>(data, DT_ConstantData);
  if (record == nullptr || ResumeRSData(in, record) != 0) return 1;
  record->SetConstantDataVersion(
      in.CatchEnum<E_CConstantDataVersion>(Labels::attConstantVersion()));
  double value = 0.0;
  in.Catch(Labels::attConstantValue(), value);
  record->SetConstantValue(value);
  return 0;
}

}  // namespace reading

int CReaderPXROMDatabase::ResumeRSData(CRSData* data, std::size_t lower, std::size_t upper) const {
  return ResumeInRange(&reading::ResumeRSData, data, lower, upper);
}

int CReaderPXROMDatabase::ResumeConstantData(CRSData* data, std::size_t lower,
                                             std::size_t upper) const {
  return ResumeInRange(&reading::ResumeConstantData, data, lower, upper);
}

}  // namespace Tarvane::Plexura::PXROM
