#pragma once

#include <dlfcn.h>
#include <gtest/gtest.h>

#include <string>

namespace Tarvane::Plexura::PXROM {

/// A shared library that a test has built, loaded until the object ends.
class SharedLibrary {
 public:
  explicit SharedLibrary(const std::string& path)
      : handle_(dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL)) {
    EXPECT_NE(handle_, nullptr) << path;
  }
  SharedLibrary(const SharedLibrary&) = delete;
  SharedLibrary& operator=(const SharedLibrary&) = delete;
  ~SharedLibrary() {
    if (handle_ != nullptr) dlclose(handle_);
  }

  template <class Function>
  Function* Find(const std::string& name) const {
    return reinterpret_cast<Function*>(dlsym(handle_, name.c_str()));
  }

 private:
  void* handle_;
};

}  // namespace Tarvane::Plexura::PXROM
