#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "pxrom/discrete_combinations.h"

/// Writes a model as C99: one header and one source file that need math.h alone, and give the same
/// bits as the library; and as a functional mock-up unit (FMI) with these sources. A library of its
/// own beside the core, the CMake target pxrom::codegen; it needs the core, reads no file and
/// writes none.
namespace pxrom_codegen {

struct Options {
  /// The names of functions and files begin with it: a letter, then letters, digits and _.
  std::string name = "model";
  /// The values of all discrete inputs. Without any, all combinations are written.
  std::vector<std::pair<std::string, int>> combination;
  /// The IDs of the outputs; all of them if it is empty.
  std::vector<std::string> outputs;
  bool errors = false;
  bool gradients = false;
  /// float instead of double.
  bool isFloat = false;
  /// The flash that tables and code may take; 0 is no limit.
  std::uint64_t budget = 0;
};

/// What the code will need on a controller.
struct Needs {
  std::uint64_t tableBytes = 0;
  /// A rather high estimate, for optimisation by size on a Cortex-M4.
  std::uint64_t codeBytes = 0;
  /// The working area of a call, and an allowance for the frames of its functions.
  std::uint64_t stackBytes = 0;
  /// Of the most expensive combination with all outputs and errors; a function such as exp counts
  /// as forty.
  std::uint64_t operations = 0;
};

struct Code {
  std::string header;
  std::string source;
  Needs needs;
  /// Between the code and the library at the samples and other points, relative to the largest
  /// value of the output. It is 0 for double.
  double largestDifference = 0.0;
};

/// Generates the code of `model`, which is only read. The same model and options give the same
/// bytes. 0; 1 with `code` untouched and a sentence in `reason` for what cannot be written: options
/// that do not fit, an output that cannot be evaluated, more flash than the budget.
/// Exceptions: std::bad_alloc only. Threads: no shared state.
int GenerateCode(const Tarvane::Plexura::PXROM::CDiscreteCombinations& model,
                 const Options& options, Code& code, std::string& reason);

struct ArchiveFile {
  std::string path;  ///< with /, in ASCII
  std::string content;
};

/// A model as an FMU: its description and its sources, without binaries.
struct Fmu {
  /// Also the name of the binaries.
  std::string identifier;
  int version = 0;
  /// The files of the archive.
  std::vector<ArchiveFile> files;
  /// Those of them that are compiled, in the folder sources: to one shared library with the
  /// functions of FMI.
  std::vector<std::string> sources;
  Needs needs;
};

/// Generates the FMU of `model` for FMI `version` 2 or 3, for co-simulation and model exchange.
/// `options` are those of GenerateCode; gradients are always written, and always in double. The
/// same model and options give the same bytes. 0; 1 with `fmu` untouched and a sentence in `reason`
/// where GenerateCode refuses, and for another version. Exceptions: std::bad_alloc only. Threads:
/// no shared state.
int GenerateFmu(const Tarvane::Plexura::PXROM::CDiscreteCombinations& model, const Options& options,
                int version, Fmu& fmu, std::string& reason);

/// A zip archive with these files, uncompressed: the content of an FMU's file. It has no date: the
/// same files give the same bytes. All files together must be smaller than 4 GB.
std::string ZipOf(const std::vector<ArchiveFile>& files);

}  // namespace pxrom_codegen
