#ifndef TAVTEST_SUPPORT_TEMPORARYHOME_H
#define TAVTEST_SUPPORT_TEMPORARYHOME_H

#include <gtest/gtest.h>
#include <stdlib.h>

#include <filesystem>
#include <fstream>
#include <optional>
#include <string>
#include <vector>

#include "support/TemporaryDirectory.h"

namespace tavtest {

// Sets HOME (or unsets it, for nullopt) for the object's life and puts back what was there,
// unset included.
class ScopedHome {
public:
  explicit ScopedHome(const std::optional<std::string>& home) {
    if (const char* current = ::getenv("HOME")) {
      previous = current;
    }
    Set(home);
  }
  ~ScopedHome() { Set(previous); }
  ScopedHome(const ScopedHome&) = delete;
  ScopedHome& operator=(const ScopedHome&) = delete;

private:
  static void Set(const std::optional<std::string>& home) {
    home ? ::setenv("HOME", home->c_str(), 1) : ::unsetenv("HOME");
  }

  std::optional<std::string> previous;
};

// Points HOME at a fresh temporary directory for the whole test program, so the library's
// directories and log files never land in the real home. A test program gets it by linking
// the object library tav_temporary_home.
class TemporaryHome : public ::testing::Environment {
public:
  void SetUp() override {
    home.emplace();
    variable.emplace(home->Path());
  }
  void TearDown() override {
    variable.reset();
    home.reset();
  }

private:
  std::optional<TemporaryDirectory> home;
  std::optional<ScopedHome> variable;
};

// Every line of every log file the library wrote under `home` so far.
inline std::vector<std::string> LogLines(const std::string& home) {
  std::vector<std::string> lines;
  std::error_code missing;
  for (const auto& entry : std::filesystem::directory_iterator(home + "/TavClient/log", missing)) {
    std::ifstream file(entry.path());
    for (std::string line; std::getline(file, line);) {
      lines.push_back(line);
    }
  }
  return lines;
}

}  // namespace tavtest

#endif
