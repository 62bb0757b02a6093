#ifndef TAVSIM_SERVER_ACTIVITYLOG_H
#define TAVSIM_SERVER_ACTIVITYLOG_H

#include <cstdint>
#include <functional>
#include <string>

namespace tavsim {

using ConnectionId = std::uint64_t;
// Takes one line of the simulator's activity log; may be empty (no log).
using LogSink = std::function<void(const std::string&)>;

// "[conn 3] line", if there is a log.
inline void LogConnection(const LogSink& log, ConnectionId id, const std::string& line) {
  if (log) {
    log("[conn " + std::to_string(id) + "] " + line);
  }
}

}  // namespace tavsim

#endif
