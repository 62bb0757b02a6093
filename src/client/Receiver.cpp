#include "client/Receiver.h"

#include <sys/eventfd.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <exception>
#include <utility>

#include "client/SocketCalls.h"
#include "common/TavLogger.h"
#include "common/TavUtils.h"

Receiver::Receiver()
    : SocketWorker("Receiver thread setup succeed.", "Receiver thread shutdown succeed."),
      wakeFd(::eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC)) {}

Receiver::~Receiver() {
  _requestStop();
  Join();
  _logHeldCounts(true);
  if (wakeFd >= 0) {
    ::close(wakeFd);
  }
}

void Receiver::Stop() {
  _requestStop();
  Join();
}

int Receiver::_GenerateMsg(std::string& message) { return framer.Next(message); }

int Receiver::GetRecv(std::string name, Message& result) { return replies.Take(name, result); }

void Receiver::UseClock(SessionClock& newClock) { clock = &newClock; }

bool Receiver::TakeReading(std::uint64_t connection) {
  std::lock_guard<std::mutex> lock(readMutex);
  if (callerReads || !_isCurrent(connection)) {
    return false;
  }
  callerReads = true;
  _drainWake();
  return true;
}

bool Receiver::ReadForCaller(std::uint64_t connection, std::chrono::milliseconds timeout) {
  {
    std::shared_lock<std::shared_mutex> use(socketUse);
    if (!_isCurrent(connection)) {
      return false;
    }
    if (!SocketCalls::WaitReadable(socketFd, wakeFd, timeout)) {
      _drainWake();
      return true;
    }
  }
  std::lock_guard<std::mutex> lock(readMutex);
  return _readLocked(connection);
}

void Receiver::HandBackReading() {
  std::lock_guard<std::mutex> lock(turnMutex);
  callerReads = false;
  if (threadWaits) {
    readingHandedBack.notify_one();
  }
}

void Receiver::Wake() {
  const std::uint64_t one = 1;
  static_cast<void>(::write(wakeFd, &one, sizeof one));
}

void Receiver::_drainWake() {
  std::uint64_t count = 0;
  static_cast<void>(::read(wakeFd, &count, sizeof count));
}

void Receiver::WaitSocketReleased() {
  std::lock_guard<std::mutex> reading(readMutex);
  std::unique_lock<std::shared_mutex> use(socketUse);
}

// Bytes of an earlier connection cannot complete a message of this one.
void Receiver::_loaded() {
  std::lock_guard<std::mutex> lock(readMutex);
  framer.Clear();
}

void Receiver::_unloaded() {
  std::lock_guard<std::mutex> lock(turnMutex);
  readingHandedBack.notify_all();
}

// The thread waits for bytes without the turn, so a call may take it meanwhile; bytes that
// came for a call that reads are that call's to read.
bool Receiver::_work() {
  const std::uint64_t connection = loadedConnection;
  {
    std::shared_lock<std::shared_mutex> use(socketUse);
    if (!_isCurrent(connection)) {
      return false;
    }
    SocketCalls::WaitReadable(socketFd, -1, std::chrono::milliseconds(-1));
  }
  if (!callerReads) {
    std::lock_guard<std::mutex> lock(readMutex);
    if (!callerReads) {
      return _readLocked(connection);
    }
  }
  std::unique_lock<std::mutex> lock(turnMutex);
  threadWaits = true;
  readingHandedBack.wait(lock, [this] { return !callerReads || !active; });
  threadWaits = false;
  return true;
}

