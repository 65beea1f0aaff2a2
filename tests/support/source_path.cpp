#include "support/source_path.h"

std::string SourcePath(const std::string& file) { return std::string(PXROM_SOURCE "/") + file; }
