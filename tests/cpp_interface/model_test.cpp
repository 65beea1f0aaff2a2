// The model of a few lines: the numbers of the prepared model, and sentences for what is refused.

#include "pxrom/model.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <thread>

#include "pxrom/discrete_combinations.h"
#include "support/model_files.h"
#include "support/source_path.h"

namespace {

using Tarvane::Plexura::PXROM::CDiscreteCombinations;
using Tarvane::Plexura::PXROM::CPreparedModel;
using Tarvane::Plexura::PXROM::PrecisionExact;

const pxrom::Model::Discrete kSteel = {{"Material", 1}, {"Holes", 2}};
const pxrom::Model::Continuous kPoint = {{"L", 1.5}, {"b", 45}, {"h", 90}, {"F", 3000}};

pxrom::Model Beam() { return pxrom::Model::load(SourcePath("examples/beam.pxdb")); }

std::string ReasonOf(const std::function<void()>& call) {
  try {
    call();
  } catch (const pxrom::Error& error) {
    return error.what();
  }
  return "nothing is refused";
}

TEST(Model, PredictsAsThePreparedModel) {
  CDiscreteCombinations combinations;
  Tarvane::Plexura::PXROM::ReadModel(SourcePath("examples/beam.pxdb"), combinations);
  CPreparedModel direct;
  ASSERT_EQ(CPreparedModel::Prepare(combinations, {{"Material", 1}, {"Holes", 2}}, direct), 0);
  const double x[] = {90, 3000, 1.5, 45};
  double values[3];
  double errors[3];
  double lower[3];
  double distances[3];
  ASSERT_EQ(direct.EvaluateWithUnits(x, 1, PrecisionExact, {values, errors, lower}), 0);
  ASSERT_EQ(direct.LocatePoints(x, 1, {nullptr, distances, nullptr}), 0);

  const pxrom::Answer answer = Beam().predict(kSteel, kPoint);
  EXPECT_EQ(answer.outputs().size(), 3U);
  EXPECT_EQ(answer["mass"].value, values[1]);
  EXPECT_EQ(answer["mass"].error, errors[1]);
  EXPECT_EQ(answer["mass"].lower, lower[1]);
  EXPECT_EQ(answer["mass"].origin.surfaces, 2U);
  EXPECT_TRUE(answer["mass"].inside);
  EXPECT_EQ(answer["mass"].distance, distances[1]);
  EXPECT_EQ(answer["stress"].value, values[2]);

  const pxrom::Table table = Beam().predictRows(kSteel, {90, 3000, 1.5, 45, 90, 3000, 2.5, 45});
  EXPECT_EQ(table.outputs, (std::vector<std::string>{"deflection", "mass", "stress"}));
  EXPECT_EQ(table.values.size(), 6U);
  EXPECT_EQ(table.values[1], values[1]);
  EXPECT_EQ(table.errors[2], errors[2]);
  EXPECT_EQ(Beam().inputs(kSteel), (std::vector<std::string>{"h", "F", "L", "b"}));

  pxrom::Model::Continuous far = kPoint;
  far["L"] = 2.5;
  EXPECT_FALSE(Beam().predict(kSteel, far)["mass"].inside);
}

TEST(Model, SaysWhatItRefuses) {
  const pxrom::Model beam = Beam();
  EXPECT_EQ(ReasonOf([] { pxrom::Model::load("nowhere.pxdb"); }),
            "can't read anything from the file \"nowhere.pxdb\"");
  const std::string folder = SourcePath("examples");
  EXPECT_EQ(ReasonOf([&] { pxrom::Model::load(folder); }),
            "can't read anything from the file \"" + folder + "\"");
  EXPECT_NE(ReasonOf([] { pxrom::Model::parse("nothing"); }).find("line 1"), std::string::npos);
  EXPECT_EQ(ReasonOf([&] { beam.predict({}, kPoint); }),
            "The model has 2 enabled discrete inputs, but 0 discrete values are given.");
  EXPECT_EQ(ReasonOf([&] {
              beam.predict({{"Material", 1}, {"L", 2}}, kPoint);
            }),
            "A discrete input has no value, and another one is named.");
  EXPECT_EQ(ReasonOf([&] { beam.predict(kSteel, {{"L", 1.5}}); }), "The input 'h' has no value.");
  pxrom::Model::Continuous more = kPoint;
  more["width"] = 1.0;
  EXPECT_EQ(ReasonOf([&] { beam.predict(kSteel, more); }), "There is no continuous input 'width'.");
  EXPECT_EQ(ReasonOf([&] { beam.predict(kSteel, kPoint)["cost"]; }), "There is no output 'cost'.");
  EXPECT_EQ(ReasonOf([&] { beam.predictRows(kSteel, std::vector<double>(5, 1.0)); }),
            "There are 5 values, which is no number of points of 4 inputs each.");
  std::string stopped = Tarvane::Plexura::PXROM::ContentOf(SourcePath("examples/constant.pxdb"));
  stopped.replace(stopped.find("IsReadyForEvaluation=1"), 22, "IsReadyForEvaluation=0");
  EXPECT_NE(ReasonOf([&] {
              pxrom::Model::parse(stopped).predict({}, {{"x", 0.5}});
            }).find("The output 'y' can't be evaluated"),
            std::string::npos);
  pxrom::Model::Limit limit;
  limit.operations = 1;
  const std::string text = Tarvane::Plexura::PXROM::ContentOf(SourcePath("examples/beam.pxdb"));
  EXPECT_NE(ReasonOf([&] {
              pxrom::Model::parse(text, limit).predict(kSteel, kPoint);
            }).find("the limit is 1"),
            std::string::npos);
}

TEST(Model, IsSharedByThreadsAndCopies) {
  const pxrom::Model beam = Beam();
  const double want = Beam().predict(kSteel, kPoint)["mass"].value;
  double got[4] = {};
  std::vector<std::thread> threads;
  for (double& value : got) {
    threads.emplace_back(
        [&value, copy = beam] { value = copy.predict(kSteel, kPoint)["mass"].value; });
  }
  for (std::thread& thread : threads) thread.join();
  for (const double value : got) EXPECT_EQ(value, want);
}

}  // namespace
