#ifndef TAVTEST_SUPPORT_SCRIPTEDCONTROLLER_H
#define TAVTEST_SUPPORT_SCRIPTEDCONTROLLER_H

#include <gtest/gtest.h>

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "core/ClientMessage.h"
#include "core/Connection.h"
#include "core/ControllerReplies.h"
#include "core/LoopbackListener.h"

namespace tavtest {

// A fake controller on 127.0.0.1 that a test drives step by step: accept the client, expect
// its next message, answer it, write raw bytes, close. Every expectation waits a bounded time
// and says what was missing when it fails, so a client that never sends fails the test
// instead of hanging it. One client connection at a time; a new Accept replaces the old one.
class ScriptedController {
public:
  using Result = ::testing::AssertionResult;
  using Wait = std::chrono::milliseconds;
  using Results = std::vector<std::pair<std::string, std::string>>;
  static constexpr Wait kDefaultWait{5000};

  std::uint16_t Port() const { return listener.Port(); }
  // The port as Client::InitializeSocket takes it.
  short PortArg() const { return static_cast<short>(listener.Port()); }

  Result Accept(Wait wait = kDefaultWait);

  // The next message, which must be of that kind (commands: of that name) with a valid checksum.
  Result ReceiveCommand(const std::string& functionName, tavsim::ClientMessage& message,
                        Wait wait = kDefaultWait) {
    return Receive(tavsim::ClientMessageKind::Command, functionName, message, wait);
  }
  Result ReceiveClientInfo(tavsim::ClientMessage& message, Wait wait = kDefaultWait) {
    return Receive(tavsim::ClientMessageKind::ClientInfo, "", message, wait);
  }
  Result ReceiveHeart(Wait wait = kDefaultWait) {
    tavsim::ClientMessage message;
    return Receive(tavsim::ClientMessageKind::Heart, "", message, wait);
  }
  // Nothing at all arrives within `window`.
  Result ExpectSilence(Wait window) { return ExpectNoMessage(window, false); }
  // The client closes its side within `wait`, sending nothing more.
  Result ExpectClientClosed(Wait wait = kDefaultWait) { return ExpectNoMessage(wait, true); }

  // Raw bytes exactly as given: garbage, pieces of a message, several messages at once.
  Result Send(const std::string& bytes);
  Result SendConnResult(const std::string& result = "0") {
    return Send(tavsim::ConnResultMessage(result));
  }
  // The reply to `command`, matched to it by its function name and timestamp.
  Result Reply(const tavsim::ClientMessage& command, const std::string& state = "0",
               const Results& results = {}) {
    return Send(
        tavsim::CommandReplyMessage({command.timestamp, command.functionName, state, results}));
  }

  // Waits until the client's kernel has taken every byte written so far (none in flight).
  Result WaitDelivered(Wait wait = kDefaultWait);

  void Close() {
    if (connection) {
      connection->Close();
    }
  }
  // Aborts the connection: the client's next read fails with a reset instead of seeing an end.
  void Reset();

private:
  Result Receive(tavsim::ClientMessageKind kind, const std::string& functionName,
                 tavsim::ClientMessage& message, Wait wait);
  // Reads for `wait`; fails when a message, or with `closed` no close, came instead.
  Result ExpectNoMessage(Wait wait, bool closed);

  tavsim::LoopbackListener listener;
  // Empty until a client is accepted: a test that goes on without one fails by the exception
  // that value() throws.
  std::optional<tavsim::Connection> connection;
};

}  // namespace tavtest

#endif