bool Receiver::_readLocked(std::uint64_t connection) {
  ssize_t received = 0;
  int readError = 0;
  {
    std::shared_lock<std::shared_mutex> use(socketUse);
    if (!_isCurrent(connection)) {
      return false;
    }
    received = SocketCalls::ReadAvailable(socketFd, receiveBuffer, kReadSize);
    readError = errno;
  }
  if (received < 0 && (readError == EAGAIN || readError == EWOULDBLOCK)) {
    return true;
  }
  // A closed peer sends nothing more and a failed read is not retried: either ends this
  // connection, reported once, and the Receiver waits unloaded for a new one.
  if (received <= 0) {
    _logHeldCounts(true);
    if (_isCurrent(connection)) {
      TavLogger::GetInstance().Error(TAV_ERROR, RobotEvents::kReceiveFailed,
                                     received == 0 ? "Receiver thread connection closed by peer."
                                                   : "Receiver thread recv failed.");
      _report(connection, RobotEvents::kReceiveFailed, true);
    }
    return false;
  }
  lastArrival = clock.load()->Now().time_since_epoch().count();
  framer.Append(receiveBuffer, static_cast<std::size_t>(received));
  _handleStream(connection);
  _logHeldCounts(false);
  return _isCurrent(connection);
}

void Receiver::_handleStream(std::uint64_t connection) {
  std::string message;
  int generated = RobotEvents::kSuccess;
  bool handledAny = false;
  while ((generated = _GenerateMsg(message)) == RobotEvents::kSuccess) {
    if (!_handleMessage(connection, message)) {
      return;
    }
    handledAny = true;
  }
  if (generated == RobotEvents::kDecodeFailed) {
    _endConnection(connection, generated, "Receiver thread message too long.");
  } else if (!handledAny) {
    if (incomplete.Admit()) {
      TavLogger::GetInstance().Warning(generated, "Receiver thread generate failed.");
    }
    status = generated;
  }
}

bool Receiver::_handleMessage(std::uint64_t connection, std::string& message) {
  Message result;
  const int decoded = _decode(result, message);
  if (decoded != RobotEvents::kSuccess) {
    _endConnection(connection, decoded, "Receiver thread unwrap failed.");
    return false;
  }
  const std::string name = result["identifier"];
  if (name == "Error") {
    // An error that names no code must still fail the session: as a status, 0 would mean success.
    Robot_Event event = GetRobotEvent(result["errorcode"]);
    if (event == RobotEvents::kSuccess) {
      event = RobotEvents::kDecodeFailed;
    }
    TavLogger::GetInstance().Error(TAV_ERROR, event,
                                   "Receiver thread recv an error from KestServer.");
    _report(connection, event, false);
    return true;
  }
  _file(name, std::move(result));
  return true;
}

void Receiver::_endConnection(std::uint64_t connection, Robot_Event event, const char* line) {
  if (unreadable.Admit()) {
    TavLogger::GetInstance().Error(TAV_ERROR, event, line);
  }
  _logHeldCounts(true);
  framer.Clear();
  _report(connection, event, true);
}

// The parser lets std::out_of_range through for some malformed shapes; here that is one more
// text that could not be read.
int Receiver::_decode(Message& result, std::string& message) {
  try {
    return parser.unwrap(result, message);
  } catch (const std::exception&) {
    return RobotEvents::kDecodeFailed;
  }
}

void Receiver::_file(const std::string& name, Message result) {
  TavLogger& logger = TavLogger::GetInstance();
  const ReplyStore::Filed filed = replies.File(name, std::move(result));
  switch (filed.filing) {
    case ReplyStore::Filing::kAsked:
    case ReplyStore::Filing::kDuplicate:
      logger.Info("Receiver thread recv a %s msg", name.c_str());
      break;
    case ReplyStore::Filing::kUnasked:
      if (unasked.Admit()) {
        logger.Warning(RobotEvents::kNoReplyYet, "Receiver thread recv a %s msg nobody asked for.",
                       name.c_str());
      }
      break;
    case ReplyStore::Filing::kLate:
      logger.Warning(RobotEvents::kNoReplyYet, "Receiver thread dropped a %s msg nobody waits for.",
                     name.c_str());
      break;
  }
  if (!filed.pushedOut.empty() && uncollected.Admit()) {
    logger.Warning(RobotEvents::kNoReplyYet, "Receiver thread dropped an uncollected %s msg.",
                   filed.pushedOut.c_str());
  }
}

void Receiver::_logHeldCounts(bool evenWithinTheSecond) {
  for (RepeatSummary* summary : {&unasked, &uncollected, &incomplete, &unreadable}) {
    if (evenWithinTheSecond) {
      summary->Flush();
    } else {
      summary->Tick();
    }
  }
}
