// What a text can't hold is refused with a reason, and nothing is written.

#include <gtest/gtest.h>

#include <functional>
#include <limits>
#include <memory>

#include "pxrom/constant.h"
#include "pxrom/database_reader.h"
#include "pxrom/discrete_combinations.h"
#include "pxrom/kriging.h"
#include "pxrom/moving_least_squares.h"
#include "pxrom/regression.h"
#include "pxrom/support_vector.h"
#include "pxrom/writer.h"

namespace Tarvane::Plexura::PXROM {
namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInf = std::numeric_limits<double>::infinity();

void ExpectRefused(const CDiscreteCombinations& model, const std::string& why) {
  std::string text = "kept";
  std::string reason;
  EXPECT_EQ(CWriterPXROMDatabase().WriteDiscreteCombinations(model, text, reason), 1) << why;
  EXPECT_EQ(text, "kept");
  EXPECT_EQ(reason, why);
  EXPECT_EQ(CWriterPXROMDatabase().WriteDiscreteCombinations(model, text), 1);
  EXPECT_EQ(text, "kept");
}

void ExpectWritten(const CDiscreteCombinations& model) {
  std::string text;
  std::string reason;
  EXPECT_EQ(CWriterPXROMDatabase().WriteDiscreteCombinations(model, text, reason), 0) << reason;
  CReaderPXROMDatabase reader;
  reader.ReadDataStream(text);
  CDiscreteCombinations again;
  EXPECT_EQ(reader.ResumeDiscreteCombinations(again), 0);
}

CConstantData SoundConstant() {
  CConstantData record;
  record.NumberOfInputVariables = 1;
  record.NumberOfSamples = 2;
  record.InputSamples = {{0.25}, {0.5}};
  record.OutputSamples = {1, 2};
  record.OutputScaleSlope = 1;
  record.ReadyForEvaluation = true;
  return record;
}

template <class Record>
Record Sound() {
  Record record;
  static_cast<CRSData&>(record) = SoundConstant();
  return record;
}

/// k is discrete, x continuous, y the output; one combination with k = 4.
void FillWith(const CFittingCandidate& candidate, CDiscreteCombinations& model) {
  model.RegisterParameter("k", CausalityInput, DiscreteParameter, true);
  model.RegisterParameter("x", CausalityInput, ContinuousManufacturable, true);
  model.RegisterParameter("y", CausalityOutput, ContinuousNotManufacturable, true);
  model.RegisterParameterExtraInfos("x", "", "m", "Length", 1, 0);
  auto list = std::make_unique<CFittingCandidates>();
  list->AddFittingCandidate(candidate);
  model.RegisterDiscreteCombination({{"k", 4}}, {{"y", list.release()}});
}

CFittingCandidate CandidateOf(const CRSData& record) {
  CFittingCandidates list;
  list.GenerateCandidateFromCRSData(&record);
  return *list.GetCandidatePtr(0);
}

using Model = CDiscreteCombinations;

TEST(Refusals, Registry) {
  ExpectRefused(Model(), "a database needs a parameter");
  for (const char* const blank : {"", " \t"}) {
    Model model;
    model.RegisterParameter(blank, CausalityInput, ContinuousManufacturable, true);
    ExpectRefused(model, "the ID of the only parameter is blank");
  }
  struct Case {
    const char* why;
    std::function<void(Model&)> damage;
  };
  const auto id = [](const char* name) {
    return [name](Model& m) { m.RegisterParameter(name, CausalityInput, DerivedParameter, true); };
  };
  const auto infos = [](const char* name, const char* unit, const char* caption, double upper = 0,
                        double lower = 0) {
    return [=](Model& m) { m.RegisterParameterExtraInfos(name, "", unit, caption, upper, lower); };
  };
  const Case cases[] = {
      {"the ID \"a,b\" holds \",\", which separates values", id("a,b")},
      {"the ID \"a;b\" holds \";\", which separates values", id("a;b")},
      {"the ID \"{a\" holds \"{\", which separates values", id("{a")},
      {"the ID \"a}\" holds \"}\", which separates values", id("a}")},
      {"the ID \"a?b\" holds a line end", id("a\nb")},
      {"the ID \"a?\" holds a line end", id("a\r")},
      {"the ID \"Units=\" holds the key \"Units=\"", id("Units=")},
      {"the ID \"ShellTypes=4\" holds the key \"Types=\"", id("ShellTypes=4")},
      {"the ID \"</ParameterRegistry>\" holds the tag \"</ParameterRegistry>\"",
       id("</ParameterRegistry>")},
      {"the ID \"a<DiscreteSets>\" holds the tag \"<DiscreteSets>\"", id("a<DiscreteSets>")},
      {"the ID \"<PlexuraData ID=0>\" holds the tag \"<PlexuraData ID=\"",
       id("<PlexuraData ID=0>")},
      {"the unit of \"x\" holds \",\", which separates values", infos("x", "m,s", "")},
      {"the unit of \"x\" holds the key \"Captions=\"", infos("x", "Captions=", "")},
      {"the caption of \"x\" holds \"}\", which separates values", infos("x", "", "a}")},
      {"the caption of \"x\" holds a line end", infos("x", "", "a\r\n")},
      {"the caption of \"k\" holds the key \"UpperBounds=\"", infos("k", "", "UpperBounds=5")},
      {"the caption of \"y\" holds the tag \"<FMU>\"", infos("y", "", "<FMU>")},
      {"a bound of \"x\" is not finite", infos("x", "", "", kNaN)},
      {"a bound of \"x\" is not finite", infos("x", "", "", 0, -kInf)},
      {"\"k\" is not continuous, but has a unit or bounds", infos("k", "mm", "")},
      {"\"k\" is not continuous, but has a unit or bounds", infos("k", "", "", 2)},
      {"\"k\" is not continuous, but has a unit or bounds", infos("k", "", "", 0, -0.0)},
  };
  for (const Case& c : cases) {
    Model model;
    FillWith(CandidateOf(SoundConstant()), model);
    ExpectWritten(model);
    c.damage(model);
    ExpectRefused(model, c.why);
  }
}

TEST(Refusals, Combinations) {
  struct Case {
    const char* why;
    std::function<void(Model&)> damage;
  };
  const Case cases[] = {
      {"a combination has 1 discrete values, but there are 2 enabled discrete inputs",
       [](Model& m) { m.RegisterParameter("n", CausalityInput, DiscreteParameter, true); }},
      {"the combination at k=4 has 1 outputs, but 2 are enabled",
       [](Model& m) {
         m.RegisterParameter("z", CausalityOutput, ContinuousNotManufacturable, true);
       }},
      {"the combination at k=4 has 1 outputs, but 0 are enabled",
       [](Model& m) {
         m.RegisterParameter("y", CausalityOutput, ContinuousNotManufacturable, false);
       }},
      {"the output \"y}\" holds \"}\", which separates values",
       [](Model& m) {
         auto* list = new CFittingCandidates;
         list->AddFittingCandidate(CandidateOf(SoundConstant()));
         m.RegisterDiscreteCombination({{"k", 5}}, {{"y}", list}});
       }},
  };
  for (const Case& c : cases) {
    Model model;
    FillWith(CandidateOf(SoundConstant()), model);
    c.damage(model);
    ExpectRefused(model, c.why);
  }

  // Values of equal rank are sorted in a key, so that this one is lost once the ranks are equal.
  Model model;
  model.RegisterParameter("k", CausalityInput, DiscreteParameter, true);
  model.RegisterParameter("n", CausalityInput, DiscreteParameter, true);
  model.RegisterDiscreteCombination({{"k", 4}, {"n", 3}}, {});
  ExpectWritten(model);
  model.SetRegistrationRank({{"k", 1}, {"n", 1}});
  ExpectRefused(model,
                "the combination at k=4, n=3 can't be reached any more: inputs of equal rank need "
                "ascending values");
}

TEST(Refusals, CandidateLists) {
  const CFittingCandidate sound = CandidateOf(SoundConstant());
  const auto refused = [](const CFittingCandidates& list, const std::string& why) {
    Model model;
    model.RegisterParameter("y", CausalityOutput, ContinuousNotManufacturable, true);
    model.RegisterDiscreteCombination({}, {{"y", list.Clone()}});
    ExpectRefused(model, "output \"y\": " + why);
  };
  CFittingCandidates list;
  refused(list, "its list has 0 candidates, but a database holds exactly one");
  list.AddFittingCandidate(sound);
  list.SetCandidateIdxForEvaluation(1);
  refused(list, "its list evaluates another candidate than its first");
  list.AddFittingCandidate(sound);
  refused(list, "its list has 2 candidates, but a database holds exactly one");
}

TEST(Refusals, Candidates) {
  struct Case {
    const char* why;
    std::function<void(CFittingCandidate&)> damage;
  };
  using Candidate = CFittingCandidate;
  const char* const unasked =
      "it holds cross-validation data, but error prediction is not required of it";
  const auto validation = [](int rows, double distance) {
    return [=](Candidate& c) {
      std::vector<std::vector<double>> sorted(static_cast<std::size_t>(rows), {0.5});
      std::vector<int> folds = {1, 1};
      c.SetCrossValidationData(sorted, folds);
      double scale = distance;
      c.SetDPMinDist(scale);
    };
  };
  const Case cases[] = {
      {"CandidateInputSamples is not a matrix of 3 rows and 1 columns, as the counts beside it say",
       [](Candidate& c) { c.SetNumberOfSamples(3); }},
      {"CandidateInputSamples is not a matrix of 2 rows and -1 columns, as the counts beside it "
       "say",
       [](Candidate& c) { c.SetNumberOfInputVariables(-1); }},
      {"CandidateOutputSamples holds a number that is not finite",
       [](Candidate& c) {
         c.SetOutputSamples({1, kNaN});
       }},
      {"CandidateOutputScaleSlope holds a number that is not finite",
       [](Candidate& c) { c.SetOutputScaleSlope(kInf); }},
      {"its version is 170, but candidates always read as version 192",
       [](Candidate& c) {
         E_FittingCandidateVersion version = FittingCandidateVersion170;
         c.setDataVersion(version);
       }},
      {"it has 3 surfaces, but 2 weights",
       [](Candidate& c) {
         const std::unique_ptr<CRSData> a(c.GetRSPtr(0)->Clone());
         const std::unique_ptr<CRSData> b(c.GetRSPtr(0)->Clone());
         c.SetRSAndWeights({a.get(), b.get()}, {1, 2}, true);
         c.SetbIsErrPredRequired(false);
       }},
      {unasked, [](Candidate& c) { c.AddSubRS(c.GetRSPtr(0)); }},
      {unasked,
       [&](Candidate& c) {
         validation(2, 0)(c);
         c.SetbIsErrPredRequired(false);
       }},
      {unasked,
       [](Candidate& c) {
         double distance = 0.5;
         c.SetDPMinDist(distance);
       }},
      {"attScInputPoints is not a matrix of 2 rows and 1 columns, as the counts beside it say",
       validation(3, 0.5)},
      {"Rho holds a number that is not finite", validation(2, kNaN)},
      {"Genome 0: GenomeWeight holds a number that is not finite",
       [](Candidate& c) {
         const std::unique_ptr<CRSData> surface(c.GetRSPtr(0)->Clone());
         c.SetRSAndWeights({surface.get()}, {kNaN}, false);
       }},
      {"Genome 1: OutputScaleSlope holds a number that is not finite",
       [&](Candidate& c) {
         validation(2, 0.5)(c);
         CConstantData sub = SoundConstant();
         sub.OutputScaleSlope = kNaN;
         c.AddSubRS(&sub);
       }},
  };
  for (const Case& c : cases) {
    CFittingCandidate candidate = CandidateOf(SoundConstant());
    c.damage(candidate);
    Model model;
    FillWith(candidate, model);
    ExpectRefused(model, std::string("output \"y\" at k=4: ") + c.why);
  }
}

template <class Record>
struct Damage {
  const char* why;
  void (*apply)(Record&);
};

template <class Record>
void ExpectEachRefused(const std::vector<Damage<Record>>& damages) {
  Model sound;
  FillWith(CandidateOf(Sound<Record>()), sound);
  ExpectWritten(sound);
  for (const Damage<Record>& damage : damages) {
    Record record = Sound<Record>();
    damage.apply(record);
    CFittingCandidate candidate = CandidateOf(SoundConstant());
    candidate.AddRSAndWeight(&record, 1);
    Model model;
    FillWith(candidate, model);
    ExpectRefused(model, std::string("output \"y\" at k=4: Genome 1: ") + damage.why);
  }
}

/// A family that the library doesn't know.
struct OtherData : CRSData {
  OtherData* Clone() const override { return new OtherData(*this); }
  E_DataType DataType() const override { return static_cast<E_DataType>(77); }
};

TEST(Refusals, BaseRecords) {
  ExpectEachRefused<CConstantData>({
      {"InputSamples is not a matrix of 2 rows and 1 columns, as the counts beside it say",
       [](CConstantData& r) { r.InputSamples[1].push_back(0); }},
      {"InputSamples is not a matrix of 1 rows and 1 columns, as the counts beside it say",
       [](CConstantData& r) { r.NumberOfSamples = 1; }},
      {"InputSamples is not a matrix of -2 rows and 1 columns, as the counts beside it say",
       [](CConstantData& r) { r.NumberOfSamples = -2; }},
      {"InputSamples holds a number that is not finite",
       [](CConstantData& r) { r.InputSamples[1][0] = kInf; }},
      {"InputScaleSlopes holds a number that is not finite",
       [](CConstantData& r) { r.InputScaleSlopes = {kNaN}; }},
      {"OutputScaleIntercept holds a number that is not finite",
       [](CConstantData& r) { r.OutputScaleIntercept = -kInf; }},
      {"ConstantValue holds a number that is not finite",
       [](CConstantData& r) { r.SetConstantValue(kNaN); }},
      {"its RSDataVersion is none that a reader restores",
       [](CConstantData& r) { r.RSDataVersion_ = static_cast<E_CRSDataVersion>(170); }},
      // Rows without values leave no trace in the text, and readers bound their number by it.
      {"1000 samples without any input are too many",
       [](CConstantData& r) {
         r.NumberOfInputVariables = 0;
         r.NumberOfSamples = 1000;
         r.InputSamples.assign(1000, {});
       }},
  });
  CFittingCandidate candidate = CandidateOf(SoundConstant());
  const OtherData other;
  candidate.AddRSAndWeight(&other, 1);
  Model model;
  FillWith(candidate, model);
  ExpectRefused(model,
                "output \"y\" at k=4: Genome 1: it is of no known family: its DataType is 77");
}

TEST(Refusals, Families) {
  const char* const unsaved = "it holds predictor error data, but SavePredictorError is not set";
  ExpectEachRefused<CKrigingData>({
      {"a KrigingVersion below 192 has no predictor error",
       [](CKrigingData& r) {
         r.SavePredictorError = true;
         r.KrigingDataVersion_ = static_cast<E_CKrigingDataVersion>(191);
       }},
      {unsaved, [](CKrigingData& r) { r.Ft = {{1}}; }},
      {unsaved, [](CKrigingData& r) { r.Sigma2 = -0.0; }},
      {unsaved, [](CKrigingData& r) { r.NumberOfPolyCoeff = 1; }},
      {"KrigingInverseOfC is not a matrix of 2 rows and 2 columns, as the counts beside it say",
       [](CKrigingData& r) {
         r.SavePredictorError = true;
         r.Sigma2 = 1;
       }},
      {"KrigingFTilde is not a matrix of 1 rows and 2 columns, as the counts beside it say",
       [](CKrigingData& r) {
         r.SavePredictorError = true;
         r.NumberOfPolyCoeff = 1;
         r.InvC = {{1, 0}, {0, 1}};
         r.InvG = {{1}};
         r.Ft = {{1}, {2}};
       }},
  });
  ExpectEachRefused<CSVRData>({
      {"an SVRVersion below 171 has no SVRKernelArray",
       [](CSVRData& r) { r.SVRDataVersion_ = static_cast<E_CSVRDataVersion>(170); }},
      {"SVREpsilonValue is not between 0 and 1", [](CSVRData& r) { r.EpsilonValue = 1; }},
      {"SVRNuValue is not between 0 and 1", [](CSVRData& r) { r.NuValue = kNaN; }},
      {"SVRConstantValue is not above 0", [](CSVRData& r) { r.ConstantValue = 0; }},
      {"SVRConstantValue holds a number that is not finite",
       [](CSVRData& r) { r.ConstantValue = kNaN; }},
  });
  const char* const percent =
      "an MLSExtraPointPercent other than 0 needs option 3 and must not be -1";
  ExpectEachRefused<CMLSData>({
      {percent, [](CMLSData& r) { r.ExtraPointPercent = 5; }},
      {percent,
       [](CMLSData& r) {
         r.UsedPointOption = UsedPointsExtraPercent;
         r.ExtraPointPercent = -1;
       }},
  });
}

/// A term of the host's own, with a length that only it knows.
class WideTerm : public ConstTerm {
 public:
  int GetNumParam(int& count) const override {
    count = 2;
    return 0;
  }
};

TEST(Refusals, RegressionRecords) {
  const char* const unsaved = "it holds predictor error data, but SavePredictorError is not set";
  ExpectEachRefused<CQRSData>({
      {"a QRSVersion below 192 has no predictor error",
       [](CQRSData& r) {
         r.SavePredictorError = true;
         r.QRSDataVersion_ = static_cast<E_CQRSDataVersion>(191);
       }},
      {unsaved, [](CQRSData& r) { r.InvXtX = {{1}}; }},
      {unsaved, [](CQRSData& r) { r.Sigma2 = 1; }},
      {"QRSInvXtX is not a matrix of 1 rows and 1 columns, as the counts beside it say",
       [](CQRSData& r) {
         r.SavePredictorError = true;
         r.NumberOfSelectedRegTerms = 1;
         r.InvXtX = {{1, 0}, {0, 1}};
       }},
      {"it counts terms that are not there", [](CQRSData& r) { r.SetRegTerm(nullptr, 2); }},
      {"it counts terms that are not there", [](CQRSData& r) { r.SetRegTerm(nullptr, -1); }},
      {"RegTerm 1: the term is missing",
       [](CQRSData& r) {
         ConstTerm term;
         RegTerm* terms[] = {&term, nullptr};
         r.SetRegTerm(terms, 2);
       }},
      {"RegTerm 0: no database holds a term of this kind",
       [](CQRSData& r) {
         CrossPolyTerm term;
         RegTerm* terms[] = {&term};
         r.SetRegTerm(terms, 1);
       }},
      {"RegTerm 0: coefficientValue holds a number that is not finite",
       [](CQRSData& r) {
         ConstTerm term;
         term.SetParamVal(1, &kInf);
         RegTerm* terms[] = {&term};
         r.SetRegTerm(terms, 1);
       }},
  });

  CQRSData record = Sound<CQRSData>();
  ConstTerm term;
  RegTerm* terms[] = {&term};
  record.SetRegTerm(terms, 1);
  Model model;
  FillWith(CandidateOf(record), model);
  const auto* surface = model.GetOutputsWrtDiscCombPtr()->at(0).at("y")->GetCandidatePtr(0);
  RegTerm** const held = static_cast<const CQRSData*>(surface->GetRSPtr(0))->RegTerms;
  delete held[0];
  held[0] = new WideTerm;
  ExpectRefused(model,
                "output \"y\" at k=4: Genome 0: RegTerm 0: no database holds a term of this kind");
}

}  // namespace
}  // namespace Tarvane::Plexura::PXROM
