#include <memory>

#include "pxrom/fmu_description_reader.h"
#include "targets.h"

namespace fuzz {

void RunFmu(std::string_view data) {
  using namespace Tarvane::Plexura::PXROM;
  std::string text(data);
  CReaderFMUModelDescription reader;
  reader.ReadDataStream(text);
  Require(reader.ParseFMUModelDescription() == 0, "any description gives 0");
  const auto references = reader.GetParameterValueReferences();
  Require(reader.ListParameterImmutableID().size() == references.size(), "all names are listed");
  const std::unique_ptr<CReaderFMUModelDescription> clone(reader.Clone());
  Require(clone->GetParameterValueReferences() == references, "a clone holds what was parsed");

  const int reals = reader.GetNumberOfReals();
  const int integers = reader.GetNumberOfIntegers();
  const std::string guid = reader.GetGUID();
  Require(reader.ParseFMUModelDescription() == 0, "any description gives 0");
  Require(reader.GetNumberOfReals() == 2 * reals && reader.GetNumberOfIntegers() == 2 * integers,
          "a second call adds to the counters");
  Require(reader.GetParameterValueReferences() == references && reader.GetGUID() == guid,
          "and to nothing else");
  for (const auto type : {ContinuousNotManufacturable, DiscreteParameter}) {
    for (const std::string& name : reader.ListParameterImmutableID(type)) {
      Require(references.count(name) == 1, "a name with a type has a reference");
    }
  }
}

}  // namespace fuzz
