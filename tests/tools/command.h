#pragma once

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <system_error>

namespace command {

struct Result {
  int status = -1;
  std::string out;
  std::string err;
};

inline std::string Contents(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

/// A folder that goes with the program, so that two runs at once don't meet.
class Folder {
 public:
  Folder() : path_(testing::TempDir() + "pxrom_tools_test_" + std::to_string(getpid()) + '/') {
    std::filesystem::create_directories(path_);
  }
  Folder(const Folder&) = delete;
  Folder& operator=(const Folder&) = delete;
  ~Folder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }

  const std::string& Path() const { return path_; }

 private:
  std::string path_;
};

/// A file of this content for the time of the program.
inline std::string Written(const std::string& name, const std::string& content) {
  static const Folder folder;
  std::string path = folder.Path() + name;
  std::ofstream(path, std::ios::binary) << content;
  return path;
}

/// `arguments` as a person types them in the root of the repository.
inline Result Pxrom(const std::string& arguments, const std::string& standard_output = "",
                    const std::string& standard_input = "/dev/null") {
  const std::string out = standard_output.empty() ? Written("stdout", "") : standard_output;
  const std::string err = Written("stderr", "");
  const std::string line = "cd '" PXROM_SOURCE "' && '" PXROM_COMMAND "' " + arguments + " >'" +
                           out + "' 2>'" + err + "' <'" + standard_input + "'";
  const int ended = std::system(line.c_str());
  return {WIFEXITED(ended) ? WEXITSTATUS(ended) : -1, standard_output.empty() ? Contents(out) : "",
          Contents(err)};
}

/// `text` with its first `from` replaced by `to`, which has to be there.
inline std::string Replaced(std::string text, const std::string& from, const std::string& to) {
  const std::size_t at = text.find(from);
  EXPECT_NE(at, std::string::npos) << from;
  if (at != std::string::npos) text.replace(at, from.size(), to);
  return text;
}

inline std::string ConstantModel() { return Contents(PXROM_SOURCE "/examples/constant.pxdb"); }

inline std::string BeamModel() { return Contents(PXROM_SOURCE "/examples/beam.pxdb"); }

}  // namespace command
