#ifndef TAVCLIENT_CLIENT_CLIENT_H
#define TAVCLIENT_CLIENT_CLIENT_H

#include <netinet/in.h>

#include <atomic>
#include <functional>
#include <map>
#include <string>

#include "Heart.h"
#include "LocalSystemInfo.h"
#include "Receiver.h"
#include "Sender.h"
#include "Tasks.h"
#include "../common/RobotEvent.h"

// The session with the controller: owns the socket and the Sender, Receiver and Heart threads,
// queues outbound messages and waits for named replies. One status code is sticky: once a
// worker has reported an event (or a connect failed) every operation returns it, and the
// session stays failed until a new Client is made.
//
// The workers reach the session through the static pKestClientCallback, which every
// constructor points at itself: one live Client per process is supported.
//
// FinalizeSocket must come before destruction: destroying a connected Client blocks, because
// the heart does not stop while it is enabled.
class Client {
public:
  static constexpr int kReplyTimeoutSeconds = 3600;

  Client();
  virtual ~Client();
  Client(const Client&) = delete;
  Client& operator=(const Client&) = delete;

  int InitializeSocket(const char* ip, short port);
  int FinalizeSocket();
  // Queues a copy of `task`; returns before anything is sent.
  int AddTasks(Tasks task);
  // Waits for the reply filed under `name` and takes it out of the store.
  int GetResult(std::string name, std::map<std::string, std::string>& result);
  /// Bounds every later wait for a reply to `seconds` (3600 by default). A wait that runs
  /// out returns 1003031 and leaves the session usable. A non-positive or non-finite value
  /// returns 1006011 and keeps the previous bound.
  int SetReplyTimeout(double seconds);
  void GetClientIP(std::string& ip);
  LocalSystemInfo GetLocalSystemInfo();
  int _loadLocalSystemInfo();

  static void _eventCallback(Robot_Event event);
  static void _heartCallback();

  static std::atomic<Client*> pKestClientCallback;

private:
  void _setStatus(Robot_Event event);
  // Waits for the reply `name` until it is filed, `abandon` holds (the status code is then
  // returned) or the time-out passes.
  int _waitReply(const std::string& name, std::map<std::string, std::string>& result,
                 const std::function<bool()>& abandon);

  sockaddr_in serverAddress{};
  int socketFd = -1;
  std::atomic<int> status{RobotEvents::kSuccess};
  LocalSystemInfo localSystemInfo;
  bool connected = false;
  Receiver receiver;
  Sender sender;
  Heart heart;
};

#endif
