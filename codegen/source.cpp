#include "codegen/source.h"

#include <cmath>
#include <limits>
#include <sstream>
#include <type_traits>

namespace pxrom_codegen {

namespace {

/// Writes structures as tables of C, and counts their bytes with pointers of four bytes.
template <class Real>
class Printer {
 public:
  using T = Runtime<Real>;
  using Place = typename T::place;

  explicit Printer(const Lowered<Real>& model) : model_(model) {}

  std::string Text() {
    for (const auto& table : model_.numbers.All()) PrintTable(TypeName(), table, sizeof(Real));
    for (const auto& table : model_.places.All()) PrintTable("place", table, sizeof(Place));
    out_ << '\n';
    PrintItems("kriging_error", model_.krigingErrors);
    PrintItems("kernel_sum", model_.kernelSums);
    PrintArrays("covariance_factor", model_.factors);
    PrintArrays("covariance_term", model_.terms);
    PrintItems("process_error", model_.processErrors);
    PrintItems("process", model_.processes);
    PrintItems("local_fit", model_.fits);
    PrintArrays("transformation", model_.transformations);
    PrintItems("regression_error", model_.regressionErrors);
    PrintItems("regression", model_.regressions);
    PrintArrays("polynomial_variable", model_.variables);
    PrintItems("polynomial", model_.polynomials);
    PrintArrays("surface", model_.surfaces);
    PrintItems("validation", model_.validations);
    PrintArrays("ensemble", model_.combinations);
    return out_.str();
  }
  std::uint64_t Bytes() const { return bytes_; }

 private:
  static const char* TypeName() { return std::is_same_v<Real, float> ? "float" : "double"; }
  bool Uses(const char* piece) const { return model_.pieces.count(piece) != 0; }

  template <class Table>
  void PrintTable(const char* type, const Table& table, std::size_t size) {
    names_[table.values.data()] = table.name;
    bytes_ += table.values.size() * size;
    out_ << "static const " << type << ' ' << table.name << '[' << table.values.size() << "] = {";
    std::size_t column = kWidth;
    for (const auto value : table.values) {
      const std::string text = TextOf(value) + ",";
      if (column + text.size() + 1 > kWidth) {
        out_ << "\n ";
        column = 1;
      }
      out_ << ' ' << text;
      column += text.size() + 1;
    }
    out_ << "\n};\n";
  }

  static std::string TextOf(Real value) { return Literal(value); }
  static std::string TextOf(Place value) { return std::to_string(value); }

  template <class Items>
  void PrintItems(const char* type, const Items& items) {
    for (const auto& item : items) {
      names_[&item.value] = "&" + item.name;
      if (!item.comment.empty()) out_ << "/* " << item.comment << " */\n";
      out_ << "static const " << type << ' ' << item.name << " = {\n";
      Describe(item.value);
      out_ << "};\n";
    }
  }
  template <class Arrays>
  void PrintArrays(const char* type, const Arrays& arrays) {
    for (const auto& array : arrays) {
      names_[array.value.data()] = array.name;
      if (!array.comment.empty()) out_ << "/* " << array.comment << " */\n";
      out_ << "static const " << type << ' ' << array.name << '[' << array.value.size()
           << "] = {\n";
      for (const auto& element : array.value) {
        out_ << "  {\n";
        Describe(element);
        out_ << "  },\n";
      }
      out_ << "};\n";
    }
  }

  void Put(const std::string& text, const char* field) {
    out_ << "  " << text << ", /* " << field << " */\n";
  }
  void Field(const char* field, int value) {
    bytes_ += 4;
    Put(std::to_string(value), field);
  }
  void Field(const char* field, Real value) {
    bytes_ += sizeof(Real);
    Put(Literal(value), field);
  }
  template <class Pointed>
  void Field(const char* field, const Pointed* pointer) {
    bytes_ += 4;
    Put(pointer == nullptr ? "0" : names_.at(pointer), field);
  }
  void Field(const char* field, const typename T::transformation& value) {
    bytes_ += 4 + 2 * sizeof(Real);
    Put("{ " + std::to_string(value.type) + ", " + Literal(value.value) + ", " +
            Literal(value.lambda) + " }",
        field);
  }
  void Enumerator(const char* field, int value, const std::map<int, std::string>& names) {
    bytes_ += 4;
    Put(names.at(value), field);
  }

