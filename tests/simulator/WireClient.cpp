#include "WireClient.h"

#include <exception>

#include "common/RobotEvent.h"
#include "core/LoopbackListener.h"
#include "protocol/Parser.h"

namespace tavtest {

using ::testing::AssertionFailure;
using ::testing::AssertionResult;
using ::testing::AssertionSuccess;

WireClient::WireClient(std::uint16_t port) : connection(tavsim::ConnectLoopback(port)) {}

bool WireClient::SendHeart() {
  Message none;
  std::string text;
  Parser().wrap_heart(text, none);
  return SendRaw(text);
}

std::string WireClient::SendCommand(const std::string& name, Message parameters) {
  const std::string timestamp = std::to_string(nextTimestamp++);
  parameters["timestamp"] = timestamp;
  parameters["ClientID"] = "127.0.0.1";
  parameters["function_name"] = name;
  std::string text;
  Parser().wrap_msg(text, parameters);
  SendRaw(text);
  return timestamp;
}

Message WireClient::Login() {
  Message info{{"identifier", "ClientInfo"},
               {"version", "0.1.0"},
               {"system", "windows"},
               {"language", "CPP"}};
  std::string text;
  Parser().wrap_clientinfo(text, info);
  Message reply;
  EXPECT_TRUE(SendRaw(text) && NextIs("ConnResult", reply));
  return reply;
}

Message WireClient::Call(const std::string& name, const Message& parameters) {
  Message reply;
  EXPECT_TRUE(NextIs(name + SendCommand(name, parameters), reply));
  return reply;
}

AssertionResult WireClient::HeartAnswered() {
  Message reply;
  return SendHeart() ? NextIs("heart", reply) : AssertionFailure() << "the heart could not be sent";
}

AssertionResult WireClient::Next(std::string& text, std::chrono::milliseconds wait) {
  std::optional<std::string> message = connection.ReadMessage(wait);
  if (!message) {
    return AssertionFailure() << "no message within " << wait.count() << " ms";
  }
  text = *message;
  return AssertionSuccess();
}

AssertionResult WireClient::NextIs(const std::string& identifier, Message& decoded) {
  std::string text;
  if (AssertionResult received = Next(text); !received) {
    return received;
  }
  decoded.clear();
  if (const int status = Unwrap(text, decoded); status != 0) {
    return AssertionFailure() << "the library rejects " << text << " with " << status;
  }
  if (decoded["identifier"] != identifier) {
    return AssertionFailure() << "expected " << identifier << ", got " << text;
  }
  return AssertionSuccess();
}

AssertionResult WireClient::Silent(std::chrono::milliseconds window) {
  std::string text;
  return Next(text, window) ? AssertionFailure() << "unexpected message " << text
                            : AssertionSuccess();
}

AssertionResult WireClient::ClosedByPeer() {
  AssertionResult silent = Silent(kWait);
  return !silent || connection.PeerClosed() ? silent : AssertionFailure() << "still connected";
}

int Unwrap(const std::string& text, Message& decoded) {
  std::string copy = text;
  try {
    return Parser().unwrap(decoded, copy);
  } catch (const std::exception&) {
    return RobotEvents::kDecodeFailed;
  }
}

}  // namespace tavtest
