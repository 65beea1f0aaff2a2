#pragma once

#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <system_error>

namespace command {

namespace fs = std::filesystem;

struct Result {
  int status = -1;
  std::string out;
  std::string err;
};

inline std::string Contents(const fs::path& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

/// A folder with the files of the sessions, which exists while the program runs: one per run.
class Folder {
 public:
  Folder() : path_(fs::temp_directory_path() / ("pxrom_tools_test_" + std::to_string(getpid()))) {
    fs::remove_all(path_);
    fs::create_directories(path_);
    for (const char* const name : {"examples", "tests", "README.md"}) {
      fs::create_symlink(fs::path(PXROM_SOURCE) / name, path_ / name);
    }
  }
  Folder(const Folder&) = delete;
  Folder& operator=(const Folder&) = delete;
  ~Folder() {
    std::error_code ignored;
    fs::remove_all(path_, ignored);
  }

  const fs::path& Path() const { return path_; }

 private:
  fs::path path_;
};

inline const fs::path& Here() {
  static const Folder folder;
  return folder.Path();
}

inline void Write(const std::string& name, const std::string& content) {
  std::ofstream(Here() / name, std::ios::binary) << content;
}

/// The command of this build, or of another one that the environment names.
inline fs::path Command() {
  const char* const other = std::getenv("PXROM_COMMAND");
  return other != nullptr ? other : PXROM_COMMAND;
}

/// The result of a shell command, as a person types it in the folder.
inline Result Shell(const std::string& line) {
  Write(".line", line);
  const std::string call = "cd '" + Here().string() + "' && PATH='" +
                           Command().parent_path().string() +
                           "':$PATH bash -o pipefail .line >.out 2>.err </dev/null";
  const int ended = std::system(call.c_str());
  return {WIFEXITED(ended) ? WEXITSTATUS(ended) : -1, Contents(Here() / ".out"),
          Contents(Here() / ".err")};
}

}  // namespace command
