#ifndef TAVTEST_SUPPORT_TEMPORARYHOME_H
#define TAVTEST_SUPPORT_TEMPORARYHOME_H

#include <gtest/gtest.h>
#include <stdlib.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <optional>
#include <string>
#include <vector>

#include "support/Polling.h"
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

// The lines logged under `home` after the last line that says `first` and before the one that
// says `last`, once that is written. The logger writes in queue order: a test that queues `last`
// after its own records gets all of them, and none queued before `first`.
inline std::vector<std::string> LinesBetween(const std::string& home, const std::string& first,
                                             const std::string& last) {
  const auto says = [](const std::string& text) {
    return [&text](const std::string& line) { return line.find(text) != std::string::npos; };
  };
  std::vector<std::string> lines;
  if (!PollUntil(std::chrono::seconds(10), [&] {
        lines = LogLines(home);
        return std::any_of(lines.begin(), lines.end(), says(last));
      })) {
    ADD_FAILURE() << "the logger never wrote \"" << last << "\"";
    return {};
  }
  const auto end = std::find_if(lines.rbegin(), lines.rend(), says(last));
  const auto begin = std::find_if(end, lines.rend(), says(first));
  return {begin.base(), std::prev(end.base())};
}

}  // namespace tavtest

#endif
