#include <pybind11/pybind11.h>
#include <pybind11/stl.h>

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "bindings.h"
#include "pxrom/codegen.h"
#include "pxrom/discrete_combinations.h"
#include "tools/model_exports.h"
#include "tools/refusal.h"
#include "tools/run.h"

namespace py = pybind11;
namespace pxrom = Tarvane::Plexura::PXROM;

namespace pxrom_python {

namespace {

using Values = std::vector<std::pair<std::string, int>>;

pxrom_codegen::Options OptionsOf(const std::string& name, const Values& combination,
                                 const std::vector<std::string>& outputs, bool errors) {
  pxrom_codegen::Options options;
  options.name = name;
  options.combination = combination;
  options.outputs = outputs;
  options.errors = errors;
  return options;
}

std::vector<std::uint64_t> WriteCode(const pxrom::CDiscreteCombinations& model,
                                     const std::string& folder, const std::string& name,
                                     const Values& combination,
                                     const std::vector<std::string>& outputs, bool errors,
                                     bool gradients, bool isFloat, std::uint64_t budget) {
  pxrom_codegen::Options options = OptionsOf(name, combination, outputs, errors);
  options.gradients = gradients;
  options.isFloat = isFloat;
  options.budget = budget;
  try {
    const pxrom_codegen::Needs needs = pxrom_command::WriteCode({model, ""}, folder, options).needs;
    return {needs.tableBytes, needs.codeBytes, needs.stackBytes, needs.operations};
  } catch (const pxrom_command::Refusal& refusal) {
    throw py::value_error(refusal.what());
  }
}

std::vector<std::string> WriteFmu(const pxrom::CDiscreteCombinations& model,
                                  const std::string& archive, int version, const std::string& name,
                                  const Values& combination,
                                  const std::vector<std::string>& outputs, bool errors) {
  const std::string named = name.empty() ? pxrom_command::CodeNameOf(archive) : name;
  try {
    return pxrom_command::WriteFmu({model, ""}, archive, version,
                                   OptionsOf(named, combination, outputs, errors));
  } catch (const pxrom_command::Refusal& refusal) {
    throw py::value_error(refusal.what());
  }
}

}  // namespace

void BindCommand(pybind11::module_& module) {
  module.def("run_command", [](const std::vector<std::string>& arguments) {
    std::vector<const char*> given;
    for (const std::string& argument : arguments) given.push_back(argument.c_str());
    const pybind11::gil_scoped_release released;
    return pxrom_command::Run(static_cast<int>(given.size()), given.data());
  });
  module.def("write_code", &WriteCode, py::call_guard<py::gil_scoped_release>());
  module.def("write_fmu", &WriteFmu, py::call_guard<py::gil_scoped_release>());
}

}  // namespace pxrom_python
