#pragma once

#include "families/regression/transformers.h"

namespace Tarvane::Plexura::PXROM::batch {

/// The derivative of the forward formula at `x`: 1 where the transformer refuses `x`, which then
/// does not change.
double TransformationSlope(const CTransformer& transformer, double x, double value, double lambda);

/// The derivative of the back-transformation at `x`, which the transformer must accept.
double BacktransformationSlope(const CTransformer& transformer, double x, double value,
                               double lambda);

/// The second derivative of the way back at `x`.
double BacktransformationCurvature(const CTransformer& transformer, double x, double value,
                                   double lambda);

}  // namespace Tarvane::Plexura::PXROM::batch
