#ifndef TAVCLIENT_STREAM_CSVRECORDER_H
#define TAVCLIENT_STREAM_CSVRECORDER_H

#include <chrono>
#include <cstdio>
#include <memory>
#include <string>
#include <vector>

#include "StateSample.h"

namespace tavclient {

// Writes samples as CSV rows. The columns are fixed when the file opens: time and sequence,
// then each chosen field per motor (or input), each named with its unit. A value that was not
// read in a sample's cycle is an empty cell. The file is written through a fixed buffer and
// flushed at least once a second, so its memory stays bounded however long it runs.
class CsvRecorder {
public:
  // Null when the file cannot be opened.
  static std::unique_ptr<CsvRecorder> Open(const std::string& path, StateFields fields,
                                           std::vector<int> motorIds, std::vector<int> inputIds);
  ~CsvRecorder();
  CsvRecorder(const CsvRecorder&) = delete;
  CsvRecorder& operator=(const CsvRecorder&) = delete;

  void Write(const StateSample& sample);
  void Flush();

private:
  CsvRecorder(std::FILE* file, StateFields fields, std::vector<int> motorIds,
              std::vector<int> inputIds);
  void _header();
  void _values(StateField field, const std::vector<double>& values);
  void _cell(double value);

  std::FILE* file;
  StateFields fields;
  std::vector<int> motorIds;
  std::vector<int> inputIds;
  std::vector<char> buffer;
  bool started = false;
  std::chrono::steady_clock::time_point origin;
  std::chrono::steady_clock::time_point lastFlush;
};

}  // namespace tavclient

#endif
