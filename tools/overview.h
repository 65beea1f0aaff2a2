#pragma once

#include <map>
#include <string>
#include <vector>

#include "pxrom/inspection.h"

namespace pxrom_command {

// What an inspection tells of a database, in words.

using ParametersByRank = std::vector<Tarvane::Plexura::PXROM::CParameterOverview>;
using EnsemblesById = std::map<int, const Tarvane::Plexura::PXROM::CEnsembleOverview*>;

const char* WordOf(Tarvane::Plexura::PXROM::E_FindingSeverity severity);
std::string FamilyOf(Tarvane::Plexura::PXROM::E_DataType type);
std::string TypeOf(Tarvane::Plexura::PXROM::E_ParameterType type);
/// "input" or "output".
std::string RoleOf(const Tarvane::Plexura::PXROM::CParameterOverview& parameter);
/// "cross-validation", "surface" or "none".
const char* ErrorKindOf(const Tarvane::Plexura::PXROM::CEnsembleOverview& ensemble);
/// "1 to 2" or "0, 2, 4". Discrete inputs have values; bounds of 0 and 0 are those of a parameter
/// that has none.
std::string RangeOf(const Tarvane::Plexura::PXROM::CParameterOverview& parameter);

ParametersByRank ByRank(const Tarvane::Plexura::PXROM::CDatabaseOverview& overview);
/// They point into `overview`.
EnsemblesById ById(const Tarvane::Plexura::PXROM::CDatabaseOverview& overview);

/// "Holes=2, Material=1", by rank.
std::string TextOf(const Tarvane::Plexura::PXROM::CCombinationOverview& combination,
                   const ParametersByRank& by_rank);
/// "0.4 Kriging, 0.6 regression".
std::string SurfacesOf(const Tarvane::Plexura::PXROM::CEnsembleOverview& ensemble);

}  // namespace pxrom_command
