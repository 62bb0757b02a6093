#include "support/TemporaryHome.h"

#include <stdlib.h>

#include <filesystem>
#include <fstream>

namespace tavtest {

namespace {
std::string activeHome;
}

void TemporaryHome::SetUp() {
  if (const char* home = ::getenv("HOME")) {
    previousHome_ = home;
  }
  home_ = std::make_unique<TemporaryDirectory>();
  activeHome = home_->Path();
  ::setenv("HOME", activeHome.c_str(), 1);
}

void TemporaryHome::TearDown() {
  if (previousHome_) {
    ::setenv("HOME", previousHome_->c_str(), 1);
  } else {
    ::unsetenv("HOME");
  }
  activeHome.clear();
  home_.reset();
}

std::string TemporaryHome::Path() {
  return activeHome;
}

std::vector<std::string> TemporaryHome::LogLines() {
  std::vector<std::string> lines;
  const std::filesystem::path logDirectory = std::filesystem::path(activeHome) / "TavClient" / "log";
  std::error_code missing;
  for (const auto& entry : std::filesystem::directory_iterator(logDirectory, missing)) {
    if (entry.path().extension() != ".log") {
      continue;
    }
    std::ifstream file(entry.path());
    for (std::string line; std::getline(file, line);) {
      lines.push_back(line);
    }
  }
  return lines;
}

}  // namespace tavtest
