// pxrom: fitted response surfaces from the command line, by the library's public headers alone.

#include <exception>
#include <iostream>
#include <new>
#include <string>

#include "command.h"
#include "pxrom/version.h"
#include "refusal.h"

namespace {

/// One sentence on the standard error, begun with the command that it comes from.
int Fail(const CLI::App& app, const std::string& sentence) {
  std::string name = app.get_name();
  for (const CLI::App* chosen : app.get_subcommands()) name += ' ' + chosen->get_name();
  std::cerr << name << ": " << sentence << '\n';
  return 1;
}

int Run(int argc, char** argv) {
  CLI::App app("Evaluates fitted response surfaces.", "pxrom");
  app.set_version_flag("--version", PXROM_VERSION_STRING);
  app.require_subcommand(1);
  app.footer("pxrom COMMAND --help tells more, with an example.");
  pxrom_command::AddEval(app);
  pxrom_command::AddFmu(app);

  try {
    app.parse(argc, argv);
    std::cout.flush();
    return std::cout ? 0 : Fail(app, "can't write the result to the standard output");
  } catch (const CLI::ParseError& error) {
    if (error.get_exit_code() == 0) return app.exit(error);  // --help or --version
    return Fail(app, std::string(error.what()) + " (--help tells more)");
  } catch (const pxrom_command::Refusal& refusal) {
    return Fail(app, refusal.what());
  } catch (const std::bad_alloc&) {
    return Fail(app, "out of memory");
  }
}

}  // namespace

int main(int argc, char** argv) {
  try {
    return Run(argc, argv);
  } catch (const std::exception& error) {
    std::cerr << "pxrom: " << error.what() << '\n';
    return 1;
  }
}
