// Runs one target on files and prints what each took: for builds without a fuzzing engine.
//
//   fuzz_TARGET FILE...             with the limits that fuzzing has
//   fuzz_TARGET --measure FILE      without: prints processor seconds and the peak of bytes held

#include <cstdio>
#include <fstream>
#include <sstream>
#include <string>
#include <string_view>

#include "meter.h"
#include "targets.h"

namespace {

int Measure(const fuzz::Target& target, const char* path) {
  std::ifstream file(path, std::ios::binary);
  std::ostringstream content;
  content << file.rdbuf();
  const std::string text = content.str();
  const fuzz::Meter meter;
  target.run(text);
  std::printf("%.4f %zu\n", meter.Seconds(), meter.PeakBytes());
  return 0;
}

}  // namespace

int main(int count, char** arguments) {
  const fuzz::Target& target = fuzz::TargetNamed(PXROM_FUZZ_TARGET);
  if (count == 3 && std::string_view(arguments[1]) == "--measure") {
    return Measure(target, arguments[2]);
  }
  int status = 0;
  for (int i = 1; i < count; ++i) {
    std::ifstream file(arguments[i], std::ios::binary);
    std::ostringstream content;
    content << file.rdbuf();
    if (!file.good()) {
      std::fprintf(stderr, "%s: no such file\n", arguments[i]);
      status = 1;
      continue;
    }
    const std::string text = content.str();
    const fuzz::Meter meter;
    const char* broken = nullptr;
    std::string what;
    try {
      target.run(text);
      meter.CheckLimits(text.size());
    } catch (const std::exception& error) {
      what = error.what();
      broken = what.c_str();
      status = 1;
    }
    std::printf("%s: %zu characters, %.3f s, %.2f MiB: %s\n", arguments[i], text.size(),
                meter.Seconds(), static_cast<double>(meter.PeakBytes()) / (1 << 20),
                broken == nullptr ? "fine" : broken);
  }
  return status;
}
