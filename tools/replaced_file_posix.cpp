#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <system_error>

#include "replaced_file.h"

namespace pxrom_command {

namespace fs = std::filesystem;

namespace {

constexpr int kMostNames = 100;

/// The number of the open file that a path such as /dev/stdout or /dev/fd/3 means; -1 for another.
int OpenFileOf(const std::string& path) {
  if (path == "/dev/stdout") return STDOUT_FILENO;
  if (path == "/dev/stderr") return STDERR_FILENO;
  for (const std::string folder : {"/dev/fd/", "/proc/self/fd/"}) {
    const std::string number = path.substr(std::min(folder.size(), path.size()));
    constexpr std::size_t kMostDigits = 6;
    if (path.compare(0, folder.size(), folder) == 0 && !number.empty() &&
        number.size() <= kMostDigits &&
        number.find_first_not_of("0123456789") == std::string::npos) {
      return std::stoi(number);
    }
  }
  return -1;
}

/// The file that a path leads to through symbolic links, whether it exists or not.
std::string Followed(const std::string& path) {
  constexpr int kMostLinks = 40;
  fs::path at = path;
  std::error_code error;
  for (int i = 0; i < kMostLinks && OpenFileOf(at.string()) < 0 && fs::is_symlink(at, error); ++i) {
    const fs::path next = fs::read_symlink(at, error);
    if (error) break;
    at = next.is_absolute() ? next : at.parent_path() / next;
  }
  return at.string();
}

/// The folder of a file.
std::string FolderOf(const std::string& file) {
  const std::string folder = fs::path(file).parent_path().string();
  return folder.empty() ? "." : folder;
}

/// Another name in the same folder, which no file is likely to have.
std::string NameBeside(const std::string& file, int attempt) {
  const fs::path path(file);
  const std::string name = '.' + path.filename().string().substr(0, 200) + '.' +
                           std::to_string(getpid()) + '-' + std::to_string(attempt) + ".tmp";
  return (path.parent_path() / name).string();
}

class PosixFile : public ReplacedFile {
 public:
  explicit PosixFile(const std::string& path);
  ~PosixFile() override;

  void Write(std::string_view text) override;
  void Finish() override;

 private:
  void OpenBeside();
  void Name();

  /// The file to be replaced; empty when it is written directly.
  std::string target_;
  /// The new file; empty while it has no name.
  std::string temporary_;
  int file_ = -1;
};

PosixFile::PosixFile(const std::string& path) : ReplacedFile(path) {
  const std::string followed = Followed(path);
  const int open_file = OpenFileOf(followed);
  struct stat old {};
  const bool exists = open_file < 0 && stat(followed.c_str(), &old) == 0;
  if (exists && S_ISDIR(old.st_mode)) Refuse(EISDIR);
  if (open_file >= 0) {
    file_ = fcntl(open_file, F_DUPFD_CLOEXEC, 0);
  } else if (exists && !S_ISREG(old.st_mode)) {
    file_ = open(followed.c_str(), O_WRONLY | O_CLOEXEC);
  } else {
    target_ = followed;
    if (exists && access(followed.c_str(), W_OK) != 0) Refuse(errno);
    OpenBeside();
    // The new file gets the permissions of the old one, and its owner if the system allows that. If
    // not, the bits that run a file as its owner are left out.
    constexpr mode_t kPermissions = 0777;
    if (exists) {
      const bool kept = fchown(file_, old.st_uid, old.st_gid) == 0;
      if (fchmod(file_, old.st_mode & (kept ? mode_t{07777} : kPermissions)) != 0) Refuse(errno);
    }
  }
  if (file_ < 0) Refuse(errno);
}

PosixFile::~PosixFile() {
  if (file_ >= 0) close(file_);
  if (!temporary_.empty()) unlink(temporary_.c_str());
}

/// Opens the new file: without a name if the system supports that, so that nothing of it remains if
/// the command is killed.
void PosixFile::OpenBeside() {
  constexpr mode_t kNewFile = 0666;
#ifdef O_TMPFILE
  file_ = open(FolderOf(target_).c_str(), O_TMPFILE | O_WRONLY | O_CLOEXEC, kNewFile);
  if (file_ >= 0) return;
#endif
  for (int attempt = 0; attempt < kMostNames; ++attempt) {
    const std::string name = NameBeside(target_, attempt);
    file_ = open(name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, kNewFile);
    if (file_ >= 0) {
      temporary_ = name;
      return;
    }
    if (errno != EEXIST) break;
  }
  Refuse(errno, "make a new file in its folder");
}

void PosixFile::Write(std::string_view text) {
  while (!text.empty()) {
    const ssize_t done = write(file_, text.data(), text.size());
    if (done < 0 && errno == EINTR) continue;
    if (done < 0) Refuse(errno);
    text.remove_prefix(static_cast<std::size_t>(done));
  }
}

/// Gives the new file its name for the moment before the rename.
void PosixFile::Name() {
#ifdef O_TMPFILE
  const std::string open_file = "/proc/self/fd/" + std::to_string(file_);
  for (int attempt = 0; temporary_.empty() && attempt < kMostNames; ++attempt) {
    const std::string name = NameBeside(target_, attempt);
    if (linkat(AT_FDCWD, open_file.c_str(), AT_FDCWD, name.c_str(), AT_SYMLINK_FOLLOW) == 0) {
      temporary_ = name;
    } else if (errno != EEXIST) {
      Refuse(errno);
    }
  }
#endif
}

void PosixFile::Finish() {
  if (target_.empty()) return;
  if (fsync(file_) != 0) Refuse(errno);
  Name();
  if (rename(temporary_.c_str(), target_.c_str()) != 0) Refuse(errno);
  temporary_.clear();
  // Flushing the folder makes the name as safe as the content. Not all systems support it.
  const int folder = open(FolderOf(target_).c_str(), O_RDONLY | O_CLOEXEC);
  if (folder < 0) return;
  fsync(folder);
  close(folder);
}

}  // namespace

std::unique_ptr<ReplacedFile> ReplacedFile::Open(const std::string& path) {
  return std::make_unique<PosixFile>(path);
}

bool IsInput(const std::string& path, const std::string& input) {
  std::error_code ignored;
  return fs::equivalent(path, input == "-" ? "/dev/stdin" : input, ignored);
}

}  // namespace pxrom_command
