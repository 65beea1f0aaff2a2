#include "pxrom/database_labels.h"

namespace Tarvane::Plexura::PXROM {

// There is nothing to copy, so self-assignment needs no test either.
CPXROMDatabaseLabels& CPXROMDatabaseLabels::operator=(const CPXROMDatabaseLabels&) { return *this; }

#define PXROM_LABEL(name, literal)                  \
  const std::string& CPXROMDatabaseLabels::name() { \
    static const std::string label(literal);        \
    return label;                                   \
  }
#include "pxrom/database_words.inc"
#undef PXROM_LABEL

}  // namespace Tarvane::Plexura::PXROM
