#pragma once

#include "families/surface_text.h"

namespace Tarvane::Plexura::PXROM::inspection {

void CheckGaussianProcess(SurfaceText& surface);

}  // namespace Tarvane::Plexura::PXROM::inspection
