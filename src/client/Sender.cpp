#include "client/Sender.h"

#include <utility>

#include "client/SocketCalls.h"
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
    queue.push_back(Queued{loadedConnection, std::move(task)});
  }
  taskQueued.notify_one();
}

void Sender::ClearQueue() {
  std::lock_guard<std::mutex> lock(queueMutex);
  queue.clear();
}

bool Sender::SendNow(Tasks& task, std::uint64_t connection) {
  return _write(connection, _buildMessage(task));
}

void Sender::WaitSocketReleased() { std::lock_guard<std::mutex> lock(writing); }

void Sender::Stop() { _requestStop(); }

bool Sender::_work() {
  if (!running) {
    return false;
  }
  Queued next;
  {
    std::unique_lock<std::mutex> lock(queueMutex);
    taskQueued.wait(lock, [this] { return closing || !queue.empty(); });
    if (closing) {
      return false;
    }
    next = std::move(queue.front());
    queue.pop_front();
  }
  if (!_isCurrent(next.connection)) {
    return active;
  }
  return _write(next.connection, _buildMessage(next.task));
}

bool Sender::_write(std::uint64_t connection, const std::string& text) {
  {
    std::lock_guard<std::mutex> lock(writing);
    if (!_isCurrent(connection)) {
      return false;
    }
    if (SocketCalls::WriteAll(socketFd, text.data(), text.size())) {
      return true;
    }
  }
  // A write cut short by a logout belongs to a connection that is already gone.
  if (_isCurrent(connection)) {
    TavLogger::GetInstance().Error(TAV_ERROR, RobotEvents::kSendFailed,
                                   "Sender thread send failed.");
    _report(connection, RobotEvents::kSendFailed, true);
  }
  return false;
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
