#include "pxrom/inspection.h"

#include <pybind11/pybind11.h>

#include <optional>
#include <string>

#include "bindings.h"
#include "text.h"

namespace py = pybind11;
namespace pxrom = Tarvane::Plexura::PXROM;

namespace pxrom_python {
namespace {

/// One dict per finding, in the order of the text.
py::list Inspect(const py::str& given) {
  const std::string text = ToBytes(given);
  pxrom::CInspectionReport report;
  {
    const py::gil_scoped_release unlocked;
    report = pxrom::InspectPXROMDatabase(text);
  }
  static constexpr const char* kSeverities[] = {"note", "warning", "error"};
  py::list all;
  for (const pxrom::CFinding& finding : report.findings) {
    py::dict shown;
    shown["severity"] = kSeverities[finding.severity];
    shown["code"] = pxrom::FindingCodeName(finding.code);
    shown["line"] = finding.line;
    shown["column"] = finding.column;
    shown["group"] = ToStr(finding.group);
    shown["key"] = ToStr(finding.key);
    shown["found"] = ToStr(finding.found);
    shown["expected"] = ToStr(finding.expected);
    shown["sentence"] = ToStr(finding.sentence);
    all.append(shown);
  }
  return all;
}

}  // namespace

void BindInspection(py::module_& module) { module.def("inspect", &Inspect, py::arg("text")); }

}  // namespace pxrom_python
