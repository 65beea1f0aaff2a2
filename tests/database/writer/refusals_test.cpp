// Objects that a text can't hold are refused with a reason, and nothing is written.

#include <gtest/gtest.h>

#include <functional>
#include <limits>

#include "pxrom/constant.h"
#include "pxrom/gaussian_process.h"
#include "pxrom/kriging.h"
#include "pxrom/moving_least_squares.h"
#include "pxrom/regression.h"
#include "pxrom/support_vector.h"
#include "support/surfaces.h"
#include "support/test_models.h"

namespace Tarvane::Plexura::PXROM {
namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInf = std::numeric_limits<double>::infinity();

using Model = CDiscreteCombinations;
using Candidate = CFittingCandidate;

/// A change of a sound object, and the reason of its refusal.
template <class Object>
struct Change {
  const char* why;
  std::function<void(Object&)> apply;
};

/// Sets one field or, with several changes, one after the other.
template <class Object, class Value, class Given>
auto Set(Value Object::*field, Given given) {
  return [=](Object& object) { object.*field = static_cast<Value>(given); };
}
template <class... Changes>
auto All(Changes... changes) {
  return [=](auto& object) mutable { (changes(object), ...); };
}

void ExpectRefused(const Model& model, const std::string& why) {
  std::string text = "kept";
  std::string reason;
  EXPECT_EQ(CWriterPXROMDatabase().WriteDiscreteCombinations(model, text, reason), 1) << why;
  EXPECT_EQ(reason, why);
  EXPECT_EQ(CWriterPXROMDatabase().WriteDiscreteCombinations(model, text), 1);
  EXPECT_EQ(text, "kept");
}

template <class Record>
Record Sound() {
  Record record;
  MakeReady(record, 1, {{0.25}, {0.5}}, {1, 2});
  return record;
}

Candidate SoundCandidate() { return CandidateOf(Sound<CConstantData>()); }

TEST(Refusals, RegistryAndCombinations) {
  ExpectRefused(Model(), "a database needs a parameter");
  for (const char* const blank : {"", " \t"}) {
    Model model;
    model.RegisterParameter(blank, CausalityInput, ContinuousManufacturable, true);
    ExpectRefused(model, "the ID of the only parameter is blank");
  }
  const auto parameter = [](const char* id, E_ParameterCausality causality, E_ParameterType type,
                            bool enabled = true) {
    return [=](Model& m) { m.RegisterParameter(id, causality, type, enabled); };
  };
  const auto id = [&](const char* name) {
    return parameter(name, CausalityInput, DerivedParameter);
  };
  const auto infos = [](const char* name, const char* unit, const char* caption, double upper = 0,
                        double lower = 0) {
    return [=](Model& m) { m.RegisterParameterExtraInfos(name, "", unit, caption, upper, lower); };
  };
  const std::vector<Change<Model>> changes = {
      {"the ID \"a,b\" holds \",\", which separates values", id("a,b")},
      {"the ID \"{a\" holds \"{\", which separates values", id("{a")},
      {"the ID \"a?\" holds a line end", id("a\r")},
      {"the ID \"Units=\" holds the key \"Units=\"", id("Units=")},
      {"the ID \"ShellTypes=4\" holds the key \"Types=\"", id("ShellTypes=4")},
      {"the ID \"</ParameterRegistry>\" holds the tag \"</ParameterRegistry>\"",
       id("</ParameterRegistry>")},
      {"the ID \"<PlexuraData ID=0>\" holds the tag \"<PlexuraData ID=\"",
       id("<PlexuraData ID=0>")},
      {"the unit of \"x\" holds \",\", which separates values", infos("x", "m,s", "")},
      {"the caption of \"k\" holds the key \"UpperBounds=\"", infos("k", "", "UpperBounds=5")},
      {"a bound of \"x\" is not finite", infos("x", "", "", kNaN)},
      {"a bound of \"x\" is not finite", infos("x", "", "", 0, -kInf)},
      {"\"k\" is not continuous, but has a unit or bounds", infos("k", "mm", "")},
      {"\"k\" is not continuous, but has a unit or bounds", infos("k", "", "", 2)},
      {"\"k\" is not continuous, but has a unit or bounds", infos("k", "", "", 0, -0.0)},
      {"a combination has 1 discrete values, but there are 2 enabled discrete inputs",
       parameter("n", CausalityInput, DiscreteParameter)},
      {"the combination at k=4 has 1 outputs, but 2 are enabled",
       parameter("z", CausalityOutput, ContinuousNotManufacturable)},
      {"the combination at k=4 has 1 outputs, but 0 are enabled",
       parameter("y", CausalityOutput, ContinuousNotManufacturable, false)},
      {"the output \"y}\" holds \"}\", which separates values",
       [](Model& m) {
         m.RegisterDiscreteCombination({{"k", 5}}, {{"y}", ListOf(SoundCandidate())}});
       }},
  };
  Model sound;
  FillWith(SoundCandidate(), sound);
  Again(sound);
  for (const Change<Model>& change : changes) {
    Model model(sound);
    change.apply(model);
    ExpectRefused(model, change.why);
  }

  // Values of equal rank are sorted in a key, so this key is unreachable once the ranks are equal.
  Model model;
  model.RegisterParameter("k", CausalityInput, DiscreteParameter, true);
  model.RegisterParameter("n", CausalityInput, DiscreteParameter, true);
  model.RegisterDiscreteCombination({{"k", 4}, {"n", 3}}, {});
  Again(model);
  model.SetRegistrationRank({{"k", 1}, {"n", 1}});
  ExpectRefused(model,
                "the combination at k=4, n=3 can't be reached any more: inputs of equal rank need "
                "ascending values");
}

TEST(Refusals, CandidateLists) {
  Model model;
  model.RegisterParameter("y", CausalityOutput, ContinuousNotManufacturable, true);
  auto* const list = new CFittingCandidates;
  model.RegisterDiscreteCombination({}, {{"y", list}});
  ExpectRefused(model, "output \"y\": its list has 0 candidates, but a database holds exactly one");
  list->AddFittingCandidate(SoundCandidate());
  list->SetCandidateIdxForEvaluation(1);
  ExpectRefused(model, "output \"y\": its list evaluates another candidate than its first");
  list->AddFittingCandidate(SoundCandidate());
  ExpectRefused(model, "output \"y\": its list has 2 candidates, but a database holds exactly one");
}

TEST(Refusals, Candidates) {
  const char* const unasked =
      "it holds cross-validation data, but error prediction is not required of it";
  const auto set = [](auto operation, auto value) {
    return [=](Candidate& c) mutable { (c.*operation)(value); };
  };
  const auto surfaces = [](const Vector& weights, bool errors) {
    return [=](Candidate& c) {
      CConstantData surface = Sound<CConstantData>();
      c.SetRSAndWeights(std::vector<CRSData*>(weights.size(), &surface), weights, errors);
    };
  };
  const auto validation = [&](std::size_t rows, double distance) {
    const auto sorted = [rows](Candidate& c) {
      Matrix samples(rows, {0.5});
      std::vector<int> folds = {1, 1};
      c.SetCrossValidationData(samples, folds);
    };
    return All(sorted, set(&Candidate::SetDPMinDist, distance));
  };
  const auto sub = [](double slope) {
    return [=](Candidate& c) {
      CConstantData surface = Sound<CConstantData>();
      surface.OutputScaleSlope = slope;
      c.AddSubRS(&surface);
    };
  };
  const auto unask = set(&Candidate::SetbIsErrPredRequired, false);
  const std::vector<Change<Candidate>> changes = {
      {"CandidateInputSamples is not a matrix of 3 rows and 1 columns, as the counts beside it say",
       set(&Candidate::SetNumberOfSamples, 3)},
      {"CandidateOutputScaleSlope holds a number that is not finite",
       set(&Candidate::SetOutputScaleSlope, kInf)},
      {"its version is 170, but candidates always read as version 192",
       set(&Candidate::setDataVersion, FittingCandidateVersion170)},
      {"it has 3 surfaces, but 2 weights", All(surfaces({1, 2}, true), unask)},
      {unasked, sub(1)},
      {unasked, All(validation(2, 0), unask)},
      {unasked, set(&Candidate::SetDPMinDist, 0.5)},
      {"attScInputPoints is not a matrix of 2 rows and 1 columns, as the counts beside it say",
       validation(3, 0.5)},
      {"Rho holds a number that is not finite", validation(2, kNaN)},
      {"Genome 0: GenomeWeight holds a number that is not finite", surfaces({kNaN}, false)},
      {"Genome 1: OutputScaleSlope holds a number that is not finite",
       All(validation(2, 0.5), sub(kNaN))},
  };
  for (const Change<Candidate>& change : changes) {
    Candidate candidate = SoundCandidate();
    change.apply(candidate);
    Model model;
    FillWith(candidate, model);
    ExpectRefused(model, std::string("output \"y\" at k=4: ") + change.why);
  }
}

void ExpectRefusedAsSecond(const CRSData& record, const std::string& why) {
  Candidate candidate = SoundCandidate();
  candidate.AddRSAndWeight(&record, 1);
  Model model;
  FillWith(candidate, model);
  ExpectRefused(model, "output \"y\" at k=4: Genome 1: " + why);
}

template <class Record>
void ExpectEachRefused(const std::vector<Change<Record>>& changes) {
  Model sound;
  FillWith(CandidateOf(Sound<Record>()), sound);
  Again(sound);
  for (const Change<Record>& change : changes) {
    Record record = Sound<Record>();
    change.apply(record);
    ExpectRefusedAsSecond(record, change.why);
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
       Set(&CConstantData::InputSamples, Matrix{{0.25}, {0.5, 0}})},
      {"InputSamples is not a matrix of -2 rows and 1 columns, as the counts beside it say",
       Set(&CConstantData::NumberOfSamples, -2)},
      {"InputSamples holds a number that is not finite",
       Set(&CConstantData::InputSamples, Matrix{{0.25}, {kInf}})},
      {"InputScaleSlopes holds a number that is not finite",
       Set(&CConstantData::InputScaleSlopes, Vector{kNaN})},
      {"ConstantValue holds a number that is not finite",
       [](CConstantData& r) { r.SetConstantValue(kNaN); }},
      {"no reader restores its RSDataVersion", Set(&CRSData::RSDataVersion_, 170)},
      // Rows without values are not in the text, and readers limit their number by its length.
      {"1000 samples without any input are too many",
       All(Set(&CRSData::NumberOfInputVariables, 0), Set(&CRSData::NumberOfSamples, 1000),
           Set(&CRSData::InputSamples, Matrix(1000)))},
  });
  ExpectRefusedAsSecond(OtherData(), "it is of no known family: its DataType is 77");
}

