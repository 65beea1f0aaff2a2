#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "pxrom/inspection.h"

namespace pxrom_command {

// What an inspection says about a database, in words.

using ParametersByRank = std::vector<Tarvane::Plexura::PXROM::CParameterOverview>;
using RanksById = std::unordered_map<std::string_view, std::size_t>;
using EnsemblesById = std::map<int, const Tarvane::Plexura::PXROM::CEnsembleOverview*>;

const char* WordOf(Tarvane::Plexura::PXROM::E_FindingSeverity severity);
std::string TypeOf(Tarvane::Plexura::PXROM::E_ParameterType type);
/// "input" or "output".
std::string RoleOf(const Tarvane::Plexura::PXROM::CParameterOverview& parameter);
/// "cross-validation", "surface" or "none".
const char* ErrorKindOf(const Tarvane::Plexura::PXROM::CEnsembleOverview& ensemble);
/// "1 to 2" or "0, 2, 4". Discrete inputs have values; a parameter without
/// bounds has 0 and 0.
std::string RangeOf(const Tarvane::Plexura::PXROM::CParameterOverview& parameter);

ParametersByRank ByRank(const Tarvane::Plexura::PXROM::CDatabaseOverview& overview);
/// They point into `overview`.
EnsemblesById ById(const Tarvane::Plexura::PXROM::CDatabaseOverview& overview);

/// The place of each ID in `by_rank`, into which it points. Of two parameters with one ID, the
/// first.
RanksById RanksOf(const ParametersByRank& by_rank);
/// "Holes=2, Material=1", by rank.
std::string TextOf(const Tarvane::Plexura::PXROM::CCombinationOverview& combination,
                   const RanksById& ranks);
/// "0.4 Kriging, 0.6 regression".
std::string SurfacesOf(const Tarvane::Plexura::PXROM::CEnsembleOverview& ensemble);

}  // namespace pxrom_command
