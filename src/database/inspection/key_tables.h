#pragma once

#include "text/inspection/group_text.h"

namespace Tarvane::Plexura::PXROM::inspection {

// The keys of the format by the group, or the part of a group, that holds them. They are collected
// from the descriptions that reader and writer use. The keys of a family are in its Family.

const KeyTable& RegistryKeys();
const KeyTable& SetsKeys();
const KeyTable& CandidateKeys();
const KeyTable& CrossValidationKeys();
/// The keys of every surface, whatever its family.
const KeyTable& GenomeKeys();
const KeyTable& FmuKeys();

const Vocabulary& FormatVocabulary();

}  // namespace Tarvane::Plexura::PXROM::inspection
