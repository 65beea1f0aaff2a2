#pragma once

#include <cstddef>
#include <string>
#include <unordered_map>
#include <vector>

#include "pxrom/fitting_candidates.h"
#include "text/attribute_sink.h"

namespace Tarvane::Plexura::PXROM::writing {

/// The attributes and `Genome` groups of one `PlexuraData` group.
void WriteFittingCandidates(AttributeSink& out, const CFittingCandidates& list);

/// Builds the `PlexuraData` groups of a database, numbered from 0. Lists with the same content
/// share a group, within the reader's limit of work: a reader reads a group again for each use. The
/// lists must not change meanwhile.
class CandidateGroups {
 public:
  /// The number of the group that holds `list`. It has no meaning once the sink is refused.
  int NumberOf(const CFittingCandidates& list);

  AttributeSink& Sink() { return sink_; }
  const std::string& Text() const { return text_; }
  /// The work of reading all groups as often as they are used.
  std::size_t Work() const { return work_; }

 private:
  struct Group {
    int number = 0;
    /// The place of the body in the text.
    std::size_t start = 0;
    std::size_t length = 0;
    std::size_t work = 0;
  };

  std::string_view BodyOf(const Group& group) const;
  Group Written(const CFittingCandidates& list);
  int NumberOfUse(const Group& group);

  std::string text_;
  AttributeSink sink_{text_};
  int count_ = 0;
  std::size_t work_ = 0;
  std::unordered_map<const CFittingCandidates*, Group> byList_;
  std::unordered_multimap<std::size_t, Group> byHash_;
};

}  // namespace Tarvane::Plexura::PXROM::writing
