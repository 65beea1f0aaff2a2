#pragma once

#include <string>
#include <utility>
#include <vector>

#include "pxrom/codegen.h"
#include "pxrom/discrete_combinations.h"

namespace pxrom_command {

/// What the command and the Python package share. A model can have the `path` of its file, which
/// messages then name and which is not overwritten; empty for a model in memory.
struct ExportedModel {
  const Tarvane::Plexura::PXROM::CDiscreteCombinations& model;
  std::string path;
};

/// Writes NAME.h and NAME.c to a folder, which is made if it is not there. Both are complete before
/// the first one replaces an older file. Refusal.
pxrom_codegen::Code WriteCode(const ExportedModel& exported, const std::string& folder,
                              const pxrom_codegen::Options& options);

/// Writes an FMU with the binaries that the compilers at hand can make, and returns these in words,
/// such as "linux64 (cc)". Refusal.
std::vector<std::string> WriteFmu(const ExportedModel& exported, const std::string& archive,
                                  int version, const pxrom_codegen::Options& options);

/// The name of a file as a name for code.
std::string CodeNameOf(const std::string& path);

/// "Holes=2" and the like as the values of discrete inputs. Refusal for another text.
std::vector<std::pair<std::string, int>> CombinationOf(const std::vector<std::string>& texts);

}  // namespace pxrom_command
