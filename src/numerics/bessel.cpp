#include "numerics/bessel.h"

#include <math.h>  // the functions are those of POSIX, in the global namespace

#if defined(__MINGW32__) && defined(__STRICT_ANSI__)
// The header hides them from a compiler that follows the standard strictly.
extern "C" double _j0(double x);
extern "C" double _j1(double x);
#endif

namespace Tarvane::Plexura::PXROM {

#if defined(_WIN32)
double BesselJ0(double x) noexcept { return ::_j0(x); }
double BesselJ1(double x) noexcept { return ::_j1(x); }
#else
double BesselJ0(double x) noexcept { return ::j0(x); }
double BesselJ1(double x) noexcept { return ::j1(x); }
#endif

}  // namespace Tarvane::Plexura::PXROM
