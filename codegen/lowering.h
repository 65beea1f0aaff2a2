#pragma once

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstring>
#include <deque>
#include <map>
#include <string>
#include <vector>

#include "codegen/runtime.h"
#include "codegen/text.h"
#include "pxrom/discrete_combinations.h"
#include "pxrom/gaussian_process.h"
#include "pxrom/kriging.h"
#include "pxrom/linear_basis.h"
#include "pxrom/moving_least_squares.h"
#include "pxrom/polynomial.h"
#include "pxrom/regression.h"
#include "pxrom/support_vector.h"

namespace pxrom_codegen {

namespace pxrom = Tarvane::Plexura::PXROM;

/// The constant tables of the code. Equal tables are kept once, under the name of the first.
template <class Element>
class Tables {
 public:
  struct Table {
    std::string name;
    std::vector<Element> values;
  };

  /// Null for an empty table.
  const Element* Add(const std::string& name, std::vector<Element> values) {
    if (values.empty()) return nullptr;
    std::string bytes(values.size() * sizeof(Element), '\0');
    std::memcpy(&bytes[0], values.data(), bytes.size());
    const auto found = known_.find(bytes);
    if (found != known_.end()) return tables_[found->second].values.data();
    known_.emplace(std::move(bytes), tables_.size());
    tables_.push_back({name, std::move(values)});
    return tables_.back().values.data();
  }
  const std::deque<Table>& All() const { return tables_; }

 private:
  std::deque<Table> tables_;
  std::map<std::string, std::size_t> known_;
};

/// A structure of the code, or an array of them, with its name.
template <class Value>
struct Named {
  std::string name;
  std::string comment;
  Value value;
};

/// A model as the structures of the generated code: what is written, and evaluated to check it.
template <class Real>
struct Lowered {
  using T = Runtime<Real>;
  using Place = typename T::place;
  template <class Value>
  using Arrays = std::deque<Named<std::vector<Value>>>;
  template <class Value>
  using Items = std::deque<Named<Value>>;

  Tables<Real> numbers;
  Tables<Place> places;
  Items<typename T::kriging_error> krigingErrors;
  Items<typename T::kernel_sum> kernelSums;
  Arrays<typename T::covariance_factor> factors;
  Arrays<typename T::covariance_term> terms;
  Items<typename T::process_error> processErrors;
  Items<typename T::process> processes;
  Items<typename T::local_fit> fits;
  Arrays<typename T::transformation> transformations;
  Items<typename T::regression_error> regressionErrors;
  Items<typename T::regression> regressions;
  Arrays<typename T::polynomial_variable> variables;
  Items<typename T::polynomial> polynomials;
  Arrays<typename T::surface> surfaces;
  Items<typename T::validation> validations;
  /// Per combination one ensemble per output.
  Arrays<typename T::ensemble> combinations;

  /// What the code consists of.
  Pieces pieces;
  /// The enumerators of kernels, functions and weights, by their values.
  std::map<int, std::string> kernelNames;
  std::map<int, std::string> functionNames;
  std::map<int, std::string> weightNames;
  /// The numbers that the evaluation of any output works on.
  std::size_t work = 0;
};

/// Fills a Lowered from records. Throws Refused.
template <class Real>
class Lowering {
 public:
  using T = Runtime<Real>;
  using Place = typename T::place;
  using Vector = std::vector<double>;
  using Matrix = std::vector<std::vector<double>>;

  Lowering(std::size_t inputs, bool errors, bool gradients, Lowered<Real>& out)
      : inputs_(inputs), errors_(errors), gradients_(gradients), out_(out) {
    if (errors) out_.pieces.insert("ERRORS");
    if (gradients) out_.pieces.insert("GRADIENTS");
  }

  typename T::ensemble Ensemble(const pxrom::CFittingCandidates& candidates,
                                const std::string& name, const std::string& words);

 private:
  /// The largest work of a surface without and with its error, and of its gradient.
  struct Work {
    std::size_t value = 0;
    std::size_t error = 0;
    std::size_t gradient = 0;
  };

  typename T::surface Surface(const pxrom::CRSData& record, bool withError);
  const typename T::kernel_sum* Kriging(const pxrom::CKrigingData& record, bool withError);
  const typename T::kernel_sum* SupportVector(const pxrom::CSVRData& record);
  const typename T::kernel_sum* LinearBasis(const pxrom::CLBFData& record);
  const typename T::process* Process(const pxrom::CGaussianProcessData& record, bool withError);
  const typename T::local_fit* LocalFit(const pxrom::CMLSData& record);
  const typename T::regression* Regression(const pxrom::CQRSData& record, bool withError);
  const typename T::polynomial* Polynomial(const pxrom::CPolynomialData& record, bool withError);

