#ifndef TAVTEST_SUPPORT_TEMPORARYDIRECTORY_H
#define TAVTEST_SUPPORT_TEMPORARYDIRECTORY_H

#include <optional>
#include <string>

namespace tavtest {

// A fresh directory under the system's temporary directory (mkdtemp), removed with all its
// contents when the object goes.
class TemporaryDirectory {
public:
  TemporaryDirectory();
  ~TemporaryDirectory();
  TemporaryDirectory(const TemporaryDirectory&) = delete;
  TemporaryDirectory& operator=(const TemporaryDirectory&) = delete;

  const std::string& Path() const { return path_; }

private:
  std::string path_;
};

// A temporary directory shared by an exit test and its child process. The child runs the test
// body again from its start, so the parent makes the directory and hands it on through the
// environment; the parent alone removes it.
class ExitTestDirectory {
public:
  ExitTestDirectory();
  ~ExitTestDirectory();
  ExitTestDirectory(const ExitTestDirectory&) = delete;
  ExitTestDirectory& operator=(const ExitTestDirectory&) = delete;

  const std::string& Path() const { return path_; }

private:
  std::optional<TemporaryDirectory> owned_;
  std::string path_;
};

// Makes `directory` the working directory for the object's life.
class WorkingDirectory {
public:
  explicit WorkingDirectory(const std::string& directory);
  ~WorkingDirectory();
  WorkingDirectory(const WorkingDirectory&) = delete;
  WorkingDirectory& operator=(const WorkingDirectory&) = delete;

private:
  std::string previous_;
};

}  // namespace tavtest

#endif
