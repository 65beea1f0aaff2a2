#pragma once

#include "pxrom/constant.h"
#include "pxrom/fitting_candidates.h"
#include "support/surfaces.h"

namespace Tarvane::Plexura::PXROM {

inline CConstantData Constant(double value, int inputs) {
  CConstantData data;
  MakeReady(data, inputs);
  data.SetConstantValue(value);
  return data;
}

/// One constant of weight 1 in an unscaled candidate.
inline CFittingCandidates OneConstant(double value, int inputs) {
  CFittingCandidates list;
  const CConstantData constant = Constant(value, inputs);
  list.GenerateCandidateFromCRSData(&constant);
  return list;
}

inline double ValueOf(const CRSData* surface) {
  double value = 0.0;
  static_cast<const CConstantData*>(surface)->GetConstantValue(value);
  return value;
}

}  // namespace Tarvane::Plexura::PXROM
