#pragma once

#include <string>

#include "support/model_files.h"
#include "support/source_path.h"

namespace Tarvane::Plexura::PXROM {

/// A text of `lines` combinations, k from 0 on, that use one group: a Kriging surface.
inline std::string TextOfSharedGroup(int lines) {
  std::string text = ContentOf(SourcePath("tests/data/models/kriging_ot_branin_const/model.pxdb"));
  const auto insert = [&text](const char* key, const char* more) {
    text.insert(text.find('\n', text.find(key) + 1), more);
  };
  insert("\nIDs=", ",k");
  insert("\nCausalities=", ",0");
  insert("\nTypes=", ",2");
  insert("\nAvailability=", ",1");
  insert("\nRegistrationRank=", ",{k;99}");
  const std::string key = "DiscreteSet=";
  const std::size_t from = text.find(key + "{");
  const std::size_t to = text.find('\n', from) + 1;
  const std::string outputs = text.substr(from + key.size(), to - from - key.size());
  std::string all;
  for (int k = 0; k < lines; ++k) all += key + "{k;" + std::to_string(k) + "}," + outputs;
  return text.replace(from, to - from, all);
}

}  // namespace Tarvane::Plexura::PXROM
