#include "client/Receiver.h"

#include <sys/socket.h>
#include <sys/types.h>

#include <cerrno>
#include <exception>

#include "common/TavLogger.h"
#include "common/TavUtils.h"

namespace {
const std::string kOpenTag = "<root>";
const std::string kCloseTag = "</root>";
}  // namespace

Receiver::Receiver() : SocketWorker("Receiver thread setup succeed.", "Receiver thread shutdown succeed.") {}

Receiver::~Receiver() {
  _requestStop();
  Join();
}

void Receiver::Stop() {
  _requestStop();
  Join();
}

int Receiver::_GenerateMsg(std::string& message) {
  if (streamBuffer.empty()) {
    return RobotEvents::kNoCompleteMessage;
  }
  const std::size_t open = streamBuffer.find(kOpenTag);
  if (open == std::string::npos) {
    streamBuffer.clear();
    return RobotEvents::kNoCompleteMessage;
  }
  streamBuffer.erase(0, open);
  const std::size_t close = streamBuffer.find(kCloseTag);
  if (close == std::string::npos) {
    return RobotEvents::kNoCompleteMessage;
  }
  const std::size_t end = close + kCloseTag.size();
  message = streamBuffer.substr(0, end);
  streamBuffer.erase(0, end);
  return RobotEvents::kSuccess;
}

int Receiver::GetRecv(std::string name, Message& result) {
  std::lock_guard<std::mutex> lock(storeMutex);
  return _takeLocked(name, result);
}

int Receiver::WaitRecv(const std::string& name, Message& result, const std::function<bool()>& abandon,
                       Clock::time_point deadline) {
  std::unique_lock<std::mutex> lock(storeMutex);
  replyFiled.wait_until(lock, deadline, [&] { return store.count(name) != 0 || abandon(); });
  if (_takeLocked(name, result) == RobotEvents::kSuccess) {
    return RobotEvents::kSuccess;
  }
  return abandon() ? RobotEvents::kNoReplyYet : RobotEvents::kReplyTimeout;
}

void Receiver::WakeWaiters() {
  std::lock_guard<std::mutex> lock(storeMutex);
  replyFiled.notify_all();
}

int Receiver::_takeLocked(const std::string& name, Message& result) {
  const auto entry = store.find(name);
  if (entry == store.end()) {
    return RobotEvents::kNoReplyYet;
  }
  result = entry->second;
  store.erase(entry);
  return RobotEvents::kSuccess;
}

bool Receiver::_work() {
  ssize_t received = 0;
  int readError = 0;
  {
    std::lock_guard<std::mutex> lock(socketUse);
    if (!active) {
      return false;
    }
    received = ::recv(socketFd, receiveBuffer, kReadSize, 0);
    readError = errno;
  }
  if (received < 0) {
    if (readError == EINTR) {
      return true;
    }
    if (!active) {
      return false;
    }
    _report(RobotEvents::kReceiveFailed);
    return true;
  }
  // A closed peer sends nothing more: report it once and wait, unloaded, for a new connection.
  if (received == 0) {
    if (active) {
      TavLogger::GetInstance().Error(TAV_ERROR, RobotEvents::kReceiveFailed,
                                     "Receiver thread connection closed by peer.");
      Unload();
      _report(RobotEvents::kReceiveFailed);
    }
    return false;
  }
  streamBuffer.append(receiveBuffer, static_cast<std::size_t>(received));
  _handleStream();
  return true;
}

void Receiver::_handleStream() {
  TavLogger& logger = TavLogger::GetInstance();
  std::string message;
  const int generated = _GenerateMsg(message);
  if (generated != RobotEvents::kSuccess) {
    logger.Warning(generated, "Receiver thread generate failed.");
    status = generated;
    return;
  }
  Message result;
  const int decoded = _decode(result, message);
  if (decoded != RobotEvents::kSuccess) {
    logger.Error(TAV_ERROR, decoded, "Receiver thread unwrap failed.");
    _report(decoded);
    Unload();
    _requestStop();
    return;
  }
  const std::string name = result["identifier"];
  if (name == "Error") {
    const Robot_Event event = GetRobotEvent(result["errorcode"]);
    logger.Error(TAV_ERROR, event, "Receiver thread recv an error from KestServer.");
    _report(event);
    return;
  }
  logger.Info("Receiver thread recv a %s msg", name.c_str());
  _file(name, result);
}

// The parser lets std::out_of_range through for some malformed shapes; on this thread that is
// one more text that could not be read.
int Receiver::_decode(Message& result, std::string& message) {
  try {
    return parser.unwrap(result, message);
  } catch (const std::exception&) {
    return RobotEvents::kDecodeFailed;
  }
}

void Receiver::_file(const std::string& name, const Message& result) {
  {
    std::lock_guard<std::mutex> lock(storeMutex);
    store.emplace(name, result);
  }
  replyFiled.notify_all();
}
