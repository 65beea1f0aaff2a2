#include "codegen/fmu_description.h"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <cstdint>
#include <set>
#include <sstream>
#include <utility>

#include "codegen/text.h"
#include "pxrom/version.h"

namespace pxrom_codegen {

namespace {

/// The character of UTF-8 that begins at `at`, and its bytes; 0 bytes for none.
std::pair<std::uint32_t, std::size_t> CharacterAt(const std::string& text, std::size_t at) {
  const auto byte = [&](std::size_t i) {
    return i < text.size() ? static_cast<unsigned char>(text[i]) : 0U;
  };
  const std::uint32_t first = byte(at);
  if (first < 0x80U) return {first, 1};
  const std::size_t bytes = first >= 0xF0U ? 4 : first >= 0xE0U ? 3 : 2;
  constexpr std::uint32_t kLeast[] = {0, 0, 0x80, 0x800, 0x10000};
  if (first < 0xC2U || first > 0xF4U) return {0, 0};
  std::uint32_t code = first & (0x7FU >> bytes);
  for (std::size_t i = 1; i < bytes; ++i) {
    if ((byte(at + i) & 0xC0U) != 0x80U) return {0, 0};
    code = (code << 6U) | (byte(at + i) & 0x3FU);
  }
  return code < kLeast[bytes] ? std::pair<std::uint32_t, std::size_t>(0, 0)
                              : std::pair<std::uint32_t, std::size_t>(code, bytes);
}

/// `text` on one line. What XML 1.0 does not allow becomes a question mark.
std::string Plain(const std::string& text) {
  std::string out;
  for (std::size_t at = 0; at < text.size();) {
    const auto [code, bytes] = CharacterAt(text, at);
    const bool isSpace = code == '\t' || code == '\n' || code == '\r';
    const bool isAllowed = bytes > 0 && code >= 0x20 && !(code >= 0xD800 && code <= 0xDFFF) &&
                           code != 0xFFFE && code != 0xFFFF && code <= 0x10FFFF;
    out += isSpace ? " " : isAllowed ? text.substr(at, bytes) : "?";
    at += std::max<std::size_t>(bytes, 1);
  }
  return out;
}

std::string Escaped(const std::string& text) {
  std::string out;
  for (const char c : text) {
    if (c == '&') {
      out += "&amp;";
    } else if (c == '<') {
      out += "&lt;";
    } else if (c == '>') {
      out += "&gt;";
    } else if (c == '"') {
      out += "&quot;";
    } else {
      out += c;
    }
  }
  return out;
}

std::string Attribute(const std::string& name, const std::string& value) {
  return value.empty() ? "" : " " + name + "=\"" + Escaped(value) + "\"";
}

/// `id` if it is an identifier, else one that resembles it.
std::string IdentifierOf(const std::string& id) {
  std::string name;
  for (const char c : id) {
    const auto byte = static_cast<unsigned char>(c);
    const bool isPart = byte < 0x80 && (std::isalnum(byte) != 0 || c == '_');
    if (isPart) name += c;
    // One for a character, however many bytes it has.
    if (!isPart && (byte & 0xC0U) != 0x80U) name += '_';
  }
  if (name.find_first_not_of('_') == std::string::npos) name = "variable";
  return std::isdigit(static_cast<unsigned char>(name[0])) != 0 ? "_" + name : name;
}

class UniqueNames {
 public:
  std::string Of(const std::string& id) {
    const std::string name = IdentifierOf(id);
    std::string unique = name;
    for (int number = 2; !used_.insert(unique).second; ++number) {
      unique = name + "_" + std::to_string(number);
    }
    return unique;
  }