  void Describe(const typename T::kriging_error& e) {
    Field("functions", e.functions);
    Field("sigma2", e.sigma2);
    Field("inv_c", e.inv_c);
    Field("lengths", e.lengths);
    Field("inv_g", e.inv_g);
    Field("ft", e.ft);
  }
  void Describe(const typename T::kernel_sum& s) {
    Enumerator("kernel", s.kernel, model_.kernelNames);
    Field("inputs", s.inputs);
    Field("centre_count", s.centre_count);
    Field("input_slopes", s.input_slopes);
    Field("input_intercepts", s.input_intercepts);
    Field("centres", s.centres);
    Field("scales", s.scales);
    Field("centre_scales", s.centre_scales);
    Field("weights", s.weights);
    Field("start", s.start);
    Field("shift", s.shift);
    Field("per_input", s.per_input);
    Field("trend_kind", s.trend_kind);
    Field("trend_count", s.trend_count);
    Field("trend", s.trend);
    Field("output_slope", s.output_slope);
    Field("output_intercept", s.output_intercept);
    if (Uses("KRIGING_ERROR")) Field("error", s.error);
  }
  void Describe(const typename T::covariance_factor& f) {
    Enumerator("function", f.function, model_.functionNames);
    Field("parameter", f.parameter);
    Field("rates", f.rates);
  }
  void Describe(const typename T::covariance_term& t) {
    Field("amplitude", t.amplitude);
    Field("first", t.first);
    Field("end", t.end);
  }
  void Describe(const typename T::process_error& e) {
    Field("functions", e.functions);
    Field("inverse_factor", e.inverse_factor);
    Field("trend_at_samples", e.trend_at_samples);
    Field("trend_inverse_factor", e.trend_inverse_factor);
    Field("includes_noise", e.includes_noise);
    Field("noise_variance", e.noise_variance);
  }
  void Describe(const typename T::process& s) {
    Field("inputs", s.inputs);
    Field("centre_count", s.centre_count);
    Field("input_slopes", s.input_slopes);
    Field("input_intercepts", s.input_intercepts);
    Field("centres", s.centres);
    Field("weights", s.weights);
    Field("term_count", s.term_count);
    Field("terms", s.terms);
    Field("factors", s.factors);
    Field("trend_kind", s.trend_kind);
    Field("basis_count", s.basis_count);
    Field("trend_count", s.trend_count);
    Field("exponents", s.exponents);
    Field("trend", s.trend);
    Field("output_slope", s.output_slope);
    Field("output_intercept", s.output_intercept);
    if (Uses("PROCESS_ERROR")) Field("error", s.error);
  }
  void Describe(const typename T::local_fit& s) {
    Field("inputs", s.inputs);
    Field("sample_count", s.sample_count);
    Field("used_count", s.used_count);
    Field("kind", s.kind);
    Field("functions", s.functions);
    Enumerator("weight", s.weight, model_.weightNames);
    Field("is_old", s.is_old);
    Field("root_of_inputs", s.root_of_inputs);
    Field("ridge", s.ridge);
    Field("samples", s.samples);
    Field("outputs", s.outputs);
  }
  void Describe(const typename T::transformation& t) {
    Field("type", t.type);
    Field("value", t.value);
    Field("lambda", t.lambda);
  }
  void Describe(const typename T::regression_error& e) {
    Field("sigma2", e.sigma2);
    Field("quantile", e.quantile);
    Field("inverse", e.inverse);
  }
  void Describe(const typename T::regression& s) {
    Field("inputs", s.inputs);
    Field("input_slopes", s.input_slopes);
    Field("input_intercepts", s.input_intercepts);
    Field("input_transformations", s.input_transformations);
    Field("term_count", s.term_count);
    Field("first", s.first);
    Field("second", s.second);
    Field("coefficients", s.coefficients);
    Field("output", s.output);
    Field("output_slope", s.output_slope);
    Field("output_intercept", s.output_intercept);
    if (Uses("REGRESSION_ERROR")) Field("error", s.error);
  }
  void Describe(const typename T::polynomial_variable& v) {
    Field("input", v.input);
    Field("forward", v.forward);
    Field("slope", v.slope);
    Field("intercept", v.intercept);
    Field("highest", v.highest);
    Field("first", v.first);
    Field("steps", v.steps);
  }
  void Describe(const typename T::polynomial& s) {
    Field("inputs", s.inputs);
    Field("input_slopes", s.input_slopes);
    Field("input_intercepts", s.input_intercepts);
    Field("variable_count", s.variable_count);
    Field("variables", s.variables);
    Field("table_size", s.table_size);
    Field("term_count", s.term_count);
    Field("coefficients", s.coefficients);
    Field("ends", s.ends);
    Field("factors", s.factors);
    if (Uses("POLYNOMIAL_GRADIENTS")) {
      Field("factor_inputs", s.factor_inputs);
      Field("longest_term", s.longest_term);
    }
    Field("output", s.output);
    Field("output_slope", s.output_slope);
    Field("output_intercept", s.output_intercept);
    if (Uses("POLYNOMIAL_ERROR")) Field("covariance", s.covariance);
  }
  void Describe(const typename T::surface& s) {
    if (Uses("CONSTANT")) Field("constant", s.constant);
    if (Uses("KERNEL_SUM")) Field("kernels", s.kernels);
    if (Uses("PROCESS")) Field("process_of", s.process_of);
    if (Uses("LOCAL_FIT")) Field("fit", s.fit);
    if (Uses("REGRESSION")) Field("terms", s.terms);
    if (Uses("POLYNOMIAL")) Field("products", s.products);
    Field("without_error", s.without_error);
  }
  void Describe(const typename T::validation& v) {
    Field("folds", v.folds);
    Field("fold_counts", v.fold_counts);
    Field("row_count", v.row_count);
    Field("rows", v.rows);
    Field("leaving_one_out", v.leaving_one_out);
    Field("sort_threshold", v.sort_threshold);
    Field("distance_scale", v.distance_scale);
  }
  void Describe(const typename T::ensemble& e) {
    Field("inputs", e.inputs);
    Field("input_slopes", e.input_slopes);
    Field("input_intercepts", e.input_intercepts);
    Field("surface_count", e.surface_count);
    Field("surfaces", e.surfaces);
    Field("weights", e.weights);
    Field("output_slope", e.output_slope);
    Field("output_intercept", e.output_intercept);
    if (Uses("CROSS_VALIDATION")) Field("folds", e.folds);
  }

