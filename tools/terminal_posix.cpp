#include <unistd.h>

#include "terminal.h"

namespace pxrom_command {

bool IsTerminal(std::FILE* stream) { return isatty(fileno(stream)) != 0; }

}  // namespace pxrom_command
