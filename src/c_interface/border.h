#pragma once

#include <cstddef>
#include <cstdint>
#include <new>
#include <string>
#include <string_view>

#include "pxrom/pxrom_c.h"

namespace Tarvane::Plexura::PXROM::c_interface {

/// The message buffer of a caller.
class Message {
 public:
  Message(char* buffer, size_t size) : buffer_(buffer), size_(size) { Write(""); }
  void Write(std::string_view sentence) const noexcept;

 private:
  char* buffer_;
  size_t size_;
};

/// Ends an operation at any depth; caught at the border.
struct Refusal {
  pxrom_status status;
  std::string sentence;
};

inline void RequireArgument(const void* argument, const char* name) {
  if (argument == nullptr) throw Refusal{PXROM_NULL_ARGUMENT, std::string(name) + " is null"};
}

/// The text of a caller. A length that no text can have, such as a negative difference, would
/// otherwise look like a lack of memory.
inline std::string RequireText(const char* text, std::size_t length) {
  RequireArgument(text, "text");
  if (length > static_cast<std::size_t>(PTRDIFF_MAX)) {
    throw Refusal{PXROM_REFUSED, "length is " + std::to_string(length) +
                                     ", which no text can have: it looks like a number below "
                                     "zero"};
  }
  return std::string(text, length);
}

/// Runs `work` and turns whatever it throws into a status and a message.
template <class Work>
pxrom_status AtTheBorder(char* message, size_t message_size, const Work& work) noexcept {
  const Message out(message, message_size);
  try {
    work();
    return PXROM_OK;
  } catch (const Refusal& refusal) {
    out.Write(refusal.sentence);
    return refusal.status;
  } catch (const std::bad_alloc&) {
    out.Write("there is not enough memory");
    return PXROM_NO_MEMORY;
  } catch (...) {
    // The library itself throws nothing else.
    out.Write("the callback threw an exception");
    return PXROM_FAILED;
  }
}

}  // namespace Tarvane::Plexura::PXROM::c_interface
