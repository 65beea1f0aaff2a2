#define NOMINMAX
#define WIN32_LEAN_AND_MEAN
#include <windows.h>

#include <algorithm>
#include <cerrno>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

#include "file_names.h"
#include "replaced_file.h"

namespace pxrom_command {

namespace fs = std::filesystem;

namespace {

constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;

/// The system's last error as a value of errno.
int LastError() {
  const DWORD error = GetLastError();
  switch (error) {
    case ERROR_SHARING_VIOLATION:
    case ERROR_LOCK_VIOLATION:
    case ERROR_USER_MAPPED_FILE:
      return EBUSY;
    case ERROR_DISK_FULL:
    case ERROR_HANDLE_DISK_FULL:
      return ENOSPC;
    case ERROR_FILE_TOO_LARGE:
      return EFBIG;
    case ERROR_WRITE_PROTECT:
      return EROFS;
    case ERROR_BROKEN_PIPE:
    case ERROR_NO_DATA:
      return EPIPE;
    case ERROR_FILENAME_EXCED_RANGE:
      return ENAMETOOLONG;
    case ERROR_INVALID_NAME:
      return EINVAL;
    default:
      break;
  }
  const std::error_condition known =
      std::system_category().default_error_condition(static_cast<int>(error));
  return known.category() == std::generic_category() ? known.value() : EIO;
}

/// An open file, or none.
class Handle {
 public:
  Handle() = default;
  explicit Handle(HANDLE handle) : handle_(handle) {}
  Handle(const Handle&) = delete;
  Handle& operator=(const Handle&) = delete;
  Handle(Handle&& other) noexcept : handle_(std::exchange(other.handle_, INVALID_HANDLE_VALUE)) {}
  Handle& operator=(Handle&& other) noexcept {
    std::swap(handle_, other.handle_);
    return *this;
  }
  ~Handle() { Close(); }

  void Close() {
    if (IsOpen()) CloseHandle(handle_);
    handle_ = INVALID_HANDLE_VALUE;
  }
  bool IsOpen() const { return handle_ != INVALID_HANDLE_VALUE; }
  HANDLE Get() const { return handle_; }

 private:
  HANDLE handle_ = INVALID_HANDLE_VALUE;
};

/// The path of an open file, with no symbolic links in it; `path` where the system has no such
/// name.
std::wstring FinalPath(const Handle& file, const std::wstring& path) {
  const DWORD length = GetFinalPathNameByHandleW(file.Get(), nullptr, 0, FILE_NAME_NORMALIZED);
  std::wstring found(length, L'\0');
  const DWORD written =
      GetFinalPathNameByHandleW(file.Get(), found.data(), length, FILE_NAME_NORMALIZED);
  if (length == 0 || written == 0 || written >= length) return path;
  found.resize(written);
  return found;
}

/// Who may do what with an open file; empty where the file system does not say.
std::vector<char> PermissionsOf(const Handle& file) {
  DWORD size = 0;
  GetKernelObjectSecurity(file.Get(), DACL_SECURITY_INFORMATION, nullptr, 0, &size);
  std::vector<char> descriptor(size);
  if (size == 0 || GetKernelObjectSecurity(file.Get(), DACL_SECURITY_INFORMATION, descriptor.data(),
                                           size, &size) == 0) {
    descriptor.clear();
  }
  return descriptor;
}

/// Whether the system deletes the file when it is closed, also because the process has ended.
bool DeleteWhenClosed(const Handle& file, bool does) {
  FILE_DISPOSITION_INFO disposition = {};
  disposition.DeleteFile = does ? TRUE : FALSE;
  return SetFileInformationByHandle(file.Get(), FileDispositionInfo, &disposition,
                                    sizeof disposition) != 0;
}

class WindowsFile : public ReplacedFile {
 public:
  explicit WindowsFile(const std::string& path);
  ~WindowsFile() override;

  void Write(std::string_view text) override;
  void Finish() override;

 private:
  void OpenBeside(std::vector<char> permissions);

