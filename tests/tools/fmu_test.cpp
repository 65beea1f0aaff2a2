// Models as FMUs: an importer runs them with the compiler of this build, and gets the bits of the
// library.

#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <regex>
#include <sstream>
#include <string>
#include <vector>

#include "command.h"
#include "pxrom/batch.h"
#include "pxrom/codegen.h"
#include "pxrom/constant.h"
#include "support/model_files.h"
#include "support/shared_library.h"
#include "support/source_path.h"
#include "support/surfaces.h"

namespace Tarvane::Plexura::PXROM {
namespace {

namespace fs = std::filesystem;

using Json = nlohmann::json;
using pxrom_codegen::Fmu;
using References = std::vector<unsigned>;

enum { kOk = 0, kDiscard = 2, kError = 3 };
enum { kModelExchange = 0, kCoSimulation = 1 };

/// Before each source: g++ compiles only one file as C after one -x.
const std::string kC = " -x c ";
const char* const kStrict =
    " -pedantic -Wall -Wextra -Wconversion -Wdouble-promotion -Werror -ffp-contract=off -O1 ";

Fmu FmuOf(const CDiscreteCombinations& model, const std::string& name, int version,
          pxrom_codegen::Options options = {}) {
  options.name = name;
  options.errors = true;
  Fmu fmu;
  std::string reason;
  EXPECT_EQ(pxrom_codegen::GenerateFmu(model, options, version, fmu, reason), 0) << reason;
  return fmu;
}

std::string FileOf(const Fmu& fmu, const std::string& path) {
  for (const pxrom_codegen::ArchiveFile& file : fmu.files) {
    if (file.path == path) return file.content;
  }
  ADD_FAILURE() << "no file " << path;
  return "";
}

/// Writes the files of an FMU to a folder and returns its name.
std::string Unpack(const Fmu& fmu) {
  const std::string folder = fmu.identifier + "_" + std::to_string(fmu.version);
  for (const pxrom_codegen::ArchiveFile& file : fmu.files) {
    fs::create_directories((command::Here() / folder / file.path).parent_path());
    command::Write(folder + "/" + file.path, file.content);
  }
  return folder;
}

/// The attribute of the variable `name` in a description.
std::string AttributeOf(const std::string& description, const std::string& name,
                        const std::string& attribute) {
  const std::size_t at = description.find(" name=\"" + name + "\"");
  EXPECT_NE(at, std::string::npos) << name;
  const std::size_t end =
      std::min(description.find("</ScalarVariable>", at), description.find("<Float64", at));
  std::smatch match;
  const std::string text = description.substr(at, end - at);
  return std::regex_search(text, match, std::regex(" " + attribute + "=\"([^\"]*)\""))
             ? match[1].str()
             : "";
}

/// An FMU that is loaded into this program.
class Loaded {
 public:
  explicit Loaded(const Fmu& fmu)
      : version(fmu.version), description(FileOf(fmu, "modelDescription.xml")) {
    const std::string folder = Unpack(fmu);
    std::string sources;
    for (const std::string& source : fmu.sources) sources += kC + folder + "/sources/" + source;
    const std::string library = folder + "/" + fmu.identifier + ".so";
    EXPECT_EQ(command::Shell(PXROM_C_COMPILER " -std=c99" + std::string(kStrict) +
                             "-fPIC -shared -fvisibility=hidden -o " + library + sources + " -lm")
                  .err,
              "");
    library_.emplace((command::Here() / library).string());
  }

  /// A function of the standard, without "fmi2" or "fmi3".
  template <class Function>
  Function* Find(const std::string& name) const {
    return library_->Find<Function>("fmi" + std::to_string(version) + name);
  }
  unsigned Reference(const std::string& name) const {
    return static_cast<unsigned>(std::stoul(AttributeOf(description, name, "valueReference")));
  }

  const int version;
  const std::string description;

