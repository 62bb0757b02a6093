#include "client/ReplyStore.h"

#include <algorithm>
#include <utility>

#include "common/RobotEvent.h"

std::uint64_t ReplyStore::Expect(const std::string& name) {
  std::lock_guard<std::mutex> lock(mutex);
  Entry& entry = entries[name];
  entry.state = State::kExpected;
  entry.message.clear();
  entry.order = ++orders;
  return entry.order;
}

std::uint64_t ReplyStore::Watch(const std::string& name) {
  std::lock_guard<std::mutex> lock(mutex);
  Entry& entry = entries[name];
  if (entry.order == 0 || entry.state == State::kAbandoned) {
    entry.state = State::kExpected;
    entry.order = ++orders;
  }
  return entry.order;
}

ReplyStore::Filed ReplyStore::File(const std::string& name, Message message) {
  std::lock_guard<std::mutex> lock(mutex);
  const auto found = entries.find(name);
  if (found == entries.end()) {
    Entry& entry = entries[name];
    entry.state = State::kFiled;
    entry.message = std::move(message);
    entry.order = ++orders;
    return {Filing::kUnasked, _boundLocked()};
  }
  Entry& entry = found->second;
  switch (entry.state) {
    case State::kAbandoned:
      entries.erase(found);
      return {Filing::kLate, {}};
    case State::kFiled:
      return {Filing::kDuplicate, {}};
    case State::kExpected:
      break;
  }
  entry.state = State::kFiled;
  entry.message = std::move(message);
  entry.order = ++orders;
  for (std::condition_variable* waiter : entry.waiters) {
    waiter->notify_one();
  }
  return {Filing::kAsked, _boundLocked()};
}

int ReplyStore::Take(const std::string& name, Message& result) {
  std::lock_guard<std::mutex> lock(mutex);
  return _takeLocked(name, result);
}

int ReplyStore::Wait(const std::string& name, Message& result,
                     const std::function<bool()>& released,
                     const std::function<Clock::time_point()>& wakeAt) {
  std::unique_lock<std::mutex> lock(mutex);
  // The entry stays while someone waits on it: only unclaimed entries are ever dropped.
  auto entry = entries.try_emplace(name).first;
  std::condition_variable filed;
  entry->second.waiters.push_back(&filed);
  if (entry->second.state != State::kFiled && !released()) {
    filed.wait_until(lock, wakeAt());
  }
  auto& waiters = entry->second.waiters;
  waiters.erase(std::find(waiters.begin(), waiters.end(), &filed));
  return _takeLocked(name, result);
}

void ReplyStore::Abandon(const std::string& name, std::uint64_t ticket) {
  std::lock_guard<std::mutex> lock(mutex);
  const auto entry = entries.find(name);
  if (entry == entries.end() || entry->second.order != ticket ||
      entry->second.state != State::kExpected || !entry->second.waiters.empty()) {
    return;
  }
  entry->second.state = State::kAbandoned;
  entry->second.order = ++orders;
  _boundLocked();
}

void ReplyStore::WakeAll() {
  std::lock_guard<std::mutex> lock(mutex);
  for (auto& [name, entry] : entries) {
    for (std::condition_variable* waiter : entry.waiters) {
      waiter->notify_one();
    }
  }
}

void ReplyStore::Clear() {
  std::lock_guard<std::mutex> lock(mutex);
  for (auto entry = entries.begin(); entry != entries.end();) {
    // A waiter of the old connection is being released; its entry goes with it.
    if (entry->second.waiters.empty()) {
      entry = entries.erase(entry);
    } else {
      ++entry;
    }
  }
}

int ReplyStore::_takeLocked(const std::string& name, Message& result) {
  const auto entry = entries.find(name);
  if (entry == entries.end() || entry->second.state != State::kFiled) {
    return RobotEvents::kNoReplyYet;
  }
  result = std::move(entry->second.message);
  if (entry->second.waiters.empty()) {
    entries.erase(entry);
  } else {
    // Another call waits for the same name: it waits for the next reply.
    entry->second.state = State::kExpected;
    entry->second.message.clear();
  }
  return RobotEvents::kSuccess;
}

std::string ReplyStore::_boundLocked() {
  if (entries.size() <= kMaxUnclaimed) {
    return {};
  }
  std::size_t unclaimed = 0;
  auto oldest = entries.end();
  for (auto entry = entries.begin(); entry != entries.end(); ++entry) {
    if (entry->second.state == State::kExpected) {
      continue;
    }
    ++unclaimed;
    if (entry->second.waiters.empty() &&
        (oldest == entries.end() || entry->second.order < oldest->second.order)) {
      oldest = entry;
    }
  }
  if (unclaimed <= kMaxUnclaimed || oldest == entries.end()) {
    return {};
  }
  std::string dropped = oldest->first;
  entries.erase(oldest);
  return dropped;
}
