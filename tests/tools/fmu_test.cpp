// pxrom fmu, and the command around its subcommands.

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "command.h"
#include "pxrom/version.h"

namespace {

using command::Pxrom;
using command::Result;
using command::Written;

TEST(Fmu, ShowsTheVariablesAndLinksAModel) {
  const Result result = Pxrom("fmu examples/beam.xml examples/beam.pxdb");
  EXPECT_EQ(result.out,
            "GUID               {5f0c1d52-6a3e-4b0e-9a57-2b1f0c7d8e94}\n"
            "Continuous states  0\n"
            "Reals              14 (2 for each Real variable)\n"
            "Integers           2\n"
            "\n"
            "Variable    Reference  Causality  Type\n"
            "----------  ---------  ---------  -------\n"
            "F                   6  input      Real\n"
            "Holes               2  input      Integer\n"
            "L                   3  input      Real\n"
            "Material            1  input      Integer\n"
            "b                   4  input      Real\n"
            "deflection          9  output     Real\n"
            "failed              7  output     -\n"
            "h                   5  input      Real\n"
            "stress              8  output     Real\n"
            "time                0  -          Real\n"
            "\n"
            "- neither input nor output; neither Real nor Integer\n"
            "\n"
            "Of the 13 parameters of examples/beam.pxdb, 8 have a variable of the same name:\n"
            "\n"
            "Parameter   Kind              Reference  Causality\n"
            "----------  ----------------  ---------  ---------\n"
            "F           continuous input          6  input\n"
            "Holes       discrete input            2  input\n"
            "L           continuous input          3  input\n"
            "Material    discrete input            1  input\n"
            "b           continuous input          4  input\n"
            "deflection  output                    9  output\n"
            "h           continuous input          5  input\n"
            "stress      output                    8  output\n"
            "\n"
            "Without such a variable: Finish, Notch, Slenderness, cost and mass\n");
  EXPECT_EQ(result.err, "");
  EXPECT_EQ(result.status, 0);
}

TEST(Fmu, SaysWhenNoParameterHasAVariable) {
  const std::string out = Pxrom("fmu examples/beam.xml examples/constant.pxdb").out;
  EXPECT_NE(out.find("Of the 2 parameters of examples/constant.pxdb, 0 have a variable of the same "
                     "name.\n\nWithout such a variable: x and y\n"),
            std::string::npos);
}

TEST(Fmu, RefusesWhatItCanNotRead) {
  const std::string fmi3 =
      Written("fmi3.xml",
              "<?xml version=\"1.0\"?>\n<fmiModelDescription modelName='m'\n fmiVersion=\"3.0\">\n"
              "<ModelVariables><Float64 name=\"x\" valueReference=\"1\"/></ModelVariables>\n"
              "</fmiModelDescription>\n");
  const std::vector<std::pair<std::string, std::string>> cases = {
      {fmi3, "\"" + fmi3 +
                 "\" is an FMI 3 description, in which the library finds nothing: it reads the "
                 "ScalarVariable elements of FMI 1 and 2"},
      {"examples/beam.pxdb",
       "\"examples/beam.pxdb\" is no FMI model description: it has no <fmiModelDescription>"},
      {"nowhere.xml", "can't read \"nowhere.xml\": No such file or directory"},
      {"examples/beam.xml examples/beam.xml",
       "\"examples/beam.xml\" is no database of fitted models: it has no <ParameterRegistry> "
       "group"},
  };
  for (const auto& [arguments, sentence] : cases) {
    const Result result = Pxrom("fmu " + arguments);
    EXPECT_EQ(result.err, "pxrom fmu: " + sentence + "\n") << arguments;
    EXPECT_EQ(result.out, "") << arguments;
    EXPECT_EQ(result.status, 1) << arguments;
  }
}

TEST(Command, TellsItsVersionAndRefusesWhatItDoesNotKnow) {
  EXPECT_EQ(Pxrom("--version").out, PXROM_VERSION_STRING "\n");
  const std::vector<std::pair<std::string, std::string>> cases = {
      {"", "pxrom: A subcommand is required (--help tells more)\n"},
      {"evla", "pxrom: there is no command \"evla\"; did you mean \"eval\"?\n"},
      {"eval --jsn examples/constant.pxdb x=0",
       "pxrom eval: The following argument was not expected: --jsn (--help tells more)\n"},
  };
  for (const auto& [arguments, sentence] : cases) {
    const Result result = Pxrom(arguments);
    EXPECT_EQ(result.err, sentence);
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.status, 1);
  }
}

TEST(Command, SaysWhenItCanNotWrite) {
  const Result result = Pxrom("eval examples/constant.pxdb x=0", "/dev/full");
  EXPECT_EQ(result.err, "pxrom eval: can't write the result to the standard output\n");
  EXPECT_EQ(result.status, 1);
}

/// The line behind "Example:" in the help of a command.
std::string ExampleOf(const std::string& command_name) {
  const std::string help = Pxrom(command_name + " --help").out;
  const std::string before = "Example:\n  pxrom ";
  const std::size_t at = help.find(before);
  EXPECT_NE(at, std::string::npos) << command_name;
  if (at == std::string::npos) return "";
  const std::size_t start = at + before.size();
  return help.substr(start, help.find('\n', start) - start);
}

TEST(Command, TheExamplesOfItsHelpWork) {
  for (const char* name : {"eval", "info", "check", "fmu", "format"}) {
    const Result result = Pxrom(ExampleOf(name));
    EXPECT_EQ(result.status, 0) << name;
    EXPECT_EQ(result.err, "") << name;
  }
}

TEST(Command, TheReadmeShowsWhatItPrints) {
  const std::string readme = command::Contents(PXROM_SOURCE "/README.md");
  const std::string example = ExampleOf("eval");
  const std::string shown = "$ pxrom " + example + "\n" + Pxrom(example).out;
  EXPECT_NE(readme.find(shown), std::string::npos) << shown;
}

}  // namespace
