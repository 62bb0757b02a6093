#include "LogWatch.h"

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <system_error>
#include <thread>

namespace bench::LogWatch {

namespace fs = std::filesystem;

namespace {

constexpr std::chrono::milliseconds kQuietPeriod{50};

// The benchmark's HOME is fresh and a run is far shorter than the hour after which the logger
// starts a second file, so there is one.
fs::path LogFile() {
  const char* home = std::getenv("HOME");
  std::error_code error;
  for (const auto& entry :
       fs::directory_iterator(fs::path(home != nullptr ? home : "") / "TavClient/log", error)) {
    if (entry.path().extension() == ".log") {
      return entry.path();
    }
  }
  return {};
}

std::uintmax_t SizeOf(const fs::path& path) {
  std::error_code error;
  const std::uintmax_t size = fs::file_size(path, error);
  return error ? 0 : size;
}

}  // namespace

std::uintmax_t SettledSize() {
  const fs::path log = LogFile();
  std::uintmax_t size = SizeOf(log);
  for (;;) {
    std::this_thread::sleep_for(kQuietPeriod);
    const std::uintmax_t now = SizeOf(log);
    if (now == size) {
      return size;
    }
    size = now;
  }
}

std::size_t LinesBetween(std::uintmax_t from, std::uintmax_t to) {
  std::ifstream log(LogFile(), std::ios::binary);
  log.seekg(static_cast<std::streamoff>(from));
  std::string text(static_cast<std::size_t>(to - from), '\0');
  log.read(text.data(), static_cast<std::streamsize>(text.size()));
  return static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n'));
}

}  // namespace bench::LogWatch
