#ifndef TAVDRIVER_SESSIONKEEPER_H
#define TAVDRIVER_SESSIONKEEPER_H

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>

#include "SessionSettings.h"
#include "SharedRobot.h"

namespace tavdriver {

// Keeps one arm's session up: logs in and sets up on a thread of its own, again and again
// until the controller answers, and again whenever the session fails (the library's failure
// event, or a failure code a caller reports), so a driver may start before its controller and
// rides out controller restarts.
class SessionKeeper {
public:
  // Called on the keeper's thread each time the session comes up or goes down; it must not
  // call back into the keeper.
  using Listener = std::function<void(bool connected)>;

  SessionKeeper(std::shared_ptr<tavclient::SharedRobot> sharedRobot,
                SessionSettings sessionSettings, Listener onChange = {});
  // Stops the thread (bounded by one login attempt) and logs out.
  ~SessionKeeper();
  SessionKeeper(const SessionKeeper&) = delete;
  SessionKeeper& operator=(const SessionKeeper&) = delete;

  void Start();
  void Stop();

  // A code a call returned: one that ends the session makes the keeper log in again; any
  // non-zero code becomes LastCode().
  void Report(int code);

  bool Connected() const { return connected.load(); }
  // The code of the last failure: a login refused, a session lost or a call refused.
  int LastCode() const { return lastCode.load(); }
  // Sessions set up since Start().
  std::uint64_t Sessions() const { return sessions.load(); }
  const SessionSettings& Settings() const { return settings; }

  // Whether `code` means the session is gone (every later call would fail the same way).
  static bool EndsSession(int code);

private:
  void _run();
  void _setConnected(bool value);

  std::shared_ptr<tavclient::SharedRobot> robot;
  const SessionSettings settings;
  const Listener listener;
  std::atomic<bool> connected{false};
  std::atomic<int> lastCode{0};
  std::atomic<std::uint64_t> sessions{0};

  std::mutex mutex;
  std::condition_variable wake;
  bool stopping = false;  // under mutex
  bool failed = false;    // under mutex: the current session ended
  std::thread thread;
};

}  // namespace tavdriver

#endif
