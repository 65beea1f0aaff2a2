#pragma once

// What nearly all tests include, compiled once for all of them. Each file includes what it needs
// all the same: no build depends on this header.

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <functional>
#include <map>
#include <nlohmann/json.hpp>
#include <random>
#include <sstream>

#include "pxrom/pxrom.h"
