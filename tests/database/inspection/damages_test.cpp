// The findings of an inspection for each damage of a table.

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <regex>
#include <set>

#include "database/inspection/test_texts.h"
#include "pxrom/moving_least_squares.h"
#include "pxrom/writer.h"
#include "support/source_path.h"
#include "support/test_models.h"

namespace Tarvane::Plexura::PXROM {
namespace {

// An error is the first finding; a warning or a note may be anywhere in the list.
TEST(Damages, AreNamedWithTheirLine) {
  for (const Damage& damage : Damages()) {
    const CInspectionReport report = InspectPXROMDatabase(damage.text);
    const auto isIt = [&damage](const CFinding& f) {
      return f.severity == damage.severity && f.line == damage.line &&
             FindingCodeName(f.code) == damage.code;
    };
    const auto found = std::find_if(report.findings.begin(), report.findings.end(), isIt);
    ASSERT_NE(found, report.findings.end()) << damage.name << '\n' << Shown(report);
    if (damage.severity == SeverityError) {
      EXPECT_EQ(&*found, FirstError(report)) << damage.name << '\n' << Shown(report);
    }
  }
}

// The text of a finding is at the place that it names, or in the pair that begins there.
TEST(Damages, PointAtWhatTheyFound) {
  const std::set<E_FindingCode> pointing = {FindingKeyUnknown,         FindingKeyMisplaced,
                                            FindingParameterUnknown,   FindingOutputUnexpected,
                                            FindingDiscreteInputWrong, FindingValueOverflow};
  std::set<E_FindingCode> seen;
  for (const Damage& damage : Damages()) {
    for (const CFinding& f : InspectPXROMDatabase(damage.text).findings) {
      if (pointing.count(f.code) == 0) continue;
      const std::size_t at = StartOfLine(damage.text, f.line) + f.column - 1;
      const bool isInPair = damage.text[at] == '{' || (at > 0 && damage.text[at - 1] == '{');
      const std::string wanted = (isInPair ? "{" : "") + f.found;
      EXPECT_EQ(damage.text.substr(at, wanted.size()), wanted) << damage.name << ": " << f.sentence;
      seen.insert(f.code);
    }
  }
  EXPECT_EQ(seen, pointing);
}

// Samples of a surface without their outputs: sound, unless the value needs the outputs.
TEST(Damages, OutputsOfSamplesAreMissedOnlyWhereValuesNeedThem) {
  const std::map<std::string, std::size_t> errorsOf = {{"svr_sk_eps_rbf", 0},
                                                       {"kriging_sk_linnerud", 0},
                                                       {"qrs_sm_stackloss", 0},
                                                       {"lbf_scipy_gauss_linear", 0},
                                                       {"mls_np_franke_linear_gauss", 1}};
  const std::string key = "\nOutputSamples=";
  for (const auto& [name, errors] : errorsOf) {
    std::string text = ContentOf(SourcePath("tests/data/models/" + name + "/model.pxdb"));
    const std::size_t from = text.find(key) + key.size();
    text.erase(from, text.find('\n', from) - from);
    const CInspectionReport report = InspectPXROMDatabase(text);
    EXPECT_EQ(report.errors, errors) << name << '\n' << Shown(report);
  }
}

TEST(Damages, AnyNumberOfLinesMayUseOneGroup) {
  std::string text = ContentOf(SourcePath("examples/constant.pxdb"));
  std::string lines;
  for (int i = 0; i < 40000; ++i) lines += "DiscreteSet={m;" + std::to_string(i) + "},{y;0}\n";
  const std::pair<std::string, std::string> changes[] = {
      {"IDs=x,y", "IDs=x,y,m"},     {"Causalities=0,1", "Causalities=0,1,0"},
      {"Types=0,0", "Types=0,0,2"}, {"Availability=1,1", "Availability=1,1,1"},
      {"{y;1}", "{y;1},{m;2}"},     {"DiscreteSet={y;0}\n", lines},
  };
  for (const auto& [from, to] : changes) text.replace(text.find(from), from.size(), to);
  const CInspectionReport report = InspectPXROMDatabase(text);
  EXPECT_EQ(report.errors, 0u) << Shown(report);
  EXPECT_EQ(report.overview.combinations.size(), 40000u);
}

/// A text whose `combinations` have a surface of moving least squares in `inputs` inputs each.
std::string LeastSquaresText(int inputs, int combinations) {
  const int functions = (inputs + 1) * (inputs + 2) / 2;
  CMLSData surface;
  surface.NumberOfInputVariables = inputs;
  surface.NumberOfSamples = functions;
  surface.InputSamples.assign(static_cast<std::size_t>(functions),
                              std::vector<double>(static_cast<std::size_t>(inputs)));
  surface.OutputSamples.assign(surface.InputSamples.size(), 1.0);
  surface.OutputScaleSlope = 1.0;
  surface.ReadyForEvaluation = true;
  int digit = 0;
  for (std::vector<double>& row : surface.InputSamples) {
    surface.InputScaleSlopes.assign(row.size(), 1.0);
    surface.InputScaleIntercepts.assign(row.size(), 0.0);
    for (double& value : row) value = digit++ % 7;
  }
  surface.PolynomialType = PolyFullQuadratic;
  surface.NumberOfBasisFunctions = functions;
  surface.NumberOfUsedPoints = functions;
  CDiscreteCombinations model;
  for (int i = 0; i < inputs; ++i) {
    model.RegisterParameter("x" + std::to_string(i), CausalityInput, ContinuousNotManufacturable,
                            true);
  }
  model.RegisterParameter("m", CausalityInput, DiscreteParameter, true);
  model.RegisterParameter("y", CausalityOutput, ContinuousNotManufacturable, true);
  model.RegisterDiscreteCombination({{"m", 0}}, {{"y", ListOf(CandidateOf(surface))}});
  std::string text;
  std::string reason;
  EXPECT_EQ(CWriterPXROMDatabase().WriteDiscreteCombinations(model, text, reason), 0) << reason;
  const std::string line = "DiscreteSet={m;0},{y;0}\n";
  const std::string opening = "<PlexuraData ID=0";
  const std::string group = text.substr(text.find(opening) + opening.size());
  std::string lines;
  for (int m = 0; m < combinations; ++m) {
    const std::string number = std::to_string(m);
    lines += "DiscreteSet={m;" + number + "},{y;" + number + "}\n";
    if (m > 0) text += "<PlexuraData ID=" + number + group;
  }
  return text.replace(text.find(line), line.size(), lines);
}

// The time of an inspection is in proportion to the text, whatever its surfaces would cost.
TEST(Damages, WhatWouldTakeTooLongIsNotTried) {
  const auto notTried = [](const std::string& text) {
    std::string found;
    const CInspectionReport report = InspectPXROMDatabase(text);
    for (const CFinding& f : report.findings) {
      if (f.code != FindingNotTried) continue;
      found += std::to_string(f.line) + ':' + std::to_string(f.column) + ' ' + f.group + ';';
    }
    EXPECT_EQ(report.errors, 0U) << Shown(report);
    EXPECT_GT(report.overview.ensembles.at(0).cost.operations, 1'000'000U);
    return found;
  };
  EXPECT_EQ(notTried(LeastSquaresText(32, 2)), "");
  EXPECT_EQ(notTried(LeastSquaresText(32, 4)), "1:1 DiscreteSets;");
  EXPECT_EQ(notTried(LeastSquaresText(44, 1)), "17:1 PlexuraData 0;");
}

// A hundred findings of one kind are listed; the last one says how many more there are.
TEST(Damages, ManyOfAKindAreCounted) {
  std::string text = ContentOf(SourcePath("examples/beam.pxdb"));
  const std::string flag = "IsStopped=0";
  std::size_t damages = 0;
  for (std::size_t at = 0; (at = text.find(flag, at)) != std::string::npos; ++damages) {
    text.replace(at, flag.size(), "Colour=3");
  }
  const CInspectionReport report = InspectPXROMDatabase(text);
  EXPECT_EQ(report.errors, damages);
  EXPECT_EQ(report.warnings, damages);
  const std::string rest =
      " (and " + std::to_string(damages - 100) + " more findings of this kind)";
  for (const E_FindingCode code : {FindingKeyMissing, FindingKeyUnknown}) {
    std::vector<std::string> sentences;
    for (const CFinding& f : report.findings) {
      if (f.code == code) sentences.push_back(f.sentence);
    }
    ASSERT_EQ(sentences.size(), 100u);
    EXPECT_NE(sentences.back().find(rest), std::string::npos) << sentences.back();
  }
}

TEST(Damages, ShowEveryCodeOfTheDocumentWithItsSeverities) {
  std::map<std::string, std::set<E_FindingSeverity>> shown;
  shown[FindingCodeName(FindingReadingRefused)] = {SeverityError};
  shown[FindingCodeName(FindingNotTried)] = {SeverityWarning};
  // The tests of check points show these.
  for (const E_FindingCode code :
       {FindingLineEndsChanged, FindingAnswersSame, FindingAnswersClose}) {
    shown[FindingCodeName(code)] = {SeverityNote};
  }
  shown[FindingCodeName(FindingAnswersDiffer)] = {SeverityError};
  for (const Damage& damage : Damages()) shown[damage.code].insert(damage.severity);

  const std::string document = ContentOf(SourcePath("docs/database-format.md"));
  // The rows of its tables: name, severities, meaning.
  const std::regex row("\n\\| `([a-z-]+)` \\| ([^|\n]+) \\| ([^\n]+) \\|(?=\n)");
  const std::vector<std::smatch> documented{
      std::sregex_iterator(document.begin(), document.end(), row), std::sregex_iterator()};
  const std::vector<E_FindingCode> codes = ListFindingCodes();
  EXPECT_TRUE(std::is_sorted(codes.begin(), codes.end()));
  ASSERT_EQ(documented.size(), codes.size());
  for (std::size_t i = 0; i < codes.size(); ++i) {
    const std::string name = documented[i][1];
    const std::string severities = documented[i][2];
    EXPECT_EQ(name, FindingCodeName(codes[i]));
    EXPECT_EQ(documented[i][3], FindingCodeExplanation(codes[i])) << name;
    for (const char* severity : {"error", "warning", "note"}) {
      const bool isShown = shown[name].count(SeverityOf(severity)) > 0;
      const bool isDocumented = severities.find(severity) != std::string::npos;
      // The first word is the usual severity. The damages need not show the others.
      if (severities.rfind(severity, 0) == 0) {
        EXPECT_TRUE(isShown) << name;
      }
      if (isShown) {
        EXPECT_TRUE(isDocumented) << name << ' ' << severity;
      }
    }
  }
}

}  // namespace
}  // namespace Tarvane::Plexura::PXROM
