#include "numerics/bessel.h"

#include <math.h>  // j0 is POSIX's, and stands in the global namespace

namespace Tarvane::Plexura::PXROM {

double BesselJ0(double x) noexcept {
#if defined(_WIN32)
  return ::_j0(x);
#else
  return ::j0(x);
#endif
}

}  // namespace Tarvane::Plexura::PXROM
