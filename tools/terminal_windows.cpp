#define NOMINMAX
#define WIN32_LEAN_AND_MEAN
#include <windows.h>

// After it:
#include <io.h>

#include "terminal.h"

namespace pxrom_command {

bool IsTerminal(std::FILE* stream) {
  const auto handle = reinterpret_cast<HANDLE>(_get_osfhandle(_fileno(stream)));
  DWORD mode = 0;
  // Older consoles obey escape sequences only on request, or not at all.
  return GetConsoleMode(handle, &mode) != 0 &&
         SetConsoleMode(handle, mode | ENABLE_VIRTUAL_TERMINAL_PROCESSING) != 0;
}

}  // namespace pxrom_command
