#ifndef TAVCLIENT_COMMON_TAVRESOURCE_H
#define TAVCLIENT_COMMON_TAVRESOURCE_H

#include <mutex>
#include <string>

// Where the library keeps its files: a base directory (from HOME unless the properties file
// "TavClientResource.properties" in the working directory says otherwise), with log and
// repository directories. One per process.
class TavResource {
 public:
  static TavResource& GetInstance();

  // Works the directories out and creates them: 0, or the failing createDirectory status.
  // An exception from the properties reader passes to the caller.
  int Load();

  bool IsLoaded() const;
  std::string GetHome() const;
  std::string GetBasePath() const;
  std::string GetLogPath() const;
  std::string GetRepositoryPath() const;

  TavResource(const TavResource&) = delete;
  TavResource& operator=(const TavResource&) = delete;

 private:
  TavResource();

  // The logger thread reads the log directory while a later Client may be loading again.
  mutable std::mutex mutex;
  bool loaded;
  std::string home;
  std::string basePath;
  std::string logPath;
  std::string repositoryPath;
};

#endif
