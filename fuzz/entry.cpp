// The entry of one target, PXROM_FUZZ_TARGET, as fuzzing engines call it.

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string_view>

#include "meter.h"
#include "targets.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const fuzz::Target& target = fuzz::TargetNamed(PXROM_FUZZ_TARGET);
  try {
    const fuzz::Meter meter;
    target.run({reinterpret_cast<const char*>(data), size});
    meter.CheckLimits(size);
  } catch (const std::exception& error) {
    // Engines keep the input that made the process abort.
    std::fprintf(stderr, "%s: %s\n", PXROM_FUZZ_TARGET, error.what());
    std::abort();
  }
  return 0;
}
