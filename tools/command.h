#pragma once

#include <CLI/CLI.hpp>

namespace pxrom_command {

// Each subcommand adds itself to `app` and runs as a callback when it is parsed. It writes its
// result to the standard output, or throws a Refusal if it has none.

void AddCheck(CLI::App& app);
void AddCode(CLI::App& app);
void AddEval(CLI::App& app);
void AddExplain(CLI::App& app);
void AddFmu(CLI::App& app);
void AddInfo(CLI::App& app);
void AddFormat(CLI::App& app);
void AddReport(CLI::App& app);
void AddValidate(CLI::App& app);

}  // namespace pxrom_command
