#include "run.h"

#include <algorithm>
#include <exception>
#include <iostream>
#include <new>
#include <string>
#include <vector>

#include "command.h"
#include "pxrom/version.h"
#include "refusal.h"
#include "wording.h"

namespace {

/// One sentence on the standard error, after the name of the command.
int Fail(const CLI::App& app, const std::string& sentence) {
  std::string name = app.get_name();
  for (const CLI::App* chosen : app.get_subcommands()) name += ' ' + chosen->get_name();
  std::cerr << name << ": " << pxrom_command::Printed(sentence) << '\n';
  return 1;
}

/// The status, after all output has been written.
int Ended(const CLI::App& app, int status) {
  std::cout.flush();
  return std::cout ? status : Fail(app, "can't write to the standard output");
}

/// Without this the parser would only say that a command is missing.
void RequireKnownCommand(const CLI::App& app, int argc, const char* const* argv) {
  if (argc < 2 || argv[1][0] == '-') return;
  std::vector<std::string> names;
  for (const CLI::App* command : app.get_subcommands({})) names.push_back(command->get_name());
  const std::string typed = argv[1];
  if (std::find(names.begin(), names.end(), typed) != names.end()) return;
  throw pxrom_command::Refusal("there is no command " + pxrom_command::Quoted(typed) +
                               pxrom_command::Suggestion(typed, names));
}

int Parsed(int argc, const char* const* argv) {
  CLI::App app("Evaluates fitted response surfaces.", "pxrom");
  app.set_version_flag("--version", PXROM_VERSION_STRING);
  app.require_subcommand(1);
  // "/" begins a path on every system.
  app.allow_windows_style_options(false);
  app.footer("pxrom COMMAND --help shows its options and an example.");
  pxrom_command::AddEval(app);
  pxrom_command::AddExplain(app);
  pxrom_command::AddValidate(app);
  pxrom_command::AddInfo(app);
  pxrom_command::AddCheck(app);
  pxrom_command::AddFmu(app);
  pxrom_command::AddFormat(app);
  pxrom_command::AddReport(app);
  pxrom_command::AddCode(app);

  try {
    RequireKnownCommand(app, argc, argv);
    app.parse(argc, argv);
    return Ended(app, 0);
  } catch (const CLI::RuntimeError& ended) {
    // The result is printed; the command ends with a status of its own.
    return Ended(app, ended.get_exit_code());
  } catch (const CLI::ParseError& error) {
    if (error.get_exit_code() == 0) return Ended(app, app.exit(error));  // --help or --version
    return Fail(app, std::string(error.what()) + " (see --help)");
  } catch (const pxrom_command::Refusal& refusal) {
    return Fail(app, refusal.what());
  } catch (const std::bad_alloc&) {
    return Fail(app, "out of memory");
  }
}

}  // namespace

int pxrom_command::Run(int argc, const char* const* argv) {
  try {
    return Parsed(argc, argv);
  } catch (const std::exception& error) {
    std::cerr << "pxrom: " << Printed(error.what()) << '\n';
    return 1;
  }
}
