#include "model/check_answers.h"

#include <algorithm>
#include <memory>

#include "families/family.h"
#include "model/candidate_access.h"

namespace Tarvane::Plexura::PXROM {

namespace {

bool NeedsCopy(const CFittingCandidates& list) {
  const CFittingCandidate* const candidate = list.GetEvaluationCandidatePtr();
  if (candidate == nullptr || candidate->GetIsErrPredRequired()) return false;
  const auto& surfaces = CandidateAccess::Surfaces(*candidate);
  return std::any_of(surfaces.begin(), surfaces.end(), [](const auto& surface) {
    const Family* const family = FindFamily(surface->DataType());
    return family != nullptr && family->changesRecordForError != nullptr &&
           family->changesRecordForError(*surface);
  });
}

reading::CheckAnswer AnswerOf(const CFittingCandidates& list, const std::vector<double>& point) {
  const CFittingCandidatesEvaluator evaluator;
  reading::CheckAnswer answer;
  double value = 0.0;
  if (evaluator.EvaluateResponseSurfaceCandidate(list, point, value) != 0) return answer;
  answer.status = -2;
  answer.value = value;
  std::unique_ptr<CFittingCandidates> copy;
  if (NeedsCopy(list)) copy.reset(list.Clone());
  double error = 0.0;
  if (evaluator.EvaluateResponseSurfaceCandidate(copy ? *copy : list, point, value, error) == 0) {
    answer.status = 0;
    answer.error = error;
  }
  return answer;
}

}  // namespace

std::vector<reading::CheckAnswer> AnswersAt(const CDiscreteCombinations::OutputsByID& outputs,
                                            const std::vector<double>& point) {
  std::vector<reading::CheckAnswer> answers;
  answers.reserve(outputs.size());
  for (const auto& [id, list] : outputs) answers.push_back(AnswerOf(*list, point));
  return answers;
}

bool NeedsCopies(const CDiscreteCombinations::OutputsByID& outputs) {
  return std::any_of(outputs.begin(), outputs.end(),
                     [](const auto& output) { return NeedsCopy(*output.second); });
}

}  // namespace Tarvane::Plexura::PXROM
