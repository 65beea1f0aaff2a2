#pragma once

#include <memory>

#include "pxrom/rs_data.h"
#include "pxrom/rs_evaluator.h"
#include "reading/resume.h"
#include "writing/write.h"

namespace Tarvane::Plexura::PXROM {

/// What a family of surfaces is to the rest of the library: one row of one table.
struct Family {
  E_DataType type;
  std::unique_ptr<CRSData> (*newRecord)();
  /// Evaluators have no state, so that one object serves every evaluation of every thread.
  const CRSEvaluator& (*evaluator)();
  reading::ResumeOperation resume;
  writing::WriteOperation write;
};

/// The row of `type`, or null for a type that is no family.
const Family* FindFamily(E_DataType type) noexcept;

}  // namespace Tarvane::Plexura::PXROM
