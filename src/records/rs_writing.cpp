// Writing of the base record and of the constant surface.

#include "pxrom/constant.h"
#include "writing/write.h"

namespace Tarvane::Plexura::PXROM::writing {

void WriteRSData(AttributeSink& out, const CRSData& record) {
  if (record.RSDataVersion_ != RSDataVersion162) {
    out.Refuse("its RSDataVersion is none that a reader restores");
  }
  out.Put(Labels::attRSNumberOfInputVariables(), record.NumberOfInputVariables);
  out.Put(Labels::attRSNumberOfSamples(), record.NumberOfSamples);
  out.PutMatrix(Labels::attRSInputSamples(), record.InputSamples, record.NumberOfSamples,
                record.NumberOfInputVariables);
  out.Put(Labels::attRSOutputSamples(), record.OutputSamples);
  out.Put(Labels::attRSInputScaleSlopes(), record.InputScaleSlopes);
  out.Put(Labels::attRSInputScaleIntercepts(), record.InputScaleIntercepts);
  out.Put(Labels::attRSOutputScaleSlope(), record.OutputScaleSlope);
  out.Put(Labels::attRSOutputScaleIntercept(), record.OutputScaleIntercept);
  out.Put(Labels::attRSIsReadyForSolve(), record.ReadyForSolve);
  out.Put(Labels::attRSIsReadyForEvaluation(), record.ReadyForEvaluation);
  out.Put(Labels::attRSIsStopped(), record.Stopped);
}

void WriteConstantData(AttributeSink& out, const CRSData& data) {
  const auto& record = static_cast<const CConstantData&>(data);
  WriteRSData(out, record);
  out.Put(Labels::attConstantVersion(), record.ConstantDataVersion());
  double value = 0.0;
  record.GetConstantValue(value);
  out.Put(Labels::attConstantValue(), value);
}

}  // namespace Tarvane::Plexura::PXROM::writing
