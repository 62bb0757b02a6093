#include "client/Client.h"

#include <arpa/inet.h>
#include <sys/socket.h>
#include <unistd.h>

#include <chrono>
#include <cmath>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <ctime>
#include <utility>

#include "client/SocketCalls.h"
#include "common/TavLogger.h"
#include "common/TavResource.h"

namespace {

constexpr double kLongestReplyTimeoutSeconds = 1e9;  // far beyond any wait, and no clock overflow

// "call back N" on standard output. A reader of that pipe that has gone must not take the
// process down: SIGPIPE is held back on this thread while writing, and one it raised is consumed.
void PrintEventLine(Robot_Event event) {
  sigset_t pipeSignal;
  sigset_t previous;
  sigemptyset(&pipeSignal);
  sigaddset(&pipeSignal, SIGPIPE);
  pthread_sigmask(SIG_BLOCK, &pipeSignal, &previous);
  std::printf("call back %d\n", event);
  std::fflush(stdout);
  const timespec noWait{};
  while (sigtimedwait(&pipeSignal, nullptr, &noWait) == SIGPIPE) {
  }
  pthread_sigmask(SIG_SETMASK, &previous, nullptr);
}

}  // namespace

Client::Client() {
  sender.ReportTo(*this);
  sender.Start();
  receiver.ReportTo(*this);
  receiver.Start();
  heart.ReportTo(*this);
  heart.Start();
  // The resource status is not kept: a session starts healthy whatever the directories did.
  TavResource::GetInstance().Load();
  TavLogger::GetInstance().StartLogging();
  status = RobotEvents::kSuccess;
  _loadLocalSystemInfo();
}

// The connection is closed first: that releases the waits the workers may be in, so they can
// be joined.
Client::~Client() {
  FinalizeSocket();
  clock.load()->Unsubscribe(this);
  heart.Stop();
  sender.Stop();
  receiver.Stop();
}

void Client::_useClock(SessionClock& newClock) {
  clock.load()->Unsubscribe(this);
  clock = &newClock;
  heart.UseClock(newClock);
  receiver.UseClock(newClock);
  newClock.Subscribe(this, [this] {
    _wakeWaits();
    heart.Wake();
  });
}

int Client::InitializeSocket(const char* ip, short port) {
  // The old connection is closed, and an event listener still running for it has returned:
  // nothing of the old session can fail the new one.
  FinalizeSocket();
  { std::lock_guard<std::mutex> listening(eventListenerMutex); }
  receiver.Replies().Clear();
  {
    std::lock_guard<std::mutex> lock(reportMutex);
    eventReported = false;
    status = RobotEvents::kSuccess;
  }
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_port = htons(static_cast<std::uint16_t>(port));
  if (ip == nullptr || ::inet_pton(AF_INET, ip, &address.sin_addr) < 1) {
    return RobotEvents::kSocketSetupFailed;
  }
  const int fd = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  if (fd < 0) {
    return RobotEvents::kSocketSetupFailed;
  }
  if (SocketCalls::Connect(fd, &address, sizeof address) != 0) {
    ::close(fd);
    _failSession(RobotEvents::kConnectFailed);
    return RobotEvents::kConnectFailed;
  }
  std::lock_guard<std::mutex> lock(connectionMutex);
  serverAddress = address;
  socketFd = fd;
  std::uint64_t connection = 0;
  {
    std::lock_guard<std::mutex> reporting(reportMutex);
    connection = ++openConnection;
    connected = true;
  }
  sender.Load(socketFd, connection);
  receiver.Load(socketFd, connection);
  heart.Enable(connection);
  return RobotEvents::kSuccess;
}

int Client::FinalizeSocket() {
  std::lock_guard<std::mutex> lock(connectionMutex);
  if (socketFd < 0) {
    return RobotEvents::kSuccess;
  }
  {
    std::lock_guard<std::mutex> reporting(reportMutex);
    connected = false;
  }
  heart.Disable();
  sender.Unload();
  sender.ClearQueue();
  receiver.Unload();
  _wakeWaits();
  // The shutdown ends a socket call in progress; whoever made it must be off the descriptor
  // before it is closed and its number can be handed out again.
  ::shutdown(socketFd, SHUT_RDWR);
  sender.WaitSocketReleased();
  receiver.WaitSocketReleased();
  ::close(socketFd);
  socketFd = -1;
  return RobotEvents::kSuccess;
}

