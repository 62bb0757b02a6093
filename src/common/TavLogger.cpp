#include "common/TavLogger.h"

#include <cstdarg>
#include <ctime>
#include <memory>
#include <utility>

#include "common/LocalTime.h"
#include "common/LogFormat.h"
#include "common/LogPlacement.h"
#include "common/TavResource.h"

TavLogger& TavLogger::GetInstance() {
  static TavLogger instance;
  return instance;
}

TavLogger::TavLogger() : running(false), threadStarted(false) {}

TavLogger::~TavLogger() {
  bool joinThread;
  {
    std::lock_guard<std::mutex> lock(mutex);
    running = false;
    joinThread = threadStarted;
  }
  condition.notify_all();
  if (joinThread) {
    Join();
  }
}

void TavLogger::StartLogging() {
  std::lock_guard<std::mutex> lock(mutex);
  if (threadStarted) {
    return;
  }
  const TavResource& resource = TavResource::GetInstance();
  logDirectory = resource.GetLogPath();
  homeNotice = resource.GetHomeNotice();
  running = true;
  threadStarted = Start();
  if (!threadStarted) {
    running = false;
  }
}

void TavLogger::Info(const char* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  std::string text = FormatLogText(format, arguments);
  va_end(arguments);
  _enqueue({TAV_INFO, TAV_DEBUG, RobotEvents::kSuccess, std::move(text)});
}

void TavLogger::Warning(Robot_Event event, const char* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  std::string text = FormatLogText(format, arguments);
  va_end(arguments);
  _enqueue({TAV_WARNING, TAV_DEBUG, event, std::move(text)});
}

void TavLogger::Error(LogLevel level, Robot_Event event, const char* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  std::string text = FormatLogText(format, arguments);
  va_end(arguments);
  _enqueue({TAV_ERROR, level, event, std::move(text)});
}

void TavLogger::_enqueue(log_message record) {
  {
    std::lock_guard<std::mutex> lock(mutex);
    queue.push_back(std::move(record));
  }
  condition.notify_one();
}

bool TavLogger::_nextRecord(log_message& record) {
  std::unique_lock<std::mutex> lock(mutex);
  condition.wait(lock, [this] { return !queue.empty() || !running; });
  if (queue.empty()) {
    return false;
  }
  record = std::move(queue.front());
  queue.pop_front();
  return true;
}

void TavLogger::Run() {
  const std::unique_ptr<LogFile> file = OpenLogFile(logDirectory, homeNotice, std::time(nullptr));
  log_message record{};
  // Without a file the records are still taken, so that the queue does not grow.
  while (_nextRecord(record)) {
    if (file) {
      const std::time_t now = std::time(nullptr);
      file->Write(now, FormatLogLine(LogLineTime(now), record));
    }
  }
}
