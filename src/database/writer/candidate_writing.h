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
/// share a group. The lists must not change meanwhile.
class CandidateGroups {
 public:
  /// The number of the group that holds `list`. It has no meaning once the sink is refused.
  int NumberOf(const CFittingCandidates& list);

  AttributeSink& Sink() { return sink_; }
  const std::string& Text() const { return text_; }
  /// The work of reading all groups and making all lists.
  std::size_t Work() const { return work_; }

 private:
  struct Group {
    int number = 0;
    /// The place of the body in the text.
    std::size_t start = 0;
    std::size_t length = 0;
  };

  std::string_view BodyOf(const Group& group) const;
  int Write(const CFittingCandidates& list);

  std::string text_;
  AttributeSink sink_{text_};
  int count_ = 0;
  std::size_t work_ = 0;
  /// By what candidates hold (CandidateAccess::Identity).
  std::unordered_map<const void*, int> byContent_;
  std::unordered_multimap<std::size_t, Group> byHash_;
};

}  // namespace Tarvane::Plexura::PXROM::writing
