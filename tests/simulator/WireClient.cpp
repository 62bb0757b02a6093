#include "WireClient.h"

#include <exception>

#include "protocol/Parser.h"
#include "support/ClientSocket.h"

namespace tavtest {

using ::testing::AssertionFailure;
using ::testing::AssertionResult;
using ::testing::AssertionSuccess;

WireClient::WireClient(std::uint16_t port) : connection_(ConnectLoopback(port)) {}

bool WireClient::SendRaw(const std::string& bytes) {
  return connection_.Write(bytes);
}

bool WireClient::SendHeart() {
  Parser parser;
  Message none;
  std::string text;
  parser.wrap_heart(text, none);
  return SendRaw(text);
}

bool WireClient::SendClientInfo() {
  Parser parser;
  Message info{{"identifier", "ClientInfo"}, {"version", "0.1.0"}, {"system", "windows"}, {"language", "CPP"}};
  std::string text;
  parser.wrap_clientinfo(text, info);
  return SendRaw(text);
}

std::string WireClient::SendCommand(const std::string& name, Message parameters) {
  const std::string timestamp = std::to_string(nextTimestamp_++);
  parameters["timestamp"] = timestamp;
  parameters["ClientID"] = "127.0.0.1";
  parameters["function_name"] = name;
  Parser parser;
  std::string text;
  parser.wrap_msg(text, parameters);
  SendRaw(text);
  return timestamp;
}

AssertionResult WireClient::Next(std::string& text, std::chrono::milliseconds wait) {
  std::optional<std::string> message = connection_.ReadMessage(wait);
  if (!message) {
    return AssertionFailure() << "no message within " << wait.count() << " ms"
                              << (connection_.PeerClosed() ? " (the simulator closed the connection)" : "");
  }
  text = *message;
  return AssertionSuccess();
}

AssertionResult WireClient::NextDecoded(Message& decoded, std::chrono::milliseconds wait) {
  std::string text;
  if (AssertionResult received = Next(text, wait); !received) {
    return received;
  }
  decoded.clear();
  if (const int status = Unwrap(text, decoded); status != 0) {
    return AssertionFailure() << "the library rejects " << text << " with " << status;
  }
  return AssertionSuccess();
}

AssertionResult WireClient::ReplyTo(const std::string& name, const std::string& timestamp, Message& decoded,
                                    std::chrono::milliseconds wait) {
  if (AssertionResult received = NextDecoded(decoded, wait); !received) {
    return received;
  }
  if (decoded["identifier"] != name + timestamp) {
    return AssertionFailure() << "expected the reply " << name + timestamp << ", got " << decoded["identifier"];
  }
  return AssertionSuccess();
}

AssertionResult WireClient::Silent(std::chrono::milliseconds window) {
  std::string text;
  if (Next(text, window)) {
    return AssertionFailure() << "unexpected message " << text;
  }
  return AssertionSuccess();
}

AssertionResult WireClient::ClosedByPeer(std::chrono::milliseconds wait) {
  std::string text;
  if (Next(text, wait)) {
    return AssertionFailure() << "expected the connection to close, got " << text;
  }
  if (!connection_.PeerClosed()) {
    return AssertionFailure() << "the connection is still open after " << wait.count() << " ms";
  }
  return AssertionSuccess();
}

int Unwrap(const std::string& text, Message& decoded) {
  Parser parser;
  std::string copy = text;
  try {
    return parser.unwrap(decoded, copy);
  } catch (const std::exception&) {
    return kDecodeFailed;  // as the library's receiver counts it
  }
}

}  // namespace tavtest
