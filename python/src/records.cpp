// The record of each family that an exporter fills, with the library's own names for its fields.

#include <pybind11/pybind11.h>
#include <pybind11/stl.h>

#include <memory>
#include <utility>
#include <vector>

#include "bindings.h"
#include "pxrom/constant.h"
#include "pxrom/kriging.h"
#include "pxrom/linear_basis.h"
#include "pxrom/regression.h"
#include "pxrom/regression_terms.h"
#include "pxrom/support_vector.h"

namespace py = pybind11;
namespace pxrom = Tarvane::Plexura::PXROM;

namespace pxrom_python {
namespace {

/// An enumeration goes by its number, as in a database.
template <class Record, class Enum, class... Options>
void DefineNumber(py::class_<Record, Options...>& bound, const char* name, Enum Record::*field) {
  bound.def_property(
      name, [field](const Record& record) { return static_cast<int>(record.*field); },
      [field](Record& record, int number) { record.*field = static_cast<Enum>(number); });
}

/// Terms by their lists of inputs: none, one, or two. Refused is an input that isn't there.
void SetTerms(pxrom::CQRSData& record,
              const std::vector<std::pair<std::vector<int>, double>>& given) {
  std::vector<std::unique_ptr<RegTerm>> terms;
  for (const auto& [inputs, coefficient] : given) {
    for (const int input : inputs) {
      if (input < 0 || input >= record.NumberOfInputVariables) {
        throw py::value_error("a term names an input that isn't there");
      }
    }
    switch (inputs.size()) {
      case 0:
        terms.push_back(std::make_unique<ConstTerm>());
        break;
      case 1:
        terms.push_back(std::make_unique<LinearTerm>());
        break;
      case 2:
        if (inputs[0] == inputs[1]) {
          terms.push_back(std::make_unique<PureQuadTerm>());
        } else {
          terms.push_back(std::make_unique<CrossQuadTerm>());
        }
        break;
      default:
        throw py::value_error("a term has at most two inputs");
    }
    terms.back()->SetUsedInpVarIdx(static_cast<int>(inputs.size()), inputs.data());
    terms.back()->SetParamVal(1, &coefficient);
  }
  std::vector<RegTerm*> bare;
  bare.reserve(terms.size());
  for (const auto& term : terms) bare.push_back(term.get());
  record.SetRegTerm(bare.data(), static_cast<int>(bare.size()));
  record.NumberOfSelectedRegTerms = static_cast<int>(bare.size());
}

void BindBase(py::module_& module) {
  using pxrom::CRSData;
  py::class_<CRSData>(module, "CRSData")
      .def_readwrite("NumberOfInputVariables", &CRSData::NumberOfInputVariables)
      .def_readwrite("NumberOfSamples", &CRSData::NumberOfSamples)
      .def_readwrite("InputSamples", &CRSData::InputSamples)
      .def_readwrite("OutputSamples", &CRSData::OutputSamples)
      .def_readwrite("InputScaleSlopes", &CRSData::InputScaleSlopes)
      .def_readwrite("InputScaleIntercepts", &CRSData::InputScaleIntercepts)
      .def_readwrite("OutputScaleSlope", &CRSData::OutputScaleSlope)
      .def_readwrite("OutputScaleIntercept", &CRSData::OutputScaleIntercept)
      .def_readwrite("ReadyForSolve", &CRSData::ReadyForSolve)
      .def_readwrite("ReadyForEvaluation", &CRSData::ReadyForEvaluation);
}

void BindKriging(py::module_& module) {
  using pxrom::CKrigingData;
  py::class_<CKrigingData, pxrom::CRSData> bound(module, "CKrigingData");
  bound.def(py::init<>())
      .def_readwrite("PolynomialCoefficients", &CKrigingData::PolynomialCoefficients)
      .def_readwrite("CorrelationCoefficients", &CKrigingData::CorrelationCoefficients)
      .def_readwrite("CorrelationKernels", &CKrigingData::CorrelationKernels)
      .def_readwrite("SavePredictorError", &CKrigingData::SavePredictorError)
      .def_readwrite("NumberOfPolyCoeff", &CKrigingData::NumberOfPolyCoeff)
      .def_readwrite("Sigma2", &CKrigingData::Sigma2)
      .def_readwrite("InvC", &CKrigingData::InvC)
      .def_readwrite("InvG", &CKrigingData::InvG)
      .def_readwrite("Ft", &CKrigingData::Ft);
  DefineNumber(bound, "PolynomialType", &CKrigingData::PolynomialType);
  DefineNumber(bound, "CorrelationFunctionType", &CKrigingData::CorrelationFunctionType);
}

void BindRegression(py::module_& module) {
  using pxrom::CQRSData;
  py::class_<CQRSData, pxrom::CRSData> bound(module, "CQRSData");
  bound.def(py::init<>())
      .def_readwrite("RegTermFilterConfVal", &CQRSData::RegTermFilterConfVal)
      .def_readwrite("InputTransformValues", &CQRSData::InputTransformValues)
      .def_readwrite("InputLambdas", &CQRSData::InputLambdas)
      .def_readwrite("OutputTransformValue", &CQRSData::OutputTransformValue)
      .def_readwrite("OutputLambda", &CQRSData::OutputLambda)
      .def_readwrite("SavePredictorError", &CQRSData::SavePredictorError)
      .def_readwrite("Sigma2", &CQRSData::Sigma2)
      .def_readwrite("InvXtX", &CQRSData::InvXtX)
      .def("SetTerms", &SetTerms, py::arg("terms"));
  DefineNumber(bound, "InputTransformType", &CQRSData::InputTransformType);
  DefineNumber(bound, "OutputTransformType", &CQRSData::OutputTransformType);
}

void BindSupportVector(py::module_& module) {
  using pxrom::CSVRData;
  py::class_<CSVRData, pxrom::CRSData> bound(module, "CSVRData");
  bound.def(py::init<>())
      .def("SetEpsVal", &CSVRData::SetEpsVal)
      .def("SetNuVal", &CSVRData::SetNuVal)
      .def("SetConstVal", &CSVRData::SetConstVal)
      .def_readwrite("Alphas", &CSVRData::Alphas)
      .def_readwrite("AlphasStar", &CSVRData::AlphasStar)
      .def_readwrite("Betas", &CSVRData::Betas)
      .def_readwrite("ConstantCoefficient", &CSVRData::ConstantCoefficient)
      .def_readwrite("KernelArray", &CSVRData::KernelArray);
  DefineNumber(bound, "SVRKernType", &CSVRData::SVRKernType);
  DefineNumber(bound, "SVRLossFuncType", &CSVRData::SVRLossFuncType);
}

void BindLinearBasis(py::module_& module) {
  using pxrom::CLBFData;
  py::class_<CLBFData, pxrom::CRSData> bound(module, "CLBFData");
  bound.def(py::init<>())
      .def_readwrite("KernelValues", &CLBFData::KernelValues)
      .def_readwrite("PolynomialCoefficients", &CLBFData::PolynomialCoefficients)
      .def_readwrite("KernelCoefficients", &CLBFData::KernelCoefficients);
  DefineNumber(bound, "BasisFunctionType", &CLBFData::BasisFunctionType);
  DefineNumber(bound, "PolynomialType", &CLBFData::PolynomialType);
}

void BindConstant(py::module_& module) {
  using pxrom::CConstantData;
  py::class_<CConstantData, pxrom::CRSData>(module, "CConstantData")
      .def(py::init<>())
      .def("SetConstantValue", &CConstantData::SetConstantValue);
}

}  // namespace

void BindRecords(py::module_& module) {
  BindBase(module);
  BindKriging(module);
  BindRegression(module);
  BindSupportVector(module);
  BindLinearBasis(module);
  BindConstant(module);
}

}  // namespace pxrom_python