  static constexpr std::size_t kWidth = 98;

  const Lowered<Real>& model_;
  std::ostringstream out_;
  std::map<const void*, std::string> names_;
  std::uint64_t bytes_ = 0;
};

/// Replaces $NAME, $UPPER and $REAL.
std::string Filled(const std::string& text, const Interface& interface, bool isFloat) {
  std::string out;
  for (std::size_t at = 0; at < text.size(); ++at) {
    if (text.compare(at, 5, "$NAME") == 0) {
      out += interface.name;
      at += 4;
    } else if (text.compare(at, 6, "$UPPER") == 0) {
      out += interface.upper;
      at += 5;
    } else if (text.compare(at, 5, "$REAL") == 0) {
      out += isFloat ? "float" : "double";
      at += 4;
    } else {
      out += text[at];
    }
  }
  return out;
}

/// A table of numbers for the interface.
template <class Real>
std::string Row(const std::string& declaration, const std::vector<double>& values) {
  std::string text = declaration + " = {";
  std::size_t column = 100;
  for (const double value : values) {
    const std::string number = Literal(static_cast<Real>(value)) + ",";
    if (column + number.size() > 96) {
      text += "\n ";
      column = 1;
    }
    text += " " + number;
    column += number.size() + 1;
  }
  return text + "\n};\n";
}

std::string IntRow(const std::string& declaration, const std::vector<int>& values) {
  std::string text = declaration + " = {";
  std::size_t column = 100;
  for (const int value : values) {
    const std::string number = std::to_string(value) + ",";
    if (column + number.size() > 96) {
      text += "\n ";
      column = 1;
    }
    text += " " + number;
    column += number.size() + 1;
  }
  return text + "\n};\n";
}

/// The largest number of the type that is not above `value`.
template <class Real>
double RoundedDown(double value) {
  const Real rounded = static_cast<Real>(value);
  if (static_cast<double>(rounded) <= value) return static_cast<double>(rounded);
  return static_cast<double>(std::nextafter(rounded, -std::numeric_limits<Real>::infinity()));
}

template <class Element>
void Append(std::vector<Element>& all, const std::vector<Element>& some) {
  all.insert(all.end(), some.begin(), some.end());
}

std::string DiscreteParameter(const Interface& interface) {
  return interface.TakesDiscrete() ? "const int *discrete, " : "";
}

const char* const kFind = R"C(static const ensemble *find_outputs(const int *discrete) {
  for (int c = 0; c < COMBINATIONS; ++c) {
    int fits = 1;
    for (int i = 0; i < $UPPER_DISCRETE_COUNT; ++i) {
      if (discrete[i] != combination_keys[c * $UPPER_DISCRETE_COUNT + i]) fits = 0;
    }
    if (fits) return combinations[c];
  }
  return 0;
}

)C";

