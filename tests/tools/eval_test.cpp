// The numbers of pxrom eval are those of the library, for single points and for tables.

#include <gtest/gtest.h>

#include <array>
#include <charconv>
#include <map>
#include <nlohmann/json.hpp>
#include <random>
#include <set>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "command.h"
#include "pxrom/pxrom.h"

namespace {

namespace pxrom = Tarvane::Plexura::PXROM;
using command::Result;
using command::Shell;
using Named = std::vector<std::pair<std::string, double>>;

const std::string kBeam = "pxrom eval examples/beam.pxdb ";
const char* const kBeamOutputs =
    ",deflection,deflection error,deflection raw error,mass,mass error,mass raw "
    "error,stress,stress "
    "error,outside samples,sample distance";
TEST(Eval, JsonHoldsTheLibrarysNumbersToTheLastBit) {
  std::string text = command::Contents(PXROM_SOURCE "/examples/beam.pxdb");
  pxrom::CReaderPXROMDatabase reader;
  reader.ReadDataStream(text);
  pxrom::CDiscreteCombinations model;
  ASSERT_EQ(reader.ResumeDiscreteCombinations(model), 0);
  for (const auto& [key, place] : *model.GetDiscreteCombinationsIndexingPtr()) {
    const std::vector<std::pair<std::string, int>> discrete = {{"Holes", key[0]},
                                                               {"Material", key[1]}};
    const Named continuous = {{"L", 1.5}, {"b", 45}, {"h", 90}, {"F", 3000}};
    // The form with errors may write records.
    const pxrom::CDiscreteCombinations fresh(model);
    Named values;
    Named again;
    Named errors;
    ASSERT_EQ(model.Evaluate(discrete, continuous, values), 0);
    ASSERT_NE(fresh.Evaluate(discrete, continuous, again, errors), 1);
    const std::map<std::string, double> error_of(errors.begin(), errors.end());

    const std::string choice =
        "Material=" + std::to_string(key[1]) + " Holes=" + std::to_string(key[0]);
    SCOPED_TRACE(choice);
    const Result result = Shell(kBeam + choice + " L=1.5 b=45 h=90 F=3000 --json");
    EXPECT_EQ(result.status, 0);
    const auto document = nlohmann::json::parse(result.out);
    EXPECT_EQ(document["inputs"]["Holes"], key[0]);
    ASSERT_EQ(document["outputs"].size(), values.size());
    for (std::size_t i = 0; i < values.size(); ++i) {
      const auto& output = document["outputs"][i];
      const auto error = error_of.find(values[i].first);
      EXPECT_EQ(output["id"], values[i].first);
      EXPECT_EQ(output["value"].get<double>(), values[i].second);
      // The ensemble has none, but one of its surfaces has.
      EXPECT_EQ(output["error_origin"] == "one surface", error == error_of.end());
      if (error == error_of.end()) continue;
      EXPECT_EQ(output["raw_error"], nlohmann::json(error->second));
    }
  }
}

std::vector<std::string> Lines(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);) lines.push_back(line);
  return lines;
}

/// The cells of a line without quotation marks.
std::vector<std::string> Cells(const std::string& line) {
  std::vector<std::string> cells;
  std::istringstream stream(line + ',');
  for (std::string cell; std::getline(stream, cell, ',');) cells.push_back(cell);
  return cells;
}

std::string Shortest(const nlohmann::json& number) {
  if (number.is_null()) return "";
  std::array<char, 32> buffer{};
  return {buffer.data(),
          std::to_chars(buffer.data(), buffer.data() + buffer.size(), number.get<double>()).ptr};
}

/// Random points of the beam in columns of any order, with an unknown column.
std::string BeamTable(int rows) {
  std::mt19937 random(11);
  const auto between = [&random](double low, double high) {
    return Shortest(low + (high - low) * static_cast<double>(random()) / 4294967296.0);
  };
  std::string text = "h,row,Material,F,Holes,L\n";
  for (int row = 0; row < rows; ++row) {
    const std::string cells[] = {between(60, 120),
                                 std::to_string(row),
                                 std::to_string(1 + random() % 2),
                                 between(1000, 5000),
                                 std::to_string(2 * (random() % 3)),
                                 between(1, 2)};
    for (const std::string& cell : cells) text += cell + ',';
    text.back() = '\n';
  }
  return text;
}

TEST(Points, HaveTheNumbersOfSingleEvaluations) {
  const std::string table = BeamTable(30);
  command::Write("rows.csv", table);
  const Result result = Shell(kBeam + "--points rows.csv b=45");
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.err, "pxrom eval: 30 rows, none bad\n");
  const std::vector<std::string> lines = Lines(result.out);
  const std::vector<std::string> input = Lines(table);
  ASSERT_EQ(lines.size(), 31u);
  EXPECT_EQ(lines[0], input[0] + kBeamOutputs);
  const std::vector<std::string> header = Cells(lines[0]);
  std::set<std::string> origins_met;
  for (std::size_t row = 1; row < lines.size(); ++row) {
    const std::vector<std::string> cells = Cells(lines[row]);
    ASSERT_EQ(cells.size(), header.size());
    std::map<std::string, std::string> at;
    for (std::size_t c = 0; c < cells.size(); ++c) at[header[c]] = cells[c];
    std::string point = " b=45";
    for (const char* id : {"Material", "Holes", "L", "h", "F"}) {
      point += ' ' + std::string(id) + '=' + at[id];
    }
    const auto single = nlohmann::json::parse(Shell(kBeam + "--json" + point).out);
    for (const auto& output : single["outputs"]) {
      const std::string id = output["id"];
      EXPECT_EQ(at[id], Shortest(output["value"])) << point;
      EXPECT_EQ(at[id + " error"], Shortest(output["error"])) << point;
      EXPECT_EQ(at["sample distance"], Shortest(output["distance"])) << point;
      if (at.count(id + " raw error") > 0) {
        EXPECT_EQ(at[id + " raw error"], Shortest(output["raw_error"])) << point;
      }
      origins_met.insert(output["error_origin"].get<std::string>());
    }
  }
  EXPECT_EQ(origins_met,
            (std::set<std::string>{"all surfaces", "cross-validation", "one surface"}));
}

TEST(Points, AreTheSameByAnyNumberOfThreadsAndInOrder) {
  const std::string text = BeamTable(7000);
  command::Write("many.csv", text);
  const std::vector<std::string> input = Lines(text);
  for (const std::string mode : {"", " --fast"}) {
    const std::string call = kBeam + "b=45 --points many.csv" + mode;
    const std::string alone = Shell(call).out;
    EXPECT_EQ(Shell(call + " --jobs 3 -o out.csv && cat out.csv").out, alone) << mode;
    const std::vector<std::string> lines = Lines(alone);
    ASSERT_EQ(lines.size(), input.size());
    for (std::size_t row = 0; row < lines.size(); ++row) {
      EXPECT_EQ(lines[row].substr(0, input[row].size()), input[row]);
    }
  }
}

}  // namespace
