#ifndef TAVCLIENT_CLIENT_RECEIVER_H
#define TAVCLIENT_CLIENT_RECEIVER_H

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <functional>
#include <map>
#include <mutex>
#include <string>

#include "../common/RepeatSummary.h"
#include "../protocol/Parser.h"
#include "MessageFramer.h"
#include "SocketWorker.h"

// Owns the inbound direction: reads the socket, cuts "<root>" ... "</root>" messages out of
// the stream, decodes them and files each under its name ("identifier") in the result store,
// where waiting callers collect it. Server Error messages become events instead. After every
// read it files all the messages the read completed.
//
// The store holds only what someone may still collect: a caller announces the name it will
// wait for before sending (Expect), which drops any stale entry of that name; a reply whose
// caller gave up is dropped when it arrives; replies nobody announced are kept up to
// kMaxUnclaimedReplies, the oldest dropped first. A reply whose name is already waiting in the
// store is dropped (kept on purpose).
//
// What the controller sends unasked (replies nobody announced, uncollected replies it pushes
// out, bytes that make no message, messages that cannot be read) is logged at most once a
// second per kind, with a count of the rest (see RepeatSummary).
//
// A closed peer or a failed read is reported once as 1002011, a message that cannot be
// decoded as 1003021; either ends the connection for the Receiver: it unloads itself and stays
// idle until it is loaded again.
class Receiver : public SocketWorker {
public:
  using Message = std::map<std::string, std::string>;
  using Clock = std::chrono::steady_clock;
  static constexpr std::size_t kMaxUnclaimedReplies = 256;

  Receiver();
  ~Receiver() override;

  int _GenerateMsg(std::string& message);
  // Takes the reply filed under `name` out of the store; 1002021 when there is none. Never waits.
  int GetRecv(std::string name, Message& result);
  // A reply named `name` is about to be asked for: an entry of that name still in the store
  // is stale (a wrapped request counter, or a reply nobody collected) and is dropped.
  void Expect(const std::string& name);
  // Waits until a reply of that name is filed (0, taken out as by GetRecv), `abandon` turns
  // true (1002021) or the deadline passes (1003031). `abandon` is checked under the store's
  // lock whenever a waiter is woken; whoever makes it true must call WakeWaiters afterwards.
  // A waiter that gives up leaves word to drop its reply should it still come.
  int WaitRecv(const std::string& name, Message& result, const std::function<bool()>& abandon,
               Clock::time_point deadline);
  void WakeWaiters();
  // Drops every filed reply and every word left by waiters: they belong to an old connection.
  void Forget();
  // When the last bytes arrived, of any connection; the epoch before any.
  Clock::time_point LastArrival() const {
    return Clock::time_point(Clock::duration(lastArrival.load()));
  }
  void Stop();

protected:
  bool _work() override;

private:
  struct Entry {
    Message message;
    std::uint64_t order;
  };
  using Entries = std::map<std::string, Entry>;
  // A caller in WaitRecv, on its own condition variable, so that a filed reply wakes its caller
  // alone rather than every caller of the session. Registered and notified under storeMutex.
  using Waiter = std::condition_variable*;

  // Cuts, decodes and files or reports every complete message of the stream buffer.
  void _handleStream();
  // Decodes and files or reports one message; false when it ended the connection.
  bool _handleMessage(std::string& message);
  void _endConnection(Robot_Event event, const char* line);
  int _decode(Message& result, std::string& message);
  void _file(const std::string& name, const Message& result);
  int _takeLocked(const std::string& name, Message& result);
  // Logs the counts of the lines held back: those whose second is over, or all of them.
  void _logHeldCounts(bool evenWithinTheSecond);
  // Adds an entry, dropping the oldest beyond `limit`; returns the name dropped, if any.
  static std::string _addBounded(Entries& entries, const std::string& name, Message message,
                                 std::uint64_t order, std::size_t limit);

  static constexpr std::size_t kReadSize = 1024;
  char receiveBuffer[kReadSize] = {};
  MessageFramer framer;
  std::uint64_t framedLoad = 0;  // the load whose bytes the framer holds
  std::atomic<Clock::rep> lastArrival{0};
  Parser parser;
  // Guarded by storeMutex.
  Entries store;
  Entries abandoned;  // names whose waiter gave up; their messages are empty
  Entries announced;  // names announced by Expect and not yet filed; their messages are empty
  std::multimap<std::string, Waiter> waiters;
  std::uint64_t filings = 0;
  std::mutex storeMutex;
  // Used on the Receiver's thread, or once it is joined.
  RepeatSummary unasked{TAV_WARNING, RobotEvents::kNoReplyYet,
                        "Receiver thread recv %d more msgs nobody asked for in the last %d s."};
  RepeatSummary uncollected{TAV_WARNING, RobotEvents::kNoReplyYet,
                            "Receiver thread dropped %d more uncollected msgs in the last %d s."};
  RepeatSummary incomplete{TAV_WARNING, RobotEvents::kNoCompleteMessage,
                           "Receiver thread generate failed %d more times in the last %d s."};
  RepeatSummary unreadable{TAV_ERROR, RobotEvents::kDecodeFailed,
                           "Receiver thread could not read %d more msgs in the last %d s."};
};

#endif
