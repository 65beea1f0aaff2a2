// pxrom._core: the library as the pure Python package needs it. That package checks the arguments
// of users and words the refusals.

#include <pybind11/pybind11.h>

#include "bindings.h"
#include "pxrom/version.h"

PYBIND11_MODULE(_core, module) {
  module.doc() = "The library behind the package pxrom; use that.";
  module.attr("__version__") = PXROM_VERSION_STRING;
  pxrom_python::BindModel(module);
  pxrom_python::BindPredictor(module);
  pxrom_python::BindInspection(module);
  pxrom_python::BindValidation(module);
  pxrom_python::BindRecords(module);
  pxrom_python::BindWriter(module);
#ifdef PXROM_PYTHON_COMMAND
  pxrom_python::BindCommand(module);
#endif
}
