// Runs the tests; with --comma-locale under a global locale with another form of numbers, with
// --tenth only a tenth of the random cases.

#include <gtest/gtest.h>

#include <clocale>
#include <cstring>
#include <locale>
#include <string>

#include "support/rounds.h"

namespace {

class CommaNumbers : public std::numpunct<char> {
  char do_decimal_point() const override { return ','; }
  char do_thousands_sep() const override { return '.'; }
  std::string do_grouping() const override { return "\3"; }
};

int g_part = 1;

}  // namespace

int Rounds(int all) { return all / g_part; }

int main(int argc, char** argv) {
  testing::InitGoogleTest(&argc, argv);
  const auto has = [&](const char* option) {
    return argc > 1 && std::strcmp(argv[1], option) == 0;
  };
  if (has("--tenth")) g_part = 10;
  if (has("--comma-locale")) {
    // The C locale changes only if the machine has this one; the C++ locale needs no installation.
    std::setlocale(LC_ALL, "de_DE.UTF-8");
    std::locale::global(std::locale(std::locale::classic(), new CommaNumbers));
  }
  return RUN_ALL_TESTS();
}
