#ifndef TAVCLIENT_STREAM_SUBSCRIBERMAILBOX_H
#define TAVCLIENT_STREAM_SUBSCRIBERMAILBOX_H

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <memory>
#include <mutex>
#include <thread>

#include "StateMonitor.h"

namespace tavclient {

// One subscriber's thread and a mailbox that holds only the newest sample: posting never
// waits, and a sample replaced before the subscriber took it is counted as dropped.
class SubscriberMailbox {
public:
  SubscriberMailbox(StateMonitor::Subscriber subscriber, std::atomic<std::uint64_t>& dropped);
  // Returns once the subscriber is no longer being called.
  ~SubscriberMailbox();
  SubscriberMailbox(const SubscriberMailbox&) = delete;
  SubscriberMailbox& operator=(const SubscriberMailbox&) = delete;

  void Post(std::shared_ptr<const StateSample> sample);

private:
  void _run();

  StateMonitor::Subscriber subscriber;
  std::atomic<std::uint64_t>& dropped;
  std::mutex mutex;
  std::condition_variable wake;
  std::shared_ptr<const StateSample> pending;
  bool stopping = false;
  std::thread thread;
};

}  // namespace tavclient

#endif
