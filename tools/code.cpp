#include <cstdint>
#include <filesystem>
#include <iostream>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "command.h"
#include "file_names.h"
#include "model_exports.h"
#include "model_file.h"
#include "numbers.h"
#include "pxrom/codegen.h"
#include "refusal.h"
#include "wording.h"

namespace pxrom_command {

namespace {

struct CodeOptions {
  std::string model;
  std::string folder;
  std::string name;
  std::vector<std::string> combination;
  std::string budget;
  pxrom_codegen::Options code;
};

/// "64KB" as bytes; a kilobyte has 1024.
std::uint64_t BytesOf(const std::string& text) {
  const std::size_t end = text.find_first_not_of("0123456789.");
  const std::string unit = end == std::string::npos ? "" : text.substr(end);
  std::uint64_t factor = 0;
  if (unit.empty() || unit == "B") factor = 1;
  if (unit == "KB" || unit == "kB" || unit == "K" || unit == "KiB") factor = 1024;
  if (unit == "MB" || unit == "M" || unit == "MiB") factor = std::uint64_t{1024} * 1024;
  const std::optional<double> number = ParseReal(text.substr(0, end));
  constexpr double kMost = 1e12;
  if (factor == 0 || !number.has_value() || *number <= 0.0 || *number > kMost) {
    throw Refusal(Quoted(text) + " is no budget of bytes such as 64KB");
  }
  return static_cast<std::uint64_t>(*number * static_cast<double>(factor));
}

std::string BytesInWords(std::uint64_t bytes) {
  constexpr double kKilo = 1024.0;
  return bytes < 10240 ? std::to_string(bytes) + " bytes"
                       : Shown(static_cast<double>(bytes) / kKilo, 4) + " KB";
}

void PrintNeeds(const pxrom_codegen::Code& code, bool isFloat) {
  std::cout << "Flash       " << BytesInWords(code.needs.tableBytes)
            << " of tables and up to about " << BytesInWords(code.needs.codeBytes)
            << " of code, without math.h\n"
            << "Stack       " << BytesInWords(code.needs.stackBytes) << " per call\n"
            << "Operations  up to about " << code.needs.operations << " per call\n";
  if (isFloat) {
    std::cout << "Float       differs by up to " << Shown(code.largestDifference, 2)
              << " of the largest value of an output\n";
  }
}

void RunCode(CodeOptions& options) {
  options.code.name = options.name.empty() ? CodeNameOf(options.model) : options.name;
  options.code.combination = CombinationOf(options.combination);
  if (!options.budget.empty()) options.code.budget = BytesOf(options.budget);
  const pxrom_codegen::Code code =
      WriteCode({*ReadModel(options.model), options.model}, options.folder, options.code);
  const std::string start = TextOfPath(PathOf(options.folder) / PathOf(options.code.name));
  std::cout << "Wrote       " << Printed(start + ".h") << " and " << Printed(start + ".c") << '\n';
  PrintNeeds(code, options.code.isFloat);
}

}  // namespace

void AddCode(CLI::App& app) {
  const auto options = std::make_shared<CodeOptions>();
  CLI::App* code = app.add_subcommand("code", "Write a model as C for a controller");
  code->add_option("MODEL", options->model, "Database of fitted models")->required();
  code->add_option("-o,--out", options->folder, "Folder for the two files, NAME.h and NAME.c")
      ->required();
  code->add_option("--name", options->name,
                   "Start of all names in the code; default: the name of MODEL");
  code->add_option("--combination", options->combination,
                   "Values of all discrete inputs; default: the code takes them and has all "
                   "combinations")
      ->delimiter(',');
  code->add_option("--outputs", options->code.outputs, "Outputs; default: all")->delimiter(',');
  code->add_flag("--errors", options->code.errors, "Predicted errors too");
  code->add_flag("--gradients", options->code.gradients, "Derivatives by the inputs too");
  code->add_flag("--float", options->code.isFloat,
                 "float instead of double; the header says how far results differ");
  code->add_option("--budget", options->budget,
                   "Refuse to write more flash than this, for example 64KB");
  code->footer(
      "The code is C99, needs math.h alone, and gives the same bits as the library on the same\n"
      "machine. The flash of the code itself is an estimate for a Cortex-M4.\n"
      "\n"
      "Example:\n"
      "  pxrom code examples/beam.pxdb -o generated --combination Material=1,Holes=2 --errors");
  code->callback([options] { RunCode(*options); });
}

}  // namespace pxrom_command
