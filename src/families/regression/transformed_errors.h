#pragma once

#include "families/regression/transformers.h"
#include "records/prepared_surface.h"

namespace Tarvane::Plexura::PXROM::batch {

/// The way of a sum to the value of a surface: y = (B(sum) - intercept) / slope.
struct OutputWay {
  const CTransformer* back = nullptr;  ///< B
  double value = 0.0;
  double lambda = 0.0;
  double slope = 1.0;
  double intercept = 0.0;
};

/// Fills in the error in unit of one point, whose sum has the error `deviation` in its own space:
/// to first order (the delta method; Casella and Berger, Statistical Inference (2002), section
/// 5.5.4), and the interval from the images of sum - deviation and sum + deviation. An end that B
/// refuses is infinitely far. Where B is not monotonic between the ends, the interval is that of
/// the first order.
void FillTransformedError(const OutputWay& way, double sum, double deviation, std::size_t point,
                          const Results& results);

}  // namespace Tarvane::Plexura::PXROM::batch
