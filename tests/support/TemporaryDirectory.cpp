#include "support/TemporaryDirectory.h"

#include <stdlib.h>

#include <cerrno>
#include <filesystem>
#include <system_error>

namespace tavtest {

TemporaryDirectory::TemporaryDirectory()
    : path_((std::filesystem::temp_directory_path() / "tavclient-test-XXXXXX").string()) {
  if (::mkdtemp(path_.data()) == nullptr) throw std::system_error(errno, std::generic_category(), "mkdtemp");
}

TemporaryDirectory::~TemporaryDirectory() {
  std::error_code ignored;
  std::filesystem::remove_all(path_, ignored);
}

namespace {
constexpr const char* kExitTestDirectoryVariable = "TAVTEST_EXIT_DIRECTORY";
}

ExitTestDirectory::ExitTestDirectory() {
  if (const char* inherited = ::getenv(kExitTestDirectoryVariable)) {
    path_ = inherited;
    return;
  }
  path_ = owned_.emplace().Path();
  ::setenv(kExitTestDirectoryVariable, path_.c_str(), 1);
}

ExitTestDirectory::~ExitTestDirectory() {
  if (owned_) ::unsetenv(kExitTestDirectoryVariable);
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