 private:
  std::set<std::string> used_;
};

/// The caption, after the ID if the name is another.
std::string DescriptionOf(const Variable& variable, const std::string& name) {
  if (variable.id == name) return Plain(variable.caption);
  return Plain(variable.caption.empty() ? variable.id : variable.id + ": " + variable.caption);
}

FmuVariable Described(const Variable& of, FmuVariable::Kind kind, UniqueNames& names) {
  FmuVariable variable;
  variable.kind = kind;
  variable.name = names.Of(of.id);
  variable.description = DescriptionOf(of, variable.name);
  variable.unit = Plain(of.unit);
  return variable;
}

/// A finite number; nothing for another.
std::string NumberOf(double value) { return std::isfinite(value) ? Literal(value) : ""; }

FmuVariable DiscreteVariable(const Interface& interface, std::size_t i, const std::string& name) {
  std::set<int> values;
  for (const auto& key : interface.keys) values.insert(key[i]);
  std::string list;
  for (const int value : values) list += (list.empty() ? "" : ", ") + std::to_string(value);
  const std::string description = DescriptionOf(interface.discrete[i], name);
  FmuVariable variable;
  variable.kind = FmuVariable::Discrete;
  variable.name = name;
  variable.description = description + (description.empty() ? "" : "; ") + "one of " + list;
  variable.min = std::to_string(*values.begin());
  variable.max = std::to_string(*values.rbegin());
  variable.start = std::to_string(interface.keys.front()[i]);
  return variable;
}

std::string VariableText(const FmuVariable& variable, std::size_t reference, bool isTwo) {
  static const char* const kCausality[] = {
      " causality=\"independent\" variability=\"continuous\"",
      " causality=\"input\" variability=\"continuous\"",
      " causality=\"parameter\" variability=\"tunable\"",
      " causality=\"output\" variability=\"continuous\"",
  };
  const std::string common =
      Attribute("name", variable.name) + " valueReference=\"" + std::to_string(reference) + "\"" +
      Attribute("description", variable.description) + kCausality[variable.kind];
  const std::string values = Attribute("unit", variable.unit) + Attribute("min", variable.min) +
                             Attribute("max", variable.max) + Attribute("start", variable.start) +
                             "/>\n";
  const bool isInteger = variable.kind == FmuVariable::Discrete;
  if (!isTwo) return "    <" + std::string(isInteger ? "Int32" : "Float64") + common + values;
  return "    <ScalarVariable" + common + ">\n      <" + (isInteger ? "Integer" : "Real") + values +
         "    </ScalarVariable>\n";
}

}  // namespace

std::vector<std::size_t> OutputsWithErrors(const Interface& interface) {
  std::vector<std::size_t> outputs;
  for (std::size_t o = 0; interface.errors && o < interface.outputs.size(); ++o) {
    const bool hasError =
        std::any_of(interface.tests.begin(), interface.tests.end(),
                    [o](const TestPoint& test) { return test.errorStatuses[o] == 0; });
    if (hasError) outputs.push_back(o);
  }
  return outputs;
}

std::vector<FmuVariable> FmuVariables(const Interface& interface) {
  UniqueNames names;
  std::vector<FmuVariable> variables(1);
  for (const InputWords& input : interface.inputs) {
    FmuVariable variable = Described(input, FmuVariable::Input, names);
    if (input.isBounded) {
      variable.min = NumberOf(input.lower);
      variable.max = NumberOf(input.upper);
    }
    variable.start = NumberOf(input.middle);
    variables.push_back(variable);
  }
  for (std::size_t i = 0; i < interface.discrete.size(); ++i) {
    variables.push_back(DiscreteVariable(interface, i, names.Of(interface.discrete[i].id)));
  }
  for (const OutputWords& output : interface.outputs) {
    variables.push_back(Described(output, FmuVariable::Output, names));
  }
  for (const std::size_t o : OutputsWithErrors(interface)) {
    const OutputWords& output = interface.outputs[o];
    FmuVariable variable;
    variable.kind = FmuVariable::Output;
    variable.name = names.Of(output.id + "_error");
    variable.description =
        "Predicted error of " + Plain(output.id) + "; NaN where the model gives no error";
    if (!output.hasUnitOfError) variable.description += "; in the scaled space of its surface";
    if (output.hasUnitOfError) variable.unit = Plain(output.unit);
    variables.push_back(variable);
  }
  FmuVariable inside;
  inside.kind = FmuVariable::Output;
  inside.name = names.Of("inside");
  inside.description =
      "1 if all inputs are in the ranges of the samples, 0 where the model extrapolates";
  variables.push_back(inside);
  variables[0].name = names.Of("time");
  variables[0].description = "Time";
  return variables;
}

std::string ModelDescription(const Interface& interface, const std::vector<FmuVariable>& variables,
                             int version, const std::string& token) {
  const bool isTwo = version == 2;
  std::set<std::string> units;
  std::string inputs;
  std::string knowns;  // in initialization mode
  for (std::size_t i = 0; i < variables.size(); ++i) {
    const FmuVariable& variable = variables[i];
    if (!variable.unit.empty()) units.insert(variable.unit);
    // An index counts from 1, a reference from 0.
    const std::string place = " " + std::to_string(isTwo ? i + 1 : i);
    if (variable.kind == FmuVariable::Input) inputs += place;
    if (variable.kind == FmuVariable::Input || variable.kind == FmuVariable::Discrete) {
      knowns += place;
    }
  }
  const std::string identifier = Attribute("modelIdentifier", interface.name);
  std::ostringstream out;
  out << "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<fmiModelDescription"
      << Attribute("fmiVersion", isTwo ? "2.0" : "3.0") << Attribute("modelName", interface.name)
      << '\n'
      << "  " << (isTwo ? "guid" : "instantiationToken") << "=\"" << token << "\"\n"
      << "  description=\"Fitted response surfaces"
      << (interface.chosen.empty() ? "" : ", for " + Escaped(interface.chosen)) << "\"\n"
      << "  generationTool=\"pxrom " << PXROM_VERSION_STRING << "\""
      << " variableNamingConvention=\"flat\"" << (isTwo ? " numberOfEventIndicators=\"0\"" : "")
      << ">\n";
  if (isTwo) {
    const std::string common = identifier +
                               " canNotUseMemoryManagementFunctions=\"true\"\n"
                               "    canGetAndSetFMUstate=\"true\" canSerializeFMUstate=\"true\" "
                               "providesDirectionalDerivative=\"true\"";
    const std::string sources = ">\n    <SourceFiles>\n      <File name=\"" + interface.name +
                                ".c\"/>\n      <File name=\"" + interface.name +
                                "_fmi.c\"/>\n    </SourceFiles>\n  ";
    out << "  <ModelExchange" << common << "\n    completedIntegratorStepNotNeeded=\"true\""
        << sources << "</ModelExchange>\n"
        << "  <CoSimulation" << common << "\n    canHandleVariableCommunicationStepSize=\"true\""
        << sources << "</CoSimulation>\n";
  } else {
    const std::string common =
        identifier +
        " canGetAndSetFMUState=\"true\" canSerializeFMUState=\"true\"\n"
        "    providesDirectionalDerivatives=\"true\" providesAdjointDerivatives=\"true\"";
    out << "  <ModelExchange" << common << "/>\n  <CoSimulation" << common
        << "\n    canHandleVariableCommunicationStepSize=\"true\"/>\n";
  }
  if (!units.empty()) {
    out << "  <UnitDefinitions>\n";
    for (const std::string& unit : units) out << "    <Unit" << Attribute("name", unit) << "/>\n";
    out << "  </UnitDefinitions>\n";
  }
  out << "  <LogCategories>\n"
         "    <Category name=\"logStatusDiscard\" description=\"Results that do not exist\"/>\n"
         "    <Category name=\"logStatusError\" description=\"Calls that are not allowed\"/>\n"
         "  </LogCategories>\n  <ModelVariables>\n";
  for (std::size_t i = 0; i < variables.size(); ++i) {
    out << VariableText(variables[i], i, isTwo);
  }
  out << "  </ModelVariables>\n  <ModelStructure>\n";
  const auto unknowns = [&](const std::string& element, const std::string& dependencies) {
    for (std::size_t i = 0; i < variables.size(); ++i) {
      if (variables[i].kind != FmuVariable::Output) continue;
      out << (isTwo ? "      <Unknown index=\"" + std::to_string(i + 1)
                    : "    <" + element + " valueReference=\"" + std::to_string(i))
          << "\" dependencies=\"" << dependencies.substr(1) << "\"/>\n";
    }
  };
  if (isTwo) out << "    <Outputs>\n";
  unknowns("Output", inputs);
  if (isTwo) out << "    </Outputs>\n    <InitialUnknowns>\n";
  unknowns("InitialUnknown", knowns);
  if (isTwo) out << "    </InitialUnknowns>\n";
  out << "  </ModelStructure>\n</fmiModelDescription>\n";
  return out.str();
}

std::string BuildDescription(const std::string& identifier,
                             const std::vector<std::string>& sources) {
  std::string files;
  for (const std::string& source : sources) {
    files += "      <SourceFile name=\"" + source + "\"/>\n";
  }
  const auto configuration = [&](const std::string& platform, const std::string& compiler,
                                 const std::string& library) {
    return "  <BuildConfiguration modelIdentifier=\"" + identifier + "\"" + platform +
           ">\n    <SourceFileSet language=\"C99\"" + compiler + ">\n" + files +
           "    </SourceFileSet>\n" + library + "  </BuildConfiguration>\n";
  };
  const std::string gcc =
      " compiler=\"gcc\" compilerOptions=\"-std=c99 -O2 -ffp-contract=off -fvisibility=hidden\"";
  const std::string library = "    <Library name=\"m\" external=\"true\"/>\n";
  return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<fmiBuildDescription fmiVersion=\"3.0\">\n" +
         configuration(" platform=\"x86_64-linux\"", gcc, library) +
         configuration(" platform=\"aarch64-linux\"", gcc, library) + configuration("", "", "") +
         "</fmiBuildDescription>\n";
}

}  // namespace pxrom_codegen
