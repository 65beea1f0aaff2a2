#pragma once

#include "kernels/shapes.h"

namespace Tarvane::Plexura::PXROM::kernels {

/// Product of max(1 - k a, 0), a = |x - y|. Lophaven, Nielsen and Sondergaard, DACE, a Matlab
/// Kriging Toolbox, IMM-TR-2002-12 (2002), table of correlation functions: "lin".
struct Linear : Product {
  static constexpr const char* kName = "linear";
  static constexpr Operations kOperations = {7.0, 0.0};
  template <class N>
  PXROM_INLINE static N Factor(N distance, N scale) {
    const N factor = 1.0 - scale * distance;
    return If(
        0.0 < factor, [&] { return factor; }, 0.0);
  }
  static double Slope(double distance, double scale) {
    return 1.0 - scale * distance > 0.0 ? -scale : 0.0;
  }
};

}  // namespace Tarvane::Plexura::PXROM::kernels