const char* const kEvaluate = R"C($REAL *values, int *statuses) {
  $REAL work[WORK];
  int result = 0;
$FIND  for (int o = 0; o < $UPPER_OUTPUT_COUNT; ++o) {
    const int status = ensemble_value(&outputs[o], inputs, work, &values[o]);
    if (status != 0) values[o] = ($REAL)NAN;
    if (statuses != 0) statuses[o] = status;
    if (status != 0) result = status;
  }
  return result;
}

)C";

const char* const kEvaluateErrors = R"C($REAL *values, $REAL *errors,
    int *statuses) {
  $REAL work[WORK];
  int result = 0;
$FIND  for (int o = 0; o < $UPPER_OUTPUT_COUNT; ++o) {
    const int status = ensemble_error(&outputs[o], inputs, work, &values[o], &errors[o]);
    if (status == 1) values[o] = ($REAL)NAN;
    if (status != 0) errors[o] = ($REAL)NAN;
    if (statuses != 0) statuses[o] = status;
    if (status != 0 && result != 1) result = status;
  }
  return result;
}

)C";

const char* const kEvaluateGradients = R"C($REAL *gradients, int *statuses) {
  $REAL work[WORK];
  int result = 0;
$FIND  for (int o = 0; o < $UPPER_OUTPUT_COUNT; ++o) {
    $REAL *const gradient = gradients + o * $UPPER_INPUT_COUNT;
    const int status = ensemble_gradient(&outputs[o], inputs, work, gradient);
    for (int i = 0; status != 0 && i < $UPPER_INPUT_COUNT; ++i) gradient[i] = ($REAL)NAN;
    if (statuses != 0) statuses[o] = status;
    if (status != 0) result = status;
  }
  return result;
}

)C";

const char* const kInside = R"C(int $NAME_inside(const $REAL *inputs) {
  for (int i = 0; i < $UPPER_INPUT_COUNT; ++i) {
    if (!(lowest_samples[i] <= inputs[i] && inputs[i] <= highest_samples[i])) return 0;
  }
  return 1;
}

)C";

const char* const kCompare =
    R"C(/* Counts the results that differ from the stored ones by more than the tolerance, relative to the
 * largest stored one, and results where the stored one is missing or the other way round. */
