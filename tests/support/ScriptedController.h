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
  static constexpr std::chrono::milliseconds kDefaultWait{5000};
  using Results = std::vector<std::pair<std::string, std::string>>;

  ScriptedController() = default;

  std::uint16_t Port() const { return listener_.Port(); }
  // The port as Client::InitializeSocket takes it.
  short PortArg() const { return static_cast<short>(listener_.Port()); }

  ::testing::AssertionResult Accept(std::chrono::milliseconds wait = kDefaultWait);

  // The next message, of any kind (Unrecognised ones included).
  ::testing::AssertionResult Receive(tavsim::ClientMessage& message, std::chrono::milliseconds wait = kDefaultWait);
  // The next message, which must be a command of that name with a valid checksum.
  ::testing::AssertionResult ReceiveCommand(const std::string& functionName, tavsim::ClientMessage& message,
                                            std::chrono::milliseconds wait = kDefaultWait);
  // The next message, which must be a client-info message with a valid checksum.
  ::testing::AssertionResult ReceiveClientInfo(tavsim::ClientMessage& message,
                                               std::chrono::milliseconds wait = kDefaultWait);
  // The next message, which must be the heart message.
  ::testing::AssertionResult ReceiveHeart(std::chrono::milliseconds wait = kDefaultWait);
  // Nothing at all arrives within `window`.
  ::testing::AssertionResult ExpectSilence(std::chrono::milliseconds window);
  // The client closes its side within `wait`, sending nothing more.
  ::testing::AssertionResult ExpectClientClosed(std::chrono::milliseconds wait = kDefaultWait);

  // Raw bytes exactly as given: garbage, pieces of a message, several messages at once.
  ::testing::AssertionResult Send(const std::string& bytes);
  ::testing::AssertionResult SendConnResult(const std::string& result = "0");
  ::testing::AssertionResult SendHeartReply();
  ::testing::AssertionResult SendError(const std::string& errorCode);
  // The reply to `command`, matched to it by its function name and timestamp.
  ::testing::AssertionResult Reply(const tavsim::ClientMessage& command, const std::string& state = "0",
                                   const Results& results = {});
  // The same reply with `checksum` written instead of the right one.
  ::testing::AssertionResult ReplyWithChecksum(const tavsim::ClientMessage& command, const std::string& checksum,
                                               const std::string& state = "0", const Results& results = {});

  // Waits until the client's kernel has taken every byte written so far (none in flight).
  ::testing::AssertionResult WaitDelivered(std::chrono::milliseconds wait = kDefaultWait);

  // Ends the controller's sending side: the client's reads return 0.
  void CloseSending();
  void Close();

private:
  ::testing::AssertionResult Connected() const;
  static tavsim::CommandReply ReplyTo(const tavsim::ClientMessage& command, const std::string& state,
                                      const Results& results);

  tavsim::LoopbackListener listener_;
  std::optional<tavsim::Connection> connection_;
};

}  // namespace tavtest

#endif
