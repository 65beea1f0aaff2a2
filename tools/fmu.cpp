#include <cstddef>
#include <iostream>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "command.h"
#include "model_exports.h"
#include "model_file.h"
#include "parameters.h"
#include "pxrom/codegen.h"
#include "pxrom/fmu_description_reader.h"
#include "refusal.h"
#include "table.h"
#include "wording.h"

namespace pxrom_command {

namespace pxrom = Tarvane::Plexura::PXROM;

namespace {

using Description = pxrom::CReaderFMUModelDescription;
using WordByName = std::map<std::string, std::string>;

struct FmuOptions {
  std::string description;
  std::string model;
  /// The archive to write. MODELDESCRIPTION is then the model.
  std::string archive;
  int version = 2;
  std::string name;
  std::vector<std::string> combination;
  std::vector<std::string> outputs;
  bool withoutErrors = false;
};

/// The attributes of the root element, which the library's reader takes from the whole text.
std::string RootElement(const std::string& text) {
  const std::size_t start = text.find("<fmiModelDescription");
  if (start == std::string::npos) return "";
  return text.substr(start, text.find('>', start) - start);
}

Description ReadDescription(const std::string& path) {
  std::string text = ReadTextFile(path);
  const std::string root = RootElement(text);
  if (root.empty()) {
    throw Refusal(Quoted(path) +
                  " is not an FMI model description: it has no <fmiModelDescription>");
  }
  for (const char* version : {"fmiVersion=\"3", "fmiVersion='3"}) {
    if (root.find(version) != std::string::npos) {
      throw Refusal(
          Quoted(path) +
          " is an FMI 3 description; the library reads only the ScalarVariable elements of "
          "FMI 1 and 2");
    }
  }
  Description description;
  description.ReadDataStream(text);
  description.ParseFMUModelDescription();
  return description;
}

/// One word for the variables of one kind, and one for those of another.
template <class Kind>
WordByName Words(const Description& description, Kind kind, const char* word, Kind other,
                 const char* otherWord) {
  WordByName words;
  for (const auto& id : description.ListParameterImmutableID(kind)) words[id] = word;
  for (const auto& id : description.ListParameterImmutableID(other)) words[id] = otherWord;
  return words;
}

WordByName Causalities(const Description& description) {
  return Words(description, pxrom::CausalityInput, "input", pxrom::CausalityOutput, "output");
}

WordByName Types(const Description& description) {
  return Words(description, pxrom::ContinuousNotManufacturable, "Real", pxrom::DiscreteParameter,
               "Integer");
}

std::string WordOf(const WordByName& words, const std::string& name) {
  const auto found = words.find(name);
  return found == words.end() ? "-" : found->second;
}

void PrintDescription(Description& description) {
  std::cout << "GUID               " << Printed(description.GetGUID()) << '\n'
            << "Continuous states  " << description.GetNumberOfContinuousStates() << '\n'
            << "Reals              " << description.GetNumberOfReals()
            << " (2 for each Real variable)\n"
            << "Integers           " << description.GetNumberOfIntegers() << "\n\n";

  const WordByName causalities = Causalities(description);
  const WordByName types = Types(description);
  Table table({{"Variable"}, {"Reference", Align::Right}, {"Causality"}, {"Type"}});
  bool other = false;
  for (const auto& [name, reference] : description.GetParameterValueReferences()) {
    table.Add({name, std::to_string(reference), WordOf(causalities, name), WordOf(types, name)});
    other = other || causalities.count(name) == 0 || types.count(name) == 0;
  }
  table.Print(std::cout);
  if (other) std::cout << "\n- neither input nor output; neither Real nor Integer\n";
}

void PrintLinks(const Description& description, const Model& model, const std::string& path) {
  const WordByName causalities = Causalities(description);
  const auto references = description.GetParameterValueReferences();
  std::vector<std::string> unlinked;
  Table table({{"Parameter"}, {"Kind"}, {"Reference", Align::Right}, {"Causality"}});
  for (const std::string& id : model.ListParameterImmutableID()) {
    const auto found = references.find(id);
    if (found == references.end()) {
      unlinked.push_back(id);
    } else {
      table.Add({id, KindOf(model, id), std::to_string(found->second), WordOf(causalities, id)});
    }
  }
  const std::size_t linked = model.ParameterCount() - unlinked.size();
  std::cout << "\nOf the " << model.ParameterCount() << " parameters of " << Printed(path) << ", "
            << linked << (linked == 1 ? " has" : " have") << " a variable of the same name";
  if (linked > 0) {
    std::cout << ":\n\n";
    table.Print(std::cout);
  } else {
    std::cout << ".\n";
  }
  if (!unlinked.empty()) {
    std::cout << "\nWithout such a variable: " << Printed(Listed(unlinked, unlinked.size()))
              << '\n';
  }
}

void ExportFmu(const FmuOptions& options) {
  const std::string& path = options.description;
  if (!options.model.empty()) {
    throw Refusal("--export takes one model, and " + Quoted(options.model) + " is another file");
  }
  pxrom_codegen::Options code;
  code.name = options.name.empty() ? CodeNameOf(path) : options.name;
  code.combination = CombinationOf(options.combination);
  code.outputs = options.outputs;
  code.errors = !options.withoutErrors;
  const std::vector<std::string> binaries =
      WriteFmu({*ReadModel(path), path}, options.archive, options.version, code);
  std::cout << "Wrote       " << Printed(options.archive) << " for FMI " << options.version
            << ".0, co-simulation and model exchange\n"
            << "Binaries    "
            << (binaries.empty() ? "none, as no C compiler was found; the sources can be compiled"
                                 : Listed(binaries, binaries.size()))
            << '\n';
}

void Fmu(const FmuOptions& options) {
  if (!options.archive.empty()) {
    ExportFmu(options);
    return;
  }
  Description description = ReadDescription(options.description);
  std::unique_ptr<Model> model;
  if (!options.model.empty()) model = ReadModel(options.model);
  PrintDescription(description);
  if (model != nullptr) PrintLinks(description, *model, options.model);
}

}  // namespace

void AddFmu(CLI::App& app) {
  const auto options = std::make_shared<FmuOptions>();
  CLI::App* fmu = app.add_subcommand(
      "fmu", "Write a model as an FMU, or show an FMI model description and link a model");
  fmu->add_option("MODELDESCRIPTION", options->description,
                  "XML model description, FMI 1 or 2; with --export the model")
      ->required();
  fmu->add_option("MODEL", options->model, "Database whose parameters are looked up by name");
  CLI::Option* archive = fmu->add_option("--export", options->archive,
                                         "Write the model as this FMU, with its sources");
  fmu->add_option("--fmi", options->version, "Version of FMI: 2 (default) or 3")
      ->needs(archive)
      ->check(CLI::IsMember({2, 3}));
  fmu->add_option("--name", options->name,
                  "Model identifier; default: the name of the model's file")
      ->needs(archive);
  fmu->add_option("--combination", options->combination,
                  "Values of all discrete inputs; default: they are parameters of the FMU")
      ->needs(archive)
      ->delimiter(',');
  fmu->add_option("--outputs", options->outputs, "Outputs; default: all")
      ->needs(archive)
      ->delimiter(',');
  fmu->add_flag("--without-errors", options->withoutErrors, "Leave out the predicted errors")
      ->needs(archive);
  fmu->footer(
      "Example:\n"
      "  pxrom fmu --export beam.fmu examples/beam.pxdb\n"
      "  pxrom fmu examples/beam.xml examples/beam.pxdb");
  fmu->callback([options] { Fmu(*options); });
}

}  // namespace pxrom_command
