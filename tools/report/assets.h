#pragma once

#include <string_view>

// The parts of the page of `pxrom report`: the files of this folder, which the build embeds
// unchanged.

namespace pxrom_command::report_assets {

extern const std::string_view kPage;
extern const std::string_view kLive;
extern const std::string_view kStyle;
/// All scripts in one, and its SHA-256, with which a Content-Security-Policy allows it.
extern const std::string_view kScript;
extern const std::string_view kScriptHash;
/// The library as a WebAssembly module, compressed by gzip; empty in a build without it.
extern const std::string_view kModule;

}  // namespace pxrom_command::report_assets