const char* const kUnsaved = "it holds predictor error data, but SavePredictorError is not set";

TEST(Refusals, Families) {
  using Kriging = CKrigingData;
  const auto saved = Set(&Kriging::SavePredictorError, true);
  ExpectEachRefused<Kriging>({
      {"a KrigingVersion below 192 has no predictor error",
       All(saved, Set(&Kriging::KrigingDataVersion_, 191))},
      {kUnsaved, Set(&Kriging::Ft, Matrix{{1}})},
      {kUnsaved, Set(&Kriging::Sigma2, -0.0)},
      {kUnsaved, Set(&Kriging::NumberOfPolyCoeff, 1)},
      {"KrigingFTilde is not a matrix of 1 rows and 2 columns, as the counts beside it say",
       All(saved, Set(&Kriging::NumberOfPolyCoeff, 1), Set(&Kriging::InvC, Matrix{{1, 0}, {0, 1}}),
           Set(&Kriging::InvG, Matrix{{1}}), Set(&Kriging::Ft, Matrix{{1}, {2}}))},
  });
  using Process = CGaussianProcessData;
  ExpectEachRefused<Process>({
      {"its GaussianProcessDataVersion is not known",
       Set(&Process::GaussianProcessDataVersion_, 2)},
      {"a length in FactorLengths is 0, which would read as an infinite one",
       Set(&Process::FactorLengths, Vector{kInf, 0})},
      {"GPWeights holds a number that is not finite", Set(&Process::Weights, Vector{kInf})},
      {kUnsaved, Set(&Process::ErrorIncludesNoise, true)},
      {kUnsaved, Set(&Process::InverseFactor, Vector{1})},
      {"GPTrendAtSamples is not a matrix of 0 rows and 0 columns, as the counts beside it say",
       All(Set(&Process::SavePredictorError, true), Set(&Process::TrendAtSamples, Matrix{{1, 2}}))},
  });
  ExpectEachRefused<CSVRData>({
      {"an SVRVersion below 171 has no SVRKernelArray", Set(&CSVRData::SVRDataVersion_, 170)},
      {"SVREpsilonValue is not between 0 and 1", Set(&CSVRData::EpsilonValue, 1)},
      {"SVRNuValue is not between 0 and 1", Set(&CSVRData::NuValue, kNaN)},
      {"SVRConstantValue is not above 0", Set(&CSVRData::ConstantValue, 0)},
  });
  ExpectEachRefused<CMLSData>({
      {"an MLSExtraPointPercent other than 0 needs option 3 and must not be -1",
       Set(&CMLSData::ExtraPointPercent, 5)},
  });
}