static int count_differences(int rows, int columns, const $REAL *stored, const $REAL *results,
                             $REAL *largest) {
  int count = 0;
  for (int c = 0; c < columns; ++c) {
    $REAL scale = 0;
    for (int r = 0; r < rows; ++r) {
      const $REAL magnitude = $FABS(stored[r * columns + c]);
      if (magnitude > scale) scale = magnitude;
    }
    for (int r = 0; r < rows; ++r) {
      const $REAL want = stored[r * columns + c];
      const $REAL got = results[r * columns + c];
      $REAL difference;
      if (want == got || (want != want && got != got)) continue;
      difference = scale > 0 ? $FABS(got - want) / scale : $FABS(got);
      if (!(difference <= $UPPER_SELF_TEST_TOLERANCE)) ++count;
      if (!(difference <= *largest)) *largest = difference;
    }
  }
  return count;
}

)C";

std::string FindText(const Interface& interface) {
  return interface.TakesDiscrete() ? "  const ensemble *const outputs = find_outputs(discrete);\n"
                                     "  if (outputs == 0) return 1;\n"
                                   : "  const ensemble *const outputs = combinations[0];\n";
}

std::string WithFind(std::string text, const Interface& interface) {
  const std::size_t at = text.find("$FIND");
  return text.replace(at, 5, FindText(interface));
}

/// The function of the self-test, with its points and answers.
template <class Real>
std::string SelfTest(const Interface& interface, std::uint64_t& bytes) {
  const bool isFloat = std::is_same_v<Real, float>;
  std::vector<int> keys;
  std::vector<double> points;
  std::vector<double> values;
  std::vector<double> errors;
  std::vector<double> gradients;
  for (const TestPoint& test : interface.tests) {
    if (interface.TakesDiscrete()) Append(keys, interface.keys[test.combination]);
    Append(points, test.inputs);
    Append(values, test.values);
    Append(errors, test.errors);
    Append(gradients, test.gradients);
  }
  const std::string real = isFloat ? "float" : "double";
  const std::string rows = std::to_string(interface.tests.size());
  const auto sizeOf = [](std::size_t count) { return std::to_string(count); };
  std::ostringstream out;
  bytes += 4 * keys.size() +
           sizeof(Real) * (points.size() + values.size() + (interface.errors ? errors.size() : 0) +
                           (interface.gradients ? gradients.size() : 0));
  if (interface.TakesDiscrete()) {
    out << IntRow("static const int test_discrete[" + sizeOf(keys.size()) + "]", keys);
  }
  const auto table = [&](const std::string& what, const std::vector<double>& numbers) {
    out << Row<Real>("static const " + real + " test_" + what + "[" + sizeOf(numbers.size()) + "]",
                     numbers);
  };
  table("inputs", points);
  table("values", values);
  if (interface.errors) table("errors", errors);
  if (interface.gradients) table("gradients", gradients);
  std::string compare = kCompare;
  for (std::size_t at; (at = compare.find("$FABS")) != std::string::npos;) {
    compare.replace(at, 5, isFloat ? "fabsf" : "fabs");
  }
  out << '\n' << Filled(compare, interface, isFloat);
  const std::string discrete =
      interface.TakesDiscrete() ? "test_discrete + t * $UPPER_DISCRETE_COUNT, " : "";
  std::string text =
      "int $NAME_self_test($REAL *largest) {\n"
      "  enum { TESTS = " +
      rows + " };\n";
  text += "  $REAL most = 0;\n  int count = 0;\n";
  const std::string inputs = "test_inputs + t * $UPPER_INPUT_COUNT";
  const auto step = [&](const std::string& what, const std::string& columns,
                        const std::string& function, const std::string& extra) {
    text += "  for (int t = 0; t < TESTS; ++t) {\n    $NAME_" + function + "(" + discrete + inputs +
            ", " + extra + "results + t * " + columns + ", 0);\n  }\n" +
            "  count += count_differences(TESTS, " + columns + ", test_" + what +
            ", results, &most);\n";
  };
  const std::string columns = "$UPPER_OUTPUT_COUNT";
  const std::string most =
      interface.gradients ? "$UPPER_OUTPUT_COUNT * $UPPER_INPUT_COUNT" : "$UPPER_OUTPUT_COUNT";
  text += "  $REAL results[TESTS * " + most + "];\n";
  if (interface.errors) text += "  $REAL values[$UPPER_OUTPUT_COUNT];\n";
  step("values", columns, "evaluate", "");
  if (interface.errors) step("errors", columns, "evaluate_with_errors", "values, ");
  if (interface.gradients) {
    step("gradients", "$UPPER_OUTPUT_COUNT * $UPPER_INPUT_COUNT", "evaluate_gradients", "");
  }
  text += "  if (largest != 0) *largest = most;\n  return count;\n}\n";
  out << Filled(text, interface, isFloat);
  return out.str();
}

