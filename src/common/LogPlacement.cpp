#include "common/LogPlacement.h"

#include <cstdio>

#include "common/RobotEvent.h"
#include "common/TavResource.h"
#include "common/TavUtils.h"

namespace {

// Opening the file is the test of writability: permission bits say nothing to root.
std::unique_ptr<LogFile> OpenIn(const std::string& directory, std::time_t start) {
  if (directory.empty() || createDirectory(directory) != RobotEvents::kSuccess) {
    return nullptr;
  }
  auto file = std::make_unique<LogFile>(directory, start);
  return file->IsOpen() ? std::move(file) : nullptr;
}

}  // namespace

std::unique_ptr<LogFile> OpenLogFile(const std::string& directory, const std::string& homeNotice,
                                     std::time_t start) {
  std::unique_ptr<LogFile> file = OpenIn(directory, start);
  if (file && homeNotice.empty()) {
    return file;
  }
  std::string reason = homeNotice;
  std::string target = directory;
  if (!file) {
    if (reason.empty()) {
      reason = directory.empty() ? "no log directory was made"
                                 : "cannot write a log file in " + directory;
    }
    target = WorkingDirectoryBase() + "/log";
    file = OpenIn(target, start);
  }
  const std::string outcome = file ? "logging to " + target : "logging nothing";
  std::fprintf(stderr, "tavclient: %s; %s\n", reason.c_str(), outcome.c_str());
  return file;
}
