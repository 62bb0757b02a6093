#ifndef TAVBENCH_LOGWATCH_H
#define TAVBENCH_LOGWATCH_H

#include <cstdint>

// The library's log files under $HOME/TavClient/log, looked at once the logger has caught up.
// A long run fills several (a file holds 16 MiB), so they are taken together.
namespace bench::LogWatch {

struct Extent {
  std::uintmax_t bytes = 0;
  std::uintmax_t lines = 0;
};

// Waits until the log files have stopped growing and returns what they hold.
Extent Settled();

}  // namespace bench::LogWatch

#endif
