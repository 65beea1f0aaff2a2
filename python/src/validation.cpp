#include "pxrom/validation.h"

#include <pybind11/numpy.h>
#include <pybind11/pybind11.h>
#include <pybind11/stl.h>

#include "bindings.h"

namespace py = pybind11;
namespace pxrom = Tarvane::Plexura::PXROM;

namespace pxrom_python {
namespace {

using Column = py::array_t<double, py::array::c_style | py::array::forcecast>;

/// The scores of columns of one length, by the names of pxrom.Scores.
py::dict Compare(const Column& measured, const Column& predicted, const Column& errors) {
  if (predicted.size() != measured.size() || errors.size() != measured.size()) {
    throw py::value_error("the columns must have one length");
  }
  pxrom::CPredictionComparison comparison;
  for (py::ssize_t row = 0; row < measured.size(); ++row) {
    comparison.Add(measured.data()[row], predicted.data()[row], errors.data()[row]);
  }
  const pxrom::CPredictionScores scores = comparison.Scores();
  py::dict all;
  all["count"] = scores.count;
  all["missing"] = scores.missing;
  all["failed"] = scores.failed;
  all["r2"] = scores.r2;
  all["rmse"] = scores.rmse;
  all["mean_absolute_error"] = scores.meanAbsoluteError;
  all["largest_absolute_error"] = scores.largestAbsoluteError;
  all["bias"] = scores.bias;
  all["with_error"] = scores.withError;
  all["within"] = py::tuple(py::cast(scores.within));
  return all;
}

}  // namespace

void BindValidation(py::module_& module) {
  module.def("compare", &Compare, py::arg("measured"), py::arg("predicted"), py::arg("errors"));
}

}  // namespace pxrom_python
