#include "common/TavLogger.h"

#include <fstream>

#include "common/TavResource.h"

namespace {
std::string LocalTime(std::time_t when, const char* format) {
  std::tm local{};
  localtime_r(&when, &local);
  char buffer[32];
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
  std::strftime(buffer, sizeof buffer, format, &local);
#pragma GCC diagnostic pop
  return buffer;
}
}  // namespace

TavLogger& TavLogger::GetInstance() {
  static TavLogger instance;
  return instance;
}

TavLogger::TavLogger() : running(false), threadStarted(false) {}

// Static clean-up at process exit: the thread writes out what is queued, then leaves.
TavLogger::~TavLogger() {
  bool joinThread;
  {
    std::lock_guard<std::mutex> lock(mutex);
    running = false;
    joinThread = threadStarted;
  }
  condition.notify_all();
  if (joinThread) Join();
}

void TavLogger::StartLogging() {
  std::lock_guard<std::mutex> lock(mutex);
  if (threadStarted) return;
  running = true;
  threadStarted = Start();
}

void TavLogger::Info(const char* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  Enqueue({TAV_INFO, TAV_DEBUG, RobotEvents::kSuccess, FormatLogText(format, arguments)});
  va_end(arguments);
}

void TavLogger::Warning(Robot_Event event, const char* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  Enqueue({TAV_WARNING, TAV_DEBUG, event, FormatLogText(format, arguments)});
  va_end(arguments);
}

void TavLogger::Error(LogLevel level, Robot_Event event, const char* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  Enqueue({TAV_ERROR, level, event, FormatLogText(format, arguments)});
  va_end(arguments);
}

void TavLogger::Enqueue(log_message message) {
  {
    std::lock_guard<std::mutex> lock(mutex);
    queue.push_back(std::move(message));
  }
  condition.notify_one();
}

// Waits for a record; false once the logger is stopped and nothing is left to write.
bool TavLogger::NextRecord(log_message& message) {
  std::unique_lock<std::mutex> lock(mutex);
  condition.wait(lock, [this] { return !queue.empty() || !running; });
  if (queue.empty()) return false;
  message = std::move(queue.front());
  queue.pop_front();
  return true;
}

bool TavLogger::RotationDue(std::time_t start, std::time_t now, int counter) {
  return std::difftime(now, start) > counter * 3600.0;
}

void TavLogger::Run() {
  const std::time_t start = std::time(nullptr);
  const std::string base =
      TavResource::GetInstance().GetLogPath() + "/" + LocalTime(start, "%Y%m%d%H%M%S");
  std::ofstream file(base + ".log", std::ios::out | std::ios::trunc);
  int counter = 1;

  log_message message;
  while (NextRecord(message)) {
    const std::time_t now = std::time(nullptr);
    if (RotationDue(start, now, counter)) {
      file.close();
      file.open(base + "-" + std::to_string(counter) + ".log", std::ios::out | std::ios::trunc);
      ++counter;
    }
    file << ComposeLogLine(LocalTime(now, "%Y-%m-%d %H:%M:%S"), message.level, message.event,
                           message.text)
         << '\n'
         << std::flush;
  }
}
