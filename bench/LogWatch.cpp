#include "LogWatch.h"

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <system_error>
#include <thread>
#include <vector>

namespace bench::LogWatch {

namespace fs = std::filesystem;

namespace {

constexpr std::chrono::milliseconds kQuietPeriod{50};

// The benchmark's HOME is fresh, so every log file there is this run's.
std::vector<fs::path> LogFiles() {
  const char* home = std::getenv("HOME");
  std::vector<fs::path> files;
  std::error_code error;
  for (const auto& entry :
       fs::directory_iterator(fs::path(home != nullptr ? home : "") / "TavClient/log", error)) {
    if (entry.path().extension() == ".log") {
      files.push_back(entry.path());
    }
  }
  return files;
}

std::uintmax_t Bytes() {
  std::uintmax_t total = 0;
  for (const fs::path& file : LogFiles()) {
    std::error_code error;
    const std::uintmax_t size = fs::file_size(file, error);
    total += error ? 0 : size;
  }
  return total;
}

std::uintmax_t Lines() {
  std::uintmax_t total = 0;
  for (const fs::path& file : LogFiles()) {
    std::ifstream log(file, std::ios::binary);
    total += static_cast<std::uintmax_t>(
        std::count(std::istreambuf_iterator<char>(log), std::istreambuf_iterator<char>(), '\n'));
  }
  return total;
}

}  // namespace

Extent Settled() {
  std::uintmax_t bytes = Bytes();
  for (;;) {
    std::this_thread::sleep_for(kQuietPeriod);
    const std::uintmax_t now = Bytes();
    if (now == bytes) {
      return {bytes, Lines()};
    }
    bytes = now;
  }
}

}  // namespace bench::LogWatch
