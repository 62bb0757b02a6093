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
  sender.RobotEventRegister(&Client::_eventCallback, this);
  sender.Start();
  receiver.RobotEventRegister(&Client::_eventCallback, this);
  receiver.Start();
  heart.HeartEventRegister(&Client::_heartCallback, this);
  heart.WatchdogRegister(&Client::_lastHeard, &Client::_silenceCallback);
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
  heart.Stop();
  sender.Stop();
  receiver.Stop();
}

int Client::InitializeSocket(const char* ip, short port) {
  // The workers are off the old connection once it is closed, and no report of theirs or of the
  // watchdog is in flight: nothing of the old session can fail the new one.
  FinalizeSocket();
  receiver.Forget();
  eventReported = false;
  status = RobotEvents::kSuccess;
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
  if (::connect(fd, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
    ::close(fd);
    _setStatus(RobotEvents::kConnectFailed);
    return RobotEvents::kConnectFailed;
  }
  std::lock_guard<std::mutex> lock(connectionMutex);
  serverAddress = address;
  socketFd = fd;
  sender.Load(socketFd);
  receiver.Load(socketFd);
  heart.Enable();
  connected = true;
  return RobotEvents::kSuccess;
}

int Client::FinalizeSocket() {
  std::lock_guard<std::mutex> lock(connectionMutex);
  if (socketFd < 0) {
    return RobotEvents::kSuccess;
  }
  heart.Disable();
  sender.Unload();
  sender.ClearQueue();
  receiver.Unload();
  connected = false;
  ++closings;
  receiver.WakeWaiters();
  // The shutdown ends a socket call in progress; the workers must be off the descriptor before
  // it is closed and its number can be handed out again.
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
  return _waitReply(closings, name, result, [this] { return !connected; });
}

int Client::Exchange(Tasks task, const std::string& name,
                     std::map<std::string, std::string>& reply) {
  std::uint64_t closing = 0;
  {
    std::lock_guard<std::mutex> lock(connectionMutex);
    if (const int code = _refusal()) {
      return code;
    }
    closing = closings;
    receiver.Expect(name);
    sender.AddTask(std::move(task));
  }
  return _waitReply(closing, name, reply, [] { return false; });
}

int Client::_waitReply(std::uint64_t closing, const std::string& name, Reply& result,
                       const std::function<bool()>& giveUp) {
  const auto timeout = std::chrono::duration<double>(replyTimeoutSeconds.load());
  const auto deadline =
      Receiver::Clock::now() + std::chrono::duration_cast<Receiver::Clock::duration>(timeout);
  const int found = receiver.WaitRecv(
      name, result,
      [&] { return status != RobotEvents::kSuccess || closings != closing || giveUp(); }, deadline);
  if (found != RobotEvents::kNoReplyYet) {
    return found;
  }
  return status != RobotEvents::kSuccess ? status.load() : RobotEvents::kReceiveFailed;
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

void Client::_setStatus(Robot_Event event) {
  status = event;
  receiver.WakeWaiters();
}

// The first event fails the session until the next login; a later one follows from it (a reset
// meets the Receiver in its read and the Sender in its send) and is left to its worker's log line,
// so the code that calls have returned stays the session's. Printed before the status is set, so
// whoever sees the status also finds the line.
void Client::_eventCallback(Robot_Event event, void* client) {
  Client* session = static_cast<Client*>(client);
  if (session->eventReported.exchange(true)) {
    return;
  }
  PrintEventLine(event);
  session->_setStatus(event);
  std::function<void(int)> listener;
  {
    std::lock_guard<std::mutex> lock(session->eventListenerMutex);
    listener = session->eventListener;
  }
  if (listener) {
    listener(event);
  }
}

void Client::SetEventCallback(std::function<void(int)> callback) {
  std::lock_guard<std::mutex> lock(eventListenerMutex);
  eventListener = std::move(callback);
}

// A heartbeat is not waited for: the watchdog listens for whatever the controller sends. The
// reply of the previous one, if it is still filed, is dropped, so at most one is kept.
void Client::_heartCallback(void* context) {
  Client* client = static_cast<Client*>(context);
  std::lock_guard<std::mutex> lock(client->connectionMutex);
  if (client->_refusal() != RobotEvents::kSuccess) {
    return;
  }
  client->receiver.Expect("heart");
  client->sender.AddTask(Tasks{Tasks::kHeartbeat, {}});
}

void Client::_silenceCallback(void* context) {
  TavLogger::GetInstance().Error(TAV_ERROR, RobotEvents::kControllerSilent,
                                 "Heart thread: the controller fell silent.");
  _eventCallback(RobotEvents::kControllerSilent, context);
}

Heart::Clock::time_point Client::_lastHeard(void* context) {
  return static_cast<Client*>(context)->receiver.LastArrival();
}
