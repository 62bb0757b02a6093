#include "common/TavResource.h"

#include <sys/stat.h>

#include <cstdlib>
#include <filesystem>
#include <optional>
#include <system_error>

#include "common/RobotEvent.h"
#include "common/TavProperties.h"
#include "common/TavUtils.h"

namespace {

constexpr const char* kPropertiesFile = "TavClientResource.properties";
constexpr const char* kBaseName = "TavClient";

// The value of key when the properties file opened and holds it.
std::optional<std::string> Configured(TavProperties& properties, bool opened, const char* key) {
  std::string value;
  if (opened && properties.read(key, &value) == RobotEvents::kSuccess) {
    return value;
  }
  return std::nullopt;
}

// Why HOME cannot take the base directory, or "" when it can. Making the base is the test
// of writability: permission bits say nothing to root.
std::string HomeProblem(const char* home) {
  if (home == nullptr) {
    return "unset";
  }
  if (*home == '\0') {
    return "empty";
  }
  struct stat status {};
  if (::stat(home, &status) != 0 || !S_ISDIR(status.st_mode)) {
    return std::string(home) + " is not a directory";
  }
  const std::string base = std::string(home) + "/" + kBaseName;
  if (createDirectory(base) != RobotEvents::kSuccess) {
    return "cannot create " + base;
  }
  return "";
}

}  // namespace

std::string WorkingDirectoryBase() {
  std::error_code error;
  const std::filesystem::path directory = std::filesystem::current_path(error);
  return ((error ? std::filesystem::path(".") : directory) / kBaseName).string();
}

TavResource& TavResource::GetInstance() {
  static TavResource instance;
  return instance;
}

TavResource::TavResource() : loaded(false) {}

TavResource::~TavResource() = default;

int TavResource::Load() {
  std::lock_guard<std::mutex> lock(mutex);
  const char* environmentHome = std::getenv("HOME");
  home = environmentHome != nullptr ? environmentHome : "";

  TavProperties properties;
  const bool opened = properties.open(kPropertiesFile) == RobotEvents::kSuccess;
  if (opened) {
    properties.load();
  }

  // A path this call does not reach must not stay from an earlier one: the logger takes it.
  logPath.clear();
  repositoryPath.clear();
  homeNotice.clear();

  const std::optional<std::string> configuredBase =
      Configured(properties, opened, "TAVCLIENT_PATH");
  basePath = configuredBase ? *configuredBase : _homeBase(environmentHome);
  int status = createDirectory(basePath);
  if (status == RobotEvents::kSuccess) {
    logPath = Configured(properties, opened, "LOG_PATH").value_or(basePath + "/log");
    status = createDirectory(logPath);
  }
  if (status == RobotEvents::kSuccess) {
    repositoryPath =
        Configured(properties, opened, "REPOSITORY_PATH").value_or(basePath + "/repository");
    status = createDirectory(repositoryPath);
  }
  if (status != RobotEvents::kSuccess) {
    properties.close();
    return status;
  }
  loaded = true;
  return RobotEvents::kSuccess;
}

std::string TavResource::_homeBase(const char* environmentHome) {
  const std::string problem = HomeProblem(environmentHome);
  if (problem.empty()) {
    return home + "/" + kBaseName;
  }
  homeNotice = "HOME is not usable (" + problem + ")";
  return WorkingDirectoryBase();
}

bool TavResource::IsLoaded() const {
  std::lock_guard<std::mutex> lock(mutex);
  return loaded;
}

std::string TavResource::GetHome() const {
  std::lock_guard<std::mutex> lock(mutex);
  return home;
}

std::string TavResource::GetBasePath() const {
  std::lock_guard<std::mutex> lock(mutex);
  return basePath;
}

std::string TavResource::GetLogPath() const {
  std::lock_guard<std::mutex> lock(mutex);
  return logPath;
}

std::string TavResource::GetRepositoryPath() const {
  std::lock_guard<std::mutex> lock(mutex);
  return repositoryPath;
}

std::string TavResource::GetHomeNotice() const {
  std::lock_guard<std::mutex> lock(mutex);
  return homeNotice;
}
