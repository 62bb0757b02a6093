#ifndef TAVCLIENT_COMMON_TAVRESOURCE_H
#define TAVCLIENT_COMMON_TAVRESOURCE_H

#include <mutex>
#include <string>

// Where the library keeps its files, worked out once per process: a base directory (from the
// key "TAVCLIENT_PATH" of "TavClientResource.properties" in the working directory, or HOME +
// "/TavClient"), a log directory ("LOG_PATH", or base + "/log") and a repository directory
// ("REPOSITORY_PATH", or base + "/repository").
//
// HOME counts only when it names a directory in which "TavClient" exists or can be made;
// otherwise the base is WorkingDirectoryBase() (never "/TavClient"), and GetHomeNotice says why.
//
// A Client loads on the thread that builds it; a second Client may load again while other
// threads read the paths, so every access takes the lock.
class TavResource {
public:
  static TavResource& GetInstance();

  TavResource(const TavResource&) = delete;
  TavResource& operator=(const TavResource&) = delete;

  // Works the three directories out and creates them. 0, or the failing createDirectory
  // status (1005011); paths and directories made before a failure stay, paths not reached
  // are empty. A properties file with any content makes the reader throw std::out_of_range,
  // which passes to the caller with only the home updated.
  int Load();

  bool IsLoaded() const;
  // HOME as Load read it; empty when unset.
  std::string GetHome() const;
  std::string GetBasePath() const;
  std::string GetLogPath() const;
  std::string GetRepositoryPath() const;
  // Why the base is not under HOME, e.g. "HOME is not usable (unset)"; empty when it is or when
  // the properties file names it.
  std::string GetHomeNotice() const;

private:
  TavResource();
  ~TavResource();

  // HOME + "/TavClient", made, or WorkingDirectoryBase() with the notice saying why not.
  std::string _homeBase(const char* environmentHome);

  mutable std::mutex mutex;
  bool loaded;
  std::string home;
  std::string basePath;
  std::string logPath;
  std::string repositoryPath;
  std::string homeNotice;
};

// "<working directory>/TavClient" ("./TavClient" when the working directory cannot be named):
// the base without a usable HOME, and the log's last resort.
std::string WorkingDirectoryBase();

#endif
