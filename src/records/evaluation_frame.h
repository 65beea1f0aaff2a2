#pragma once

#include <cstddef>
#include <vector>

#include "pxrom/rs_data.h"

namespace Tarvane::Plexura::PXROM {

/// Whether a record is ready, not stopped, and has `inputs` input variables.
inline bool IsReadyFor(const CRSData& data, std::size_t inputs) {
  return data.ReadyForEvaluation && !data.Stopped && data.NumberOfInputVariables >= 0 &&
         inputs == static_cast<std::size_t>(data.NumberOfInputVariables);
}

/// The guard of every value evaluation (rs_evaluator.h): whether `data` is a ready record of `type`
/// with as many inputs as `x` has elements.
inline bool IsEvaluable(const CRSData* data, E_DataType type, const std::vector<double>& x) {
  return data != nullptr && data->DataType() == type && IsReadyFor(*data, x.size());
}

/// The record of a family as that family's class: null unless `data` is of `type`.
template <class Record>
Record* RecordOf(CRSData* data, E_DataType type) {
  return data != nullptr && data->DataType() == type ? static_cast<Record*>(data) : nullptr;
}

}  // namespace Tarvane::Plexura::PXROM
