#ifndef TAVTEST_CLIENT_WORKERFIXTURE_H
#define TAVTEST_CLIENT_WORKERFIXTURE_H

#include <gtest/gtest.h>
#include <sys/socket.h>

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <memory>
#include <mutex>
#include <vector>

#include "common/RobotEvent.h"
#include "core/LoopbackListener.h"
#include "support/ClientSocket.h"
#include "support/ScriptedController.h"

// What a worker reports through its plain-function callback, on any thread; Add fits the
// callback. One list per type of value.
template <typename Value>
class Recorder {
public:
  static void Add(Value value) {
    {
      std::lock_guard<std::mutex> lock(mutex);
      values.push_back(value);
    }
    changed.notify_all();
  }

  static void Clear() {
    std::lock_guard<std::mutex> lock(mutex);
    values.clear();
  }

  // The values once there are `count` of them, or those there are after `wait`.
  static std::vector<Value> WaitFor(std::size_t count, std::chrono::milliseconds wait = std::chrono::seconds(5)) {
    std::unique_lock<std::mutex> lock(mutex);
    changed.wait_for(lock, wait, [count] { return values.size() >= count; });
    return values;
  }

private:
  static inline std::mutex mutex;
  static inline std::condition_variable changed;
  static inline std::vector<Value> values;
};

using EventLog = Recorder<Robot_Event>;
using Events = std::vector<Robot_Event>;

// A running Sender or Receiver loaded with one end of a loopback connection whose other end
// the test drives as the controller; its events go to the EventLog.
template <typename Worker>
class LoadedWorkerTest : public ::testing::Test {
protected:
  void SetUp() override {
    EventLog::Clear();
    worker->RobotEventRegister(&EventLog::Add);
    worker->Start();
    ASSERT_NO_FATAL_FAILURE(Reconnect());
  }

  // The shutdown ends a receive in progress, so the worker can be joined.
  void TearDown() override {
    if (worker) worker->Unload();
    ::shutdown(socket.Get(), SHUT_RDWR);
  }

  void Reconnect() {
    socket = tavsim::ConnectLoopback(controller.Port());
    ASSERT_TRUE(socket.Valid());
    ASSERT_TRUE(controller.Accept());
    int fd = socket.Get();
    worker->Load(fd);
  }

  tavtest::ScriptedController controller;
  tavsim::UniqueFd socket;
  std::unique_ptr<Worker> worker = std::make_unique<Worker>();
};

#endif
