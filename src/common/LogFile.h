#ifndef TAVCLIENT_COMMON_LOGFILE_H
#define TAVCLIENT_COMMON_LOGFILE_H

#include <cstddef>
#include <ctime>
#include <string>

// How much of the disk one log directory may take: a file's size and the number of this
// library's log files kept there, 256 MiB at most by default.
struct LogLimits {
  std::size_t fileBytes = 16 * 1024 * 1024;
  std::size_t files = 16;
};

// The logger's output: "<directory>/<start as %Y%m%d%H%M%S>.log" first, then "-1.log", "-2.log",
// ... after the same base: a file is left for the next one by the first record of a later hour
// of the run (an idle hour leaves no file) or when it is full.
//
// Files are opened for appending and their size is read from the file itself, so processes
// started in the same second share one series without losing a line: whichever finds a file
// full moves on, and a file another writer filled is skipped. Each opening removes this
// library's oldest log files in the directory (ordered by start stamp, then number) beyond
// LogLimits::files, never the one being written.
//
// A line longer than a whole file is cut to fit. A file that cannot be opened or written loses
// its lines silently: a full disk costs the log, never the session.
class LogFile {
public:
  LogFile(const std::string& directory, std::time_t start, LogLimits limits = {});
  ~LogFile();
  LogFile(const LogFile&) = delete;
  LogFile& operator=(const LogFile&) = delete;

  // Whether the current file opened.
  bool IsOpen() const { return fd >= 0; }

  // Writes `lines` (lines joined by line ends) and a line end, moving on to the next file
  // first when the hour is over and wherever the current file fills.
  void Write(std::time_t now, const std::string& lines);

private:
  std::string _path(int number) const;
  // Opens file `number`, or the first after it that is not full, then prunes.
  void _openFrom(int number);
  void _prune() const;
  std::size_t _size() const;
  // Writes all of `text` unless the file fails.
  bool _writeAll(const char* text, std::size_t length);

  const std::string directory;
  const std::string stamp;
  const std::time_t start;
  const LogLimits limits;
  std::time_t hour;  // of the run, in which the current file opened
  int number = 0;    // of the current file: 0 for the first
  int fd = -1;
};

// Whether `name` is one of this library's log files: "<14 digits>.log" or "<14 digits>-<n>.log".
bool IsLogFileName(const std::string& name);

#endif
