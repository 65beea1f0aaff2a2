#pragma once

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>
#include <string>

#include "pxrom/database_reader.h"
#include "pxrom/discrete_combinations.h"

namespace Tarvane::Plexura::PXROM {

inline std::string ContentOf(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  std::ostringstream content;
  content << file.rdbuf();
  EXPECT_FALSE(content.str().empty()) << path;
  return content.str();
}

inline void ReadModel(const std::string& path, CDiscreteCombinations& model) {
  std::string text = ContentOf(path);
  CReaderPXROMDatabase reader;
  reader.ReadDataStream(text);
  ASSERT_EQ(reader.ResumeDiscreteCombinations(model), 0) << path;
}

}  // namespace Tarvane::Plexura::PXROM
