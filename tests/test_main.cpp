// Runs the tests; with --comma-locale under a global locale with another form of numbers.

#include <gtest/gtest.h>

#include <clocale>
#include <cstring>
#include <locale>
#include <string>

namespace {

class CommaNumbers : public std::numpunct<char> {
  char do_decimal_point() const override { return ','; }
  char do_thousands_sep() const override { return '.'; }
  std::string do_grouping() const override { return "\3"; }
};

}  // namespace

int main(int argc, char** argv) {
  testing::InitGoogleTest(&argc, argv);
  if (argc > 1 && std::strcmp(argv[1], "--comma-locale") == 0) {
    // The C locale changes only if the machine has this one; the C++ locale needs no installation.
    std::setlocale(LC_ALL, "de_DE.UTF-8");
    std::locale::global(std::locale(std::locale::classic(), new CommaNumbers));
  }
  return RUN_ALL_TESTS();
}
