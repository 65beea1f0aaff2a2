// pxrom eval --points: the numbers of single evaluations, every row in its place, bad rows told.

#include <gtest/gtest.h>

#include <array>
#include <charconv>
#include <map>
#include <nlohmann/json.hpp>
#include <random>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "command.h"

namespace {

using command::ConstantModel;
using command::Contents;
using command::Pxrom;
using command::Replaced;
using command::Result;
using command::Written;

const std::string kBeam = "eval examples/beam.pxdb ";
const char* const kBeamOutputs =
    ",deflection,deflection error,deflection scaled error,mass,mass scaled error,stress,stress "
    "error";
/// What the model says at Material=1 Holes=2 L=1.5 b=45 h=90 F=3000.
const char* const kBeamCells =
    ",6.32775215038798,0.5777785085493568,,47.27948243363868,0.0341832612019815,"
    "101.38798601890065,2.909898313197893";

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

/// Random points of the beam in columns of any order, with one that no model knows.
std::string BeamTable(int rows) {
  std::mt19937 random(11);
  const auto between = [&random](double low, double high) {
    return Shortest(low + (high - low) * static_cast<double>(random()) / 4294967296.0);
  };
  std::string text = "h,row,Material,F,Holes,L\n";
  for (int row = 0; row < rows; ++row) {
    text += between(60, 120) + ',' + std::to_string(row) + ',' + std::to_string(1 + random() % 2) +
            ',' + between(1000, 5000) + ',' + std::to_string(2 * (random() % 3)) + ',' +
            between(1, 2) + '\n';
  }
  return text;
}

TEST(Points, HaveTheNumbersOfSingleEvaluations) {
  const std::string table = Written("rows.csv", BeamTable(30));
  const Result result = Pxrom(kBeam + "--points " + table + " b=45");
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.err, "pxrom eval: 30 rows, none bad\n");
  const std::vector<std::string> lines = Lines(result.out);
  const std::vector<std::string> input = Lines(Contents(table));
  ASSERT_EQ(lines.size(), 31u);
  EXPECT_EQ(lines[0], input[0] + kBeamOutputs);
  const std::vector<std::string> header = Cells(lines[0]);
  std::map<std::string, int> errors_met;
  for (std::size_t row = 1; row < lines.size(); ++row) {
    const std::vector<std::string> cells = Cells(lines[row]);
    ASSERT_EQ(cells.size(), header.size());
    std::map<std::string, std::string> at;
    for (std::size_t c = 0; c < cells.size(); ++c) at[header[c]] = cells[c];
    std::string point = " b=45";
    for (const char* id : {"Material", "Holes", "L", "h", "F"}) {
      point += ' ' + std::string(id) + '=' + at[id];
    }
    const auto single = nlohmann::json::parse(Pxrom(kBeam + "--json" + point).out);
    for (const auto& output : single["outputs"]) {
      const std::string id = output["id"];
      const bool scaled = output["error_space"] == "scaled";
      EXPECT_EQ(at[id], Shortest(output["value"])) << point;
      EXPECT_EQ(at[id + " error"], scaled ? "" : Shortest(output["error"])) << point;
      EXPECT_EQ(at[id + " scaled error"], scaled ? Shortest(output["error"]) : "") << point;
      ++errors_met[output["error"].is_null() ? "none" : scaled ? "scaled" : "physical"];
    }
  }
  EXPECT_EQ(errors_met.size(), 3u);
}

TEST(Points, AreTheSameByAnyNumberOfThreadsAndInOrder) {
  const std::string text = BeamTable(7000);
  const std::string table = Written("many.csv", text);
  const std::string out = Written("many-out.csv", "");
  for (const std::string mode : {"", " --fast"}) {
    const std::string call = kBeam + "b=45 --points " + table + mode;
    const std::string alone = Pxrom(call).out;
    EXPECT_EQ(Pxrom(call + " --jobs 3 -o " + out).status, 0);
    EXPECT_EQ(Contents(out), alone) << mode;
    const std::vector<std::string> input = Lines(text);
    const std::vector<std::string> lines = Lines(alone);
    ASSERT_EQ(lines.size(), input.size());
    for (std::size_t row = 0; row < lines.size(); ++row) {
      EXPECT_EQ(lines[row].substr(0, input[row].size()), input[row]);
    }
  }
}

