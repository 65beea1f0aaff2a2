#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "pxrom/discrete_combinations.h"

/// Writes a model as C99: one header and one source file that need math.h alone, and give the same
/// bits as the library.
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
int Generate(const Tarvane::Plexura::PXROM::CDiscreteCombinations& model, const Options& options,
             Code& code, std::string& reason);

}  // namespace pxrom_codegen
