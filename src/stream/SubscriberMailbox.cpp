#include "stream/SubscriberMailbox.h"

#include <exception>
#include <utility>

namespace tavclient {

SubscriberMailbox::SubscriberMailbox(StateMonitor::Subscriber call,
                                     std::atomic<std::uint64_t>& droppedCount)
    : subscriber(std::move(call)), dropped(droppedCount), thread([this] { _run(); }) {}

SubscriberMailbox::~SubscriberMailbox() {
  {
    std::lock_guard<std::mutex> lock(mutex);
    stopping = true;
  }
  wake.notify_one();
  thread.join();
}

void SubscriberMailbox::Post(std::shared_ptr<const StateSample> sample) {
  {
    std::lock_guard<std::mutex> lock(mutex);
    if (pending) {
      dropped.fetch_add(1, std::memory_order_relaxed);
    }
    pending = std::move(sample);
  }
  wake.notify_one();
}

void SubscriberMailbox::_run() {
  std::unique_lock<std::mutex> lock(mutex);
  for (;;) {
    wake.wait(lock, [this] { return stopping || pending; });
    if (stopping) {
      return;
    }
    std::shared_ptr<const StateSample> sample = std::move(pending);
    pending.reset();
    lock.unlock();
    try {
      subscriber(*sample);
    } catch (const std::exception&) {
      // A failing subscriber must not end its thread: it gets the next sample all the same.
    }
    lock.lock();
  }
}

}  // namespace tavclient
