#include "common/TavLogger.h"

#include <chrono>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <memory>
#include <thread>
#include <utility>

#include "common/LocalTime.h"
#include "common/LogFormat.h"
#include "common/LogPlacement.h"
#include "common/TavResource.h"

namespace {

// Long enough to gather the records of many commands, short enough that a line still follows
// its event at once to a reader of the file.
constexpr std::chrono::milliseconds kGatherWindow{2};

constexpr const char* kLevelVariable = "TAVCLIENT_LOG_LEVEL";

bool IsLevel(int level) { return level >= TAV_DEBUG && level <= TAV_FATAL; }

// The level TAVCLIENT_LOG_LEVEL names, a digit from 0 to 4; TAV_DEBUG when it is unset, and
// with a word on stderr when it names none.
int LevelFromEnvironment() {
  const char* text = std::getenv(kLevelVariable);
  if (text == nullptr) {
    return TAV_DEBUG;
  }
  if (text[0] >= '0' && text[0] <= '4' && text[1] == '\0') {
    return text[0] - '0';
  }
  std::fprintf(stderr, "tavclient: %s=%s is not a level from 0 to 4; logging everything\n",
               kLevelVariable, text);
  return TAV_DEBUG;
}

}  // namespace

TavLogger& TavLogger::GetInstance() {
  static TavLogger instance;
  return instance;
}

TavLogger::TavLogger() : running(false), threshold(LevelFromEnvironment()), threadStarted(false) {}

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

int TavLogger::SetLevel(int level) {
  if (!IsLevel(level)) {
    return RobotEvents::kInvalidArgument;
  }
  threshold = level;
  return RobotEvents::kSuccess;
}

void TavLogger::Info(const char* format, ...) {
  if (_drops(TAV_INFO)) {
    return;
  }
  va_list arguments;
  va_start(arguments, format);
  std::string text = FormatLogText(format, arguments);
  va_end(arguments);
  _enqueue({TAV_INFO, TAV_DEBUG, RobotEvents::kSuccess, std::move(text)});
}

void TavLogger::Warning(Robot_Event event, const char* format, ...) {
  if (_drops(TAV_WARNING)) {
    return;
  }
  va_list arguments;
  va_start(arguments, format);
  std::string text = FormatLogText(format, arguments);
  va_end(arguments);
  _enqueue({TAV_WARNING, TAV_DEBUG, event, std::move(text)});
}

void TavLogger::Error(LogLevel level, Robot_Event event, const char* format, ...) {
  if (_drops(TAV_ERROR)) {
    return;
  }
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

// While the thread gathers it waits on nothing, so the records queued meanwhile signal no one
// and cost their producers no wake-up.
bool TavLogger::_nextBatch(std::deque<log_message>& batch) {
  std::unique_lock<std::mutex> lock(mutex);
  condition.wait(lock, [this] { return !queue.empty() || !running; });
  if (queue.empty()) {
    return false;
  }
  if (running) {
    lock.unlock();
    std::this_thread::sleep_for(kGatherWindow);
    lock.lock();
  }
  batch.clear();
  batch.swap(queue);
  return true;
}

// A batch is written at one time, so its lines share the time stamp and the rotation check.
void TavLogger::Run() {
  const std::unique_ptr<LogFile> file = OpenLogFile(logDirectory, homeNotice, std::time(nullptr));
  std::deque<log_message> batch;
  // Without a file the records are still taken, so that the queue does not grow.
  while (_nextBatch(batch)) {
    if (file) {
      const std::time_t now = std::time(nullptr);
      file->Write(now, FormatLogLines(LogLineTime(now), batch));
    }
  }
}
