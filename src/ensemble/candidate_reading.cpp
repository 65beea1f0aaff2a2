// Reading of one `PlexuraData` group: a candidate with its surfaces.

#include "ensemble/candidate_reading.h"

#include <cstdint>
#include <limits>

#include "ensemble/candidate_access.h"
#include "ensemble/families.h"
#include "pxrom/database_reader.h"

namespace Tarvane::Plexura::PXROM {

namespace reading {

namespace {

// Reads `Genome` group `id` of the candidate's group into a new record of the type it names, and
// the weight beside it. Null when the group is missing, its type is no family, or its content is
// refused. A `Genome` group whose closing tag is missing is read all the same.
std::unique_ptr<CRSData> ReadSurface(DatabaseText& text, const Bounds& candidate, std::int64_t id,
                                     double* weight) {
  Bounds bounds;
  if (id > std::numeric_limits<int>::max() ||
      !text.FindGroupInside(Labels::tagGenome(), static_cast<int>(id), candidate, bounds)) {
    return nullptr;
  }
  AttributeRange in(text, bounds);
  const Family* const family = FindFamily(in.CatchEnum<E_DataType>(Labels::attType()));
  if (weight != nullptr) in.Catch(Labels::tagGenomeWeight(), *weight);
  if (family == nullptr) return nullptr;
  std::unique_ptr<CRSData> surface = family->newRecord();
  if (family->resume(in, surface.get()) != 0 || text.IsExhausted()) return nullptr;
  return surface;
}

int ReadCandidate(DatabaseText& text, const Bounds& bounds, CFittingCandidate& candidate) {
  AttributeRange in(text, bounds);
  int inputs = 0;
  int samples = 0;
  in.Catch(Labels::attCandidateNumberOfInputVariables(), inputs);
  in.Catch(Labels::attCandidateNumberOfSamples(), samples);
  candidate.SetNumberOfInputVariables(inputs);
  candidate.SetNumberOfSamples(samples);
  if (in.CatchMatrix(Labels::attCandidateInputSamples(), samples, inputs,
                     CandidateAccess::InputSamples(candidate)) != 0) {
    return 1;
  }
  in.Catch(Labels::attCandidateOutputSamples(), CandidateAccess::OutputSamples(candidate));
  in.Catch(Labels::attCandidateInputScaleSlopes(), CandidateAccess::InputScaleSlopes(candidate));
  in.Catch(Labels::attCandidateInputScaleIntercepts(),
           CandidateAccess::InputScaleIntercepts(candidate));
  double slope = 0.0;
  double intercept = 0.0;
  in.Catch(Labels::attCandidateOutputScaleSlope(), slope);
  in.Catch(Labels::attCandidateOutputScaleIntercept(), intercept);
  candidate.SetOutputScaleSlope(slope);
  candidate.SetOutputScaleIntercept(intercept);

  int surfaces = 0;
  in.Catch(Labels::attCandidateRSCardinality(), surfaces);
  if (surfaces < 0) return 1;
  for (int g = 0; g < surfaces; ++g) {
    double weight = 0.0;
    std::unique_ptr<CRSData> surface = ReadSurface(text, bounds, g, &weight);
    if (surface == nullptr) return 1;
    CandidateAccess::AddSurface(candidate, std::move(surface), weight);
  }

  int version = 0;
  in.Catch(Labels::attCandidateVersion(), version);
  if (version == FittingCandidateVersion170) return 0;
  bool hasCrossValidation = false;
  in.Catch(Labels::GARSExportPredictionOfError(), hasCrossValidation);
  if (!hasCrossValidation) return 0;

  in.Catch(Labels::CardinalOfEachFold(), CandidateAccess::FoldCounts(candidate));
  double distanceScale = 0.0;
  in.Catch(Labels::WeightingRho(), distanceScale);
  candidate.SetDPMinDist(distanceScale);
  if (in.CatchMatrix(Labels::attScInputPoints(), samples, inputs,
                     CandidateAccess::SortedInput(candidate)) != 0) {
    return 1;
  }
  candidate.SetbIsErrPredRequired(true);
  int subSurfaces = 0;
  in.Catch(Labels::attCandidateSubRSCardinality(), subSurfaces);
  if (subSurfaces < 0) return 1;
  for (int j = 0; j < subSurfaces; ++j) {
    std::unique_ptr<CRSData> surface =
        ReadSurface(text, bounds, std::int64_t{surfaces} + j, nullptr);
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
  const int status = ReadCandidate(text, bounds, CandidateAccess::Append(out));
  if (status != 0 || text.IsExhausted()) {
    out.ResetData();
    return 1;
  }
  return 0;
}

}  // namespace reading

int CReaderPXROMDatabase::ResumeFittingCandidates(CFittingCandidates& out, int id) const {
  reading::DatabaseText text(DataStream);
  text.Index();
  return reading::ReadFittingCandidates(text, id, out);
}

}  // namespace Tarvane::Plexura::PXROM