/// The lines of code, without comments.
std::size_t CountLines(const std::string& text) {
  std::size_t lines = 0;
  bool isComment = false;
  std::istringstream in(text);
  for (std::string line; std::getline(in, line);) {
    const std::size_t first = line.find_first_not_of(' ');
    if (first == std::string::npos) continue;
    if (line.compare(first, 2, "/*") == 0) isComment = true;
    if (!isComment) ++lines;
    if (line.find("*/") != std::string::npos) isComment = false;
  }
  return lines;
}

}  // namespace

void AddNeededPieces(Pieces& pieces) {
  const auto has = [&](std::initializer_list<const char*> any) {
    return std::any_of(any.begin(), any.end(),
                       [&](const char* piece) { return pieces.count(piece) != 0; });
  };
  const auto add = [&](const char* piece, bool isNeeded) {
    if (isNeeded) pieces.insert(piece);
  };
  const bool gradients = has({"GRADIENTS"});
  add("SCALE", true);
  // Kernels, by the shape of their formula.
  add("SUM_KERNELS", has({"KERNEL_EXPONENTIAL", "KERNEL_GAUSSIAN", "KERNEL_MATERN52"}));
  add("PRODUCTS_OF_Z", has({"KERNEL_SPHERICAL", "KERNEL_CUBIC", "KERNEL_SPLINE", "KERNEL_PARABOLIC",
                            "KERNEL_BESSEL_J0", "KERNEL_SINC"}));
  add("PRODUCT_KERNELS", has({"PRODUCTS_OF_Z", "KERNEL_LINEAR", "KERNEL_MULTIQUADRIC"}));
  add("DOT_KERNELS", has({"KERNEL_DOT_LINEAR", "KERNEL_DOT_QUADRATIC", "KERNEL_DOT_SIGMOID"}));
  add("WIDTHS", has({"KERNEL_RADIAL_GAUSSIAN", "KERNEL_RADIAL_COMPACT", "KERNEL_RADIAL_CUBIC",
                     "KERNEL_RADIAL_SINC", "KERNEL_RADIAL_RATIONAL", "KERNEL_RADIAL_TANH"}));
  add("RADIAL_KERNELS", has({"WIDTHS", "KERNEL_EPANECHNIKOV"}));
  add("ANY_SINC", has({"KERNEL_SINC", "KERNEL_RADIAL_SINC"}));
  add("SQUARED_DISTANCES", has({"RADIAL_KERNELS", "LOCAL_FIT", "CROSS_VALIDATION"}));
  // Covariance functions.
  add("COVARIANCE_PARAMETERS",
      has({"COVARIANCE_RATIONAL_QUADRATIC", "COVARIANCE_POWER_EXPONENTIAL"}));
  add("COVARIANCE_MATERN", has({"COVARIANCE_MATERN32", "COVARIANCE_MATERN52"}));
  add("COVARIANCE_ROOTS", has({"COVARIANCE_MATERN", "COVARIANCE_EXPONENTIAL", "COVARIANCE_LINEAR",
                               "COVARIANCE_CUBIC", "COVARIANCE_QUINTIC"}));
  add("COVARIANCE_SLOPE_ROOTS", has({"COVARIANCE_ROOTS"}));
  add("COVARIANCE_SLOPE_TERMS",
      has({"COVARIANCE_MATERN52", "COVARIANCE_POWER_EXPONENTIAL", "COVARIANCE_INVERSE_MULTIQUADRIC",
           "COVARIANCE_INVERSE_QUADRATIC"}));
  add("WEIGHTS_OF_Z", has({"WEIGHT_GAUSSIAN", "WEIGHT_COMPACT", "WEIGHT_RATIONAL"}));
  add("WEIGHT_SLOPES_OF_Z", has({"WEIGHTS_OF_Z", "WEIGHT_INVERSE"}));
  // Transformations.
  add("TRANSFORMATIONS", has({"REGRESSION", "POLYNOMIAL"}));
  add("FORWARD", has({"REGRESSION_FORWARD", "POLYNOMIAL_FORWARD"}));
  add("EXP_BOX_COX", has({"FORWARD_EXP_BOX_COX", "BACK_EXP_BOX_COX"}));
  add("INVERSE_BOX_COX", has({"EXP_BOX_COX", "BACK_BOX_COX", "BACK_YEO_JOHNSON"}));
  add("COUNTS_AS_ZERO", has({"INVERSE_BOX_COX", "FORWARD_BOX_COX", "FORWARD_YEO_JOHNSON"}));
  add("POWER", has({"INVERSE_BOX_COX", "FORWARD_BOX_COX", "FORWARD_YEO_JOHNSON", "FORWARD_POWER",
                    "BACK_POWER", "COVARIANCE_POWER_EXPONENTIAL"}));
  add("FORWARD_SLOPES", gradients && has({"FORWARD"}));
  add("BACK_SLOPES", (gradients && has({"TRANSFORMATIONS"})) || has({"POLYNOMIAL_ERROR"}));
  add("EXP_BOX_COX_SLOPE", (has({"FORWARD_SLOPES"}) && has({"FORWARD_EXP_BOX_COX"})) ||
                               (has({"BACK_SLOPES"}) && has({"BACK_EXP_BOX_COX"})));
  add("INVERSE_BOX_COX_SLOPE",
      has({"EXP_BOX_COX_SLOPE"}) ||
          (has({"BACK_SLOPES"}) && has({"BACK_BOX_COX", "BACK_YEO_JOHNSON"})));
  add("QUADRATIC_FORM", has({"REGRESSION_ERROR", "POLYNOMIAL_ERROR"}));
  // Gradients of the families.
  add("KERNEL_GRADIENTS", gradients && has({"KERNEL_SUM"}));
  add("PROCESS_GRADIENTS", gradients && has({"PROCESS"}));
  add("LOCAL_FIT_GRADIENTS", gradients && has({"LOCAL_FIT"}));
  add("REGRESSION_GRADIENTS", gradients && has({"REGRESSION"}));
  add("POLYNOMIAL_GRADIENTS", gradients && has({"POLYNOMIAL"}));
  add("SIGNS", has({"KERNEL_GRADIENTS"}) &&
                   has({"PRODUCT_KERNELS", "KERNEL_EXPONENTIAL", "KERNEL_MATERN52"}));
  add("SINC_SLOPES", has({"KERNEL_GRADIENTS"}) && has({"ANY_SINC"}));
  add("BASIS", has({"KERNEL_SUM", "PROCESS", "LOCAL_FIT"}));
  add("TREND_GRADIENT", gradients && has({"BASIS"}));
  add("PRODUCT", has({"PROCESS", "LOCAL_FIT_GRADIENTS"}));
}

