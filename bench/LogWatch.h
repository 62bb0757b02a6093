#ifndef TAVBENCH_LOGWATCH_H
#define TAVBENCH_LOGWATCH_H

#include <cstddef>
#include <cstdint>

// The library's log file under $HOME/TavClient/log, looked at once the logger has caught up.
namespace bench::LogWatch {

// Waits until the log file has stopped growing and returns its size; 0 when there is none.
std::uintmax_t SettledSize();
// The line ends between two offsets of that file.
std::size_t LinesBetween(std::uintmax_t from, std::uintmax_t to);

}  // namespace bench::LogWatch

#endif
