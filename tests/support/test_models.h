#pragma once

// Reading, writing, and models of one surface.

#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "pxrom/database_reader.h"
#include "pxrom/discrete_combinations.h"
#include "pxrom/writer.h"

namespace Tarvane::Plexura::PXROM {

inline int Read(std::string text, CDiscreteCombinations& model) {
  CReaderPXROMDatabase reader;
  reader.ReadDataStream(text);
  return reader.ResumeDiscreteCombinations(model);
}

inline std::string Written(const CDiscreteCombinations& model) {
  std::string text;
  std::string reason = "not emptied";
  EXPECT_EQ(CWriterPXROMDatabase().WriteDiscreteCombinations(model, text, reason), 0);
  EXPECT_EQ(reason, "");
  return text;
}

/// `model` as it reads back, which is then written the same.
inline CDiscreteCombinations Again(const CDiscreteCombinations& model) {
  const std::string text = Written(model);
  CDiscreteCombinations again;
  EXPECT_EQ(Read(text, again), 0);
  EXPECT_EQ(Written(again), text);
  return again;
}

inline CFittingCandidate CandidateOf(const CRSData& record) {
  CFittingCandidates list;
  list.GenerateCandidateFromCRSData(&record);
  return *list.GetCandidatePtr(0);
}

inline CFittingCandidates* ListOf(const CFittingCandidate& candidate) {
  auto list = std::make_unique<CFittingCandidates>();
  list->AddFittingCandidate(candidate);
  return list.release();
}

/// k is discrete, x continuous, y the output; one combination with k = 4.
inline void FillWith(const CFittingCandidate& candidate, CDiscreteCombinations& model) {
  model.RegisterParameter("k", CausalityInput, DiscreteParameter, true);
  model.RegisterParameter("x", CausalityInput, ContinuousManufacturable, true);
  model.RegisterParameter("y", CausalityOutput, ContinuousNotManufacturable, true);
  model.RegisterParameterExtraInfos("x", "", "m", "Length", 1, 0);
  model.RegisterDiscreteCombination({{"k", 4}}, {{"y", ListOf(candidate)}});
}

/// The first surface of the only output of such a model.
template <class Record>
const Record& SurfaceOf(const CDiscreteCombinations& model) {
  const auto& list = model.GetOutputsWrtDiscCombPtr()->at(0).at("y");
  return *static_cast<const Record*>(list->GetCandidatePtr(0)->GetRSPtr(0));
}

}  // namespace Tarvane::Plexura::PXROM
