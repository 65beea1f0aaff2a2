#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <system_error>

#include "c_compiler.h"
#include "refusal.h"
#include "system_reason.h"

#ifndef _GNU_SOURCE
// POSIX declares it in no header.
extern char** environ;
#endif

namespace pxrom_command {

namespace fs = std::filesystem;

TemporaryFolder::TemporaryFolder() {
  std::error_code failed;
  const fs::path parent = fs::temp_directory_path(failed);
  path_ = ((failed ? fs::path("/tmp") : parent) / "pxrom-XXXXXX").string();
  if (mkdtemp(path_.data()) == nullptr) {
    throw Refusal("can't make a temporary folder: " + ReasonOf(errno, "make a folder there"));
  }
}

TemporaryFolder::~TemporaryFolder() {
  std::error_code ignored;
  fs::remove_all(path_, ignored);
}

std::string TemporaryFolder::File(const std::string& name) const {
  return (fs::path(path_) / name).string();
}

bool RunQuietly(const std::vector<std::string>& words) {
  std::vector<std::string> copies = words;
  std::vector<char*> arguments;
  arguments.reserve(copies.size() + 1);
  for (std::string& word : copies) arguments.push_back(word.data());
  arguments.push_back(nullptr);
  posix_spawn_file_actions_t actions;
  if (posix_spawn_file_actions_init(&actions) != 0) return false;
  for (const int file : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
    posix_spawn_file_actions_addopen(&actions, file, "/dev/null", O_RDWR, 0);
  }
  pid_t child = 0;
  const int failed =
      posix_spawnp(&child, arguments[0], &actions, nullptr, arguments.data(), environ);
  posix_spawn_file_actions_destroy(&actions);
  if (failed != 0) return false;
  int status = 0;
  while (waitpid(child, &status, 0) < 0) {
    if (errno != EINTR) return false;
  }
  return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

}  // namespace pxrom_command
