#pragma once

#include <string_view>

// What the page of `pxrom report` consists of: the files of this folder as they stand, embedded by
// the build.

namespace pxrom_command::report_assets {

extern const std::string_view kPage;
extern const std::string_view kLive;
extern const std::string_view kStyle;
/// All scripts in one, and its SHA-256 by which a Content-Security-Policy lets it run.
extern const std::string_view kScript;
extern const std::string_view kScriptHash;
/// The library as a WebAssembly module, compressed by gzip; empty in a build without it.
extern const std::string_view kModule;

}  // namespace pxrom_command::report_assets
