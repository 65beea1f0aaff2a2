// The C interface gives the results of the classes that it uses, refuses with a sentence, and
// throws nothing across the border.

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <locale>
#include <memory>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "pxrom/batch.h"
#include "pxrom/inspection.h"
#include "pxrom/pxrom_c.h"
#include "support/model_files.h"
#include "support/source_path.h"

namespace Tarvane::Plexura::PXROM::tests {
namespace {

struct Free {
  void operator()(pxrom_model* model) const { pxrom_model_free(model); }
  void operator()(pxrom_prepared* prepared) const { pxrom_prepared_free(prepared); }
};
using ModelHandle = std::unique_ptr<pxrom_model, Free>;
using PreparedHandle = std::unique_ptr<pxrom_prepared, Free>;

const std::string kBeam = SourcePath("examples/beam.pxdb");

class CInterface : public testing::Test {
 protected:
  ModelHandle Read(const std::string& text) {
    pxrom_model* model = nullptr;
    status = Call(pxrom_model_read, text.data(), text.size(), &model);
    return ModelHandle(model);
  }
  PreparedHandle Prepare(const ModelHandle& model, const std::vector<const char*>& names,
                         const std::vector<int32_t>& values) {
    pxrom_prepared* prepared = nullptr;
    status = Call(pxrom_model_prepare, model.get(), names.empty() ? nullptr : names.data(),
                  values.data(), values.size(), &prepared);
    return PreparedHandle(prepared);
  }
  /// A function with the buffer for its sentence.
  template <class Function, class... Arguments>
  pxrom_status Call(Function function, Arguments... arguments) {
    return function(arguments..., message, sizeof message);
  }
  std::vector<std::string> List(const ModelHandle& model, int32_t list) {
    std::vector<std::string> ids;
    std::size_t count = 0;
    EXPECT_EQ(Call(pxrom_model_count, model.get(), list, &count), PXROM_OK);
    for (std::size_t i = 0; i < count; ++i) {
      pxrom_parameter parameter = {};
      EXPECT_EQ(pxrom_model_parameter(model.get(), list, i, &parameter, nullptr, 0), PXROM_OK);
      ids.emplace_back(parameter.id);
    }
    return ids;
  }

