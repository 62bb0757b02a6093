#ifndef TAVROSTEST_RECORDER_H
#define TAVROSTEST_RECORDER_H

#include <ros/node_handle.h>
#include <ros/subscriber.h>

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <string>
#include <vector>

namespace tavrostest {

// Every message of one topic from its construction (or the last Clear()), with its arrival.
template <typename Message>
class Recorder {
public:
  using Pointer = boost::shared_ptr<const Message>;

  explicit Recorder(const std::string& topic) {
    subscriber = ros::NodeHandle().subscribe(topic, 1000, &Recorder::_take, this);
  }
  ~Recorder() { subscriber.shutdown(); }
  Recorder(const Recorder&) = delete;
  Recorder& operator=(const Recorder&) = delete;

  // Waits until `count` messages have been recorded; false when they have not within `wait`.
  bool WaitFor(std::size_t count, std::chrono::milliseconds wait) {
    std::unique_lock<std::mutex> lock(mutex);
    return arrived.wait_for(lock, wait, [&] { return messages.size() >= count; });
  }
  // Waits for the first recorded message that satisfies `condition`.
  template <typename Condition>
  Pointer WaitUntil(std::chrono::milliseconds wait, Condition condition) {
    std::unique_lock<std::mutex> lock(mutex);
    std::size_t next = 0;
    Pointer found;
    arrived.wait_for(lock, wait, [&] {
      for (; next < messages.size(); ++next) {
        if (condition(*messages[next])) {
          found = messages[next];
          return true;
        }
      }
      return false;
    });
    return found;
  }
  std::vector<Pointer> Messages() {
    std::lock_guard<std::mutex> lock(mutex);
    return messages;
  }
  Pointer Last() {
    std::lock_guard<std::mutex> lock(mutex);
    return messages.empty() ? Pointer() : messages.back();
  }
  void Clear() {
    std::lock_guard<std::mutex> lock(mutex);
    messages.clear();
  }

private:
  void _take(const Pointer& message) {
    {
      std::lock_guard<std::mutex> lock(mutex);
      messages.push_back(message);
    }
    arrived.notify_all();
  }

  std::mutex mutex;
  std::condition_variable arrived;
  std::vector<Pointer> messages;
  ros::Subscriber subscriber;
};

}  // namespace tavrostest

#endif
