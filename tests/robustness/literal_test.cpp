// Random databases, read and evaluated by the library and by the literal programs: the same to the
// last bit, for every family, with errors and without.

#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <sstream>

#include "literal/evaluate_literal.h"
#include "literal/kriging_literal.h"
#include "literal/reading_literal.h"
#include "literal/regression_literal.h"
#include "pxrom/database_reader.h"
#include "pxrom/kriging.h"
#include "pxrom/regression.h"
#include "pxrom/writer.h"
#include "support/random_models.h"

namespace Tarvane::Plexura::PXROM::tests {
namespace {

using NamedValues = std::vector<std::pair<std::string, double>>;

bool SameBits(double a, double b) { return std::memcmp(&a, &b, sizeof a) == 0; }

bool SameBits(const std::vector<double>& a, const std::vector<double>& b) {
  return a.size() == b.size() &&
         (a.empty() || std::memcmp(a.data(), b.data(), a.size() * sizeof(double)) == 0);
}

bool SameBits(const NamedValues& a, const NamedValues& b) {
  if (a.size() != b.size()) return false;
  for (std::size_t i = 0; i < a.size(); ++i) {
    if (a[i].first != b[i].first || !SameBits(a[i].second, b[i].second)) return false;
  }
  return true;
}

std::string TextOf(const CDiscreteCombinations& model) {
  std::string text;
  EXPECT_EQ(CWriterPXROMDatabase().WriteDiscreteCombinations(model, text), 0);
  return text;
}

// Every line with a key: what is found for it in its whole text, and its values as numbers.
void ExpectLiteralReading(std::string text) {
  const CReader reader;
  std::istringstream lines(text);
  for (std::string line; std::getline(lines, line);) {
    const std::size_t equalSign = line.find('=');
    if (line[0] == '<' || equalSign == std::string::npos) continue;
    const std::string value = line.substr(equalSign + 1);
    ASSERT_TRUE(SameBits(reader.TokenizeDouble(value, ','), literal::TokenizeDouble(value, ',')))
        << line;
    ASSERT_EQ(reader.TokenizeInt(value, ','), literal::TokenizeInt(value, ',')) << line;
    ASSERT_EQ(reader.TokenizeString(value, ','), literal::TokenizeString(value, ',')) << line;
  }
}

void ExpectLiteralValues(const CDiscreteCombinations& model) {
  const literal::Combinations slow(model);
  for (const double fraction : {0.1, 0.5, 1.3}) {
    for (const Question& question : QuestionsFor(model, fraction)) {
      NamedValues got;
      NamedValues want;
      ASSERT_EQ(model.Evaluate(question.discrete, question.continuous, got),
                slow.Evaluate(question.discrete, question.continuous, want));
      ASSERT_TRUE(SameBits(got, want));
      // Kriging records drift where they are asked for errors, so that each asks its own.
      const CDiscreteCombinations fresh(model);
      const CDiscreteCombinations other(model);
      NamedValues gotErrors;
      NamedValues wantErrors;
      ASSERT_EQ(fresh.Evaluate(question.discrete, question.continuous, got, gotErrors),
                literal::Combinations(other).Evaluate(question.discrete, question.continuous, want,
                                                      wantErrors));
      ASSERT_TRUE(SameBits(got, want));
      ASSERT_TRUE(SameBits(gotErrors, wantErrors));
    }
  }
}

// What the literal programs of a family know beyond the values of all: regression, and own errors
// of records that hold their data.
void ExpectLiteralSurface(const CRSData& surface, const std::vector<double>& x) {
  double got[2] = {};
  double want[2] = {};
  const std::unique_ptr<CRSData> copy(surface.Clone());
  if (const auto* const regression = dynamic_cast<const CQRSData*>(&surface)) {
    const literal::Surface slow(*regression);
    const CQRSEvaluator evaluator;
    if (regression->SavePredictorError) {
      ASSERT_EQ(evaluator.EvaluateResponseSurface(copy.get(), x, got[0], got[1]),
                literal::EvaluateRegression(slow, x, want[0], want[1]));
    } else {
      ASSERT_EQ(evaluator.EvaluateResponseSurface(copy.get(), x, got[0]),
                literal::EvaluateRegression(slow, x, want[0]));
    }
    std::vector<double> gradient;
    std::vector<double> wanted;
    ASSERT_EQ(evaluator.EvaluateResponseSurfaceDerivativeWrtInputVariables(copy.get(), x, gradient),
              literal::EvaluateRegressionDerivative(slow, x, wanted));
    ASSERT_TRUE(SameBits(gradient, wanted));
  } else if (const auto* const kriging = dynamic_cast<const CKrigingData*>(&surface)) {
    if (!kriging->SavePredictorError) return;
    CKrigingData slow(*kriging);
    ASSERT_EQ(CKrigingEvaluator().EvaluateResponseSurface(copy.get(), x, got[0], got[1]),
              literal::EvaluateKriging(slow, x, want[0], want[1]));
  }
  ASSERT_TRUE(SameBits(got[0], want[0]) && SameBits(got[1], want[1]));
}

TEST(Literal, RandomDatabasesReadAndEvaluateTheSame) {
  for (std::uint32_t seed = 1000; seed < 1200; ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    CDiscreteCombinations made;
    FillRandomModel(seed, {}, made);
    std::string text = TextOf(made);
    ASSERT_NO_FATAL_FAILURE(ExpectLiteralReading(text));
    CReaderPXROMDatabase reader;
    reader.ReadDataStream(text);
    CDiscreteCombinations model;
    ASSERT_EQ(reader.ResumeDiscreteCombinations(model), 0);
    ASSERT_NO_FATAL_FAILURE(ExpectLiteralValues(model));
    Draw draw(seed);
    for (const auto& outputs : *model.GetOutputsWrtDiscCombPtr()) {
      for (const auto& output : outputs) {
        const CFittingCandidate& candidate = *output.second->GetEvaluationCandidatePtr();
        for (int i = 0; i < static_cast<int>(candidate.GetRSCount()); ++i) {
          const CRSData& surface = *candidate.GetRSPtr(i);
          const std::vector<double> x = draw.Reals(surface.NumberOfInputVariables, -0.2, 1.2);
          ASSERT_NO_FATAL_FAILURE(ExpectLiteralSurface(surface, x));
        }
      }
    }
  }
}

}  // namespace
}  // namespace Tarvane::Plexura::PXROM::tests
