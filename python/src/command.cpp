#include <pybind11/pybind11.h>
#include <pybind11/stl.h>

#include <string>
#include <vector>

#include "bindings.h"
#include "tools/run.h"

namespace pxrom_python {

void BindCommand(pybind11::module_& module) {
  module.def("run_command", [](const std::vector<std::string>& arguments) {
    std::vector<const char*> given;
    for (const std::string& argument : arguments) given.push_back(argument.c_str());
    const pybind11::gil_scoped_release released;
    return pxrom_command::Run(static_cast<int>(given.size()), given.data());
  });
}

}  // namespace pxrom_python