template <class Real>
std::string SourceText(const Lowered<Real>& model, Interface& interface) {
  const bool isFloat = std::is_same_v<Real, float>;
  using T = Runtime<Real>;
  std::ostringstream out;
  out << "#include \"" << interface.name << ".h\"\n\n#include <math.h>\n\n"
      << "/* Compilers that know the pragma fuse no multiplication with an addition. For the "
         "others\n"
         " * see the header. */\n"
         "#if defined(__clang__) || !defined(__GNUC__)\n"
         "#pragma STDC FP_CONTRACT OFF\n#endif\n\n";
  if (model.pieces.count("KERNEL_BESSEL_J0") != 0) {
    const std::string suffix = isFloat ? "f" : "";
    const std::string type = isFloat ? "float" : "double";
    out << "/* Bessel functions are in POSIX and most libraries, though not in C99. */\n"
           "#if defined(_WIN32)\n#define j0"
        << suffix << " _j0\n#define j1" << suffix << " _j1\n#elif !defined(__cplusplus)\n"
        << type << " j0" << suffix << '(' << type << ");\n"
        << type << " j1" << suffix << '(' << type << ");\n#endif\n\n";
  }
  out << "/* An index or a small count in a table. */\ntypedef unsigned short place;\n\n";

  std::string code;
  for (const std::string& text : RuntimeTexts()) {
    const std::string selected = SelectPieces(text, model.pieces, isFloat);
    if (!selected.empty()) code += selected + "\n";
  }
  const auto constant = [&](const char* word, Real value) {
    for (std::size_t at = 0; (at = code.find(word, at)) != std::string::npos;) {
      code.replace(at, std::string(word).size(), Literal(value));
    }
  };
  constant("LIMIT_OF_TRANSFORMATION", T::LIMIT_OF_TRANSFORMATION);
  constant("LEAST_OF_LOG", T::LEAST_OF_LOG);
  constant("LOG_LOG_OF_LIMIT", T::LOG_LOG_OF_LIMIT);
  constant("LOG_OF_LIMIT", T::LOG_OF_LIMIT);
  out << code << "/* ---- The model " << std::string(82, '-') << " */\n\n";

  Printer<Real> printer(model);
  out << printer.Text() << '\n';
  interface.tableBytes = printer.Bytes();

  std::ostringstream own;
  own << "enum { WORK = " << std::max<std::size_t>(model.work, 1)
      << ", COMBINATIONS = " << model.combinations.size()
      << " };\n\nstatic const ensemble *const combinations[COMBINATIONS] = {\n";
  for (const auto& combination : model.combinations) own << "  " << combination.name << ",\n";
  own << "};\n\n";
  interface.tableBytes += 4 * model.combinations.size();
  if (interface.TakesDiscrete()) {
    std::vector<int> keys;
    for (const auto& key : interface.keys) Append(keys, key);
    interface.tableBytes += 4 * keys.size();
    own << "/* The discrete values of each combination */\n"
        << IntRow("static const int combination_keys[COMBINATIONS * " + interface.upper +
                      "_DISCRETE_COUNT]",
                  keys)
        << '\n'
        << Filled(kFind, interface, isFloat);
  }
  std::vector<double> lowest;
  std::vector<double> highest;
  for (const InputWords& input : interface.inputs) {
    lowest.push_back(RoundedDown<Real>(input.lowest));
    highest.push_back(-RoundedDown<Real>(-input.highest));
  }
  interface.tableBytes += 2 * sizeof(Real) * lowest.size();
  const std::string real = isFloat ? "float" : "double";
  own << Row<Real>("static const " + real + " lowest_samples[" + interface.upper + "_INPUT_COUNT]",
                   lowest)
      << Row<Real>("static const " + real + " highest_samples[" + interface.upper + "_INPUT_COUNT]",
                   highest)
      << '\n';
  const auto function = [&](const char* name, const char* body) {
    const std::string head = std::string("int $NAME_") + name + "(" + DiscreteParameter(interface) +
                             "const $REAL *inputs, ";
    own << Filled(head + WithFind(body, interface), interface, isFloat);
  };
  function("evaluate", kEvaluate);
  if (interface.errors) function("evaluate_with_errors", kEvaluateErrors);
  if (interface.gradients) function("evaluate_gradients", kEvaluateGradients);
  own << Filled(kInside, interface, isFloat);
  const std::string api = own.str();
  own << "/* The answers of the library, for " << interface.name << "_self_test */\n"
      << SelfTest<Real>(interface, interface.tableBytes);

  // Bytes of code per line, for optimisation by size.
  constexpr std::uint64_t kBytesPerLine = 12;
  interface.codeBytes = kBytesPerLine * (CountLines(code) + CountLines(api));
  out << own.str();
  return out.str();
}

template std::string SourceText<double>(const Lowered<double>&, Interface&);
template std::string SourceText<float>(const Lowered<float>&, Interface&);

}  // namespace pxrom_codegen