TEST(Points, BadRowsAreToldAndTheRestGoesOn) {
  // Quoted values with commas, marks and line ends; a byte order mark; a row without a line end.
  const std::string good = "1,2,1.5,45,90,3000,";
  const std::string header = "\xEF\xBB\xBFMaterial, \"Holes\",L,b,h,F,\"note, long\"";
  const std::vector<std::pair<std::string, std::string>> rows = {
      {good + "\"a \"\"b\"\" c\"", kBeamCells},
      {"\r\n \t", ""},
      {"1,2,x,45,90,3000,", ",,,,,,,"},
      {"1,2,1.5,45,90", ",,,,,,,,,"},
      {"1,2,1.5,45,90,3000,,\x1B", ",,,,,,,"},
      {"1,3,1.5,45,90,3000,", ",,,,,,,"},
      {"1,2,1.5,45,-inf,3000,", ",,,,,,,"},
      {good + "\"a\"b", ",,,,,,,"},
      {" 1 ,+2,\"1.5\",4.5e1,90,3000,\"two\r\nlines\"", kBeamCells},
      {"1.0,2,,45,90,3000,", ",,,,,,,"},
      {"1,2,,45,90,3000,", ",,,,,,,"},
      {good + "\"never", ",,,,,,,"},
      {good + "last", kBeamCells}};
  std::string text = header;
  std::string expected = header + kBeamOutputs;
  for (const auto& [row, cells] : rows) {
    text += "\r\n" + row;
    if (!cells.empty()) expected += "\r\n" + row + cells;
  }
  const std::string table = Written("bad.csv", text);
  const Result result = Pxrom(kBeam + "--points " + table);
  EXPECT_EQ(result.out, expected + '\n');
  EXPECT_EQ(result.status, 1);
  const std::vector<std::pair<int, std::string>> faults = {
      {5, "column L: found \"x\", expected a finite number: L (1 to 2 m)"},
      {6, "found 5 fields, expected 7 as in the header"},
      {7, "found 8 fields, expected 7 as in the header"},
      {8,
       "columns Holes and Material: found Holes=3, Material=1, for which there is no model, "
       "expected one of: Holes=0, Material=1; Holes=0, Material=2; Holes=2, Material=1; Holes=2, "
       "Material=2; Holes=4, Material=1; Holes=4, Material=2"},
      {9, "column h: found \"-inf\", expected a finite number: h (60 to 120 mm)"},
      {10,
       "a quotation mark stands inside a value (a value with one is quoted, and the mark doubled)"},
      {13,
       "column Material: found \"1.0\", expected an integer that selects a model: Material (1 or "
       "2)"},
      {14, "column L: found nothing, expected a finite number: L (1 to 2 m)"},
      {15, "a quotation mark is never closed"}};
  std::string told;
  for (const auto& [line, fault] : faults) {
    told += table + ':' + std::to_string(line) + ": " + fault + '\n';
  }
  EXPECT_EQ(result.err, told + "pxrom eval: 12 rows, 9 bad\n");

  // By way of the standard input it is the same.
  const Result piped = Pxrom(kBeam + "--points -", "", table);
  EXPECT_EQ(piped.out, result.out);
  EXPECT_EQ(piped.err.substr(0, 11), "<stdin>:5: ");
}

TEST(Points, ManyBadRowsAreCounted) {
  std::string text = "x\n";
  for (int row = 0; row < 5000; ++row) text += row % 2 == 0 ? "2\n" : "?\n";
  const Result result =
      Pxrom("eval examples/constant.pxdb --jobs 2 --points " + Written("counted.csv", text));
  const std::vector<std::string> told = Lines(result.err);
  ASSERT_EQ(told.size(), 22u);
  EXPECT_NE(told[19].find("counted.csv:41: column x: found \"?\""), std::string::npos);
  EXPECT_NE(told[20].find("counted.csv: 2480 more bad rows are not listed"), std::string::npos);
  EXPECT_EQ(told[21],
            "pxrom eval: 5000 rows, 2500 bad; 2500 rows outside the bounds of an input, where the "
            "surfaces extrapolate");
  EXPECT_EQ(Lines(result.out)[5000], "?,,");
  EXPECT_EQ(Lines(result.out)[4999], "2,7.5,");
}

