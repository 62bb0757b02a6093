#include "support/TemporaryDirectory.h"

#include <stdlib.h>

#include <cerrno>
#include <filesystem>
#include <system_error>
#include <vector>

namespace tavtest {

TemporaryDirectory::TemporaryDirectory() {
  const std::string pattern = (std::filesystem::temp_directory_path() / "tavclient-test-XXXXXX").string();
  std::vector<char> name(pattern.begin(), pattern.end());
  name.push_back('\0');
  if (::mkdtemp(name.data()) == nullptr) {
    throw std::system_error(errno, std::generic_category(), "mkdtemp " + pattern);
  }
  path_ = name.data();
}

TemporaryDirectory::~TemporaryDirectory() {
  std::error_code ignored;
  std::filesystem::remove_all(path_, ignored);
}

WorkingDirectory::WorkingDirectory(const std::string& directory)
    : previous_(std::filesystem::current_path().string()) {
  std::filesystem::current_path(directory);
}

WorkingDirectory::~WorkingDirectory() {
  std::error_code ignored;
  std::filesystem::current_path(previous_, ignored);
}

}  // namespace tavtest