  typename T::kernel_sum StartKernels(const pxrom::CRSData& record);
  const typename T::kernel_sum* KeepKernels(const typename T::kernel_sum& sum,
                                            const std::string& family);
  const typename T::kriging_error* KrigingError(const pxrom::CKrigingData& record,
                                                std::size_t functions);
  void Scaling(const pxrom::CRSData& record, const Real*& slopes, const Real*& intercepts);
  typename T::transformation Transformation(int type, double value, double lambda,
                                            const std::string& direction);
  const typename T::validation* Validation(const pxrom::CFittingCandidate& candidate,
                                           const std::string& words);

  [[noreturn]] void Refuse(const std::string& why) const {
    throw Refused("Surface " + words_ + " " + why + ".");
  }
  /// A record that its evaluator refuses at any point.
  template <class Evaluator>
  void RequireServed(const pxrom::CRSData& record) const {
    double y = 0.0;
    if (Evaluator().EvaluateResponseSurface(&record, Vector(inputs_, 0.0), y) == 1) {
      Refuse("cannot be evaluated; pxrom check says why");
    }
  }
  /// Whether its evaluator gives an error. It may write its record, so it gets a copy.
  template <class Evaluator, class Record>
  bool HasError(const Record& record) const {
    double y = 0.0;
    double error = 0.0;
    Record copy(record);
    return Evaluator().EvaluateResponseSurface(&copy, Vector(inputs_, 0.0), y, error) == 0;
  }

  Real Number(double value) const {
    const auto number = static_cast<Real>(value);
    if (std::isfinite(value) && !std::isfinite(number)) {
      Refuse("has the number " + Literal(value) + ", which is too large for float");
    }
    return number;
  }
  const Real* Numbers(const std::string& what, const Vector& values) {
    std::vector<Real> numbers;
    numbers.reserve(values.size());
    for (const double value : values) numbers.push_back(Number(value));
    return out_.numbers.Add(name_ + "_" + what, std::move(numbers));
  }
  template <class Integer>
  const Place* Places(const std::string& what, const std::vector<Integer>& values) {
    std::vector<Place> places;
    places.reserve(values.size());
    for (const Integer value : values) {
      if (value < 0 || value > 65535) Refuse("has more than 65535 " + what);
      places.push_back(static_cast<Place>(value));
    }
    return out_.places.Add(name_ + "_" + what, std::move(places));
  }
  int Count(std::size_t count) const {
    if (count > 100'000'000) Refuse("has too many numbers");
    return static_cast<int>(count);
  }
  template <class Items, class Value>
  const Value* Keep(Items& items, const std::string& suffix, Value value,
                    const std::string& comment = "") {
    items.push_back({name_ + suffix, comment, std::move(value)});
    return &items.back().value;
  }
  template <class Arrays, class Value>
  const Value* KeepArray(Arrays& arrays, const std::string& suffix, std::vector<Value> values,
                         const std::string& comment = "") {
    if (values.empty()) return nullptr;
    arrays.push_back({name_ + suffix, comment, std::move(values)});
    return arrays.back().value.data();
  }
  /// The rows one after the other: the first `columns` values of the first `rows` rows.
  static Vector Flat(const Matrix& matrix, std::size_t rows, std::size_t columns) {
    Vector flat;
    for (std::size_t r = 0; r < rows; ++r) {
      flat.insert(flat.end(), matrix[r].begin(),
                  matrix[r].begin() + static_cast<std::ptrdiff_t>(columns));
    }
    return flat;
  }
  bool IsEvaluable(const pxrom::CRSData& record) const {
    return record.ReadyForEvaluation && !record.Stopped && record.NumberOfInputVariables >= 0 &&
           static_cast<std::size_t>(record.NumberOfInputVariables) == inputs_;
  }
  void NeedWork(std::size_t value, std::size_t error, std::size_t gradient) {
    work_.value = std::max(work_.value, value);
    work_.error = std::max({work_.error, value, error});
    work_.gradient = std::max(work_.gradient, gradient);
  }

  std::size_t inputs_;
  bool errors_;
  bool gradients_;
  Lowered<Real>& out_;
  Work work_;
  /// Of the current surface: the start of its names, and what messages call it.
  std::string name_;
  std::string words_;
};

/// The polynomial basis of a trend: the number of its functions in `inputs` inputs, or -1 for an
/// unknown type.
inline double BasisCount(int type, std::size_t inputs) {
  const auto d = static_cast<double>(inputs);
  switch (type) {
    case pxrom::PolyNone:
      return 0.0;
    case pxrom::PolyConstant:
      return 1.0;
    case pxrom::PolyLinear:
      return 1.0 + d;
    case pxrom::PolyPureQuadratic:
      return 1.0 + 2.0 * d;
    case pxrom::PolyFullQuadratic:
      return 1.0 + d + d * (d + 1.0) / 2.0;
    default:
      return -1.0;
  }
}

}  // namespace pxrom_codegen
