#pragma once

#include <fstream>
#include <memory>
#include <string>

#include "pxrom/discrete_combinations.h"
#include "pxrom/inspection.h"

namespace pxrom_command {

using Model = Tarvane::Plexura::PXROM::CDiscreteCombinations;

/// Opens a file for reading. Refusal when that fails.
std::ifstream OpenFile(const std::string& path);
/// The bytes of a file. Refusal when it can't be read.
std::string ReadTextFile(const std::string& path);
/// What an inspection finds in the text of the file `path`. Refusal when the file is not a
/// database at all.
Tarvane::Plexura::PXROM::CInspectionReport InspectModel(const std::string& path,
                                                        const std::string& text);
/// The model of a database file. Refusal when the file can't be read or holds no model.
std::unique_ptr<Model> ReadModel(const std::string& path);

}  // namespace pxrom_command
