#include "server/ActivityFeed.h"

#include <algorithm>

namespace tavsim {

void ActivityFeed::Add(const std::string& line) {
  std::lock_guard<std::mutex> lock(mutex);
  entries.push_back(ActivityEntry{++lastSequence, ClassifyActivity(line), line});
  if (entries.size() > kKept) {
    entries.pop_front();
  }
}

std::vector<ActivityEntry> ActivityFeed::After(std::uint64_t sequence) const {
  std::lock_guard<std::mutex> lock(mutex);
  const auto first =
      std::find_if(entries.begin(), entries.end(),
                   [sequence](const ActivityEntry& entry) { return entry.sequence > sequence; });
  return {first, entries.end()};
}

// The log says "fault: RULE" for a changed reply, "NAME #STAMP -> STATE" for a finished
// command ("login ... -> RESULT" for a client's login), "NAME #STAMP pending" for a command
// that answers later, and anything else about connections.
ActivityKind ClassifyActivity(const std::string& line) {
  if (line.find("] fault: ") != std::string::npos) {
    return ActivityKind::Fault;
  }
  const std::size_t arrow = line.rfind(" -> ");
  if (arrow != std::string::npos) {
    if (line.compare(arrow + 4, std::string::npos, "0") != 0) {
      return ActivityKind::Refusal;
    }
    return line.find("] login, ") != std::string::npos ? ActivityKind::Connection
                                                       : ActivityKind::Command;
  }
  const std::string pending = " pending";
  const bool waiting = line.size() > pending.size() &&
                       line.compare(line.size() - pending.size(), pending.size(), pending) == 0;
  return waiting ? ActivityKind::Command : ActivityKind::Connection;
}

const char* ActivityKindName(ActivityKind kind) {
  switch (kind) {
    case ActivityKind::Command:
      return "command";
    case ActivityKind::Refusal:
      return "refusal";
    case ActivityKind::Fault:
      return "fault";
    case ActivityKind::Connection:
      break;
  }
  return "connection";
}

}  // namespace tavsim
