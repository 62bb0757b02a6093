#ifndef TAVCLIENT_COMMON_TAVLOGGER_H
#define TAVCLIENT_COMMON_TAVLOGGER_H

#include <atomic>
#include <condition_variable>
#include <ctime>
#include <deque>
#include <mutex>
#include <string>

#include "common/LogFormat.h"
#include "common/RobotEvent.h"
#include "thread/TavThread.h"

// The process's one logger. Any thread queues a record; the logger's own thread writes one
// flushed line per record into "<log dir>/<start time>.log", moving on to "-1.log", "-2.log"
// ... each further hour. Callers never wait for the disk.
class TavLogger : public Tavthread::TavThread {
 public:
  static TavLogger& GetInstance();

  void Info(const char* format, ...);
  void Warning(Robot_Event event, const char* format, ...);
  void Error(LogLevel level, Robot_Event event, const char* format, ...);

  // Marks the logger running and starts its thread, once per process.
  void StartLogging();

  void Run() override;

  // Whether a record written at `now` belongs in the next hourly file.
  static bool RotationDue(std::time_t start, std::time_t now, int counter);

  ~TavLogger() override;

 private:
  struct log_message {
    LogLevel level;
    LogLevel detail;
    Robot_Event event;
    std::string text;
  };

  TavLogger();
  void Enqueue(log_message message);
  bool NextRecord(log_message& message);

  std::deque<log_message> queue;
  std::mutex mutex;
  std::condition_variable condition;
  std::atomic<bool> running;
  bool threadStarted;  // guarded by mutex
};

#endif
