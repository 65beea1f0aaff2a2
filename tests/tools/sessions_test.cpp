// The command as a person uses it: the sessions of tests/data/tools, to the letter.

#include <gtest/gtest.h>

#include <sstream>

#include "command.h"
#include "pxrom/version.h"

namespace {

using command::Result;
using command::Shell;

/// The session when its lines after "$ " run again: each line of the standard error stream follows
/// "! ", and a status that is not 0 follows "= ".
std::string Again(const std::string& session) {
  std::string again;
  std::istringstream lines(session);
  for (std::string line; std::getline(lines, line);) {
    const std::string mark = line.substr(0, 2);
    if (mark == "# " || mark == "$ ") again += line + '\n';
    if (mark != "$ ") continue;
    const Result result = Shell(line.substr(2));
    again += result.out;
    std::istringstream errors(result.err);
    for (std::string error; std::getline(errors, error);) again += "! " + error + '\n';
    if (result.status != 0) again += "= " + std::to_string(result.status) + '\n';
  }
  return again;
}

class Sessions : public testing::TestWithParam<const char*> {};

TEST_P(Sessions, ShowTheSameAgain) {
  const std::string session =
      command::Contents(PXROM_SOURCE "/tests/data/tools/" + std::string(GetParam()) + ".txt");
  EXPECT_GT(session.size(), 1000u);
  EXPECT_EQ(Again(session), session);
}

INSTANTIATE_TEST_SUITE_P(Of, Sessions,
                         testing::Values("eval", "points", "format", "inspection", "pages",
                                         "validate", "explain", "fmu", "files"),
                         [](const auto& named) { return std::string(named.param); });

TEST(Command, ShowsItsVersionAndItsExamplesWork) {
  EXPECT_EQ(Shell("pxrom --version").out, PXROM_VERSION_STRING "\n");
  for (const char* const name :
       {"eval", "info", "check", "fmu", "format", "report", "validate", "explain"}) {
    const Result result =
        Shell("pxrom " + std::string(name) +
              " --help | sed -n '/^Example:/{n;p}' >example && grep -q '^  pxrom " + name +
              "' example && bash example");
    EXPECT_EQ(result.status, 0) << name;
    // A build without the live part of the report says so.
    if (name != std::string("report")) {
      EXPECT_EQ(result.err, "") << name;
    }
  }
}

}  // namespace
