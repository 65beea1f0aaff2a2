// Turns records into a text: ensembles, the registry, and the writer.

#include <pybind11/pybind11.h>
#include <pybind11/stl.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "bindings.h"
#include "pxrom/check_points.h"
#include "pxrom/discrete_combinations.h"
#include "pxrom/fitting_candidate.h"
#include "pxrom/fitting_candidates.h"
#include "text.h"

namespace py = pybind11;
namespace pxrom = Tarvane::Plexura::PXROM;

namespace pxrom_python {
namespace {

using Rows = std::vector<std::vector<double>>;

class Candidate : public pxrom::CFittingCandidate {
 public:
  void SetScaling(const std::vector<double>& slopes, const std::vector<double>& intercepts,
                  double outputSlope, double outputIntercept) {
    SetNumberOfInputVariables(static_cast<int>(slopes.size()));
    SetInputScaleSlopes(slopes);
    SetInputScaleIntercepts(intercepts);
    SetOutputScaleSlope(outputSlope);
    SetOutputScaleIntercept(outputIntercept);
  }
  void SetSamples(const Rows& inputs, const std::vector<double>& outputs) {
    SetNumberOfSamples(static_cast<int>(inputs.size()));
    SetInputSamples(inputs);
    SetOutputSamples(outputs);
  }
  /// The distance scale is computed from the rows, one per sample.
  void SetFolds(Rows sortedRows, std::vector<int> rowsPerFold) {
    SetCrossValidationData(sortedRows, rowsPerFold);
    computeMinDist();
  }
};

class Study {
 public:
  void AddParameter(const py::str& id, bool isInput, int type, const py::str& unit,
                    const py::str& caption, double lower, double upper) {
    const std::string name = ToBytes(id);
    model_->RegisterParameter(name, isInput ? pxrom::CausalityInput : pxrom::CausalityOutput,
                              static_cast<pxrom::E_ParameterType>(type), true);
    model_->RegisterParameterExtraInfos(name, name, ToBytes(unit), ToBytes(caption), upper, lower);
  }
  void AddCombination(const std::vector<std::pair<py::str, int>>& values,
                      const std::vector<std::pair<py::str, const Candidate*>>& outputs) {
    std::vector<std::pair<std::string, int>> discrete;
    discrete.reserve(values.size());
    for (const auto& [id, value] : values) discrete.emplace_back(ToBytes(id), value);
    std::vector<std::unique_ptr<pxrom::CFittingCandidates>> lists;
    std::vector<std::pair<std::string, pxrom::CFittingCandidates*>> named;
    for (const auto& [id, candidate] : outputs) {
      lists.push_back(std::make_unique<pxrom::CFittingCandidates>());
      lists.back()->AddFittingCandidate(*candidate);
      named.emplace_back(ToBytes(id), lists.back().get());
    }
    if (model_->RegisterDiscreteCombination(discrete, named) != 0) {
      throw py::value_error("the combination does not fit the parameters");
    }
    for (auto& list : lists) static_cast<void>(list.release());  // the model's now
  }
  const std::shared_ptr<pxrom::CDiscreteCombinations>& Model() const { return model_; }

 private:
  std::shared_ptr<pxrom::CDiscreteCombinations> model_ =
      std::make_shared<pxrom::CDiscreteCombinations>();
};

/// A text with check points; ValueError if they can't be added.
py::str WithCheckPoints(const py::str& given, std::size_t perCombination) {
  std::string text = ToBytes(given);
  std::string reason;
  int status = 1;
  {
    const py::gil_scoped_release unlocked;
    status = pxrom::AddCheckPoints(text, perCombination, pxrom::CEvaluationLimit(), reason);
  }
  if (status != 0) throw py::value_error(reason);
  return ToStr(text);
}

}  // namespace

void BindWriter(py::module_& module) {
  module.def("with_check_points", &WithCheckPoints, py::arg("text"), py::arg("per_combination"));
  py::class_<Candidate>(module, "Candidate", "One ensemble; surfaces are copied into it.")
      .def(py::init<>())
      .def("add_surface", [](Candidate& candidate, const pxrom::CRSData& surface,
                             double weight) { candidate.AddRSAndWeight(&surface, weight); })
      .def("add_sub_surface", [](Candidate& candidate,
                                 const pxrom::CRSData& surface) { candidate.AddSubRS(&surface); })
      .def("set_scaling", &Candidate::SetScaling)
      .def("set_samples", &Candidate::SetSamples)
      .def("set_folds", &Candidate::SetFolds);
  py::class_<Study>(module, "Study", "A registry and its combinations, to be written.")
      .def(py::init<>())
      .def("add_parameter", &Study::AddParameter)
      .def("add_combination", &Study::AddCombination)
      .def("model", &Study::Model, "What its text reads as.")
      .def("to_text", [](const Study& study) { return ToText(*study.Model()); });
}

}  // namespace pxrom_python
