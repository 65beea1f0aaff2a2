// The record of each family, with the library's own names for its fields: attributes are made from
// the description that reader and writer go by.

#include <pybind11/numpy.h>
#include <pybind11/pybind11.h>
#include <pybind11/stl.h>

#include <memory>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "bindings.h"
#include "families/families.h"
#include "pxrom/regression_terms.h"
#include "records/rs_fields.h"

namespace py = pybind11;
namespace pxrom = Tarvane::Plexura::PXROM;

namespace pxrom_python {
namespace {

/// A visitor of fields (text/fields.h) that shows each to `Visit` with its name. Every record has
/// every field here, whatever its version and flags.
template <class Visit>
class FieldVisitor {
 public:
  static constexpr bool kReads = false;
  static constexpr bool kWrites = false;

  explicit FieldVisitor(Visit visit) : visit_(std::move(visit)) {}

  template <class Version>
  bool HasSince(Version, Version) const {
    return true;
  }
  bool HasPart(bool) const { return true; }
  template <class Field>
  void operator()(const pxrom::fields::Key&, const char* name, Field& field) {
    visit_(name, field, [&field](Field value) { field = std::move(value); });
  }
  template <class Field>
  void Kept(const pxrom::fields::Key& key, const char* name, Field& field) {
    (*this)(key, name, field);
  }
  template <class Field, class Shared>
  void Repeated(const pxrom::fields::Key& key, const char* name, Field& field, const Shared&) {
    (*this)(key, name, field);
  }
  template <class Record, class Value, class Set>
  void Property(const pxrom::fields::Key&, const char* name, Record& record, const Value& value,
                const Set& set, const char* = nullptr) {
    visit_(name, value, [&](const Value& given) {
      if (set(record, given) != 0) throw py::value_error(std::string(name) + " can't be that");
    });
  }
  int Matrix(const pxrom::fields::Key& key, const char* name, pxrom::fields::MatrixField& field,
             int, int) {
    (*this)(key, name, field);
    return 0;
  }
  void Unread(const pxrom::fields::Key&) {}

 private:
  Visit visit_;
};

template <class Record, class Visit>
void VisitBase(Record& record, Visit visit) {
  FieldVisitor<Visit> visitor(std::move(visit));
  static_cast<void>(pxrom::BaseFields(visitor, record));
}

template <class Record, class Visit>
void VisitFields(Record& record, Visit visit) {
  FieldVisitor<Visit> visitor(std::move(visit));
  static_cast<void>(pxrom::FamilyOf<Record>::Fields(visitor, record));
}

/// An enumeration is its number, as in a database.
template <class Field>
using Shown = std::conditional_t<std::is_enum_v<Field>, int, Field>;

template <class Field>
Field FromPython(const py::object& value) {
  return value.cast<Field>();
}

using Array = py::array_t<double, py::array::c_style | py::array::forcecast>;

/// The numbers of an array, without an object for each; a null array for anything else.
Array AsArray(const py::object& value, py::ssize_t dimensions) {
  if (!py::isinstance<py::array>(value)) return py::reinterpret_steal<Array>(nullptr);
  Array array = Array::ensure(value);
  if (!array || array.ndim() != dimensions) throw py::cast_error();
  return array;
}

template <>
std::vector<double> FromPython(const py::object& value) {
  const Array array = AsArray(value, 1);
  if (!array) return value.cast<std::vector<double>>();
  return {array.data(), array.data() + array.size()};
}

template <>
pxrom::fields::MatrixField FromPython(const py::object& value) {
  const Array array = AsArray(value, 2);
  if (!array) return value.cast<pxrom::fields::MatrixField>();
  pxrom::fields::MatrixField rows(static_cast<std::size_t>(array.shape(0)));
  const double* row = array.data();
  for (std::vector<double>& each : rows) {
    each.assign(row, row + array.shape(1));
    row += array.shape(1);
  }
  return rows;
}

/// An attribute for each field that `visitFields` shows of a record.
template <class Record, class Class, class VisitAll>
void DefineAttributes(Class& bound, VisitAll visitAll) {
  std::vector<std::string> names;
  Record sample;
  visitAll(sample, [&](const char* name, const auto&, const auto&) { names.emplace_back(name); });
  for (const std::string& name : names) {
    if (name.empty()) continue;
    const auto get = [name, visitAll](Record& record) {
      py::object result;
      visitAll(record, [&](const char* other, const auto& field, const auto&) {
        using Field = std::decay_t<decltype(field)>;
        if (name == other) result = py::cast(static_cast<Shown<Field>>(field));
      });
      return result;
    };
    const auto set = [name, visitAll](Record& record, const py::object& value) {
      visitAll(record, [&](const char* other, const auto& field, const auto& store) {
        using Field = std::decay_t<decltype(field)>;
        if (name != other) return;
        try {
          store(static_cast<Field>(FromPython<Shown<Field>>(value)));
        } catch (const py::cast_error&) {
          throw py::type_error("a value of this type can't be stored in " + name);
        }
      });
    };
    bound.def_property(name.c_str(), get, set);
  }
}

/// Terms by their lists of inputs: none, one, or two. Refuses an input that doesn't exist.
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

/// What a record offers besides its fields. Most have nothing.
template <class Class>
void DefineOperations(Class&) {}
void DefineOperations(py::class_<pxrom::CQRSData, pxrom::CRSData>& bound) {
  bound.def("SetTerms", &SetTerms, py::arg("terms"));
}

void DefineOperations(py::class_<pxrom::CSVRData, pxrom::CRSData>& bound) {
  bound.def("SetEpsVal", &pxrom::CSVRData::SetEpsVal)
      .def("SetNuVal", &pxrom::CSVRData::SetNuVal)
      .def("SetConstVal", &pxrom::CSVRData::SetConstVal);
}
void DefineOperations(py::class_<pxrom::CConstantData, pxrom::CRSData>& bound) {
  bound.def("SetConstantValue", &pxrom::CConstantData::SetConstantValue);
}

template <class Record>
void BindRecord(py::module_& module) {
  if constexpr (std::is_same_v<Record, pxrom::CRSData>) {
    py::class_<Record> bound(module, pxrom::FamilyOf<Record>::kRecordName);
    DefineAttributes<Record>(
        bound, [](Record& record, auto visit) { VisitBase(record, std::move(visit)); });
  } else {
    py::class_<Record, pxrom::CRSData> bound(module, pxrom::FamilyOf<Record>::kRecordName);
    bound.def(py::init<>());
    DefineAttributes<Record>(
        bound, [](Record& record, auto visit) { VisitFields(record, std::move(visit)); });
    DefineOperations(bound);
  }
}

/// The base is first in the list, as the classes derived from it need.
template <class... Records>
void BindAll(py::module_& module, pxrom::RecordList<Records...>) {
  (BindRecord<Records>(module), ...);
}

}  // namespace

void BindRecords(py::module_& module) { BindAll(module, pxrom::AllRecords()); }

}  // namespace pxrom_python
