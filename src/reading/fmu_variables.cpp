// Reading of the `FMU` group of a database.

#include "pxrom/database_reader.h"
#include "reading/database_text.h"

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
  in.Catch(Labels::attFMUNumberOfReals(), reals);
  in.Catch(Labels::attFMUNumberOfIntegers(), integers);
  in.Catch(Labels::attFMUNumberOfBooleans(), booleans);
  in.Catch(Labels::attFMUNumberOfStrings(), strings);
  in.Catch(Labels::attFMUNumberOfEvents(), events);
  in.Catch(Labels::attFMUIDToValRef(), references);
  return 0;
}

}  // namespace Tarvane::Plexura::PXROM