  char message[PXROM_MESSAGE_SIZE] = "";
  pxrom_status status = PXROM_OK;
};

bool AreSame(const std::vector<double>& a, const std::vector<double>& b) {
  return a.size() == b.size() && std::memcmp(a.data(), b.data(), a.size() * sizeof(double)) == 0;
}

TEST_F(CInterface, ListsWhatTheModelHolds) {
  const ModelHandle model = Read(ContentOf(kBeam));
  ASSERT_EQ(status, PXROM_OK) << message;
  EXPECT_EQ(List(model, PXROM_INPUTS), (std::vector<std::string>{"h", "F", "L", "b"}));
  EXPECT_EQ(List(model, PXROM_DISCRETE_INPUTS), (std::vector<std::string>{"Holes", "Material"}));
  EXPECT_EQ(List(model, PXROM_OUTPUTS), (std::vector<std::string>{"deflection", "mass", "stress"}));

  std::size_t count = 0;
  ASSERT_EQ(pxrom_model_combination_count(model.get(), &count, nullptr, 0), PXROM_OK);
  ASSERT_EQ(count, 6U);
  const int32_t* values = nullptr;
  ASSERT_EQ(pxrom_model_combination(model.get(), 5, &values, nullptr, 0), PXROM_OK);
  EXPECT_EQ(values[0], 4);
  EXPECT_EQ(values[1], 2);
}

// The registry keeps units and bounds of continuous parameters only.
TEST_F(CInterface, DescribesEachParameter) {
  const ModelHandle model = Read(ContentOf(kBeam));
  std::ostringstream found;
  found.imbue(std::locale::classic());
  pxrom_parameter p = {};
  for (std::size_t i = 0;
       pxrom_model_parameter(model.get(), PXROM_ALL_PARAMETERS, i, &p, nullptr, 0) == PXROM_OK;
       ++i) {
    found << p.rank << ' ' << p.id << " [" << p.unit << "] " << p.caption << ' ' << p.causality
          << p.type << p.enabled << ' ' << p.has_bounds << ' ' << p.lower_bound << ' '
          << p.upper_bound << (p.values == nullptr ? " none" : " ");
    for (std::size_t k = 0; k < p.value_count; ++k) found << p.values[k] << ';';
    found << '\n';
  }
  EXPECT_EQ(found.str(), R"(0 Slenderness [] L over h 031 0 0 0 none
1 h [mm] Height of section 001 1 60 120 none
2 Holes [] Number of holes 021 0 0 0 0;2;4;
3 F [N] Tip force 001 1 1000 5000 none
4 L [m] Beam length 011 1 1 2 none
5 Notch [mm] Notch radius - not in the study 000 1 0 5 none
6 Material [] Material (1 steel 2 aluminium) 021 0 0 0 1;2;
7 Finish [] Surface finish - not in the study 020 0 0 0 none
8 b [mm] Width of section 011 1 30 60 none
9 deflection [mm] Tip deflection 101 1 0 500 none
10 stress [MPa] Largest bending stress 101 1 0 1000 none
11 cost [EUR] Cost - not fitted 100 1 0 1 none
12 mass [kg] Mass 101 1 0 150 none
)");
}

TEST_F(CInterface, EvaluatesAsThePreparedModel) {
  CDiscreteCombinations combinations;
  ASSERT_NO_FATAL_FAILURE(ReadModel(kBeam, combinations));
  CPreparedModel direct;
  ASSERT_EQ(CPreparedModel::Prepare(combinations, {{"Material", 1}, {"Holes", 2}}, direct), 0);

  ModelHandle model = Read(ContentOf(kBeam));
  const PreparedHandle named = Prepare(model, {"Material", "Holes"}, {1, 2});
  ASSERT_EQ(status, PXROM_OK) << message;
  const PreparedHandle ranked = Prepare(model, {}, {2, 1});
  ASSERT_EQ(status, PXROM_OK) << message;
  model.reset();  // a prepared combination outlives its model

  const std::vector<double> points = {90, 3000, 1.5, 45, 70, 1200, 1.9, 58, 61, 4900, 1.01, 31};
  const std::size_t rows = 3;
  for (const pxrom_prepared* prepared : {named.get(), ranked.get()}) {
    ASSERT_EQ(pxrom_prepared_input_count(prepared), 4U);
    ASSERT_EQ(pxrom_prepared_output_count(prepared), 3U);
    for (const int32_t mode : {PXROM_EXACT, PXROM_FAST}) {
      std::vector<double> values(9), errors(9), wantedValues(9), wantedErrors(9);
      std::vector<int> statuses(9, 7), wantedStatuses(9, 9);
      ASSERT_EQ(direct.Evaluate(points.data(), rows, static_cast<E_PrecisionMode>(mode),
                                wantedValues.data(), wantedErrors.data(), wantedStatuses.data()),
                0);
      ASSERT_EQ(Call(pxrom_prepared_evaluate, prepared, points.data(), rows, mode, values.data(),
                     errors.data(), statuses.data()),
                PXROM_OK);
      EXPECT_TRUE(AreSame(values, wantedValues));
      EXPECT_TRUE(AreSame(errors, wantedErrors));
      EXPECT_EQ(statuses, wantedStatuses);
    }
    std::vector<double> gradients(36), wanted(36);
    ASSERT_EQ(direct.EvaluateGradients(points.data(), rows, wanted.data(), nullptr), 0);
    ASSERT_EQ(
        Call(pxrom_prepared_gradients, prepared, points.data(), rows, gradients.data(), nullptr),
        PXROM_OK);
    EXPECT_TRUE(AreSame(gradients, wanted));
  }
  // The mass of this combination is a regression with its own error.
  EXPECT_EQ(pxrom_prepared_error_in_unit(named.get(), 0), 1);
  EXPECT_EQ(pxrom_prepared_error_in_unit(named.get(), 1), 0);
  EXPECT_EQ(pxrom_prepared_error_in_unit(named.get(), 3), 0);
}

TEST_F(CInterface, GivesErrorsInUnitsAndPlacesAsThePreparedModel) {
  CDiscreteCombinations combinations;
  ASSERT_NO_FATAL_FAILURE(ReadModel(kBeam, combinations));
  CPreparedModel direct;
  ASSERT_EQ(CPreparedModel::Prepare(combinations, {{"Material", 1}, {"Holes", 2}}, direct), 0);
  const ModelHandle model = Read(ContentOf(kBeam));
  const PreparedHandle prepared = Prepare(model, {}, {2, 1});
  const pxrom_prepared* const p = prepared.get();

  std::size_t surface = 7;
  int32_t firstOrder = 7;
  EXPECT_EQ(pxrom_prepared_error_origin(p, 0, &surface, &firstOrder),
            PXROM_ERROR_FROM_CROSS_VALIDATION);
  EXPECT_EQ(surface, 0U);
  EXPECT_EQ(firstOrder, 0);
  EXPECT_EQ(pxrom_prepared_error_origin(p, 1, nullptr, nullptr), PXROM_ERROR_FROM_ALL_SURFACES);
  EXPECT_EQ(pxrom_prepared_error_origin(p, 3, nullptr, nullptr), PXROM_ERROR_NONE);
  EXPECT_EQ(pxrom_prepared_error_origin(nullptr, 0, nullptr, nullptr), PXROM_ERROR_NONE);

  const std::vector<double> points = {90, 3000, 1.5, 45, 70, 1200, 2.9, 58};
  const std::size_t rows = 2;
  std::vector<double> numbers(30, -7.0), wanted(30, -7.0);
  std::vector<int> statuses(6, 7), wantedStatuses(6, 9);
  const auto column = [](std::vector<double>& all, std::size_t k) { return all.data() + 6 * k; };
  ASSERT_EQ(direct.EvaluateWithUnits(points.data(), rows, PrecisionExact,
                                     {column(wanted, 0), column(wanted, 1), column(wanted, 2),
                                      column(wanted, 3), column(wanted, 4), wantedStatuses.data()}),
            0);
  ASSERT_EQ(Call(pxrom_prepared_evaluate_with_units, p, points.data(), rows, int32_t{PXROM_EXACT},
                 column(numbers, 0), column(numbers, 1), column(numbers, 2), column(numbers, 3),
                 column(numbers, 4), statuses.data()),
            PXROM_OK);
  EXPECT_TRUE(AreSame(numbers, wanted));
  EXPECT_EQ(statuses, wantedStatuses);

  std::vector<int> inside(6, 7);
  std::vector<double> distances(6), wantedDistances(6);
  std::vector<signed char> sides(24, 7);
  ASSERT_EQ(direct.LocatePoints(points.data(), rows, {nullptr, wantedDistances.data(), nullptr}),
            0);
  ASSERT_EQ(Call(pxrom_prepared_locate, p, points.data(), rows, inside.data(), distances.data(),
                 sides.data()),
            PXROM_OK);
  EXPECT_EQ(inside, (std::vector<int>{1, 1, 1, 0, 0, 0}));
  EXPECT_TRUE(AreSame(distances, wantedDistances));
  EXPECT_EQ(sides[14], 1);  // L at the second point
  EXPECT_EQ(sides[15], 0);

  std::vector<double> lower(4), upper(4);
  ASSERT_EQ(Call(pxrom_prepared_sample_ranges, p, std::size_t{2}, lower.data(), upper.data()),
            PXROM_OK);
  EXPECT_EQ(lower[2], 1.01104);
  EXPECT_EQ(upper[2], 1.9911);
  EXPECT_EQ(Call(pxrom_prepared_sample_ranges, p, std::size_t{3}, lower.data(), upper.data()),
            PXROM_REFUSED);
  EXPECT_STREQ(message, "there is no output 3, counted from 0");
}

TEST_F(CInterface, RefusesWithASentenceAndWritesNothing) {
  EXPECT_EQ(Read("nothing"), nullptr);
  EXPECT_EQ(status, PXROM_REFUSED);
  EXPECT_NE(std::string(message).find("line 1"), std::string::npos) << message;
  EXPECT_EQ(Read(""), nullptr);
  EXPECT_EQ(status, PXROM_REFUSED);
  pxrom_model* nothing = nullptr;
  EXPECT_EQ(Call(pxrom_model_read, "", static_cast<std::size_t>(-1), &nothing), PXROM_REFUSED);
  EXPECT_EQ(std::string(message).substr(0, 10), "length is ") << message;
  EXPECT_EQ(Call(pxrom_check, "", static_cast<std::size_t>(-1), nullptr, nullptr, nullptr),
            PXROM_REFUSED);

  const ModelHandle model = Read(ContentOf(kBeam));
  ASSERT_EQ(status, PXROM_OK);
  EXPECT_STREQ(message, "");
  const struct {
    std::vector<const char*> names;
    std::vector<int32_t> values;
    const char* said;
  } wrong[] = {
      {{"Material"}, {1}, "has 2 discrete inputs, but 1"},
      {{"Material", "Material"}, {1, 2}, "'Holes' needs one value, but 0"},
      {{"Material", "L"}, {1, 2}, "'Holes' needs one value, but 0"},
      {{"Material", "Holes"}, {1, 3}, "no combination of the discrete values 3, 1"},
  };
  for (const auto& question : wrong) {
    EXPECT_EQ(Prepare(model, question.names, question.values), nullptr);
    EXPECT_EQ(status, PXROM_REFUSED);
    EXPECT_NE(std::string(message).find(question.said), std::string::npos) << message;
  }

  // Cut to the buffer, but not in the middle of a letter of two bytes.
  std::string text = ContentOf(kBeam);
  for (std::size_t at = 0; (at = text.find("Holes", at)) != std::string::npos;) {
    text.replace(at, 5, "H\xC3\xB6");
  }
  const ModelHandle umlaut = Read(text);
  EXPECT_EQ(Prepare(umlaut, {"Material", "L"}, {1, 2}), nullptr);
  const std::string whole = message;
  const std::size_t letter = whole.find("\xC3\xB6");
  ASSERT_NE(letter, std::string::npos) << whole;
  const char* const names[] = {"Material", "L"};
  const int32_t numbers[] = {1, 2};
  pxrom_prepared* none = nullptr;
  pxrom_model_prepare(umlaut.get(), names, numbers, 2, &none, message, letter + 2);
  EXPECT_EQ(message, whole.substr(0, letter));

  pxrom_parameter parameter = {};
  EXPECT_EQ(pxrom_model_parameter(model.get(), PXROM_INPUTS, 4, &parameter, message, 17),
            PXROM_REFUSED);
  EXPECT_STREQ(message, "there is no para");  // cut to the buffer
  EXPECT_EQ(parameter.id, nullptr);
  std::size_t count = 77;
  EXPECT_EQ(pxrom_model_count(model.get(), 4, &count, nullptr, 0), PXROM_REFUSED);
  EXPECT_EQ(count, 77U);
  const int32_t* values = nullptr;
  EXPECT_EQ(pxrom_model_combination(model.get(), 6, &values, nullptr, 0), PXROM_REFUSED);

  const PreparedHandle prepared = Prepare(model, {}, {2, 1});
  const double point[4] = {90, 3000, 1.5, 45};
  double results[3] = {-7, -7, -7};
  EXPECT_EQ(Call(pxrom_prepared_evaluate, prepared.get(), point, std::size_t{1}, 2, results,
                 nullptr, nullptr),
            PXROM_REFUSED);
  EXPECT_EQ(results[0], -7);
}

TEST_F(CInterface, PreparesWithinALimit) {
  const ModelHandle model = Read(ContentOf(kBeam));
  const int32_t values[2] = {2, 1};
  const std::size_t two = 2;
  pxrom_cost cost = {};
  const auto costOf = [&](const int32_t* key) {
    return Call(pxrom_model_cost, model.get(), nullptr, key, two, &cost);
  };
  ASSERT_EQ(costOf(values), PXROM_OK) << message;
  const auto prepare = [&](pxrom_cost limit) {
    pxrom_prepared* made = nullptr;
    status = Call(pxrom_model_prepare_within, model.get(), nullptr, values, two, &limit, &made);
    return PreparedHandle(made);
  };
  EXPECT_NE(prepare(cost), nullptr) << message;
  EXPECT_EQ(prepare({cost.operations, cost.bytes - 1}), nullptr);
  EXPECT_EQ(status, PXROM_REFUSED);
  EXPECT_NE(std::string(message).find(" bytes of memory, and the limit is "), std::string::npos);
  EXPECT_EQ(prepare({cost.operations - 1, cost.bytes}), nullptr);
  EXPECT_EQ(status, PXROM_REFUSED);
  const int32_t unknown[2] = {2, 7};
  cost.bytes = 1;
  EXPECT_EQ(costOf(unknown), PXROM_REFUSED);
  EXPECT_EQ(cost.bytes, 1U);
}

TEST_F(CInterface, RefusesNullByName) {
  const ModelHandle model = Read(ContentOf(kBeam));
  const PreparedHandle prepared = Prepare(model, {}, {2, 1});
  double x = 0;
  std::size_t count = 0;
  const int32_t* key = nullptr;
  const int32_t values[2] = {2, 1};
  const char* const names[2] = {"Holes", nullptr};
  pxrom_model* read = nullptr;
  pxrom_prepared* made = nullptr;
  pxrom_parameter parameter = {};
  const auto refuses = [this](const char* named, auto function, auto... arguments) {
    EXPECT_EQ(Call(function, arguments...), PXROM_NULL_ARGUMENT);
    EXPECT_EQ(std::string(message), std::string(named) + " is null");
  };
  const pxrom_model* const m = model.get();
  const pxrom_prepared* const p = prepared.get();
  const std::size_t one = 1;
  const std::size_t two = 2;
  const int32_t in = PXROM_INPUTS;
  const int32_t exact = PXROM_EXACT;
  refuses("text", pxrom_model_read, nullptr, two, &read);
  refuses("model", pxrom_model_read, "x", one, nullptr);
  refuses("model", pxrom_model_count, nullptr, in, &count);
  refuses("count", pxrom_model_count, m, in, nullptr);
  refuses("model", pxrom_model_parameter, nullptr, in, one, &parameter);
  refuses("parameter", pxrom_model_parameter, m, in, one, nullptr);
  refuses("model", pxrom_model_combination_count, nullptr, &count);
  refuses("count", pxrom_model_combination_count, m, nullptr);
  refuses("model", pxrom_model_combination, nullptr, one, &key);
  refuses("values", pxrom_model_combination, m, one, nullptr);
  refuses("model", pxrom_model_prepare, nullptr, nullptr, values, two, &made);
  refuses("values", pxrom_model_prepare, m, nullptr, nullptr, two, &made);
  refuses("one of names", pxrom_model_prepare, m, names, values, two, &made);
  refuses("prepared", pxrom_model_prepare, m, nullptr, values, two, nullptr);
  pxrom_cost cost = {};
  refuses("cost", pxrom_model_cost, m, nullptr, values, two, nullptr);
  refuses("model", pxrom_model_cost, nullptr, nullptr, values, two, &cost);
  refuses("limit", pxrom_model_prepare_within, m, nullptr, values, two, nullptr, &made);
  refuses("prepared", pxrom_prepared_evaluate, nullptr, &x, one, exact, &x, nullptr, nullptr);
  refuses("points", pxrom_prepared_evaluate, p, nullptr, one, exact, &x, nullptr, nullptr);
  refuses("values", pxrom_prepared_evaluate, p, &x, one, exact, nullptr, nullptr, nullptr);
  refuses("prepared", pxrom_prepared_evaluate_with_units, nullptr, &x, one, exact, &x, nullptr,
          nullptr, nullptr, nullptr, nullptr);
  refuses("points", pxrom_prepared_evaluate_with_units, p, nullptr, one, exact, &x, nullptr,
          nullptr, nullptr, nullptr, nullptr);
  refuses("lower", pxrom_prepared_sample_ranges, p, one, nullptr, &x);
  refuses("upper", pxrom_prepared_sample_ranges, p, one, &x, nullptr);
  refuses("prepared", pxrom_prepared_locate, nullptr, &x, one, nullptr, &x, nullptr);
  refuses("points", pxrom_prepared_locate, p, nullptr, one, nullptr, &x, nullptr);
  refuses("prepared", pxrom_prepared_gradients, nullptr, &x, one, &x, nullptr);
  refuses("points", pxrom_prepared_gradients, p, nullptr, one, &x, nullptr);
  refuses("gradients", pxrom_prepared_gradients, p, &x, one, nullptr, nullptr);
  refuses("text", pxrom_check, nullptr, one, nullptr, nullptr, nullptr);
  EXPECT_EQ(pxrom_prepared_evaluate(prepared.get(), nullptr, 0, PXROM_EXACT, nullptr, nullptr,
                                    nullptr, nullptr, 0),
            PXROM_OK);
  EXPECT_EQ(pxrom_prepared_input_count(nullptr), 0U);
  pxrom_model_free(nullptr);
  pxrom_prepared_free(nullptr);
}

// All that a finding of either kind holds, its numbers first.
template <class Finding>
std::string LineOf(const Finding& finding) {
  const std::size_t numbers[] = {static_cast<std::size_t>(finding.severity),
                                 static_cast<std::size_t>(finding.code), finding.line,
                                 finding.column};
  std::string line;
  for (const std::size_t number : numbers) line += std::to_string(number) + '|';
  for (const std::string& text : {std::string(finding.group), std::string(finding.key),
                                  std::string(finding.found), std::string(finding.expected)}) {
    line += text + '|';
  }
  return line + finding.sentence;
}

TEST_F(CInterface, ChecksAsTheInspection) {
  std::string text = ContentOf(kBeam);
  text.replace(text.find("GenomeWeight="), 13, "GenomWeight= ");
  const CInspectionReport report = InspectPXROMDatabase(text);
  ASSERT_FALSE(report.findings.empty());

  std::vector<std::string> sentences;
  pxrom_finding_counts counts = {};
  const auto collect = [](const pxrom_finding* finding, void* user) {
    auto& list = *static_cast<std::vector<std::string>*>(user);
    list.push_back(LineOf(*finding));
    EXPECT_STREQ(finding->code_name, FindingCodeName(static_cast<E_FindingCode>(finding->code)));
    return list.size() == 2 ? 1 : 0;
  };
  ASSERT_EQ(pxrom_check(text.data(), text.size(), collect, &sentences, &counts, nullptr, 0),
            PXROM_OK);
  EXPECT_EQ(counts.errors, report.errors);
  EXPECT_EQ(counts.warnings, report.warnings);
  EXPECT_EQ(counts.notes, report.notes);
  ASSERT_EQ(sentences.size(), 2U);  // the callback ended the list
  EXPECT_EQ(sentences[0], LineOf(report.findings[0]));
  EXPECT_EQ(sentences[1], LineOf(report.findings[1]));
}

TEST_F(CInterface, ThrowsNothingAcrossTheBorder) {
  const std::string text = "nothing";
  const auto fail = [](const pxrom_finding*, void*) -> int { throw std::runtime_error("mine"); };
  EXPECT_EQ(pxrom_check(text.data(), text.size(), fail, nullptr, nullptr, message, sizeof message),
            PXROM_FAILED);
  EXPECT_STREQ(message, "the callback threw an exception");
  const auto exhaust = [](const pxrom_finding*, void*) -> int { throw std::bad_alloc(); };
  EXPECT_EQ(pxrom_check(text.data(), text.size(), exhaust, nullptr, nullptr, message, 9),
            PXROM_NO_MEMORY);
  EXPECT_STREQ(message, "there is");
}

}  // namespace
}  // namespace Tarvane::Plexura::PXROM::tests
