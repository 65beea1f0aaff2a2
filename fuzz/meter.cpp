#include "meter.h"

#include <malloc.h>

#include <algorithm>
#include <cstdlib>
#include <new>

#include "targets.h"

namespace {

// Each thread counts its own, so that those of a fuzzer's engine do no harm.
thread_local std::size_t held = 0;
thread_local std::size_t peak = 0;

void* TakeOrNull(std::size_t size) noexcept {
  void* const memory = std::malloc(std::max<std::size_t>(size, 1));
  if (memory == nullptr) return nullptr;
  held += malloc_usable_size(memory);
  peak = std::max(peak, held);
  return memory;
}

void* Take(std::size_t size) {
  if (void* const memory = TakeOrNull(size)) return memory;
  throw std::bad_alloc();
}

void GiveBack(void* memory) noexcept {
  if (memory != nullptr) held -= malloc_usable_size(memory);
  std::free(memory);
}

}  // namespace

void* operator new(std::size_t size) { return Take(size); }
void* operator new[](std::size_t size) { return Take(size); }
void* operator new(std::size_t size, const std::nothrow_t&) noexcept { return TakeOrNull(size); }
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept { return TakeOrNull(size); }
void operator delete(void* memory) noexcept { GiveBack(memory); }
void operator delete[](void* memory) noexcept { GiveBack(memory); }
void operator delete(void* memory, std::size_t) noexcept { GiveBack(memory); }
void operator delete[](void* memory, std::size_t) noexcept { GiveBack(memory); }

namespace fuzz {

Meter::Meter() : start_(std::clock()), held_(held) { peak = held; }

double Meter::Seconds() const {
  return static_cast<double>(std::clock() - start_) / static_cast<double>(CLOCKS_PER_SEC);
}

std::size_t Meter::PeakBytes() const { return peak - std::min(held_, peak); }

void Meter::CheckLimits(std::size_t characters) const {
  constexpr std::size_t kBytesForShortText = std::size_t{64} << 20;
  Require(Seconds() <= 1.0, "no input takes a second");
  Require(PeakBytes() <= std::max(kBytesForShortText, 64 * characters),
          "memory is in proportion to the text");
}

}  // namespace fuzz
