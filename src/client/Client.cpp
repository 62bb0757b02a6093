#include "client/Client.h"

#include <arpa/inet.h>
#include <sys/socket.h>
#include <unistd.h>

#include <chrono>
#include <cstdint>
#include <cstdio>
#include <utility>

#include "common/TavLogger.h"
#include "common/TavResource.h"

std::atomic<Client*> Client::pKestClientCallback{nullptr};

Client::Client() {
  pKestClientCallback = this;
  sender.RobotEventRegister(&Client::_eventCallback);
  sender.Start();
  receiver.RobotEventRegister(&Client::_eventCallback);
  receiver.Start();
  heart.HeartEventRegister(&Client::_heartCallback);
  heart.Start();
  try {
    // The resource status is not kept: a session starts healthy whatever the directories did.
    TavResource::GetInstance().Load();
  } catch (...) {
    // The workers are joined by their own destructors; only the static pointer must not be
    // left on an object that never came to be.
    Client* self = this;
    pKestClientCallback.compare_exchange_strong(self, nullptr);
    throw;
  }
  TavLogger::GetInstance().StartLogging();
  status = RobotEvents::kSuccess;
  _loadLocalSystemInfo();
  connected = false;
}

Client::~Client() {
  connected = false;
  heart.Stop();
  sender.Stop();
  receiver.Stop();
  Client* self = this;
  pKestClientCallback.compare_exchange_strong(self, nullptr);
}

int Client::InitializeSocket(const char* ip, short port) {
  if (status != RobotEvents::kSuccess) {
    return status;
  }
  socketFd = ::socket(AF_INET, SOCK_STREAM, 0);
  if (socketFd < 0) {
    return RobotEvents::kSocketSetupFailed;
  }
  serverAddress = sockaddr_in{};
  serverAddress.sin_family = AF_INET;
  serverAddress.sin_port = htons(static_cast<std::uint16_t>(port));
  if (::inet_pton(AF_INET, ip, &serverAddress.sin_addr) < 1) {
    return RobotEvents::kSocketSetupFailed;
  }
  if (::connect(socketFd, reinterpret_cast<const sockaddr*>(&serverAddress), sizeof serverAddress) != 0) {
    _setStatus(RobotEvents::kConnectFailed);
    return RobotEvents::kConnectFailed;
  }
  sender.Load(socketFd);
  receiver.Load(socketFd);
  heart.Enable();
  connected = true;
  return RobotEvents::kSuccess;
}

int Client::FinalizeSocket() {
  if (connected) {
    heart.Disable();
    sender.Unload();
    receiver.Unload();
    receiver.WakeWaiters();  // a heartbeat still waiting for its reply gives up
    connected = false;
  }
  // The shutdown ends a receive in progress; the workers must be off the descriptor before it
  // is closed and its number can be handed out again.
  ::shutdown(socketFd, SHUT_RDWR);
  sender.WaitSocketReleased();
  receiver.WaitSocketReleased();
  ::close(socketFd);
  return RobotEvents::kSuccess;
}

int Client::AddTasks(Tasks task) {
  if (status != RobotEvents::kSuccess) {
    return status;
  }
  sender.AddTask(std::move(task));
  return RobotEvents::kSuccess;
}

int Client::GetResult(std::string name, std::map<std::string, std::string>& result) {
  return _waitReply(name, result, [this] { return status != RobotEvents::kSuccess; });
}

int Client::_waitReply(const std::string& name, std::map<std::string, std::string>& result,
                       const std::function<bool()>& abandon) {
  const auto deadline = Receiver::Clock::now() + std::chrono::seconds(kReplyTimeoutSeconds);
  if (status != RobotEvents::kSuccess) {
    return status;
  }
  const int found = receiver.WaitRecv(name, result, abandon, deadline);
  return found == RobotEvents::kNoReplyYet ? status.load() : found;
}

void Client::GetClientIP(std::string& ip) {
  ip = "192.168.1.100";
}

LocalSystemInfo Client::GetLocalSystemInfo() {
  return localSystemInfo;
}

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

// Printed before the status is set, so whoever sees the status also finds the line.
void Client::_eventCallback(Robot_Event event) {
  Client* client = pKestClientCallback;
  std::printf("call back %d\n", event);
  std::fflush(stdout);
  if (client != nullptr) {
    client->_setStatus(event);
  }
}

void Client::_heartCallback() {
  Client* client = pKestClientCallback;
  if (client == nullptr) {
    return;
  }
  Tasks heartbeat;
  heartbeat.type = Tasks::kHeartbeat;
  client->AddTasks(heartbeat);
  // The wait also ends with the heart disabled: after a logout no reply can come, and the
  // heart thread must be free to stop.
  std::map<std::string, std::string> reply;
  client->_waitReply("heart", reply, [client] {
    return client->status != RobotEvents::kSuccess || !client->heart.IsEnabled();
  });
}
