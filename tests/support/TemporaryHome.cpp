#include "support/TemporaryHome.h"

#include <stdlib.h>

#include <filesystem>
#include <fstream>

namespace tavtest {

ScopedHome::ScopedHome(const std::optional<std::string>& home) {
  if (const char* current = ::getenv("HOME")) previous_ = current;
  home ? ::setenv("HOME", home->c_str(), 1) : ::unsetenv("HOME");
}

ScopedHome::~ScopedHome() {
  previous_ ? ::setenv("HOME", previous_->c_str(), 1) : ::unsetenv("HOME");
}

std::vector<std::string> LogLines(const std::string& home) {
  std::vector<std::string> lines;
  std::error_code missing;
  for (const auto& entry : std::filesystem::directory_iterator(home + "/TavClient/log", missing)) {
    std::ifstream file(entry.path());
    for (std::string line; std::getline(file, line);) lines.push_back(line);
  }
  return lines;
}

}  // namespace tavtest
