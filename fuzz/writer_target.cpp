#include <cstring>

#include "model_inputs.h"
#include "pxrom/database_reader.h"
#include "pxrom/writer.h"
#include "targets.h"

namespace fuzz {

// What was read and can be written reads back as it was, and is then written the same.
void RunWriter(std::string_view data) {
  using namespace Tarvane::Plexura::PXROM;
  const ModelInputs inputs(data);
  CDiscreteCombinations model;
  if (!inputs.Read(model)) return;
  const CWriterPXROMDatabase writer;
  std::string text = "untouched";
  std::string reason;
  if (writer.WriteDiscreteCombinations(model, text, reason) != 0) {
    Require(text == "untouched" && !reason.empty(), "a refusal leaves the text and has a reason");
    return;
  }
  Require(reason.empty(), "there is no reason for success");

  std::string copy = text;
  CReaderPXROMDatabase reader;
  reader.ReadDataStream(copy);
  CDiscreteCombinations back;
  Require(reader.ResumeDiscreteCombinations(back) == 0, "what was written can be read");
  std::string again;
  Require(writer.WriteDiscreteCombinations(back, again) == 0 && again == text,
          "what was read from it is written the same");
  const NamedValues continuous = inputs.ContinuousOf(model);
  std::size_t tried = 0;
  for (const auto& combination : *model.GetDiscreteCombinationsIndexingPtr()) {
    if (++tried > inputs.MostCombinations()) break;
    const NamedInts discrete = inputs.DiscreteOf(model, combination.first);
    NamedValues outputs[2];
    NamedValues errors[2];
    Require(model.Evaluate(discrete, continuous, outputs[0]) ==
                    back.Evaluate(discrete, continuous, outputs[1]) &&
                SameBits(outputs[0], outputs[1]),
            "what was written has the same values");
    Require(
        CDiscreteCombinations(model).Evaluate(discrete, continuous, outputs[0], errors[0]) ==
                CDiscreteCombinations(back).Evaluate(discrete, continuous, outputs[1], errors[1]) &&
            SameBits(outputs[0], outputs[1]) && SameBits(errors[0], errors[1]),
        "what was written has the same errors");
  }
}

}  // namespace fuzz
