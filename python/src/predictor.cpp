// One combination at one point after the other, for callers that pay for each call, such as
// optimisers.

#include <pybind11/numpy.h>
#include <pybind11/pybind11.h>
#include <pybind11/stl.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <string>
#include <utility>
#include <vector>

#include "bindings.h"
#include "pxrom/batch.h"
#include "text.h"

namespace py = pybind11;
namespace pxrom = Tarvane::Plexura::PXROM;

namespace pxrom_python {
namespace {

using Array = py::array_t<double, py::array::c_style>;

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
// To release and take the interpreter's lock costs about as much as a thousand operations. If other
// threads compete for it, a short evaluation would wait for it longer than it takes.
constexpr std::uint64_t kWorthUnlocking = 100000;

template <class Work>
void Run(std::uint64_t operations, const Work& work) {
  if (operations < kWorthUnlocking) {
    work();
  } else {
    const py::gil_scoped_release unlocked;
    work();
  }
}

/// See _predictor.py for the results. It never changes.
class Predictor {
 public:
  /// `asPoint` turns a point that is not an array into one, or refuses it. `gradientHint` is added
  /// to the message when gradients cost too much.
  Predictor(pxrom::CPreparedModel model, bool isOneOutput, py::object asPoint,
            std::string gradientHint)
      : model_(std::move(model)),
        isOneOutput_(isOneOutput),
        asPoint_(std::move(asPoint)),
        gradientHint_(std::move(gradientHint)),
        inputs_(model_.InputIDs().size()),
        outputs_(model_.OutputIDs().size()),
        operations_(model_.Cost().operations),
        gradientOperations_(model_.GradientCost().operations) {}

  py::object Value(const py::object& given) const {
    const Array x = PointOf(given);
    Results values(*this);
    Evaluate(x.data(), values.Numbers(), nullptr);
    return values.Take();
  }

  py::tuple ValueAndError(const py::object& given) const {
    const Array x = PointOf(given);
    Results values(*this);
    Results errors(*this);
    Evaluate(x.data(), values.Numbers(), errors.Numbers());
    return py::make_tuple(values.Take(), errors.Take());
  }

  py::object Gradient(const py::object& given) const { return GradientAt(PointOf(given).data()); }

  py::tuple ValueAndGradient(const py::object& given) const {
    const Array x = PointOf(given);
    Results values(*this);
    Evaluate(x.data(), values.Numbers(), nullptr);
    return py::make_tuple(values.Take(), GradientAt(x.data()));
  }

 private:
  /// A number per output: a float if there is one output, else an array.
  class Results {
   public:
    explicit Results(const Predictor& predictor) {
      if (predictor.isOneOutput_) return;
      Array made(static_cast<py::ssize_t>(predictor.outputs_));
      numbers_ = made.mutable_data();
      array_ = std::move(made);
    }
    Results(const Results&) = delete;
    Results& operator=(const Results&) = delete;

    double* Numbers() { return numbers_; }
    py::object Take() { return array_ ? std::move(array_) : py::float_(number_); }

   private:
    double number_ = kNaN;
    double* numbers_ = &number_;
    py::object array_;
  };

  bool IsPoint(const py::handle& given) const {
    if (!py::isinstance<Array>(given)) return false;
    const auto array = py::reinterpret_borrow<Array>(given);
    return array.ndim() == 1 && array.shape(0) == static_cast<py::ssize_t>(inputs_) &&
           (array.flags() & py::detail::npy_api::NPY_ARRAY_ALIGNED_) != 0;
  }

  Array PointOf(const py::object& given) const {
    if (IsPoint(given)) return py::reinterpret_borrow<Array>(given);
    py::object made = asPoint_(given);
    if (!IsPoint(made)) throw py::type_error("x can't be read as a point");
    return py::reinterpret_steal<Array>(made.release());
  }

  bool HasNaN(const double* x) const {
    return std::any_of(x, x + inputs_, [](double value) { return std::isnan(value); });
  }

  /// The same rules as Model.predict has: NaN in an input gives NaN, and a family without errors
  /// has a value. Errors are in the unit of their output.
  void Evaluate(const double* x, double* values, double* errors) const {
    if (HasNaN(x)) {
      std::fill_n(values, outputs_, kNaN);
      if (errors != nullptr) std::fill_n(errors, outputs_, kNaN);
      return;
    }
    Run(operations_, [&] {
      if (errors == nullptr) {
        model_.Evaluate(x, 1, pxrom::PrecisionExact, values, nullptr, nullptr);
      } else {
        pxrom::CResultsInUnits to;
        to.values = values;
        to.errors = errors;
        model_.EvaluateWithUnits(x, 1, pxrom::PrecisionExact, to);
      }
    });
  }

  py::object GradientAt(const double* x) const {
    const auto inputs = static_cast<py::ssize_t>(inputs_);
    Array gradients(isOneOutput_
                        ? std::vector<py::ssize_t>{inputs}
                        : std::vector<py::ssize_t>{static_cast<py::ssize_t>(outputs_), inputs});
    double* const to = gradients.mutable_data();
    if (HasNaN(x)) {
      std::fill_n(to, outputs_ * inputs_, kNaN);
      return std::move(gradients);
    }
    std::string reason;
    Run(gradientOperations_, [&] { model_.EvaluateGradients(x, 1, to, nullptr, &reason); });
    if (!reason.empty()) throw py::value_error("Gradients: " + reason + gradientHint_);
    return std::move(gradients);
  }

  pxrom::CPreparedModel model_;
  bool isOneOutput_;
  py::object asPoint_;
  std::string gradientHint_;
  std::size_t inputs_;
  std::size_t outputs_;
  std::uint64_t operations_;
  std::uint64_t gradientOperations_;
};

}  // namespace

void BindPredictor(py::module_& module) {
  py::options options;
  options.disable_function_signatures();
  py::class_<Predictor>(module, "Predictor", "One combination at one point after the other.")
      .def(py::init<pxrom::CPreparedModel, bool, py::object, std::string>(), py::arg("prepared"),
           py::arg("is_one_output"), py::arg("as_point"), py::arg("gradient_hint"))
      .def("__call__", &Predictor::Value, py::arg("x"),
           "The value at a point; NaN where it can't be evaluated.")
      .def("value_and_error", &Predictor::ValueAndError, py::arg("x"),
           "(value, predicted error). A missing error is NaN.")
      .def("gradient", &Predictor::Gradient, py::arg("x"),
           "The derivatives of the value with respect to the inputs; NaN where there are none.")
      .def("value_and_gradient", &Predictor::ValueAndGradient, py::arg("x"),
           "(value, gradient), for optimisers that take both from one function.");
}

}  // namespace pxrom_python
