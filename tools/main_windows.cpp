// The command on Windows, where arguments and streams have to be made what they are elsewhere:
// UTF-8, with ends of lines as they were written.

#define NOMINMAX
#define WIN32_LEAN_AND_MEAN
#include <windows.h>

// After it:
#include <fcntl.h>
#include <io.h>
#include <shellapi.h>

#include <cstdio>
#include <string>
#include <vector>

#include "run.h"

namespace {

std::string Utf8Of(const wchar_t* text) {
  const int size = WideCharToMultiByte(CP_UTF8, 0, text, -1, nullptr, 0, nullptr, nullptr);
  std::string utf8(static_cast<std::size_t>(size), '\0');
  WideCharToMultiByte(CP_UTF8, 0, text, -1, utf8.data(), size, nullptr, nullptr);
  utf8.resize(utf8.size() - 1);
  return utf8;
}

std::vector<std::string> Arguments() {
  int count = 0;
  wchar_t** const words = CommandLineToArgvW(GetCommandLineW(), &count);
  std::vector<std::string> arguments;
  for (int i = 0; words != nullptr && i < count; ++i) arguments.push_back(Utf8Of(words[i]));
  LocalFree(words);
  return arguments;
}

/// A console shows UTF-8 while this exists.
class Utf8Console {
 public:
  Utf8Console() : before_(GetConsoleOutputCP()) { SetConsoleOutputCP(CP_UTF8); }
  Utf8Console(const Utf8Console&) = delete;
  Utf8Console& operator=(const Utf8Console&) = delete;
  ~Utf8Console() { SetConsoleOutputCP(before_); }

 private:
  UINT before_;
};

}  // namespace

int main() {
  for (std::FILE* const stream : {stdin, stdout, stderr}) _setmode(_fileno(stream), _O_BINARY);
  const Utf8Console console;
  const std::vector<std::string> arguments = Arguments();
  std::vector<const char*> pointers;
  for (const std::string& argument : arguments) pointers.push_back(argument.c_str());
  return pxrom_command::Run(static_cast<int>(pointers.size()), pointers.data());
}
