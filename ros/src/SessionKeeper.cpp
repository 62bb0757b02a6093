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
  if (thread.joinable()) {
    return;
  }
  // The callback is registered before the state's lock is taken: the Robot calls it under its
  // own lock, and the callback takes the state's.
  Robot& arm = robot->Get();
  arm.SetReplyTimeout(settings.replyTimeout);
  arm.SetHeartbeat(settings.heartbeatPeriod, settings.silenceLimit);
  arm.SetEventCallback([shared = state](int code) { shared->Report(code); });
  std::lock_guard<std::mutex> lock(state->mutex);
  state->stopping = false;
  state->failed = true;
  thread = std::thread([this] { _run(); });
}

void SessionKeeper::Stop() {
  {
    std::lock_guard<std::mutex> lock(state->mutex);
    if (!thread.joinable()) {
      return;
    }
    state->stopping = true;
  }
  state->wake.notify_all();
  // A login under way ends when the controller answers or refuses; logging out releases it.
  robot->Disconnect();
  thread.join();
  robot->Get().SetEventCallback({});
  robot->Disconnect();
  _setConnected(false);
}

void SessionKeeper::Report(int code) { state->Report(code); }

void SessionKeeper::State::Report(int code) {
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
  State& shared = *state;
  std::unique_lock<std::mutex> lock(shared.mutex);
  while (!shared.stopping) {
    if (!shared.failed) {
      shared.wake.wait(lock, [&] { return shared.stopping || shared.failed; });
      continue;
    }
    _setConnected(false);
    shared.failed = false;
    lock.unlock();
    const int code =
        robot->Connect(settings.ip, settings.port, settings.name, settings.Record(), settings.mode);
    lock.lock();
    if (code == 0) {
      // A failure of the old session may still have been reported meanwhile; a failure of
      // the new one is reported again by the next call, as it is sticky.
      shared.failed = false;
      ++sessions;
      _setConnected(true);
      continue;
    }
    shared.lastCode = code;
    shared.failed = true;
    shared.wake.wait_for(lock, retry, [&] { return shared.stopping; });
  }
}

void SessionKeeper::_setConnected(bool value) {
  if (connected.exchange(value) != value && listener) {
    listener(value);
  }
}

}  // namespace tavdriver
