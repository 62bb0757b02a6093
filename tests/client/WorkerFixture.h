#ifndef TAVTEST_CLIENT_WORKERFIXTURE_H
#define TAVTEST_CLIENT_WORKERFIXTURE_H

#include <gtest/gtest.h>
#include <sys/socket.h>

#include <chrono>
#include <condition_variable>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include "client/Tasks.h"
#include "common/RobotEvent.h"
#include "core/LoopbackListener.h"
#include "support/ScriptedController.h"

using Message = std::map<std::string, std::string>;
using Events = std::vector<Robot_Event>;

// A command task as the robot layer queues it, from client 7.
inline Tasks CommandTask(const std::string& functionName, int timestamp, Message parameters = {}) {
  Tasks task{Tasks::kCommand, std::move(parameters)};
  task.params["timestamp"] = std::to_string(timestamp);
  task.params["ClientID"] = "7";
  task.params["function_name"] = functionName;
  return task;
}

// What a worker reports through its plain-function callback, on any thread.
class EventLog {
public:
  static void Add(Robot_Event event) {
    {
      std::lock_guard<std::mutex> lock(mutex);
      events.push_back(event);
    }
    changed.notify_all();
  }

  static void Clear() {
    std::lock_guard<std::mutex> lock(mutex);
    events.clear();
  }

  // The events once there are `count` of them, or those there are after `wait`.
  static Events WaitFor(std::size_t count,
                        std::chrono::milliseconds wait = std::chrono::seconds(5)) {
    std::unique_lock<std::mutex> lock(mutex);
    changed.wait_for(lock, wait, [count] { return events.size() >= count; });
    return events;
  }

private:
  static inline std::mutex mutex;
  static inline std::condition_variable changed;
  static inline Events events;
};

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
    if (worker) {
      worker->Unload();
    }
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
