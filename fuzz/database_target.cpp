#include "pxrom/database_reader.h"
#include "pxrom/discrete_combinations.h"
#include "targets.h"

namespace fuzz {

namespace {

using namespace Tarvane::Plexura::PXROM;

// The status, or -1 for the one exception that a text may cause.
template <class Read>
int StatusOf(Read read) {
  try {
    const int status = read();
    Require(status == 0 || status == 1, "reading gives 0 or 1");
    return status;
  } catch (const std::out_of_range&) {
    return -1;
  }
}

void AskRegistry(const CDiscreteCombinations& model) {
  const std::vector<std::string> ids = model.ListParameterImmutableID();
  Require(ids.size() == model.ParameterCount(), "every parameter is listed");
  Require(model.ListParameterImmutableID(true).size() == model.EnabledParameterCount(),
          "every enabled parameter is listed");
  // An empty ID is registered without bounds, and a list of them may be what stopped the reading.
  Require(model.ListUpperBound(ids).size() <= ids.size(), "no parameter has its bounds twice");
  Require(model.ListLowerBound(ids).size() <= ids.size(), "no parameter has its bounds twice");
  // Each list goes through all combinations. Their keys hold a value of every input, so this takes
  // time in proportion to the text. Outputs have no value there: a few of them are asked for.
  std::size_t outputs = 0;
  for (const std::string& id : model.ListEnabledDiscreteParameterWrtRegistrationRank()) {
    constexpr std::size_t kMostOutputs = 4;
    if (!model.IsInput(id) && ++outputs > kMostOutputs) continue;
    model.ListRegisteredValuesForDiscreteParameter(id);
  }
  Require(model.GetDiscreteCombinationsIndexingPtr()->size() <=
              model.GetOutputsWrtDiscCombPtr()->size(),
          "every combination has its outputs");
}

}  // namespace

void RunDatabase(std::string_view data) {
  std::string text(data);
  CReaderPXROMDatabase reader;
  reader.ReadDataStream(text);
  CDiscreteCombinations model;
  const auto read = [&] { return reader.ResumeDiscreteCombinations(model); };
  const int status = StatusOf(read);
  AskRegistry(model);
  const std::size_t combinations = model.GetOutputsWrtDiscCombPtr()->size();
  const CDiscreteCombinations copy(model);
  Require(copy.ParameterCount() == model.ParameterCount(), "a copy has all parameters");

  model.ResetData();
  Require(StatusOf(read) == status, "reading again gives the same status");
  Require(model.GetOutputsWrtDiscCombPtr()->size() == 2 * combinations,
          "and the same combinations, after those that were emptied");
  StatusOf(read);
  AskRegistry(model);
  CDiscreteCombinations assigned;
  assigned = model;
  model.ResetData();
  AskRegistry(assigned);

  int counts[5] = {};
  std::vector<std::pair<std::string, int>> references;
  StatusOf([&] {
    return reader.ResumeFMUDescriptionVariables(counts[0], counts[1], counts[2], counts[3],
                                                counts[4], references);
  });
}

}  // namespace fuzz
