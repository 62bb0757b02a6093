#include "client/Sender.h"

#include <sys/socket.h>
#include <sys/types.h>

#include <cstdint>
#include <utility>

#include "common/TavLogger.h"

Sender::Sender()
    : SocketWorker("Sender thread setup succeed.", "Sender thread shutdown succeed.") {}

Sender::~Sender() {
  {
    std::lock_guard<std::mutex> lock(queueMutex);
    closing = true;
  }
  taskQueued.notify_all();
  _requestStop();
  Join();
}

void Sender::AddTask(Tasks task) {
  {
    std::lock_guard<std::mutex> lock(queueMutex);
    queue.push_back(std::move(task));
  }
  taskQueued.notify_one();
}

void Sender::ClearQueue() {
  std::lock_guard<std::mutex> lock(queueMutex);
  queue.clear();
}

void Sender::Stop() { _requestStop(); }

bool Sender::_work() {
  if (!running) {
    return false;
  }
  Tasks task;
  {
    std::unique_lock<std::mutex> lock(queueMutex);
    taskQueued.wait(lock, [this] { return closing || !queue.empty(); });
    if (closing) {
      return false;
    }
    task = std::move(queue.front());
    queue.pop_front();
  }
  ssize_t sent = 0;
  std::uint64_t load = 0;
  {
    std::lock_guard<std::mutex> lock(socketUse);
    if (!active) {
      return false;
    }
    load = loads;
    const std::string text = _buildMessage(task);
    sent = ::send(socketFd, text.data(), text.size(), MSG_NOSIGNAL);
  }
  // A send cut short by a logout belongs to a connection that is already gone.
  if (sent == -1 && !_isCurrent(load)) {
    return false;
  }
  if (sent == -1) {
    TavLogger::GetInstance().Error(TAV_ERROR, RobotEvents::kSendFailed,
                                   "Sender thread send failed.");
    _report(load, RobotEvents::kSendFailed, true);
    return false;
  }
  return true;
}

std::string Sender::_buildMessage(Tasks& task) {
  std::string text;
  TavLogger& logger = TavLogger::GetInstance();
  switch (task.type) {
    case Tasks::kCommand:
      logger.Info("Sender thread get Msg task");
      parser.wrap_msg(text, task.params);
      break;
    case Tasks::kHeartbeat:
      logger.Info("Sender thread get Heart task");
      parser.wrap_heart(text, task.params);
      break;
    case Tasks::kSession:
      if (task.params["identifier"] == "ClientInfo") {
        logger.Info("Sender thread get ClientInfo task");
        parser.wrap_clientinfo(text, task.params);
      }
      break;
    default:
      break;
  }
  return text;
}
