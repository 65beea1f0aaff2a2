// Writing of one `PlexuraData` group: a candidate with its surfaces.

#include "database/writer/candidate_writing.h"

#include <string_view>

#include "families/family.h"
#include "model/candidate_fields.h"
#include "text/database_text.h"

namespace Tarvane::Plexura::PXROM::writing {

namespace {

void WriteSurface(AttributeSink& out, int id, const CRSData& surface, const double* weight) {
  out.PutGroup(Labels::tagGenome(), id, [&] {
    const Family* const family = FindFamily(surface.DataType());
    if (family == nullptr) {
      return out.Refuse("it is of no known family: its DataType is " +
                        std::to_string(surface.DataType()));
    }
    SurfaceHead head;
    head.type = surface.DataType();
    head.hasWeight = weight != nullptr;
    if (weight != nullptr) head.weight = *weight;
    fields::FieldWriter writer(out);
    SurfaceHeadFields(writer, head);
    family->write(out, surface);
  });
}

bool HasCrossValidation(const CFittingCandidate& candidate) {
  return candidate.GetSubRSCounts() != 0 || !CandidateAccess::FoldCounts(candidate).empty() ||
         !CandidateAccess::SortedInput(candidate).empty() || !IsUnset(candidate.GetDPMinDist());
}

void WriteCandidate(AttributeSink& out, const CFittingCandidate& candidate) {
  const auto& surfaces = CandidateAccess::Surfaces(candidate);
  const auto& subSurfaces = CandidateAccess::SubSurfaces(candidate);
  const std::vector<double>& weights = CandidateAccess::Weights(candidate);
  CandidateHead head;
  head.version = candidate.DataVersion();
  head.surfaces = static_cast<int>(surfaces.size());
  head.subSurfaces = static_cast<int>(subSurfaces.size());
  head.hasCrossValidation = candidate.GetIsErrPredRequired();
  if (head.version != FittingCandidateVersion192) {
    out.Refuse("its version is " + std::to_string(head.version) +
               ", but candidates always read as version 192");
  }
  if (weights.size() != surfaces.size()) {
    out.Refuse("it has " + std::to_string(surfaces.size()) + " surfaces, but " +
               std::to_string(weights.size()) + " weights");
  }
  if (!head.hasCrossValidation && HasCrossValidation(candidate)) {
    out.Refuse("it holds cross-validation data, but error prediction is not required of it");
  }
  if (out.IsRefused()) return;

  // All attributes come before the first surface, since searches for them include the surfaces.
  fields::FieldWriter writer(out);
  CandidateFields(writer, candidate, head);
  if (head.hasCrossValidation) CrossValidationFields(writer, candidate, head);

  int id = 0;
  for (std::size_t i = 0; i < surfaces.size() && !out.IsRefused(); ++i) {
    WriteSurface(out, id++, *surfaces[i], &weights[i]);
  }
  for (std::size_t k = 0; k < subSurfaces.size() && !out.IsRefused(); ++k) {
    WriteSurface(out, id++, *subSurfaces[k], nullptr);
  }
}

}  // namespace

void WriteFittingCandidates(AttributeSink& out, const CFittingCandidates& list) {
  if (list.GetCandidateCount() != 1) {
    return out.Refuse("its list has " + std::to_string(list.GetCandidateCount()) +
                      " candidates, but a database holds exactly one");
  }
  const CFittingCandidate* const candidate = list.GetEvaluationCandidatePtr();
  if (candidate == nullptr) {
    return out.Refuse("its list evaluates another candidate than its first");
  }
  WriteCandidate(out, *candidate);
}

std::string_view CandidateGroups::BodyOf(const Group& group) const {
  return std::string_view(text_).substr(group.start, group.length);
}

// Writes a group for `list`, and removes it again if there is a group with the same body.
int CandidateGroups::Write(const CFittingCandidates& list) {
  const std::string& word = Labels::tagPlexuraData();
  const std::size_t before = text_.size();
  const std::size_t workBefore = sink_.Work();
  sink_.PutGroup(word, count_, [&] { WriteFittingCandidates(sink_, list); });
  Group group;
  group.number = count_;
  group.start = before + reading::OpeningTag(word, count_).size();
  group.length = text_.size() - group.start;

  const std::size_t hash = std::hash<std::string_view>()(BodyOf(group));
  const auto [first, last] = byHash_.equal_range(hash);
  for (auto known = first; known != last; ++known) {
    if (BodyOf(known->second) != BodyOf(group)) continue;
    text_.resize(before);
    return known->second.number;
  }
  byHash_.emplace(hash, group);
  work_ += sink_.Work() - workBefore;
  return count_++;
}

int CandidateGroups::NumberOf(const CFittingCandidates& list) {
  work_ += reading::WorkOfList();
  const CFittingCandidate* const candidate = list.GetEvaluationCandidatePtr();
  if (candidate == nullptr || list.GetCandidateCount() != 1) return Write(list);
  const auto [known, isNew] = byContent_.emplace(CandidateAccess::Identity(*candidate), 0);
  if (isNew) known->second = Write(list);
  return known->second;
}

}  // namespace Tarvane::Plexura::PXROM::writing
