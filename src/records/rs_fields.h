#pragma once

#include "pxrom/rs_data.h"
#include "text/fields.h"

namespace Tarvane::Plexura::PXROM {

/// What the text of every surface holds, whatever its family.
template <class Visitor, class Record>
int BaseFields(Visitor& visit, Record& record) {
  using fields::Key;
  using fields::Labels;
  visit(Key(&Labels::attRSNumberOfInputVariables).Count(), "NumberOfInputVariables",
        record.NumberOfInputVariables);
  visit(Key(&Labels::attRSNumberOfSamples).Count(), "NumberOfSamples", record.NumberOfSamples);
  if (visit.Matrix(Key(&Labels::attRSInputSamples), "InputSamples", record.InputSamples,
                   record.NumberOfSamples, record.NumberOfInputVariables) != 0) {
    return 1;
  }
  visit(Key(&Labels::attRSOutputSamples), "OutputSamples", record.OutputSamples);
  visit(Key(&Labels::attRSInputScaleSlopes), "InputScaleSlopes", record.InputScaleSlopes);
  visit(Key(&Labels::attRSInputScaleIntercepts), "InputScaleIntercepts",
        record.InputScaleIntercepts);
  // Deliberate (shared-scale-local): both output scale values are read through one variable, and
  // the three flags through another. A missing attribute repeats the one before it.
  double scale = 0.0;
  visit.Repeated(Key(&Labels::attRSOutputScaleSlope), "OutputScaleSlope", record.OutputScaleSlope,
                 scale);
  visit.Repeated(Key(&Labels::attRSOutputScaleIntercept), "OutputScaleIntercept",
                 record.OutputScaleIntercept, scale);
  int flag = 0;
  visit.Repeated(Key(&Labels::attRSIsReadyForSolve), "ReadyForSolve", record.ReadyForSolve, flag);
  visit.Repeated(Key(&Labels::attRSIsReadyForEvaluation), "ReadyForEvaluation",
                 record.ReadyForEvaluation, flag);
  visit.Repeated(Key(&Labels::attRSIsStopped), "Stopped", record.Stopped, flag);
  return 0;
}

}  // namespace Tarvane::Plexura::PXROM
