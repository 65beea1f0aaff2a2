#pragma once

#include <string>
#include <vector>

#include "codegen/generate.h"
#include "codegen/zip.h"

namespace pxrom_codegen {

/// A model as a functional mock-up unit (FMI): its description and its sources, without binaries.
struct Fmu {
  /// Also the name of the binaries.
  std::string identifier;
  int version = 0;
  /// The files of the archive.
  std::vector<ArchiveFile> files;
  /// Those of them that are compiled; they include each other without a folder.
  std::vector<std::string> sources;
  Needs needs;
};

/// Generates the FMU of `model` for FMI `version` 2 or 3, for co-simulation and model exchange.
/// `options` are those of Generate; gradients are always written, and always in double. The same
/// model and options give the same bytes. 0; 1 with `fmu` untouched and a sentence in `reason`
/// where Generate refuses, and for another version. Exceptions: std::bad_alloc only.
/// Threads: no shared state.
int GenerateFmu(const Tarvane::Plexura::PXROM::CDiscreteCombinations& model, const Options& options,
                int version, Fmu& fmu, std::string& reason);

}  // namespace pxrom_codegen