 private:
  std::optional<SharedLibrary> library_;
};

struct Callbacks {
  void (*logger)(void*, const char*, int, const char*, const char*, ...);
  void* (*allocateMemory)(std::size_t, std::size_t);
  void (*freeMemory)(void*);
  void (*stepFinished)(void*, int);
  void* environment;
};

/// An instance, with the functions that both versions of FMI have.
class Instance {
 public:
  Instance(const Loaded& fmu, int kind) : fmu_(fmu) {
    const std::string guid = Token();
    const Callbacks none = {};
    if (fmu.version == 2) {
      self_ =
          fmu.Find<void*(const char*, int, const char*, const char*, const Callbacks*, int, int)>(
              "Instantiate")("one", kind, guid.c_str(), "", &none, 0, 0);
    } else if (kind == kModelExchange) {
      self_ = fmu.Find<void*(const char*, const char*, const char*, bool, bool, void*, void*)>(
          "InstantiateModelExchange")("one", guid.c_str(), "", false, false, nullptr, nullptr);
    } else {
      self_ = fmu.Find<void*(const char*, const char*, const char*, bool, bool, bool, bool,
                             const unsigned*, std::size_t, void*, void*, void*)>(
          "InstantiateCoSimulation")("one", guid.c_str(), "", false, false, false, false, nullptr,
                                     0, nullptr, nullptr, nullptr);
    }
    EXPECT_NE(self_, nullptr);
  }
  Instance(const Instance&) = delete;
  Instance& operator=(const Instance&) = delete;
  ~Instance() { fmu_.Find<void(void*)>("FreeInstance")(self_); }

  int Initialize() {
    if (fmu_.version == 2) {
      EXPECT_EQ((fmu_.Find<int(void*, int, double, double, int, double)>("SetupExperiment")(
                    self_, 0, 0.0, 0.0, 0, 0.0)),
                kOk);
      EXPECT_EQ(Call("EnterInitializationMode"), kOk);
    } else {
      EXPECT_EQ((fmu_.Find<int(void*, bool, double, double, bool, double)>(
                    "EnterInitializationMode")(self_, false, 0.0, 0.0, false, 0.0)),
                kOk);
    }
    return Call("ExitInitializationMode");
  }
  int Call(const std::string& name) { return fmu_.Find<int(void*)>(name)(self_); }

  int Get(const References& places, Vector& values) {
    values.assign(places.size(), 0.0);
    if (fmu_.version == 2) {
      return fmu_.Find<int(void*, const unsigned*, std::size_t, double*)>("GetReal")(
          self_, places.data(), places.size(), values.data());
    }
    return fmu_.Find<int(void*, const unsigned*, std::size_t, double*, std::size_t)>("GetFloat64")(
        self_, places.data(), places.size(), values.data(), values.size());
  }
  int Set(const References& places, const Vector& values) {
    if (fmu_.version == 2) {
      return fmu_.Find<int(void*, const unsigned*, std::size_t, const double*)>("SetReal")(
          self_, places.data(), places.size(), values.data());
    }
    return fmu_.Find<int(void*, const unsigned*, std::size_t, const double*, std::size_t)>(
        "SetFloat64")(self_, places.data(), places.size(), values.data(), values.size());
  }
  int SetInteger(unsigned place, int value) {
    if (fmu_.version == 2) {
      return fmu_.Find<int(void*, const unsigned*, std::size_t, const int*)>("SetInteger")(
          self_, &place, 1, &value);
    }
    return fmu_.Find<int(void*, const unsigned*, std::size_t, const int*, std::size_t)>("SetInt32")(
        self_, &place, 1, &value, 1);
  }
  int Step(double time, double size) {
    if (fmu_.version == 2) {
      return fmu_.Find<int(void*, double, double, int)>("DoStep")(self_, time, size, 1);
    }
    bool bits[3] = {true, true, true};
    double last = 0.0;
    return fmu_.Find<int(void*, double, double, bool, bool*, bool*, bool*, double*)>("DoStep")(
        self_, time, size, true, &bits[0], &bits[1], &bits[2], &last);
  }
  int Derive(const std::string& name, const References& unknowns, const References& knowns,
             const Vector& seed, Vector& result) {
    if (fmu_.version == 2) {
      return fmu_.Find<int(void*, const unsigned*, std::size_t, const unsigned*, std::size_t,
                           const double*, double*)>(name)(self_, unknowns.data(), unknowns.size(),
                                                          knowns.data(), knowns.size(), seed.data(),
                                                          result.data());
    }
    return fmu_.Find<int(void*, const unsigned*, std::size_t, const unsigned*, std::size_t,
                         const double*, std::size_t, double*, std::size_t)>(name)(
        self_, unknowns.data(), unknowns.size(), knowns.data(), knowns.size(), seed.data(),
        seed.size(), result.data(), result.size());
  }
  int GetState(void*& state) { return State<int(void*, void**)>("GetFMU")(self_, &state); }
  int SetState(void* state) { return State<int(void*, void*)>("SetFMU")(self_, state); }
  int FreeState(void*& state) { return State<int(void*, void**)>("FreeFMU")(self_, &state); }
  std::string Bytes(void* state) {
    std::size_t size = 0;
    EXPECT_EQ((fmu_.Find<int(void*, void*, std::size_t*)>(
                  fmu_.version == 2 ? "SerializedFMUstateSize" : "SerializedFMUStateSize")(
                  self_, state, &size)),
              kOk);
    std::string bytes(size, '\0');
    EXPECT_EQ((fmu_.Find<int(void*, void*, char*, std::size_t)>(
                  fmu_.version == 2 ? "SerializeFMUstate" : "SerializeFMUState")(
                  self_, state, bytes.data(), size)),
              kOk);
    return bytes;
  }
  int FromBytes(const std::string& bytes, void*& state) {
    return fmu_.Find<int(void*, const char*, std::size_t, void**)>(
        fmu_.version == 2 ? "DeSerializeFMUstate" : "DeserializeFMUState")(self_, bytes.data(),
                                                                           bytes.size(), &state);
  }

