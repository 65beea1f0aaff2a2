// Walks a whole design study: every fitted combination of discrete values, evaluated in the middle
// of the continuous inputs' bounds.
//
//   study examples/beam.pxdb

#include <pxrom/pxrom.h>

#include <cstddef>
#include <cstdio>
#include <fstream>
#include <map>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

using namespace Tarvane::Plexura::PXROM;

using DiscreteValues = std::vector<std::pair<std::string, int>>;
using Values = std::vector<std::pair<std::string, double>>;

namespace {

bool Read(const char* path, CDiscreteCombinations& model) {
  std::stringstream text;
  text << std::ifstream(path).rdbuf();
  if (text.str().empty()) return false;
  CReaderPXROMDatabase reader;
  reader.ReadDataStream(text);
  return reader.ResumeDiscreteCombinations(model) == 0;
}

Values MiddleOfBounds(const CDiscreteCombinations& model) {
  Values middle;
  for (const std::string& id : model.ListParameterImmutableID(CausalityInput, true)) {
    if (!model.IsContinuous(id)) continue;  // discrete and derived inputs have no place here
    const double lower = model.ListLowerBound({id}).front().second;
    const double upper = model.ListUpperBound({id}).front().second;
    middle.emplace_back(id, 0.5 * (lower + upper));
  }
  return middle;
}

void PrintHeading(const CDiscreteCombinations& model, const Values& point) {
  std::printf("At");
  for (const auto& [id, value] : point) {
    const std::string unit = model.ListParameterUnit({id}).front().second;
    std::printf(" %s=%g%s%s", id.c_str(), value, unit.empty() ? "" : " ", unit.c_str());
  }
  std::printf("\n\n");
  for (const std::string& id : model.ListEnabledDiscreteParameterWrtRegistrationRank()) {
    std::printf("%-10s", id.c_str());
  }
  for (const std::string& id : model.ListParameterImmutableID(CausalityOutput, true)) {
    const std::string unit = model.ListParameterUnit({id}).front().second;
    std::string heading = id;
    heading.append(" [").append(unit).append("]");
    std::printf("  %-20s", heading.c_str());
  }
  std::printf("\n");
}

/// An error from cross-validation data has the unit of the output. Any other is what a surface
/// reports, in a scaled space; it gets a mark.
std::string Shown(double error, const CFittingCandidates& candidates) {
  char text[32];
  std::snprintf(text, sizeof text, "%.2g%s", error,
                candidates.GetEvaluationCandidatePtr()->GetIsErrPredRequired() ? "" : "*");
  return text;
}

/// One line: the discrete values, then each output and its error where it has one.
void PrintCombination(const CDiscreteCombinations& model, const DiscreteValues& discrete,
                      const CDiscreteCombinations::OutputsByID& surfaces, const Values& point) {
  // The values come first: asking for errors can change a Kriging surface (docs/behaviours.md).
  Values outputs;
  Values again;
  Values errors;
  if (model.Evaluate(discrete, point, outputs) == 0) {
    model.Evaluate(discrete, point, again, errors);
  }

  for (const auto& [id, value] : discrete) std::printf("%-10d", value);
  const std::map<std::string, double> error_of(errors.begin(), errors.end());
  for (const auto& [id, value] : outputs) {
    const auto error = error_of.find(id);
    const bool known = error != error_of.end();
    std::printf("  %-8.5g %-11s", value,
                known ? ("+- " + Shown(error->second, *surfaces.at(id))).c_str() : "");
  }
  std::printf("\n");
}

}  // namespace

int main(int argc, char** argv) {
  CDiscreteCombinations model;
  if (argc != 2 || !Read(argv[1], model)) {
    std::fprintf(stderr, "usage: study examples/beam.pxdb\n");
    return 1;
  }
  const Values point = MiddleOfBounds(model);
  PrintHeading(model, point);

  // The keys of the index are the combinations, their values in this order of names.
  const std::vector<std::string> names = model.ListEnabledDiscreteParameterWrtRegistrationRank();
  for (const auto& [values, position] : *model.GetDiscreteCombinationsIndexingPtr()) {
    DiscreteValues discrete;
    for (std::size_t i = 0; i < values.size(); ++i) discrete.emplace_back(names[i], values[i]);
    const auto& surfaces = (*model.GetOutputsWrtDiscCombPtr())[static_cast<std::size_t>(position)];
    PrintCombination(model, discrete, surfaces, point);
  }
  std::printf("\n* as the surface reports it: in a scaled space, not in this unit\n");
  return 0;
}
