#ifndef TAVROSTEST_CHILDPROCESS_H
#define TAVROSTEST_CHILDPROCESS_H

#include <sys/types.h>

#include <chrono>
#include <string>
#include <vector>

namespace tavrostest {

// A program run as a child process with the test's environment. A child still running when
// the object goes is killed and reaped.
class ChildProcess {
public:
  // Throws std::runtime_error when the program cannot be started.
  explicit ChildProcess(std::vector<std::string> command);
  ~ChildProcess();
  ChildProcess(const ChildProcess&) = delete;
  ChildProcess& operator=(const ChildProcess&) = delete;

  void Signal(int number);
  // Waits until the child has ended; false when it still runs after `wait`. Reaps it.
  bool WaitExit(std::chrono::milliseconds wait);
  // The child's wait status once it has ended.
  int Status() const { return status; }

private:
  pid_t pid = -1;
  int status = 0;
};

// A TCP port on 127.0.0.1 below the ephemeral range that was free a moment ago.
int FreePort();

}  // namespace tavrostest

#endif
