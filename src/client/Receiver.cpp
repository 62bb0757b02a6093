#include "client/Receiver.h"

#include <sys/socket.h>
#include <sys/types.h>

#include <cerrno>
#include <exception>
#include <utility>

#include "common/TavLogger.h"
#include "common/TavUtils.h"

Receiver::Receiver()
    : SocketWorker("Receiver thread setup succeed.", "Receiver thread shutdown succeed.") {}

Receiver::~Receiver() {
  _requestStop();
  Join();
  _logHeldCounts(true);
}

void Receiver::Stop() {
  _requestStop();
  Join();
}

int Receiver::_GenerateMsg(std::string& message) { return framer.Next(message); }

int Receiver::GetRecv(std::string name, Message& result) {
  std::lock_guard<std::mutex> lock(storeMutex);
  return _takeLocked(name, result);
}

void Receiver::Expect(const std::string& name) {
  std::lock_guard<std::mutex> lock(storeMutex);
  store.erase(name);
  abandoned.erase(name);
  _addBounded(announced, name, {}, ++filings, kMaxUnclaimedReplies);
}

int Receiver::WaitRecv(const std::string& name, Message& result,
                       const std::function<bool()>& abandon, Clock::time_point deadline) {
  std::unique_lock<std::mutex> lock(storeMutex);
  std::condition_variable filed;
  const auto registration = waiters.emplace(name, &filed);
  filed.wait_until(lock, deadline, [&] { return store.count(name) != 0 || abandon(); });
  waiters.erase(registration);
  if (_takeLocked(name, result) == RobotEvents::kSuccess) {
    return RobotEvents::kSuccess;
  }
  _addBounded(abandoned, name, {}, ++filings, kMaxUnclaimedReplies);
  return abandon() ? RobotEvents::kNoReplyYet : RobotEvents::kReplyTimeout;
}

void Receiver::WakeWaiters() {
  std::lock_guard<std::mutex> lock(storeMutex);
  for (const auto& [name, waiter] : waiters) {
    waiter->notify_all();
  }
}

void Receiver::Forget() {
  std::lock_guard<std::mutex> lock(storeMutex);
  store.clear();
  abandoned.clear();
  announced.clear();
}

int Receiver::_takeLocked(const std::string& name, Message& result) {
  const auto entry = store.find(name);
  if (entry == store.end()) {
    return RobotEvents::kNoReplyYet;
  }
  result = std::move(entry->second.message);
  store.erase(entry);
  return RobotEvents::kSuccess;
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

std::string Receiver::_addBounded(Entries& entries, const std::string& name, Message message,
                                  std::uint64_t order, std::size_t limit) {
  entries[name] = Entry{std::move(message), order};
  if (entries.size() <= limit) {
    return {};
  }
  auto oldest = entries.begin();
  for (auto entry = entries.begin(); entry != entries.end(); ++entry) {
    if (entry->second.order < oldest->second.order) {
      oldest = entry;
    }
  }
  std::string dropped = oldest->first;
  entries.erase(oldest);
  return dropped;
}

bool Receiver::_work() {
  ssize_t received = 0;
  int readError = 0;
  std::uint64_t load = 0;
  {
    std::lock_guard<std::mutex> lock(socketUse);
    if (!active) {
      return false;
    }
    load = loads;
    received = ::recv(socketFd, receiveBuffer, kReadSize, 0);
    readError = errno;
  }
  if (received < 0 && readError == EINTR) {
    return true;
  }
  // A closed peer sends nothing more and a failed read is not retried: either ends this
  // connection, reported once, and the Receiver waits unloaded for a new one.
  if (received <= 0) {
    _logHeldCounts(true);
    if (_isCurrent(load)) {
      TavLogger::GetInstance().Error(TAV_ERROR, RobotEvents::kReceiveFailed,
                                     received == 0 ? "Receiver thread connection closed by peer."
                                                   : "Receiver thread recv failed.");
      _report(load, RobotEvents::kReceiveFailed, true);
    }
    return false;
  }
  lastArrival = Clock::now().time_since_epoch().count();
  // Bytes of an earlier connection cannot complete a message of this one.
  if (load != framedLoad) {
    framer.Clear();
    framedLoad = load;
  }
  framer.Append(receiveBuffer, static_cast<std::size_t>(received));
  _handleStream();
  _logHeldCounts(false);
  return true;
}

void Receiver::_handleStream() {
  std::string message;
  int generated = RobotEvents::kSuccess;
  bool handledAny = false;
  while ((generated = _GenerateMsg(message)) == RobotEvents::kSuccess) {
    if (!_handleMessage(message)) {
      return;
    }
    handledAny = true;
  }
  if (generated == RobotEvents::kDecodeFailed) {
    _endConnection(generated, "Receiver thread message too long.");
  } else if (!handledAny) {
    if (incomplete.Admit()) {
      TavLogger::GetInstance().Warning(generated, "Receiver thread generate failed.");
    }
    status = generated;
  }
}

bool Receiver::_handleMessage(std::string& message) {
  TavLogger& logger = TavLogger::GetInstance();
  Message result;
  const int decoded = _decode(result, message);
  if (decoded != RobotEvents::kSuccess) {
    _endConnection(decoded, "Receiver thread unwrap failed.");
    return false;
  }
  const std::string name = result["identifier"];
  if (name == "Error") {
    // An error that names no code must still fail the session: as a status, 0 would mean success.
    Robot_Event event = GetRobotEvent(result["errorcode"]);
    if (event == RobotEvents::kSuccess) {
      event = RobotEvents::kDecodeFailed;
    }
    logger.Error(TAV_ERROR, event, "Receiver thread recv an error from KestServer.");
    _report(framedLoad, event, false);
    return true;
  }
  _file(name, result);
  return true;
}

void Receiver::_endConnection(Robot_Event event, const char* line) {
  if (unreadable.Admit()) {
    TavLogger::GetInstance().Error(TAV_ERROR, event, line);
  }
  _logHeldCounts(true);
  framer.Clear();
  _report(framedLoad, event, true);
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
  TavLogger& logger = TavLogger::GetInstance();
  std::lock_guard<std::mutex> lock(storeMutex);
  if (announced.erase(name) != 0 || waiters.count(name) != 0) {
    logger.Info("Receiver thread recv a %s msg", name.c_str());
  } else if (unasked.Admit()) {
    logger.Warning(RobotEvents::kNoReplyYet, "Receiver thread recv a %s msg nobody asked for.",
                   name.c_str());
  }
  if (abandoned.erase(name) != 0) {
    logger.Warning(RobotEvents::kNoReplyYet, "Receiver thread dropped a %s msg nobody waits for.",
                   name.c_str());
    return;
  }
  if (store.count(name) != 0) {
    return;
  }
  const std::string dropped = _addBounded(store, name, result, ++filings, kMaxUnclaimedReplies);
  if (!dropped.empty() && uncollected.Admit()) {
    logger.Warning(RobotEvents::kNoReplyYet, "Receiver thread dropped an uncollected %s msg.",
                   dropped.c_str());
  }
  const auto [first, last] = waiters.equal_range(name);
  for (auto waiter = first; waiter != last; ++waiter) {
    waiter->second->notify_all();
  }
}
