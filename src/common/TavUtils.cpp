#include "common/TavUtils.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <cstdlib>

int32_t _TavTimeStamp = 0;

namespace {

constexpr int32_t kLastTimeStamp = 10240;
constexpr std::string::size_type kMaxDirectoryPath = 256;
constexpr mode_t kDirectoryMode = 0775;

bool IsSeparator(char c) { return c == '/' || c == '\\'; }

// A prefix that already exists is left alone. Losing the race to another creator is no failure:
// processes started together share their directories.
bool EnsureDirectory(const std::string& path) {
  return ::access(path.c_str(), F_OK) == 0 || ::mkdir(path.c_str(), kDirectoryMode) == 0 ||
         (errno == EEXIST && ::access(path.c_str(), F_OK) == 0);
}

}  // namespace

// The counter stays a plain exported int; the compare-and-swap keeps the sequence and hands
// distinct numbers to callers on different threads.
int GetTimeStamp() {
  int32_t current = __atomic_load_n(&_TavTimeStamp, __ATOMIC_RELAXED);
  int32_t next;
  do {
    next = current < kLastTimeStamp ? current + 1 : 1;
  } while (!__atomic_compare_exchange_n(&_TavTimeStamp, &current, next, false, __ATOMIC_RELAXED,
                                        __ATOMIC_RELAXED));
  return next;
}

void TimeSleep(double seconds) {
  if (seconds >= 1.0) {
    ::sleep(seconds >= static_cast<double>(UINT_MAX) ? UINT_MAX : static_cast<unsigned>(seconds));
  }
}

Robot_Event GetRobotEvent(std::string text) {
  return static_cast<Robot_Event>(std::strtol(text.c_str(), nullptr, 10));
}

int createDirectory(const std::string& path) {
  if (path.size() > kMaxDirectoryPath) {
    return RobotEvents::kResourceFailed;
  }
  // Each prefix is tested with its trailing separator, "/home/" rather than "/home".
  std::string prefix;
  prefix.reserve(path.size());
  for (const char c : path) {
    prefix.push_back(c);
    if (IsSeparator(c) && !EnsureDirectory(prefix)) {
      return RobotEvents::kResourceFailed;
    }
  }
  if (!path.empty() && !IsSeparator(path.back()) && !EnsureDirectory(path)) {
    return RobotEvents::kResourceFailed;
  }
  return RobotEvents::kSuccess;
}
