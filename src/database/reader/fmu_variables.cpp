// Reading of the `FMU` group of a database.

#include "database/fmu_fields.h"
#include "pxrom/database_reader.h"

namespace Tarvane::Plexura::PXROM {

using reading::Labels;

int CReaderPXROMDatabase::ResumeFMUDescriptionVariables(
    int& reals, int& integers, int& booleans, int& strings, int& events,
    std::vector<std::pair<std::string, int>>& references) const {
  reading::DatabaseText text(DataStream);
  reading::Bounds bounds;
  if (text.SearchBounds(reading::OpeningTag(Labels::tagFMU()),
                        reading::ClosingTag(Labels::tagFMU()), 0, bounds) != 0) {
    return 1;
  }
  reading::AttributeRange in(text, bounds);
  // References to the caller's variables, which keep what was read before an exception.
  struct {
    int& reals;
    int& integers;
    int& booleans;
    int& strings;
    int& events;
    std::vector<std::pair<std::string, int>>& references;
  } targets = {reals, integers, booleans, strings, events, references};
  fields::FieldReader reader(in);
  FmuFields(reader, targets);
  return 0;
}

}  // namespace Tarvane::Plexura::PXROM
