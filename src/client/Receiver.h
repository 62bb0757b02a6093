#ifndef TAVCLIENT_CLIENT_RECEIVER_H
#define TAVCLIENT_CLIENT_RECEIVER_H

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <shared_mutex>
#include <string>

#include "../common/RepeatSummary.h"
#include "../protocol/Parser.h"
#include "MessageFramer.h"
#include "ReplyStore.h"
#include "SessionClock.h"
#include "SocketWorker.h"

// Owns the inbound direction: reads the socket, cuts "<root>" ... "</root>" messages out of
// the stream, decodes them and files each under its name ("identifier") in the reply store,
// where waiting calls collect it. Server Error messages become events instead. After every
// read it files all the messages the read completed.
//
// Reading is one turn at a time. The Receiver thread reads whenever bytes come, except while a
// call alone on its session has taken the turn (TakeReading): that call reads for itself
// (ReadForCaller), files whatever it reads just as the thread would, and hands the turn back
// when it leaves; the thread waits meanwhile.
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
  using Message = ReplyStore::Message;
  using Clock = SessionClock::Steady;
  static constexpr std::size_t kMaxUnclaimedReplies = ReplyStore::kMaxUnclaimed;

  Receiver();
  ~Receiver() override;

  int _GenerateMsg(std::string& message);
  // Takes the reply filed under `name` out of the store; 1002021 when there is none. Never waits.
  int GetRecv(std::string name, Message& result);
  ReplyStore& Replies() { return replies; }
  // The clock arrivals are noted on; it must outlive the Receiver.
  void UseClock(SessionClock& clock);
  // When the last bytes arrived, of any connection; the epoch before any.
  Clock::time_point LastArrival() const {
    return Clock::time_point(Clock::duration(lastArrival.load()));
  }

  // A call's turn at reading `connection`; false when that connection is not loaded.
  bool TakeReading(std::uint64_t connection);
  // Waits up to `timeout` for bytes (or a Wake), then reads and files what came. False once
  // the connection has ended.
  bool ReadForCaller(std::uint64_t connection, std::chrono::milliseconds timeout);
  void HandBackReading();
  // Ends a caller's wait in ReadForCaller early.
  void Wake();
  // Returns once nobody reads or waits on the socket; after Unload nobody starts to until the
  // next Load, so it may be closed.
  void WaitSocketReleased();
  void Stop();

protected:
  bool _work() override;
  void _loaded() override;
  void _unloaded() override;

private:
  // One read without waiting and the filing of what it completed; under readMutex.
  bool _readLocked(std::uint64_t connection);
  // Cuts, decodes and files or reports every complete message of the stream buffer.
  void _handleStream(std::uint64_t connection);
  // Decodes and files or reports one message; false when it ended the connection.
  bool _handleMessage(std::uint64_t connection, std::string& message);
  void _endConnection(std::uint64_t connection, Robot_Event event, const char* line);
  int _decode(Message& result, std::string& message);
  void _file(const std::string& name, Message result);
  // Logs the counts of the lines held back: those whose second is over, or all of them.
  void _logHeldCounts(bool evenWithinTheSecond);
  void _drainWake();

  static constexpr std::size_t kReadSize = 1024;
  ReplyStore replies;
  std::atomic<SessionClock*> clock{&SessionClock::SteadyClock()};
  std::atomic<Clock::rep> lastArrival{0};
  // Shared by whoever waits on or reads the socket; taken alone to close it.
  std::shared_mutex socketUse;
  // A call's Wake ends its wait for bytes.
  int wakeFd = -1;
  // Held while reading and filing: the buffers, the parser and the log summaries below. A call
  // takes the turn under it, so the thread never reads once a call has taken it.
  std::mutex readMutex;
  std::atomic<bool> callerReads{false};
  // The thread waits here while a call reads, away from readMutex, which that call needs.
  std::mutex turnMutex;
  std::condition_variable readingHandedBack;
  bool threadWaits = false;  // guarded by turnMutex
  char receiveBuffer[kReadSize] = {};
  MessageFramer framer;
  Parser parser;
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