int Client::_refusal() const {
  if (status != RobotEvents::kSuccess) {
    return status;
  }
  return connected ? RobotEvents::kSuccess : RobotEvents::kSendFailed;
}

int Client::AddTasks(Tasks task) {
  std::lock_guard<std::mutex> lock(connectionMutex);
  if (const int code = _refusal()) {
    return code;
  }
  sender.AddTask(std::move(task));
  return RobotEvents::kSuccess;
}

int Client::GetResult(std::string name, std::map<std::string, std::string>& result) {
  if (status != RobotEvents::kSuccess) {
    return status;
  }
  if (!connected) {
    return RobotEvents::kReceiveFailed;
  }
  const std::uint64_t connection = openConnection;
  return _waitReply(connection, name, receiver.Replies().Watch(name), result);
}

namespace {

// Counts a call from its start to its end.
class CallInFlight {
public:
  explicit CallInFlight(std::atomic<int>& counter)
      : calls(counter), first(counter.fetch_add(1) == 0) {}
  ~CallInFlight() { calls.fetch_sub(1); }
  CallInFlight(const CallInFlight&) = delete;
  CallInFlight& operator=(const CallInFlight&) = delete;
  // Whether no other call was in flight when this one started.
  bool Alone() const { return first; }

private:
  std::atomic<int>& calls;
  const bool first;
};

}  // namespace

int Client::Exchange(Tasks task, const std::string& name,
                     std::map<std::string, std::string>& reply) {
  std::unique_lock<std::mutex> lock(connectionMutex);
  if (const int code = _refusal()) {
    return code;
  }
  const std::uint64_t connection = openConnection;
  const std::uint64_t ticket = receiver.Replies().Expect(name);
  const CallInFlight call(callsInFlight);
  if (!call.Alone() || !receiver.TakeReading(connection)) {
    sender.AddTask(std::move(task));
    lock.unlock();
    return _waitReply(connection, name, ticket, reply);
  }
  lock.unlock();
  const int code = _exchangeAlone(task, connection, name, ticket, reply);
  receiver.HandBackReading();
  return code;
}

// Whatever else the call reads on its way (replies of calls that started meanwhile, heartbeat
// replies, errors) is filed and reported as the Receiver thread would.
int Client::_exchangeAlone(Tasks& task, std::uint64_t connection, const std::string& name,
                           std::uint64_t ticket, Reply& reply) {
  ReplyStore& replies = receiver.Replies();
  const SessionClock::TimePoint deadline = _deadline();
  CallInterruption::Watch interruption;
  bool open = sender.SendNow(task, connection);
  for (;;) {
    if (replies.Take(name, reply) == RobotEvents::kSuccess) {
      return RobotEvents::kSuccess;
    }
    int code = _stopWaiting(connection, deadline, interruption);
    if (code == RobotEvents::kSuccess && !open) {
      code = RobotEvents::kReceiveFailed;
    }
    if (code != RobotEvents::kSuccess) {
      replies.Abandon(name, ticket);
      return code;
    }
    const auto wait = std::chrono::ceil<std::chrono::milliseconds>(std::max(
        _wakeAt(deadline) - SessionClock::Steady::now(), SessionClock::Steady::duration::zero()));
    open = receiver.ReadForCaller(connection, wait);
  }
}

int Client::_waitReply(std::uint64_t connection, const std::string& name, std::uint64_t ticket,
                       Reply& result) {
  ReplyStore& replies = receiver.Replies();
  const SessionClock::TimePoint deadline = _deadline();
  CallInterruption::Watch interruption;
  const auto released = [&] {
    return status != RobotEvents::kSuccess || !_isOpen(connection) ||
           clock.load()->Now() >= deadline;
  };
  const auto wakeAt = [&] { return _wakeAt(deadline); };
  for (;;) {
    if (replies.Wait(name, result, released, wakeAt) == RobotEvents::kSuccess) {
      return RobotEvents::kSuccess;
    }
    if (const int code = _stopWaiting(connection, deadline, interruption)) {
      replies.Abandon(name, ticket);
      return code;
    }
  }
}

