// A function of a point that computes nothing, to compare the cost of a call with.

#include <pybind11/numpy.h>
#include <pybind11/pybind11.h>

namespace py = pybind11;

PYBIND11_MODULE(no_op, module) {
  module.def("value", [](const py::array_t<double, py::array::c_style>& x) { return x.data()[0]; });
}
