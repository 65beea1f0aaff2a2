#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <memory>
#include <vector>

#include "model_inputs.h"
#include "pxrom/pxrom_c.h"
#include "targets.h"

namespace fuzz {

namespace {

struct Free {
  void operator()(pxrom_model* model) const { pxrom_model_free(model); }
  void operator()(pxrom_prepared* prepared) const { pxrom_prepared_free(prepared); }
};
using ModelHandle = std::unique_ptr<pxrom_model, Free>;
using PreparedHandle = std::unique_ptr<pxrom_prepared, Free>;

// A call with the buffer of a host, which is too short for some sentences.
template <class Function, class... Arguments>
pxrom_status Call(Function function, Arguments... arguments) {
  char message[64];
  std::memset(message, 'x', sizeof message);
  const pxrom_status status = function(arguments..., message, sizeof message);
  Require(std::memchr(message, '\0', sizeof message) != nullptr, "a message has an end");
  Require((status == PXROM_OK) == (message[0] == '\0'), "only a refusal has a message");
  return status;
}

std::vector<pxrom_parameter> Parameters(const ModelHandle& model, std::int32_t list) {
  std::size_t count = 0;
  Require(Call(pxrom_model_count, model.get(), list, &count) == PXROM_OK, "a list has a length");
  std::vector<pxrom_parameter> parameters(count);
  for (std::size_t i = 0; i < count; ++i) {
    Require(Call(pxrom_model_parameter, model.get(), list, i, &parameters[i]) == PXROM_OK,
            "what is counted is there");
    Require(parameters[i].id != nullptr && parameters[i].unit != nullptr, "texts are never null");
    for (std::size_t k = 1; k < parameters[i].value_count; ++k) {
      Require(parameters[i].values[k - 1] < parameters[i].values[k], "values ascend");
    }
  }
  pxrom_parameter beyond = {};
  Require(Call(pxrom_model_parameter, model.get(), list, count, &beyond) == PXROM_REFUSED,
          "there is nothing beyond the last");
  return parameters;
}

void Ask(const ModelHandle& model, const std::vector<pxrom_parameter>& discrete, std::size_t index,
         const ModelInputs& inputs) {
  const std::int32_t* values = nullptr;
  Require(Call(pxrom_model_combination, model.get(), index, &values) == PXROM_OK,
          "a combination that is counted is there");
  pxrom_prepared* made = nullptr;
  const pxrom_status status =
      Call(pxrom_model_prepare, model.get(), static_cast<const char* const*>(nullptr), values,
           discrete.size(), &made);
  const PreparedHandle prepared(made);
  std::vector<const char*> names;
  for (const pxrom_parameter& parameter : discrete) names.push_back(parameter.id);
  pxrom_prepared* named = nullptr;
  // An ID that holds a zero byte ends there for a host in C.
  const pxrom_status again =
      Call(pxrom_model_prepare, model.get(), names.data(), values, discrete.size(), &named);
  const PreparedHandle other(named);
  Require(again == PXROM_OK || status != PXROM_OK || inputs.Text().find('\0') != std::string::npos,
          "a combination goes by names as by ranks");
  if (status != PXROM_OK) return;

  const std::size_t columns = pxrom_prepared_input_count(prepared.get());
  const std::size_t outputs = pxrom_prepared_output_count(prepared.get());
  const std::vector<double> point = inputs.Values(static_cast<int>(columns));
  std::vector<double> results(outputs), errors(outputs);
  std::vector<std::int32_t> statuses(outputs);
  Require(
      Call(pxrom_prepared_evaluate, prepared.get(), point.data(), std::size_t{1},
           std::int32_t{PXROM_EXACT}, results.data(), errors.data(), statuses.data()) == PXROM_OK,
      "a prepared combination answers");
  for (std::size_t o = 0; o < outputs; ++o) {
    Require(statuses[o] != PXROM_POINT_FAILED || std::isnan(results[o]),
            "what failed is no number");
    Require(statuses[o] == PXROM_POINT_OK || std::isnan(errors[o]), "no error is no number");
    const std::int32_t unit = pxrom_prepared_error_in_unit(prepared.get(), o);
    Require(unit == 0 || unit == 1, "an error is in its unit or not");
  }
  // A gradient takes a number for each input of each output.
  constexpr std::size_t kMostNumbers = std::size_t{1} << 16U;
  if (outputs * columns > kMostNumbers) return;
  std::vector<double> gradients(outputs * columns);
  Require(Call(pxrom_prepared_gradients, prepared.get(), point.data(), std::size_t{1},
               gradients.data(), statuses.data()) == PXROM_OK,
          "a prepared combination has derivatives");
}

void Check(const std::string& text) {
  struct Seen {
    std::size_t findings = 0;
    std::size_t line = 0;
  } seen;
  const auto note = [](const pxrom_finding* finding, void* user) {
    Seen& before = *static_cast<Seen*>(user);
    Require(finding->line >= before.line, "findings come by place");
    before.line = finding->line;
    ++before.findings;
    return 0;
  };
  pxrom_finding_counts counts = {};
  Require(Call(pxrom_check, text.data(), text.size(), +note, static_cast<void*>(&seen), &counts) ==
              PXROM_OK,
          "any text can be checked");
  Require(seen.findings <= counts.notes + counts.warnings + counts.errors,
          "all findings are counted");
}

}  // namespace

void RunCInterface(std::string_view data) {
  const ModelInputs inputs(data);
  const std::string& text = inputs.Text();
  Check(text);
  pxrom_model* made = nullptr;
  const pxrom_status status = Call(pxrom_model_read, text.data(), text.size(), &made);
  const ModelHandle model(made);
  Require((status == PXROM_OK) == (made != nullptr), "only what was read is handed out");
  if (status != PXROM_OK) return;
  for (const std::int32_t list : {PXROM_ALL_PARAMETERS, PXROM_INPUTS, PXROM_OUTPUTS}) {
    Parameters(model, list);
  }
  const std::vector<pxrom_parameter> discrete = Parameters(model, PXROM_DISCRETE_INPUTS);
  std::size_t combinations = 0;
  Require(Call(pxrom_model_combination_count, model.get(), &combinations) == PXROM_OK,
          "combinations are counted");
  for (std::size_t i = 0; i < std::min(combinations, inputs.MostCombinations()); ++i) {
    Ask(model, discrete, i, inputs);
  }
}

}  // namespace fuzz
