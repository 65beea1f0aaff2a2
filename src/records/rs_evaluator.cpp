#include "pxrom/rs_evaluator.h"

#include <cstddef>

namespace Tarvane::Plexura::PXROM {

CRSEvaluator* CRSEvaluator::Clone() const { return new CRSEvaluator(*this); }
CRSEvaluator::~CRSEvaluator() = default;

int CRSEvaluator::EvaluateResponseSurface(const CRSData*, const std::vector<double>&, double& y,
                                          double& predictorError) const {
  y = 0.0;
  predictorError = 0.0;
  return 1;
}

int CRSEvaluator::EvaluateResponseSurface(const CRSData*, const std::vector<double>&,
                                          double& y) const {
  y = 0.0;
  return 1;
}

int CRSEvaluator::EvaluateResponseSurfaceDerivativeWrtInputVariables(const CRSData* data,
                                                                     const std::vector<double>& x,
                                                                     std::vector<double>&) const {
  const bool fits = data->NumberOfInputVariables >= 0 &&
                    x.size() == static_cast<std::size_t>(data->NumberOfInputVariables);
  return fits && data->ReadyForEvaluation && !data->Stopped ? 0 : 1;
}

}  // namespace Tarvane::Plexura::PXROM
