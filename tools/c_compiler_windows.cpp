#define NOMINMAX
#define WIN32_LEAN_AND_MEAN
#include <windows.h>

#include <cerrno>
#include <system_error>

#include "c_compiler.h"
#include "file_names.h"
#include "refusal.h"
#include "system_reason.h"

namespace pxrom_command {

namespace fs = std::filesystem;

TemporaryFolder::TemporaryFolder() {
  constexpr int kMostNames = 100;
  std::error_code failed;
  const fs::path parent = fs::temp_directory_path(failed);
  for (int attempt = 0; !failed && attempt < kMostNames; ++attempt) {
    const std::string name =
        "pxrom-" + std::to_string(GetCurrentProcessId()) + '-' + std::to_string(attempt);
    if (!fs::create_directory(parent / name, failed)) continue;
    path_ = TextOfPath(parent / name);
    return;
  }
  throw Refusal("can't make a temporary folder: " + ReasonOf(EACCES, "make a folder there"));
}

TemporaryFolder::~TemporaryFolder() {
  std::error_code ignored;
  fs::remove_all(PathOf(path_), ignored);
}

std::string TemporaryFolder::File(const std::string& name) const {
  return TextOfPath(PathOf(path_) / PathOf(name));
}

bool RunQuietly(const std::vector<std::string>& words) {
  std::wstring line;
  for (const std::string& word : words) {
    line += (line.empty() ? L"\"" : L" \"") + PathOf(word).wstring() + L'"';
  }
  SECURITY_ATTRIBUTES inherited = {};
  inherited.nLength = sizeof inherited;
  inherited.bInheritHandle = TRUE;
  const HANDLE nothing =
      CreateFileW(L"NUL", GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE,
                  &inherited, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
  STARTUPINFOW start = {};
  start.cb = sizeof start;
  start.dwFlags = STARTF_USESTDHANDLES;
  start.hStdInput = nothing;
  start.hStdOutput = nothing;
  start.hStdError = nothing;
  PROCESS_INFORMATION child = {};
  const bool isStarted = CreateProcessW(nullptr, line.data(), nullptr, nullptr, TRUE,
                                        CREATE_NO_WINDOW, nullptr, nullptr, &start, &child) != 0;
  if (nothing != INVALID_HANDLE_VALUE) CloseHandle(nothing);
  if (!isStarted) return false;
  WaitForSingleObject(child.hProcess, INFINITE);
  DWORD status = 1;
  GetExitCodeProcess(child.hProcess, &status);
  CloseHandle(child.hThread);
  CloseHandle(child.hProcess);
  return status == 0;
}

}  // namespace pxrom_command
