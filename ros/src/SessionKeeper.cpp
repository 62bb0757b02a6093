#include "SessionKeeper.h"

#include <chrono>
#include <utility>

namespace tavdriver {

SessionKeeper::SessionKeeper(std::shared_ptr<tavclient::SharedRobot> sharedRobot,
                             SessionSettings sessionSettings, Listener onChange)
    : robot(std::move(sharedRobot)),
      settings(std::move(sessionSettings)),
      listener(std::move(onChange)) {}

SessionKeeper::~SessionKeeper() { Stop(); }

bool SessionKeeper::EndsSession(int code) {
  // Everything the library reports of the connection itself, and the controller's own error
  // messages, are sticky until the next login. A reply time-out (1003031), a bad argument
  // (1006011) and the controller's answers (2001xxx) leave the session usable.
  switch (code) {
    case 1001011:
    case 1002011:
    case 1003021:
    case 1003041:
    case 2002011:
    case 2002091:
      return true;
    default:
      return false;
  }
}

void SessionKeeper::Start() {
  std::lock_guard<std::mutex> lock(mutex);
  if (thread.joinable()) {
    return;
  }
  stopping = false;
  failed = true;
  Robot& arm = robot->Get();
  arm.SetReplyTimeout(settings.replyTimeout);
  arm.SetHeartbeat(settings.heartbeatPeriod, settings.silenceLimit);
  arm.SetEventCallback([this](int code) { Report(code); });
  thread = std::thread([this] { _run(); });
}

void SessionKeeper::Stop() {
  {
    std::lock_guard<std::mutex> lock(mutex);
    if (!thread.joinable()) {
      return;
    }
    stopping = true;
  }
  wake.notify_all();
  // A login under way ends when the controller answers or refuses; logging out releases it.
  robot->Disconnect();
  thread.join();
  robot->Get().SetEventCallback({});
  robot->Disconnect();
  _setConnected(false);
}

void SessionKeeper::Report(int code) {
  if (code == 0) {
    return;
  }
  lastCode = code;
  if (!EndsSession(code)) {
    return;
  }
  {
    std::lock_guard<std::mutex> lock(mutex);
    failed = true;
  }
  wake.notify_all();
}

void SessionKeeper::_run() {
  const auto retry = std::chrono::duration<double>(settings.retryPeriod);
  std::unique_lock<std::mutex> lock(mutex);
  while (!stopping) {
    if (!failed) {
      wake.wait(lock, [this] { return stopping || failed; });
      continue;
    }
    _setConnected(false);
    failed = false;
    lock.unlock();
    const int code =
        robot->Connect(settings.ip, settings.port, settings.name, settings.Record(), settings.mode);
    lock.lock();
    if (code == 0) {
      // A failure of the old session may still have been reported meanwhile; a failure of
      // the new one is reported again by the next call, as it is sticky.
      failed = false;
      ++sessions;
      _setConnected(true);
      continue;
    }
    lastCode = code;
    failed = true;
    wake.wait_for(lock, retry, [this] { return stopping; });
  }
}

void SessionKeeper::_setConnected(bool value) {
  if (connected.exchange(value) != value && listener) {
    listener(value);
  }
}

}  // namespace tavdriver
