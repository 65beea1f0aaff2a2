#include <cmath>
#include <cstdint>
#include <sstream>

#include "codegen/fmu_description.h"
#include "codegen/source.h"
#include "codegen/text.h"
#include "pxrom/codegen.h"

namespace pxrom_codegen {

namespace {

/// A GUID made of the texts, with the FNV-1a hash of two start values.
std::string TokenOf(const std::vector<std::string>& texts) {
  constexpr std::uint64_t kPrime = 0x100000001B3;
  std::string digits;
  for (const std::uint64_t first : {0xCBF29CE484222325ULL, 0x9E3779B97F4A7C15ULL}) {
    std::uint64_t hash = first;
    for (const std::string& text : texts) {
      for (const char c : text) hash = (hash ^ static_cast<unsigned char>(c)) * kPrime;
    }
    for (int shift = 60; shift >= 0; shift -= 4) {
      digits += "0123456789abcdef"[(hash >> static_cast<unsigned>(shift)) & 0xFU];
    }
  }
  for (const unsigned at : {8U, 13U, 18U, 23U}) digits.insert(at, "-");
  return "{" + digits + "}";
}

template <class Numbers>
std::string Table(const std::string& declaration, const Numbers& numbers) {
  std::string text = "static const " + declaration + " = {";
  for (std::size_t i = 0; i < numbers.size(); ++i) text += (i % 8 == 0 ? "\n  " : " ") + numbers[i];
  return text + "\n};\n";
}

void Replace(std::string& text, const std::string& word, const std::string& by) {
  for (std::size_t at = 0; (at = text.find(word, at)) != std::string::npos; at += by.size()) {
    text.replace(at, word.size(), by);
  }
}

/// The prefix of functions is for sources that are linked into a program, as the standard has it.
const char* const kNames = R"C(
/* Names have a prefix where the sources are linked into a program. */
#if !defined($FMI_OVERRIDE_FUNCTION_PREFIX) && defined($FMI_FUNCTION_PREFIX)
#define $FMI_ACTUAL_FUNCTION_PREFIX $FMI_FUNCTION_PREFIX
#endif
#if defined($FMI_ACTUAL_FUNCTION_PREFIX)
#define FMI_JOINED(a, b) a##b
#define FMI_PREFIXED(a, b) FMI_JOINED(a, b)
#define FMI_NAME(name) FMI_PREFIXED($FMI_ACTUAL_FUNCTION_PREFIX, name)
#define FMI_EXPORT
#else
#define FMI_NAME(name) name
#if defined(_WIN32) || defined(__CYGWIN__)
#define FMI_EXPORT __declspec(dllexport)
#elif defined(__GNUC__)
#define FMI_EXPORT __attribute__((visibility("default")))
#else
#define FMI_EXPORT
#endif
#endif

#ifdef __cplusplus
extern "C" {
#endif

)C";

/// The source with the functions of FMI, without the token.
std::string FunctionsText(const Interface& interface, int version) {
  const std::string& upper = interface.upper;
  std::vector<std::string> errors;
  for (const std::size_t o : OutputsWithErrors(interface))
    errors.push_back(std::to_string(o) + ",");
  std::vector<std::string> starts;
  std::vector<std::string> scales;
  for (const InputWords& input : interface.inputs) {
    const double range = input.upper - input.lower;
    starts.push_back(Literal(input.middle) + ",");
    scales.push_back(Literal(std::isfinite(range) && range > 0.0 ? range : 1.0) + ",");
  }

  std::ostringstream out;
  out << "/* The functions of FMI " << version << ".0 for the model " << interface.name
      << ". Each instance is independent of the others.\n */\n"
      << "#include \"" << interface.name << ".h\"\n\n#include <math.h>\n"
      << (version == 3 ? "#include <stdbool.h>\n#include <stdint.h>\n" : "")
      << "#include <stdlib.h>\n#include <string.h>\n\n#define TOKEN \"$TOKEN\"\n\nenum {\n"
      << "  INPUTS = " << upper << "_INPUT_COUNT,\n";
  if (interface.TakesDiscrete()) out << "  DISCRETE = " << upper << "_DISCRETE_COUNT,\n";
  if (!errors.empty()) out << "  ERRORS = " << errors.size() << ",\n";
  out << "  OUTPUTS = " << upper << "_OUTPUT_COUNT\n};\n\n"
      << Table("double start_inputs[INPUTS]", starts);
  if (interface.TakesDiscrete()) {
    std::vector<std::string> keys;
    for (const int value : interface.keys.front()) keys.push_back(std::to_string(value) + ",");
    out << Table("int start_discrete[DISCRETE]", keys);
  }
  if (!errors.empty()) {
    out << "/* Which outputs have errors, and the sizes of the steps for their derivatives */\n"
        << Table("int outputs_of_errors[ERRORS]", errors) << Table("double scales[INPUTS]", scales);
  }
  std::string names = kNames;
  Replace(names, "$FMI", "FMI" + std::to_string(version));

  const Pieces pieces = {interface.TakesDiscrete() ? "DISCRETE" : "NO_DISCRETE",
                         errors.empty() ? "NO_ERRORS" : "ERRORS"};
  std::string functions = FmiTexts()[static_cast<std::size_t>(version) - 1];
  Replace(functions, "@COMMON@\n", FmiTexts()[0]);
  functions = SelectPieces(functions, pieces, false);
  Replace(functions, "$NAME", interface.name);
  return out.str() + names + functions + "\n#ifdef __cplusplus\n}\n#endif\n";
}

}  // namespace

int GenerateFmu(const Tarvane::Plexura::PXROM::CDiscreteCombinations& model, const Options& options,
                int version, Fmu& fmu, std::string& reason) {
  if (version != 2 && version != 3) {
    reason = "There are FMUs of FMI 2 and 3, but not of " + std::to_string(version) + ".";
    return 1;
  }
  try {
    Options own = options;
    own.gradients = true;
    own.isFloat = false;
    Interface interface;
    const Code code = GenerateOrThrow(model, own, interface);
    const std::string functions = FunctionsText(interface, version);
    const std::vector<FmuVariable> variables = FmuVariables(interface);
    const std::string token = TokenOf(
        {code.header, code.source, functions, ModelDescription(interface, variables, version, "")});
    Fmu made;
    made.identifier = interface.name;
    made.version = version;
    made.needs = code.needs;
    made.sources = {interface.name + ".c", interface.name + "_fmi.c"};
    std::string withToken = functions;
    Replace(withToken, "$TOKEN", token);
    made.files = {
        {"modelDescription.xml", ModelDescription(interface, variables, version, token)},
        {"sources/" + interface.name + ".h", code.header},
        {"sources/" + made.sources[0], code.source},
        {"sources/" + made.sources[1], withToken},
    };
    if (version == 3) {
      made.files.push_back(
          {"sources/buildDescription.xml", BuildDescription(made.identifier, made.sources)});
    }
    fmu = std::move(made);
    return 0;
  } catch (const Refused& refused) {
    reason = refused.what();
    return 1;
  }
}

}  // namespace pxrom_codegen
