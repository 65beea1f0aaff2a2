// Do the exact functions on vectors have the bits of the host's C library? Prints a line for each
// function; docs/vector-functions.md explains why they should.
//
//   function_check COUNT   COUNT arguments for each function and range, and the hard ones

#include <cstdio>
#include <cstdlib>

#include "kernels/kernels.h"
#include "simd/instruction_set.h"
#include "vector_functions/check_sets.h"

using namespace Tarvane::Plexura::PXROM;

int main(int argc, char** argv) {
  const long count = argc > 1 ? std::strtol(argv[1], nullptr, 10) : 200000;
  bool areExact = true;
  if (simd::CanRun(simd::InstructionSet::Neon)) {
    std::puts("NEON");
    areExact = simd::IsNeonExact(count);
  }
  if (simd::CanRun(simd::InstructionSet::Avx2)) {
    std::puts("AVX2");
    areExact = simd::IsAvx2Exact(count);
  }
  if (simd::CanRun(simd::InstructionSet::Avx512)) {
    std::puts("AVX-512");
    areExact = simd::IsAvx512Exact(count) && areExact;
  }
  // What the library finds at its start.
  const kernels::LoopTable& best = *kernels::FindLoops(kernels::BestInstructionSet());
  const kernels::LoopTable& exact = *kernels::ExactLoops(kernels::BestInstructionSet());
  for (std::size_t index = 0; index < kernels::KernelCount(); ++index) {
    if (exact.byKernel[index].sum == best.byKernel[index].sum) continue;
    std::printf("asks the host for each value: %s\n", kernels::KernelAt(index).name);
  }
  return areExact ? 0 : 1;
}
