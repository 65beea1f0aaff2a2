#include "model_exports.h"

#include <cctype>
#include <filesystem>
#include <optional>
#include <system_error>

#include "file_names.h"
#include "fmu_archive.h"
#include "numbers.h"
#include "output_file.h"
#include "refusal.h"
#include "wording.h"

namespace pxrom_command {

namespace {

std::string Named(const ExportedModel& exported) {
  return exported.path.empty() ? "the model" : Quoted(exported.path);
}

std::vector<std::string> InputsOf(const ExportedModel& exported) {
  return exported.path.empty() ? std::vector<std::string>() : std::vector{exported.path};
}

}  // namespace

pxrom_codegen::Code WriteCode(const ExportedModel& exported, const std::string& folder,
                              const pxrom_codegen::Options& options) {
  pxrom_codegen::Code code;
  std::string reason;
  if (pxrom_codegen::GenerateCode(exported.model, options, code, reason) != 0) {
    throw Refusal("no code for " + Named(exported) + ": " + reason);
  }
  std::error_code failed;
  const std::filesystem::path path = PathOf(folder);
  std::filesystem::create_directories(path, failed);
  if (failed) {
    throw Refusal("can't make the folder " + Quoted(folder) + ": " + failed.message());
  }
  OutputFile header(TextOfPath(path / PathOf(options.name + ".h")), InputsOf(exported));
  OutputFile source(TextOfPath(path / PathOf(options.name + ".c")), InputsOf(exported));
  header.Write(code.header);
  source.Write(code.source);
  header.Finish();
  source.Finish();
  return code;
}

std::vector<std::string> WriteFmu(const ExportedModel& exported, const std::string& archive,
                                  int version, const pxrom_codegen::Options& options) {
  pxrom_codegen::Fmu fmu;
  std::string reason;
  if (pxrom_codegen::GenerateFmu(exported.model, options, version, fmu, reason) != 0) {
    throw Refusal("no FMU for " + Named(exported) + ": " + reason);
  }
  OutputFile file(archive, InputsOf(exported));
  std::vector<std::string> binaries = AddBinaries(fmu);
  file.Write(pxrom_codegen::ZipOf(fmu.files));
  file.Finish();
  return binaries;
}

std::string CodeNameOf(const std::string& path) {
  constexpr std::size_t kLongest = 40;
  std::string name;
  for (const char c : TextOfPath(PathOf(path).stem())) {
    const auto byte = static_cast<unsigned char>(c);
    const bool isPart = byte < 0x80 && (std::isalnum(byte) != 0 || c == '_');
    if (name.empty() && !(isPart && std::isalpha(byte) != 0)) continue;
    name += isPart ? c : '_';
  }
  return name.empty() ? "model" : name.substr(0, kLongest);
}

std::vector<std::pair<std::string, int>> CombinationOf(const std::vector<std::string>& texts) {
  std::vector<std::pair<std::string, int>> combination;
  for (const std::string& text : texts) {
    const std::size_t at = text.rfind('=');
    const std::optional<int> value =
        at == std::string::npos ? std::nullopt : ParseInteger(text.substr(at + 1));
    if (!value.has_value()) {
      throw Refusal(Quoted(text) + " is not a discrete value such as Holes=2");
    }
    combination.emplace_back(text.substr(0, at), *value);
  }
  return combination;
}

}  // namespace pxrom_command
