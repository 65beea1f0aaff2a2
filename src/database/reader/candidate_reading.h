#pragma once

#include "pxrom/fitting_candidates.h"
#include "text/database_text.h"

namespace Tarvane::Plexura::PXROM::reading {

/// Fills `out` with one candidate from `PlexuraData` group `id`. 1 leaves `out` untouched when the
/// group is not found, and empty when its content is refused; else 0.
int ReadFittingCandidates(DatabaseText& text, int id, CFittingCandidates& out);

}  // namespace Tarvane::Plexura::PXROM::reading
