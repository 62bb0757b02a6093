#ifndef TAVTEST_SIMULATOR_WIRECLIENT_H
#define TAVTEST_SIMULATOR_WIRECLIENT_H

#include <gtest/gtest.h>

#include <chrono>
#include <cstdint>
#include <map>
#include <string>

#include "core/Connection.h"

namespace tavtest {

using Message = std::map<std::string, std::string>;

// A bare client connection to the simulator on 127.0.0.1 that writes the library's messages
// (built by its own Parser) and reads replies one framed message at a time, so tests see
// exactly what the simulator sends and in which order.
class WireClient {
public:
  static constexpr std::chrono::milliseconds kWait{5000};

  explicit WireClient(std::uint16_t port);

  bool Connected() const { return connection.IsOpen(); }

  bool SendRaw(const std::string& bytes) { return connection.Write(bytes); }
  bool SendHeart();
  // Sends command `name` with `parameters`; returns the time stamp it carries.
  std::string SendCommand(const std::string& name, Message parameters = {});

  // Log-in, command and heart whose reply must come next, accepted by the library's
  // Parser::unwrap; the first two return its content (empty on a recorded failure).
  Message Login();
  Message Call(const std::string& name, const Message& parameters = {});
  ::testing::AssertionResult HeartAnswered();

  // The next message, or a failure when none comes within `wait`.
  ::testing::AssertionResult Next(std::string& text, std::chrono::milliseconds wait = kWait);
  // The next message must be accepted by the library's Parser::unwrap, decoded into `decoded`,
  // and be `identifier` (a command reply's is its name and time stamp).
  ::testing::AssertionResult NextIs(const std::string& identifier, Message& decoded);
  // Nothing arrives within `window`.
  ::testing::AssertionResult Silent(std::chrono::milliseconds window);
  // The simulator closes the connection within kWait, sending nothing more.
  ::testing::AssertionResult ClosedByPeer();

private:
  tavsim::Connection connection;
  int nextTimestamp = 1;
};

// Parser::unwrap of one inbound text: its status, and the decoded map in `decoded`. An
// exception from the parser counts as a decode failure, as in the library's receiver.
int Unwrap(const std::string& text, Message& decoded);

}  // namespace tavtest

#endif
