// Reading of one `PlexuraData` group: a candidate with its surfaces.

#include "database/reader/candidate_reading.h"

#include <cstdint>
#include <limits>

#include "families/family.h"
#include "model/candidate_fields.h"
#include "pxrom/database_reader.h"

namespace Tarvane::Plexura::PXROM {

namespace reading {

namespace {

// Reads `Genome` group `id` of the candidate's group into a new record of the type that its head
// names. Null when the group is missing, its type is unknown, or its content is refused. A `Genome`
// group without its closing tag is read all the same.
std::unique_ptr<CRSData> ReadSurface(DatabaseText& text, const Bounds& candidate, std::int64_t id,
                                     SurfaceHead& head) {
  Bounds bounds;
  if (id > std::numeric_limits<int>::max() ||
      !text.FindGroupInside(Labels::tagGenome(), static_cast<int>(id), candidate, bounds)) {
    return nullptr;
  }
  AttributeRange in(text, bounds);
  fields::FieldReader reader(in);
  SurfaceHeadFields(reader, head);
  const Family* const family = FindFamily(head.type);
  if (family == nullptr) return nullptr;
  std::unique_ptr<CRSData> surface = family->newRecord();
  if (family->resume(in, surface.get()) != 0 || text.IsExhausted()) return nullptr;
  return surface;
}

int ReadCandidate(DatabaseText& text, const Bounds& bounds, CFittingCandidate& candidate) {
  AttributeRange in(text, bounds);
  fields::FieldReader reader(in);
  CandidateHead head;
  if (CandidateFields(reader, candidate, head) != 0) return 1;
  // Deliberate (negative-surface-count): a negative number of surfaces, here and of sub surfaces
  // below, counts as 0 and is no failure.
  for (int g = 0; g < head.surfaces; ++g) {
    SurfaceHead surfaceHead;
    std::unique_ptr<CRSData> surface = ReadSurface(text, bounds, g, surfaceHead);
    if (surface == nullptr) return 1;
    CandidateAccess::AddSurface(candidate, std::move(surface), surfaceHead.weight);
  }

  CandidateVersionField(reader, head);
  if (head.version == FittingCandidateVersion170) return 0;
  CrossValidationFlagField(reader, head);
  if (!head.hasCrossValidation) return 0;
  if (CrossValidationFields(reader, candidate, head) != 0) return 1;
  candidate.SetbIsErrPredRequired(true);
  for (int j = 0; j < head.subSurfaces; ++j) {
    SurfaceHead surfaceHead;
    surfaceHead.hasWeight = false;
    std::unique_ptr<CRSData> surface =
        ReadSurface(text, bounds, std::int64_t{head.surfaces} + j, surfaceHead);
    if (surface == nullptr) return 1;
    CandidateAccess::AddSubSurface(candidate, std::move(surface));
  }
  return 0;
}

}  // namespace

int ReadFittingCandidates(DatabaseText& text, int id, CFittingCandidates& out) {
  Bounds bounds;
  if (text.SearchBounds(OpeningTag(Labels::tagPlexuraData(), id),
                        ClosingTag(Labels::tagPlexuraData()), 0, bounds) != 0) {
    return 1;
  }
  out.ResetData();
  // Handed over only when complete, so neither a refusal nor an exception leaves a part of it.
  CFittingCandidates read;
  if (ReadCandidate(text, bounds, CandidateAccess::Append(read)) != 0 || text.IsExhausted()) {
    return 1;
  }
  CandidateAccess::HandOver(read, out);
  return 0;
}

}  // namespace reading

int CReaderPXROMDatabase::ResumeFittingCandidates(CFittingCandidates& out, int id) const {
  reading::DatabaseText text(DataStream);
  text.Index();
  return reading::ReadFittingCandidates(text, id, out);
}

}  // namespace Tarvane::Plexura::PXROM
