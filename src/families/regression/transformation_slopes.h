#pragma once

#include "families/regression/transformers.h"

namespace Tarvane::Plexura::PXROM::batch {

/// The derivative of the way forward at `x`: 1 where the transformer refuses `x`, which then stays
/// as it is.
double TransformationSlope(const CTransformer& transformer, double x, double value, double lambda);

/// The derivative of the way back at `x`, which the transformer takes.
double BacktransformationSlope(const CTransformer& transformer, double x, double value,
                               double lambda);

}  // namespace Tarvane::Plexura::PXROM::batch
