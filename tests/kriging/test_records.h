#pragma once

#include <vector>

#include "pxrom/kriging.h"

namespace Tarvane::Plexura::PXROM {

using Vector = std::vector<double>;
using Matrix = std::vector<std::vector<double>>;

// One input, scaled by 2 x + 1, two samples, a constant trend; numbers that tell the steps of the
// error apart.
inline CKrigingData SmallRecord() {
  CKrigingData record;
  record.NumberOfInputVariables = 1;
  record.NumberOfSamples = 2;
  record.InputSamples = {{1.0}, {2.0}};
  record.OutputSamples = {1.0, 2.0};
  record.InputScaleSlopes = {2.0};
  record.InputScaleIntercepts = {1.0};
  record.OutputScaleSlope = 0.5;
  record.OutputScaleIntercept = 0.25;
  record.ReadyForEvaluation = true;
  record.PolynomialType = PolyConstant;
  record.PolynomialCoefficients = {3.0};
  record.CorrelationFunctionType = CorrExponential;
  record.CorrelationCoefficients = {1.0, -0.5};
  record.CorrelationKernels = {0.25};
  record.SavePredictorError = true;
  record.Sigma2 = 2.0;
  record.InvC = {{3.0, 0.0}, {0.0, 4.0}};
  record.InvG = {{0.75}};
  record.Ft = {{1.0, 0.5}};
  return record;
}

}  // namespace Tarvane::Plexura::PXROM