 private:
  std::string Token() const {
    std::smatch match;
    EXPECT_TRUE(
        std::regex_search(fmu_.description, match, std::regex("(?:guid|Token)=\"([^\"]+)\"")));
    return match[1].str();
  }
  template <class Function>
  Function* State(const std::string& name) const {
    return fmu_.Find<Function>(name + (fmu_.version == 2 ? "state" : "State"));
  }

  const Loaded& fmu_;
  void* self_ = nullptr;
};

CDiscreteCombinations ModelNamed(const std::string& name) {
  CDiscreteCombinations model;
  ReadModel(SourcePath("tests/data/models/" + name + "/model.pxdb"), model);
  return model;
}

/// The beam, which is compiled once for each version.
const Loaded& BeamAsFmu(int version) {
  static const Loaded two(FmuOf(ModelNamed("study_beam"), "beam", 2));
  static const Loaded three(FmuOf(ModelNamed("study_beam"), "beam", 3));
  return version == 2 ? two : three;
}

References ReferencesOf(const Loaded& fmu, const std::vector<std::string>& names,
                        const std::string& ending = "") {
  References references;
  for (const std::string& name : names) references.push_back(fmu.Reference(name + ending));
  return references;
}

/// Names and words that XML, C or FMI do not allow.
CDiscreteCombinations HostileModel() {
  CDiscreteCombinations model;
  const std::vector<std::string> inputs = {"a b", "a-b", "3", "time", "<&\">", "\xC3\xA9\xFF\x01"};
  for (const std::string& id : inputs) {
    model.RegisterParameter(id, CausalityInput, ContinuousNotManufacturable, true);
    model.RegisterParameterExtraInfos(id, "", "\"<m>\n&",
                                      "Caption \"of\" <" + id + ">\x02\xED\xA0\x80", 1.0, 0.0);
  }
  model.RegisterParameter("inside", CausalityOutput, ContinuousNotManufacturable, true);
  CConstantData constant;
  constant.NumberOfInputVariables = static_cast<int>(inputs.size());
  constant.SetConstantValue(3.5);
  constant.SetStatusReadyForEvaluation(true);
  auto list = std::make_unique<CFittingCandidates>();
  list->GenerateCandidateFromCRSData(&constant);
  EXPECT_EQ(model.RegisterDiscreteCombination({}, {{"inside", list.release()}}), 0);
  return model;
}

class ModelAsFmu : public testing::TestWithParam<int> {};

INSTANTIATE_TEST_SUITE_P(Versions, ModelAsFmu, testing::Values(2, 3));

TEST_P(ModelAsFmu, GivesTheLibrarysBits) {
  // With discrete values; with errors of surfaces; without errors.
  for (const std::string name : {"study_beam", "kriging_sk_linnerud", "svr_sk_eps_rbf"}) {
    SCOPED_TRACE(name);
    const CDiscreteCombinations model = ModelNamed(name);
    std::unique_ptr<Loaded> own;
    if (name != "study_beam") own = std::make_unique<Loaded>(FmuOf(model, name, GetParam()));
    const Loaded& fmu = own != nullptr ? *own : BeamAsFmu(GetParam());
    Instance instance(fmu, kCoSimulation);
    ASSERT_EQ(instance.Initialize(), kOk);
    const Json cases =
        Json::parse(ContentOf(SourcePath("tests/data/models/" + name + "/cases.json")));
    double time = 0.0;
    for (const Json& c : cases) {
      std::vector<std::pair<std::string, int>> key;
      for (const std::string& id : model.ListEnabledDiscreteParameterWrtRegistrationRank()) {
        key.emplace_back(id, c["discrete"].at(id));
        ASSERT_EQ(instance.SetInteger(fmu.Reference(id), key.back().second), kOk);
      }
      CPreparedModel library;
      ASSERT_EQ(CPreparedModel::Prepare(model, key, library), 0);
      Vector x;
      for (const std::string& id : library.InputIDs()) x.push_back(c["continuous"].at(id));
      const References inputs = ReferencesOf(fmu, library.InputIDs());
      const References outputs = ReferencesOf(fmu, library.OutputIDs());
      ASSERT_EQ(instance.Set(inputs, x), kOk);
      ASSERT_EQ(instance.Step(time, 0.25), kOk);
      time += 0.25;

      Vector want(outputs.size());
      Vector wantErrors(outputs.size());
      Vector got;
      library.Evaluate(x.data(), 1, PrecisionExact, want.data(), nullptr, nullptr);
      EXPECT_EQ(instance.Get(outputs, got), kOk);
      EXPECT_TRUE(SameBits(got, want));
      if (name != "svr_sk_eps_rbf") {
        library.Evaluate(x.data(), 1, PrecisionExact, want.data(), wantErrors.data(), nullptr);
        EXPECT_EQ(instance.Get(ReferencesOf(fmu, library.OutputIDs(), "_error"), got), kOk);
        EXPECT_TRUE(SameBits(got, wantErrors));
      }
      Vector gradients(outputs.size() * inputs.size());
      library.EvaluateGradients(x.data(), 1, gradients.data(), nullptr);
      for (std::size_t i = 0; i < inputs.size(); ++i) {
        Vector column(outputs.size());
        ASSERT_EQ(instance.Derive("GetDirectionalDerivative", outputs, {inputs[i]}, {1.0}, column),
                  kOk);
        for (std::size_t o = 0; o < outputs.size(); ++o) {
          EXPECT_EQ(column[o], gradients[o * inputs.size() + i]);
        }
      }
    }
    EXPECT_EQ(instance.Call("Terminate"), kOk);
  }
}

TEST_P(ModelAsFmu, StartsInTheMiddleOfTheSamples) {
  const Loaded& fmu = BeamAsFmu(GetParam());
  Instance instance(fmu, kModelExchange);
  ASSERT_EQ(instance.Initialize(), kOk);
  Vector values;
  ASSERT_EQ(instance.Get({fmu.Reference("h"), fmu.Reference("inside")}, values), kOk);
  EXPECT_EQ(std::to_string(values[0]).substr(0, 7),
            AttributeOf(fmu.description, "h", "start").substr(0, 7));
  EXPECT_EQ(values[1], 1.0);
  ASSERT_EQ(instance.Set({fmu.Reference("h")}, {1e6}), kOk);
  ASSERT_EQ(instance.Get({fmu.Reference("inside")}, values), kOk);
  EXPECT_EQ(values[0], 0.0);
}

TEST_P(ModelAsFmu, DiscardsValuesWithoutACombination) {
  const Loaded& fmu = BeamAsFmu(GetParam());
  Instance instance(fmu, kCoSimulation);
  ASSERT_EQ(instance.SetInteger(fmu.Reference("Holes"), 77), kOk);
  ASSERT_EQ(instance.Initialize(), kOk);
  Vector values;
  EXPECT_EQ(instance.Get({fmu.Reference("mass")}, values), kDiscard);
  EXPECT_TRUE(std::isnan(values[0]));
  EXPECT_EQ(instance.Get({fmu.Reference("deflection_error")}, values), kOk);
  EXPECT_TRUE(std::isnan(values[0]));
  Vector slope(1);
  EXPECT_EQ(instance.Derive("GetDirectionalDerivative", {fmu.Reference("mass")},
                            {fmu.Reference("h")}, {1.0}, slope),
            kDiscard);
}

TEST_P(ModelAsFmu, SavesStatesOfIndependentInstances) {
  const Loaded& fmu = BeamAsFmu(GetParam());
  Instance one(fmu, kCoSimulation);
  Instance other(fmu, kCoSimulation);
  ASSERT_EQ(one.Initialize(), kOk);
  ASSERT_EQ(other.Initialize(), kOk);
  const References h = {fmu.Reference("h")};
  const References seen = {fmu.Reference("h"), fmu.Reference("mass")};
  Vector start;
  Vector saved;
  Vector now;
  ASSERT_EQ(one.Get(seen, start), kOk);
  ASSERT_EQ(one.Set(h, {100.0}), kOk);
  ASSERT_EQ(one.Get(seen, saved), kOk);
  void* state = nullptr;
  ASSERT_EQ(one.GetState(state), kOk);
  const std::string bytes = one.Bytes(state);
  ASSERT_EQ(one.Set(h, {110.0}), kOk);
  ASSERT_EQ(one.SetState(state), kOk);
  ASSERT_EQ(one.Get(seen, now), kOk);
  EXPECT_EQ(now, saved);
  ASSERT_EQ(other.Get(seen, now), kOk);
  EXPECT_EQ(now, start);
  void* copy = nullptr;
  ASSERT_EQ(other.FromBytes(bytes, copy), kOk);
  ASSERT_EQ(other.SetState(copy), kOk);
  ASSERT_EQ(other.Get(seen, now), kOk);
  EXPECT_EQ(now, saved);
  EXPECT_EQ(other.FreeState(copy), kOk);
  EXPECT_EQ(copy, nullptr);
  EXPECT_EQ(one.FreeState(state), kOk);
  ASSERT_EQ(one.Call("Reset"), kOk);
  ASSERT_EQ(one.Initialize(), kOk);
  ASSERT_EQ(one.Get(seen, now), kOk);
  EXPECT_EQ(now, start);
  // A state is not one of another kind of instance.
  Instance exchange(fmu, kModelExchange);
  ASSERT_EQ(other.GetState(state), kOk);
  EXPECT_EQ(exchange.SetState(state), kError);
  EXPECT_EQ(other.FreeState(state), kOk);
}

TEST_P(ModelAsFmu, SetsNothingUnlessAllCanBeSet) {
  const Loaded& fmu = BeamAsFmu(GetParam());
  Instance instance(fmu, kModelExchange);
  ASSERT_EQ(instance.Initialize(), kOk);
  Vector before;
  Vector after;
  const References h = {fmu.Reference("h")};
  ASSERT_EQ(instance.Get(h, before), kOk);
  EXPECT_EQ(instance.Set({h[0], fmu.Reference("mass")}, {1.0, 2.0}), kError);
  ASSERT_EQ(instance.Get(h, after), kOk);
  EXPECT_EQ(after, before);
}

TEST_P(ModelAsFmu, HasDerivativesOfErrors) {
  const Loaded& fmu = BeamAsFmu(GetParam());
  Instance instance(fmu, kCoSimulation);
  ASSERT_EQ(instance.Initialize(), kOk);
  const References error = {fmu.Reference("deflection_error")};
  const References h = {fmu.Reference("h")};
  Vector slope(1);
  ASSERT_EQ(instance.Derive("GetDirectionalDerivative", error, h, {1.0}, slope), kOk);
  Vector x;
  Vector below;
  Vector above;
  ASSERT_EQ(instance.Get(h, x), kOk);
  ASSERT_EQ(instance.Set(h, {x[0] - 1e-3}), kOk);
  ASSERT_EQ(instance.Get(error, below), kOk);
  ASSERT_EQ(instance.Set(h, {x[0] + 1e-3}), kOk);
  ASSERT_EQ(instance.Get(error, above), kOk);
  EXPECT_NEAR(slope[0], (above[0] - below[0]) / 2e-3, 1e-4 * std::abs(slope[0]));
}

TEST(Fmu3, AdjointDerivativesAreTheTranspose) {
  const Loaded& fmu = BeamAsFmu(3);
  Instance instance(fmu, kCoSimulation);
  ASSERT_EQ(instance.Initialize(), kOk);
  const References outputs = ReferencesOf(fmu, {"mass", "stress"});
  const References inputs = ReferencesOf(fmu, {"L", "h"});
  Vector forward(2);
  Vector backward(2);
  ASSERT_EQ(instance.Derive("GetDirectionalDerivative", outputs, {inputs[1]}, {1.0}, forward), kOk);
  ASSERT_EQ(instance.Derive("GetAdjointDerivative", {outputs[1]}, inputs, {1.0}, backward), kOk);
  EXPECT_EQ(backward[1], forward[1]);
}

// A program with the FMU in it, under the sanitizers.
TEST_P(ModelAsFmu, RefusesWrongCallsInEachMode) {
  pxrom_codegen::Options options;
  options.outputs = {"deflection"};
  for (const Fmu& fmu : {FmuOf(ModelNamed("study_beam"), "deflection", GetParam(), options),
                         FmuOf(HostileModel(), "hostile", GetParam())}) {
    const std::string folder = Unpack(fmu);
    const std::string version = std::to_string(GetParam());
    const std::string program = folder + "/refusals";
    EXPECT_EQ(command::Shell(PXROM_C_COMPILER " -std=c99 -fsanitize=address,undefined "
                                              "-fno-sanitize-recover=all -DFMU_SOURCE='\"" +
                             fmu.identifier + "_fmi.c\"' -I" + folder + "/sources -o " + program +
                             " tests/tools/fmi" + version + "_refusals.c" + kC + folder +
                             "/sources/" + fmu.sources[0] + " -lm")
                  .err,
              "");
    const command::Result result = command::Shell("./" + program);
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.out, "values kept\n");
    EXPECT_EQ(result.err, "");
  }
}

TEST_P(ModelAsFmu, KeepsHostileNamesInDescriptions) {
  const Loaded fmu(FmuOf(HostileModel(), "hostile", GetParam()));
  EXPECT_EQ(AttributeOf(fmu.description, "a_b", "description").substr(0, 12), "a b: Caption");
  EXPECT_EQ(AttributeOf(fmu.description, "a_b_2", "description").substr(0, 12), "a-b: Caption");
  EXPECT_EQ(AttributeOf(fmu.description, "_3", "unit"), "&quot;&lt;m&gt; &amp;");
  EXPECT_EQ(AttributeOf(fmu.description, "time", "causality"), "input");
  EXPECT_EQ(AttributeOf(fmu.description, "time_2", "causality"), "independent");
  EXPECT_EQ(AttributeOf(fmu.description, "inside_2", "causality"), "output");
  Instance instance(fmu, kCoSimulation);
  ASSERT_EQ(instance.Initialize(), kOk);
  Vector value;
  EXPECT_EQ(instance.Get({fmu.Reference("inside")}, value), kOk);
  EXPECT_EQ(value[0], 3.5);
}

TEST_P(ModelAsFmu, IsValidForTheSchemas) {
  const std::string version = std::to_string(GetParam());
  const std::string schema =
      "xmllint --noout --schema tests/data/fmi/" + version + ".0/fmi" + version;
  for (const Fmu& fmu : {FmuOf(ModelNamed("study_beam"), "beam", GetParam()),
                         FmuOf(HostileModel(), "hostile", GetParam())}) {
    const std::string folder = Unpack(fmu);
    const command::Result described =
        command::Shell(schema + "ModelDescription.xsd " + folder + "/modelDescription.xml");
    EXPECT_EQ(described.status, 0) << described.err;
    if (GetParam() == 2) continue;
    const command::Result built =
        command::Shell(schema + "BuildDescription.xsd " + folder + "/sources/buildDescription.xml");
    EXPECT_EQ(built.status, 0) << built.err;
  }
}

TEST(Fmu3, IsBuiltAsItsDescriptionSays) {
  const Fmu fmu = FmuOf(HostileModel(), "hostile", 3);
  const std::string build = FileOf(fmu, "sources/buildDescription.xml");
  const std::string first = build.substr(0, build.find("</BuildConfiguration>"));
  const auto all = [&](const std::string& pattern, const std::string& before) {
    std::string words;
    const std::regex regex(pattern);
    for (std::sregex_iterator at(first.begin(), first.end(), regex), end; at != end; ++at) {
      words += before + (*at)[1].str();
    }
    return words;
  };
  const std::string folder = Unpack(fmu);
  const command::Result result = command::Shell(
      "cd " + folder + "/sources && " PXROM_C_COMPILER " -shared -fPIC" +
      all("compilerOptions=\"([^\"]+)\"", " ") + all("SourceFile name=\"([^\"]+)\"", kC) +
      all("Library name=\"([^\"]+)\"", " -l") + " -o built.so");
  EXPECT_EQ(result.status, 0) << result.err;
  EXPECT_TRUE(fs::exists(command::Here() / folder / "sources/built.so"));
}

TEST_P(ModelAsFmu, CompilesAsCxxWithAPrefix) {
  const Fmu fmu = FmuOf(ModelNamed("study_beam"), "beam", GetParam());
  const std::string folder = Unpack(fmu);
  const std::string version = std::to_string(GetParam());
  const command::Result result =
      command::Shell(PXROM_C_COMPILER "++ -std=c++17" + std::string(kStrict) + "-DFMI" + version +
                     "_FUNCTION_PREFIX=beam_ -c -o " + folder + "/prefixed.o " + folder +
                     "/sources/" + fmu.sources[1] + " && nm " + folder +
                     "/prefixed.o | grep -c ' T beam_fmi" + version + "GetFMU[sS]tate$'");
  EXPECT_EQ(result.err, "");
  EXPECT_EQ(result.out, "1\n");
}

Matrix NumbersOf(const std::string& table) {
  Matrix rows;
  std::istringstream lines(table);
  std::string line;
  std::getline(lines, line);
  while (std::getline(lines, line)) {
    std::istringstream cells(line);
    rows.emplace_back();
    for (std::string cell; std::getline(cells, cell, ',');) rows.back().push_back(std::stod(cell));
  }
  return rows;
}

// The command and the example that the documents show, with the compiler that they find.
TEST(Fmu, IsSteppedByTheExampleToTheValuesOfTheCommand) {
  const command::Result stepped = command::Shell(
      "pxrom fmu --export stepped.fmu examples/beam.pxdb --combination Holes=2,Material=1 "
      "--outputs mass,stress >exported && "
      "python3 examples/step_fmu.py stepped.fmu F=1000:5000 h=100 L=1.5 b=45");
  ASSERT_EQ(stepped.status, 0) << stepped.err;
  const command::Result evaluated = command::Shell(
      "printf 'F\\n1000\\n1800\\n2600\\n3400\\n4200\\n5000\\n' | "
      "pxrom eval examples/beam.pxdb --points - h=100 L=1.5 b=45 Holes=2 Material=1 | "
      "cut -d, -f5,7-9");
  const Matrix got = NumbersOf(stepped.out);
  const Matrix want = NumbersOf(evaluated.out);
  ASSERT_EQ(want.size(), 6U) << evaluated.err;
  ASSERT_EQ(got.size(), want.size());
  for (std::size_t k = 0; k < want.size(); ++k) {
    // time, mass, stress, their errors, inside; and mass, its raw error, stress, its error.
    ASSERT_EQ(got[k].size(), 6U);
    EXPECT_EQ(got[k][1], want[k][0]);
    EXPECT_EQ(got[k][3], want[k][1]);
    EXPECT_EQ(got[k][2], want[k][2]);
    EXPECT_EQ(got[k][4], want[k][3]);
  }
}

TEST(Fmu, RefusesAnotherVersion) {
  Fmu fmu;
  std::string reason;
  EXPECT_EQ(pxrom_codegen::GenerateFmu(ModelNamed("study_beam"), {}, 1, fmu, reason), 1);
  EXPECT_EQ(reason, "There are FMUs of FMI 2 and 3, but not of 1.");
}

}  // namespace
}  // namespace Tarvane::Plexura::PXROM
