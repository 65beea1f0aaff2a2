#pragma once

#include <string>

/// Where a file of the project is, for example "tests/data/models". Only one source knows the
/// folder of the checkout, so that objects of the tests are the same wherever it is, and compiled
/// once.
std::string SourcePath(const std::string& file);