TEST(Points, AnOutputThatCannotBeEvaluatedIsLeftEmpty) {
  const std::string model = Written(
      "unready.pxdb", Replaced(Replaced(ConstantModel(), "ForEvaluation=1", "ForEvaluation=0"),
                               "{y;Force}", "{y;Force}"));
  const std::string table = Written("one.csv", "x\n0.5\n");
  const Result result = Pxrom("eval " + model + " --points " + table);
  EXPECT_EQ(result.out, "x,y,y scaled error\n0.5,,\n");
  EXPECT_EQ(result.err, table +
                            ":2: the library can't evaluate the output \"y\" here\n"
                            "pxrom eval: 1 row, 1 bad\n");
  EXPECT_EQ(result.status, 1);
}

TEST(Points, RefusesATableThatDoesNotFit) {
  const std::string rest = ",L,b,h,F";
  const std::vector<std::array<std::string, 3>> cases = {
      {"", "", "\"TABLE\" is empty: its first line has to name the columns"},
      {"material,Holes" + rest, "",
       "the header of \"TABLE\" has no column for Material (1 or 2); did you mean \"material\"?"},
      {"L,b,h,F", "Holes=2",
       "the header of \"TABLE\" has no column for Material (1 or 2); a value for all rows is given "
       "as NAME=VALUE"},
      {"L;b;h;F", "Holes=2 Material=1",
       "the header of \"TABLE\" has no column for h (60 to 120 mm), F (1000 to 5000 N), L (1 to 2 "
       "m) and b (30 to 60 mm): columns are separated by commas"},
      {"Holes,Material,L" + rest, "", "the header of \"TABLE\" has two columns \"L\""},
      {"Holes,Material" + rest, "L=1",
       "\"L\" is given twice: as a column of \"TABLE\" and as NAME=VALUE"},
      {"Holes,Material,stress error" + rest, "",
       "the header of \"TABLE\" has a column \"stress error\" already, which the result would have "
       "twice; give it another name"},
      {"Ho\"les,Material" + rest, "",
       "the header of \"TABLE\": a quotation mark stands inside a value (a value with one is "
       "quoted, and the mark doubled)"},
      {"L,b,h,F", "Holes=3 Material=1",
       "there is no model for the combination Holes=3, Material=1; those that exist are: Holes=0, "
       "Material=1; Holes=0, Material=2; Holes=2, Material=1; Holes=2, Material=2; Holes=4, "
       "Material=1; Holes=4, Material=2"},
      {"L,b,h,F", "Holes=two Material=1",
       "Holes (0, 2 or 4) is a discrete input and takes an integer, not \"two\""},
      {"L,b,h,F\n1", "Holes=2 Material=1 -o TABLE",
       "\"TABLE\" is read: the result needs another file"},
      {"L,b,h,F\n1", "Holes=2 Material=1 -o /nowhere/x",
       "can't write to \"/nowhere/x\": No such file or directory"},
      {"", "--json", "--json excludes --points (--help tells more)"},
      {std::string(1100000, '1'), "",
       "TABLE:1: the line is longer than a mebibyte: this is no table of points"},
  };
  for (const auto& [text, arguments, sentence] : cases) {
    const std::string table = Written("refused.csv", text);
    const auto named = [&table](std::string where) {
      const std::size_t at = where.find("TABLE");
      return at == std::string::npos ? where : where.replace(at, 5, table);
    };
    const Result result = Pxrom(kBeam + "--points " + table + ' ' + named(arguments));
    EXPECT_EQ(result.err, "pxrom eval: " + named(sentence) + '\n');
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(Contents(table), text);
  }
  EXPECT_EQ(Pxrom(kBeam + "--points nowhere.csv").err,
            "pxrom eval: can't read \"nowhere.csv\": No such file or directory\n");
  EXPECT_EQ(Pxrom(kBeam + "Material=1 --jobs 2").err,
            "pxrom eval: --jobs requires --points (--help tells more)\n");
  const std::string example = "examples/points.csv Material=1 L=1.5 b=45 F=3000";
  EXPECT_EQ(Pxrom(kBeam + "--points " + example, "/dev/full").err,
            "pxrom eval: can't write to the standard output: No space left on device\n");
  // The example is the one of the help and of the README, which shows its result.
  EXPECT_NE(Pxrom("eval --help").out.find(kBeam + "--points " + example), std::string::npos);
  std::string shown;
  for (const std::string& line : Lines(Pxrom(kBeam + "--points " + example).out)) {
    const std::vector<std::string> cells = Cells(line);
    shown += cells[0] + ',' + cells[1] + ',' + cells[2] + ',' + cells[3] + ',' + cells[4] + '\n';
  }
  EXPECT_NE(Contents(PXROM_SOURCE "/README.md").find(shown), std::string::npos) << shown;
}

}  // namespace
