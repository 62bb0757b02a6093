#ifndef TAVTEST_SUPPORT_TEMPORARYDIRECTORY_H
#define TAVTEST_SUPPORT_TEMPORARYDIRECTORY_H

#include <stdlib.h>

#include <cerrno>
#include <filesystem>
#include <optional>
#include <string>
#include <system_error>

namespace tavtest {

// A fresh directory under the system's temporary directory (mkdtemp), removed with all its
// contents when the object goes.
class TemporaryDirectory {
public:
  TemporaryDirectory()
      : path((std::filesystem::temp_directory_path() / "tavclient-test-XXXXXX").string()) {
    if (::mkdtemp(path.data()) == nullptr) {
      throw std::system_error(errno, std::generic_category(), "mkdtemp");
    }
  }
  ~TemporaryDirectory() {
    std::error_code ignored;
    std::filesystem::remove_all(path, ignored);
  }
  TemporaryDirectory(const TemporaryDirectory&) = delete;
  TemporaryDirectory& operator=(const TemporaryDirectory&) = delete;

  const std::string& Path() const { return path; }

private:
  std::string path;
};

// A temporary directory shared by an exit test and its child process. The child runs the test
// body again from its start, so the parent makes the directory and hands it on through the
// environment; the parent alone removes it.
class ExitTestDirectory {
public:
  ExitTestDirectory() {
    if (const char* inherited = ::getenv(kVariable)) {
      path = inherited;
      return;
    }
    path = owned.emplace().Path();
    ::setenv(kVariable, path.c_str(), 1);
  }
  ~ExitTestDirectory() {
    if (owned) {
      ::unsetenv(kVariable);
    }
  }

  const std::string& Path() const { return path; }

private:
  static constexpr const char* kVariable = "TAVTEST_EXIT_DIRECTORY";
  std::optional<TemporaryDirectory> owned;
  std::string path;
};

// Makes `directory` the working directory for the object's life.
class WorkingDirectory {
public:
  explicit WorkingDirectory(const std::string& directory)
      : previous(std::filesystem::current_path().string()) {
    std::filesystem::current_path(directory);
  }
  ~WorkingDirectory() {
    std::error_code ignored;
    std::filesystem::current_path(previous, ignored);
  }
  WorkingDirectory(const WorkingDirectory&) = delete;
  WorkingDirectory& operator=(const WorkingDirectory&) = delete;

private:
  std::string previous;
};

}  // namespace tavtest

#endif
