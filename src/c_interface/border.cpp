#include "c_interface/border.h"

#include <algorithm>

#include "pxrom/version.h"

namespace Tarvane::Plexura::PXROM::c_interface {

void Message::Write(std::string_view sentence) const noexcept {
  if (buffer_ == nullptr || size_ == 0) return;
  std::size_t length = std::min(sentence.size(), size_ - 1);
  // Does not cut a UTF-8 character in its middle.
  constexpr unsigned char kTwoBits = 0xC0;
  constexpr unsigned char kContinuation = 0x80;
  while (length > 0 && length < sentence.size() &&
         (static_cast<unsigned char>(sentence[length]) & kTwoBits) == kContinuation) {
    --length;
  }
  std::copy_n(sentence.data(), length, buffer_);
  buffer_[length] = '\0';
}

}  // namespace Tarvane::Plexura::PXROM::c_interface

const char* pxrom_version(void) { return PXROM_VERSION_STRING; }
