#ifndef TAVSIM_SERVER_ACTIVITYFEED_H
#define TAVSIM_SERVER_ACTIVITYFEED_H

#include <cstddef>
#include <cstdint>
#include <deque>
#include <mutex>
#include <string>
#include <vector>

namespace tavsim {

enum class ActivityKind { Command, Refusal, Fault, Connection };

struct ActivityEntry {
  std::uint64_t sequence;  // 1, 2, ... in the order the lines came
  ActivityKind kind;
  std::string text;
};

// The latest lines of the simulator's activity log, sorted into commands, refusals,
// injected faults and connection events, for the live view. Any thread may add and read.
class ActivityFeed {
public:
  static constexpr std::size_t kKept = 100;

  void Add(const std::string& line);
  // The entries kept that came after `sequence`, oldest first.
  std::vector<ActivityEntry> After(std::uint64_t sequence) const;

private:
  mutable std::mutex mutex;
  std::deque<ActivityEntry> entries;
  std::uint64_t lastSequence = 0;
};

// What kind of event an activity line reports.
ActivityKind ClassifyActivity(const std::string& line);
const char* ActivityKindName(ActivityKind kind);

}  // namespace tavsim

#endif
