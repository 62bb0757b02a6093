#include "common/TavResource.h"

#include <cstdlib>

#include "common/RobotEvent.h"
#include "common/TavProperties.h"
#include "common/TavUtils.h"

namespace {

constexpr const char* kPropertiesFile = "TavClientResource.properties";

// The value of key when the properties file opened and holds it, otherwise the fallback.
std::string Configured(TavProperties& properties, bool opened, const char* key, const std::string& fallback) {
  std::string value;
  if (opened && properties.read(key, &value) == RobotEvents::kSuccess) {
    return value;
  }
  return fallback;
}

}  // namespace

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

  basePath = Configured(properties, opened, "TAVCLIENT_PATH", home + "/TavClient");
  int status = createDirectory(basePath);
  if (status == RobotEvents::kSuccess) {
    logPath = Configured(properties, opened, "LOG_PATH", basePath + "/log");
    status = createDirectory(logPath);
  }
  if (status == RobotEvents::kSuccess) {
    repositoryPath = Configured(properties, opened, "REPOSITORY_PATH", basePath + "/repository");
    status = createDirectory(repositoryPath);
  }
  if (status != RobotEvents::kSuccess) {
    properties.close();
    return status;
  }
  loaded = true;
  return RobotEvents::kSuccess;
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
