#ifndef TAVCLIENT_COMMON_TAVLOGGER_H
#define TAVCLIENT_COMMON_TAVLOGGER_H

#include <atomic>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <string>

#include "../thread/TavThread.h"
#include "LogRecord.h"
#include "RobotEvent.h"

// The library's logger: any thread queues formatted records, and the logger's own thread
// writes them in queue order, one line each, into the log file (see LogFile) in the log
// directory of TavResource, or where OpenLogFile falls back to, or nowhere. Formats follow
// FormatLogText, not printf.
//
// The logger thread takes records in batches: woken by the first record, it lets the others
// of the moment gather for kGatherWindow, then writes all of them with one flushed write. A
// line thus reaches the file within a few milliseconds, and a busy session wakes the logger
// and writes to the file a few hundred times a second rather than twice per command.
//
// Records below the level (SetLevel, or TAVCLIENT_LOG_LEVEL from the environment when the
// logger is first used; everything by default) are dropped before they are formatted.
//
// Records queued before the thread starts wait in the queue. At process exit the singleton's
// destructor stops the thread after it has written everything queued and joins it.
class TavLogger : public Tavthread::TavThread {
public:
  static TavLogger& GetInstance();

  TavLogger(const TavLogger&) = delete;
  TavLogger& operator=(const TavLogger&) = delete;

  // Marks the logger running and starts its thread, taking the log directory and the notice
  // about HOME from TavResource (so Load comes first). Later calls do nothing while the first
  // thread is there.
  void StartLogging();

  // Drops later records below `level`, TAV_DEBUG (everything) to TAV_FATAL; 1006011 for any
  // other value, which keeps the current level.
  int SetLevel(int level);
  int GetLevel() const { return threshold; }

  // Level INFO, no event.
  void Info(const char* format, ...);
  // Level WARNING with the event.
  void Warning(Robot_Event event, const char* format, ...);
  // Level ERROR whatever the level argument, which is kept with the record.
  void Error(LogLevel level, Robot_Event event, const char* format, ...);

  // The thread body: opens the file (see OpenLogFile), then writes records until stopped and
  // drained.
  void Run() override;

private:
  TavLogger();
  ~TavLogger() override;

  bool _drops(LogLevel level) const { return level < threshold.load(std::memory_order_relaxed); }
  void _enqueue(log_message record);
  // Waits for records and moves every queued one into `batch`; false once stopped with
  // nothing left to write.
  bool _nextBatch(std::deque<log_message>& batch);

  std::deque<log_message> queue;
  std::mutex mutex;
  std::condition_variable condition;
  // Set by StartLogging, cleared only by the destructor; changed under the mutex so the
  // waiting thread cannot miss it.
  std::atomic<bool> running;
  std::atomic<int> threshold;
  // Guarded by the mutex.
  bool threadStarted;
  std::string logDirectory;
  std::string homeNotice;
};

#endif
