#include "fmu_archive.h"

#include <algorithm>
#include <cstdlib>
#include <sstream>

#include "c_compiler.h"
#include "model_file.h"
#include "output_file.h"

namespace pxrom_command {

namespace {

/// A platform in the words of FMI.
struct Platform {
  std::string folder2;
  std::string folder3;
  std::string suffix;
};

const Platform kWindows = {"win64", "x86_64-windows", ".dll"};
const Platform kArm64 = {"aarch64-linux", "aarch64-linux", ".so"};

/// The platform of this machine. It has no folder if FMI has no word for it.
Platform HostPlatform() {
#if defined(__linux__) && defined(__x86_64__)
  return {"linux64", "x86_64-linux", ".so"};
#elif defined(__linux__) && defined(__aarch64__)
  return kArm64;
#elif defined(__APPLE__) && defined(__x86_64__)
  return {"darwin64", "x86_64-darwin", ".dylib"};
#elif defined(__APPLE__) && defined(__aarch64__)
  return {"aarch64-darwin", "aarch64-darwin", ".dylib"};
#else
  return {};
#endif
}

/// The C compiler of this machine: the words of the variable CC, or cc.
std::vector<std::string> HostCompiler() {
  const char* const named = std::getenv("CC");
  std::istringstream text(named == nullptr ? "" : named);
  std::vector<std::string> words;
  for (std::string word; text >> word;) words.push_back(word);
  return words.empty() ? std::vector<std::string>{"cc"} : words;
}

struct Target {
  std::vector<std::string> compiler;
  Platform platform;
};

}  // namespace

std::vector<std::string> AddBinaries(pxrom_codegen::Fmu& fmu) {
  const TemporaryFolder folder;
  for (const pxrom_codegen::ArchiveFile& file : fmu.files) {
    const std::string start = "sources/";
    if (file.path.compare(0, start.size(), start) != 0) continue;
    WriteTextFile(folder.File(file.path.substr(start.size())), file.content);
  }
  const Platform host = HostPlatform();
  std::vector<Target> targets = {{HostCompiler(), host},
                                 {{"x86_64-w64-mingw32-gcc"}, kWindows},
                                 {{"aarch64-linux-gnu-gcc"}, kArm64}};
  if (host.folder3 == kArm64.folder3) targets.pop_back();
  std::vector<std::string> made;
  for (const Target& target : targets) {
    const std::string& place = fmu.version == 2 ? target.platform.folder2 : target.platform.folder3;
    if (place.empty()) continue;
    const std::string out = folder.File(fmu.identifier + target.platform.suffix);
    std::vector<std::string> words = target.compiler;
    // -s leaves out names, and with them the paths of temporary files.
    for (const char* const flag :
         {"-std=c99", "-O2", "-ffp-contract=off", "-fvisibility=hidden", "-shared", "-s", "-o"}) {
      words.emplace_back(flag);
    }
    words.push_back(out);
    for (const std::string& source : fmu.sources) words.push_back(folder.File(source));
    // Without a time, and without an address made of the temporary folder's name.
    const std::vector<std::string> windows = {"-static-libgcc", "-Wl,--no-insert-timestamp",
                                              "-Wl,--disable-auto-image-base"};
    const std::vector<std::string> others = {"-fPIC", "-lm"};
    const auto& last = target.platform.suffix == kWindows.suffix ? windows : others;
    words.insert(words.end(), last.begin(), last.end());
    if (!RunQuietly(words)) continue;
    fmu.files.push_back(
        {"binaries/" + place + "/" + fmu.identifier + target.platform.suffix, ReadTextFile(out)});
    made.push_back(place + " (" + target.compiler.front() + ")");
  }
  return made;
}

}  // namespace pxrom_command
