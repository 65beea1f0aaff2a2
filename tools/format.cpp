#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "command.h"
#include "cost.h"
#include "model_file.h"
#include "output_file.h"
#include "pxrom/check_points.h"
#include "pxrom/database_labels.h"
#include "pxrom/database_reader.h"
#include "pxrom/writer.h"
#include "refusal.h"
#include "wording.h"

namespace pxrom_command {

namespace pxrom = Tarvane::Plexura::PXROM;

namespace {

struct FormatOptions {
  std::string model;
  std::string out;
  std::size_t answers = 0;
  std::string limit;
};

[[noreturn]] void RefuseToWrite(const std::string& path, const std::string& reason) {
  throw Refusal("can't format " + Quoted(path) + ": " + reason);
}

/// The `FMU` group of `text`, written again; empty if it has none.
std::string FmuGroup(const std::string& path, std::string text) {
  if (text.find('<' + pxrom::CPXROMDatabaseLabels::tagFMU() + '>') == std::string::npos) return "";
  pxrom::CReaderPXROMDatabase reader;
  reader.ReadDataStream(text);
  int reals = 0;
  int integers = 0;
  int booleans = 0;
  int strings = 0;
  int events = 0;
  std::vector<std::pair<std::string, int>> references;
  if (reader.ResumeFMUDescriptionVariables(reals, integers, booleans, strings, events,
                                           references) != 0) {
    RefuseToWrite(path, "its FMU group is damaged");
  }
  std::string group;
  std::string reason;
  if (pxrom::CWriterPXROMDatabase().WriteFMUDescriptionVariables(
          reals, integers, booleans, strings, events, references, group, reason) != 0) {
    RefuseToWrite(path, reason);
  }
  return group;
}

void Format(const FormatOptions& options) {
  const std::unique_ptr<Model> model = ReadModel(options.model);
  std::string text;
  std::string reason;
  if (pxrom::CWriterPXROMDatabase().WriteDiscreteCombinations(*model, text, reason) != 0) {
    RefuseToWrite(options.model, reason);
  }
  text += FmuGroup(options.model, ReadTextFile(options.model));
  if (options.answers > 0 &&
      pxrom::AddCheckPoints(text, options.answers, LimitOf(options.limit), reason) != 0) {
    RefuseToWrite(options.model, reason);
  }
  WriteTextFile(options.out, text);
}

}  // namespace

void AddFormat(CLI::App& app) {
  const auto options = std::make_shared<FormatOptions>();
  CLI::App* format = app.add_subcommand("format", "Write a model again in one canonical form");
  format->add_option("MODEL", options->model, "Database of fitted models")->required();
  format->add_option("-o,--out", options->out,
                     "File to write, which may be MODEL itself; default: the standard output");
  constexpr std::size_t kMostAnswers = 1000;
  format
      ->add_option("--with-answers", options->answers,
                   "Add so many check points for each combination, with all answers and a checksum")
      ->check(CLI::Range(std::size_t{1}, kMostAnswers))
      ->type_name("NUMBER");
  format->add_option("--limit", options->limit, kLimitHelp)->type_name("OPERATIONS");
  format->footer(
      "The result holds what the library reads from MODEL, so it evaluates the same to the last\n"
      "bit. It leaves out what the library does not read. Formatting a result again changes "
      "nothing.\n"
      "With check points, pxrom check says later whether the text is still the same, and whether "
      "it\n"
      "evaluates to the same numbers on that machine.\n"
      "\n"
      "Example:\n"
      "  pxrom format examples/constant.pxdb");
  format->callback([options] { Format(*options); });
}

}  // namespace pxrom_command
