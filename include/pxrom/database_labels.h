#pragma once

#include <string>

#include "pxrom/export.h"

namespace Tarvane::Plexura::PXROM {

/// The words of a database text: `str` is a separator, `tag` the word of a group, `att` the key of
/// an attribute. A writer of databases must use the same table. Names and literals are part of the
/// format and stay as they are, with their misspellings and mismatches (tagGenomeWeight is a key;
/// attScInputPoints is its own literal).
///
/// Each operation of database_words.inc is a static one without arguments that returns the same
/// immutable string on every call. Threads: any number of threads may call it, also for the first
/// time. The strings are destroyed at the end of the program: no destructor that runs later may use
/// them.
class PXROM_API CPXROMDatabaseLabels {
 public:
#define PXROM_LABEL(name, literal) static const std::string& name();
#include "pxrom/database_words.inc"
#undef PXROM_LABEL
  CPXROMDatabaseLabels& operator=(const CPXROMDatabaseLabels&);

 private:
  CPXROMDatabaseLabels() = default;
  ~CPXROMDatabaseLabels() = default;
};

}  // namespace Tarvane::Plexura::PXROM
