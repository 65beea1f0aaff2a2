#pragma once

#include <pybind11/pybind11.h>

namespace Tarvane::Plexura::PXROM {
class CDiscreteCombinations;
}

namespace pxrom_python {

// One per file: adds its part to the module.
void BindModel(pybind11::module_& module);
void BindPredictor(pybind11::module_& module);  // after BindModel
void BindInspection(pybind11::module_& module);
void BindValidation(pybind11::module_& module);
void BindRecords(pybind11::module_& module);
void BindWriter(pybind11::module_& module);
/// Only in builds that have the command.
void BindCommand(pybind11::module_& module);

/// The text of a model; ValueError with the writer's reason if it can't be written.
pybind11::str ToText(const Tarvane::Plexura::PXROM::CDiscreteCombinations& model);

}  // namespace pxrom_python