int Client::_stopWaiting(std::uint64_t connection, SessionClock::TimePoint deadline,
                         CallInterruption::Watch& interruption) const {
  if (status != RobotEvents::kSuccess) {
    return status;
  }
  if (!_isOpen(connection)) {
    return RobotEvents::kReceiveFailed;
  }
  if (clock.load()->Now() >= deadline || interruption.Requested()) {
    return RobotEvents::kReplyTimeout;
  }
  return RobotEvents::kSuccess;
}

// An installed interruption check runs at least every interval.
SessionClock::TimePoint Client::_wakeAt(SessionClock::TimePoint deadline) const {
  const SessionClock::TimePoint wakeAt = clock.load()->WakeAt(deadline);
  if (!CallInterruption::Installed()) {
    return wakeAt;
  }
  return std::min(wakeAt, SessionClock::Steady::now() + CallInterruption::kCheckInterval);
}

SessionClock::TimePoint Client::_deadline() const {
  return clock.load()->Now() + std::chrono::duration_cast<SessionClock::Steady::duration>(
                                   std::chrono::duration<double>(replyTimeoutSeconds.load()));
}

void Client::_wakeWaits() {
  receiver.Replies().WakeAll();
  receiver.Wake();
}

int Client::SetReplyTimeout(double seconds) {
  if (!std::isfinite(seconds) || seconds <= 0) {
    return RobotEvents::kInvalidArgument;
  }
  replyTimeoutSeconds = std::fmin(seconds, kLongestReplyTimeoutSeconds);
  return RobotEvents::kSuccess;
}

int Client::SetHeartbeat(double periodSeconds, double silenceLimitSeconds) {
  for (const double seconds : {periodSeconds, silenceLimitSeconds}) {
    if (!std::isfinite(seconds) || seconds <= 0) {
      return RobotEvents::kInvalidArgument;
    }
  }
  if (silenceLimitSeconds <= periodSeconds) {
    return RobotEvents::kInvalidArgument;
  }
  using Seconds = std::chrono::duration<double>;
  const auto duration = [](double seconds) {
    return std::chrono::duration_cast<Heart::Clock::duration>(
        Seconds(std::fmin(seconds, kLongestReplyTimeoutSeconds)));
  };
  heart.SetTiming(duration(periodSeconds), duration(silenceLimitSeconds));
  return RobotEvents::kSuccess;
}

void Client::GetClientIP(std::string& ip) { ip = "192.168.1.100"; }

LocalSystemInfo Client::GetLocalSystemInfo() { return localSystemInfo; }

int Client::_loadLocalSystemInfo() {
  localSystemInfo.version = "0.1.0";
  localSystemInfo.system = "windows";
  localSystemInfo.language = "CPP";
  return RobotEvents::kSuccess;
}

// A failed connect has no connection to name.
void Client::_failSession(Robot_Event event) {
  {
    std::lock_guard<std::mutex> lock(reportMutex);
    eventReported = true;
    status = event;
  }
  _wakeWaits();
}

// The first event of the open connection fails the session until the next login; a later one
// follows from it (a reset meets the reader in its read and the Sender in its write) and is
// left to its worker's log line, so the code that calls have returned stays the session's.
// Printed before the status is set, so whoever sees the status also finds the line.
void Client::_eventCallback(std::uint64_t connection, Robot_Event event) {
  {
    std::lock_guard<std::mutex> lock(reportMutex);
    if (!_isOpen(connection) || eventReported) {
      return;
    }
    eventReported = true;
    PrintEventLine(event);
    status = event;
  }
  _wakeWaits();
  std::lock_guard<std::mutex> listening(eventListenerMutex);
  if (eventListener) {
    eventListener(event);
  }
}

void Client::SetEventCallback(std::function<void(int)> callback) {
  std::lock_guard<std::mutex> lock(eventListenerMutex);
  eventListener = std::move(callback);
}

// A heartbeat is not waited for: the watchdog listens for whatever the controller sends. The
// reply of the previous one, if it is still filed, is dropped, so at most one is kept.
void Client::_heartCallback() {
  std::lock_guard<std::mutex> lock(connectionMutex);
  if (_refusal() != RobotEvents::kSuccess) {
    return;
  }
  receiver.Replies().Expect("heart");
  sender.AddTask(Tasks{Tasks::kHeartbeat, {}});
}

SessionClock::TimePoint Client::_lastHeard() { return receiver.LastArrival(); }
