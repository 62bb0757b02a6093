#ifndef TAVTEST_COMMON_TESTHELPERS_H
#define TAVTEST_COMMON_TESTHELPERS_H

#include <stdlib.h>

#include <fstream>
#include <optional>
#include <string>

namespace tavtest {

inline void WriteFile(const std::string& path, const std::string& content) {
  std::ofstream(path, std::ios::out | std::ios::trunc) << content;
}

// Sets HOME for the object's life and puts back what was there, unset included.
class ScopedHome {
public:
  explicit ScopedHome(const std::string& home) {
    if (const char* current = ::getenv("HOME")) previous = current;
    ::setenv("HOME", home.c_str(), 1);
  }
  ~ScopedHome() { previous ? ::setenv("HOME", previous->c_str(), 1) : ::unsetenv("HOME"); }
  ScopedHome(const ScopedHome&) = delete;
  ScopedHome& operator=(const ScopedHome&) = delete;

private:
  std::optional<std::string> previous;
};

}  // namespace tavtest

#endif