  /// The file to be replaced; empty when it is written directly.
  std::wstring target_;
  /// The name of the new file; empty while it does not exist.
  std::wstring temporary_;
  Handle file_;
};

WindowsFile::WindowsFile(const std::string& path)
    : ReplacedFile(path), target_(PathOf(path).wstring()) {
  const DWORD attributes = GetFileAttributesW(target_.c_str());
  const bool exists = attributes != INVALID_FILE_ATTRIBUTES;
  if (exists && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0) Refuse(EISDIR);
  // Opened only to learn where it is, and whether it may be written.
  Handle old(CreateFileW(target_.c_str(), GENERIC_WRITE, kShareAll, nullptr, OPEN_EXISTING,
                         FILE_ATTRIBUTE_NORMAL, nullptr));
  if (!old.IsOpen()) {
    if (exists || GetLastError() != ERROR_FILE_NOT_FOUND) Refuse(LastError());
    OpenBeside({});
  } else if (GetFileType(old.Get()) != FILE_TYPE_DISK) {
    target_.clear();
    file_ = std::move(old);
  } else {
    target_ = FinalPath(old, target_);
    OpenBeside(PermissionsOf(old));
  }
}

WindowsFile::~WindowsFile() {
  file_.Close();
  if (!temporary_.empty()) DeleteFileW(temporary_.c_str());
}

/// Opens the new file: one that the system deletes if the command is killed.
void WindowsFile::OpenBeside(std::vector<char> permissions) {
  constexpr int kMostNames = 100;
  constexpr std::size_t kLongest = 200;
  SECURITY_ATTRIBUTES security = {};
  security.nLength = sizeof security;
  security.lpSecurityDescriptor = permissions.data();
  const fs::path target(target_);
  for (int attempt = 0; attempt < kMostNames && !file_.IsOpen(); ++attempt) {
    temporary_ = target.parent_path() / (L'.' + target.filename().wstring().substr(0, kLongest) +
                                         L'.' + std::to_wstring(GetCurrentProcessId()) + L'-' +
                                         std::to_wstring(attempt) + L".tmp");
    file_ = Handle(CreateFileW(temporary_.c_str(), GENERIC_WRITE | DELETE, 0,
                               permissions.empty() ? nullptr : &security, CREATE_NEW,
                               FILE_ATTRIBUTE_NORMAL, nullptr));
    if (!file_.IsOpen() && GetLastError() != ERROR_FILE_EXISTS) break;
  }
  if (!file_.IsOpen()) Refuse(LastError(), "make a new file in its folder");
  DeleteWhenClosed(file_, true);
}

void WindowsFile::Write(std::string_view text) {
  while (!text.empty()) {
    constexpr std::size_t kMost = std::size_t{1} << 30U;
    DWORD done = 0;
    if (WriteFile(file_.Get(), text.data(), static_cast<DWORD>(std::min(text.size(), kMost)), &done,
                  nullptr) == 0) {
      Refuse(LastError());
    }
    text.remove_prefix(done);
  }
}

void WindowsFile::Finish() {
  if (target_.empty()) return;
  if (FlushFileBuffers(file_.Get()) == 0) Refuse(LastError());
  DeleteWhenClosed(file_, false);
  file_.Close();
  if (MoveFileExW(temporary_.c_str(), target_.c_str(),
                  MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH) == 0) {
    // The old file could be opened for writing, so it is not the permissions that lack.
    Refuse(GetLastError() == ERROR_ACCESS_DENIED ? EBUSY : LastError());
  }
  temporary_.clear();
}

bool IdentityOf(HANDLE file, BY_HANDLE_FILE_INFORMATION& identity) {
  return GetFileType(file) == FILE_TYPE_DISK && GetFileInformationByHandle(file, &identity) != 0;
}

/// Opens a file for nothing but its identity.
Handle OpenForIdentity(const std::string& path) {
  return Handle(CreateFileW(PathOf(path).c_str(), 0, kShareAll, nullptr, OPEN_EXISTING,
                            FILE_FLAG_BACKUP_SEMANTICS, nullptr));
}

}  // namespace

std::unique_ptr<ReplacedFile> ReplacedFile::Open(const std::string& path) {
  return std::make_unique<WindowsFile>(path);
}

bool IsInput(const std::string& path, const std::string& input) {
  const Handle file = OpenForIdentity(path);
  const Handle named = input == "-" ? Handle() : OpenForIdentity(input);
  BY_HANDLE_FILE_INFORMATION a = {};
  BY_HANDLE_FILE_INFORMATION b = {};
  return IdentityOf(file.Get(), a) &&
         IdentityOf(input == "-" ? GetStdHandle(STD_INPUT_HANDLE) : named.Get(), b) &&
         a.dwVolumeSerialNumber == b.dwVolumeSerialNumber && a.nFileIndexHigh == b.nFileIndexHigh &&
         a.nFileIndexLow == b.nFileIndexLow;
}

}  // namespace pxrom_command
