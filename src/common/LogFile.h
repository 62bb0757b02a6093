#ifndef TAVCLIENT_COMMON_LOGFILE_H
#define TAVCLIENT_COMMON_LOGFILE_H

#include <ctime>
#include <fstream>
#include <string>

// Whether the record written at now goes to the next file: the file counted by counter (1 for
// the first) has covered its hour once more than counter × 3600 seconds have passed since start.
bool IsRotationDue(std::time_t start, std::time_t now, int counter);

// The logger's output: "<directory>/<start as %Y%m%d%H%M%S>.log" for the first hour, then
// "-1.log", "-2.log", ... after the same base, each opened by the first record of its hour.
// A later file that cannot be opened loses its lines silently.
class LogFile {
public:
  LogFile(const std::string& directory, std::time_t start);

  // Whether the current file opened.
  bool IsOpen() const { return stream.is_open(); }

  // Rotates first when due, then writes the line and its line end and flushes.
  void Write(std::time_t now, const std::string& line);

private:
  const std::string base;
  const std::time_t start;
  int counter = 1;
  std::ofstream stream;
};

#endif