/// A host's own term, whose number of coefficients only it knows.
class WideTerm : public ConstTerm {
 public:
  int GetNumParam(int& count) const override {
    count = 2;
    return 0;
  }
};

TEST(Refusals, RegressionRecords) {
  const auto saved = Set(&CQRSData::SavePredictorError, true);
  const auto terms = [](std::vector<RegTerm*> list) {
    return [=](CQRSData& r) mutable { r.SetRegTerm(list.data(), static_cast<int>(list.size())); };
  };
  const auto counted = [](int count) { return [=](CQRSData& r) { r.SetRegTerm(nullptr, count); }; };
  ConstTerm plain;
  CrossPolyTerm product;
  ConstTerm infinite;
  infinite.SetParamVal(1, &kInf);
  ExpectEachRefused<CQRSData>({
      {"a QRSVersion below 192 has no predictor error",
       All(saved, Set(&CQRSData::QRSDataVersion_, 191))},
      {kUnsaved, Set(&CQRSData::InvXtX, Matrix{{1}})},
      {kUnsaved, Set(&CQRSData::Sigma2, 1)},
      {"QRSInvXtX is not a matrix of 1 rows and 1 columns, as the counts beside it say",
       All(saved, Set(&CQRSData::NumberOfSelectedRegTerms, 1),
           Set(&CQRSData::InvXtX, Matrix{{1, 0}, {0, 1}}))},
      {"it counts terms that are not there", counted(2)},
      {"it counts terms that are not there", counted(-1)},
      {"RegTerm 1: the term is missing", terms({&plain, nullptr})},
      {"RegTerm 0: no database holds a term of this kind", terms({&product})},
      {"RegTerm 0: coefficientValue holds a number that is not finite", terms({&infinite})},
  });

  CQRSData record = Sound<CQRSData>();
  terms({&plain})(record);
  Model model;
  FillWith(CandidateOf(record), model);
  RegTerm** const held = SurfaceOf<CQRSData>(model).RegTerms;
  delete held[0];
  held[0] = new WideTerm;
  ExpectRefused(model,
                "output \"y\" at k=4: Genome 0: RegTerm 0: no database holds a term of this kind");
}

}  // namespace
}  // namespace Tarvane::Plexura::PXROM
