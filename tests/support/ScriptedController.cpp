#include "support/ScriptedController.h"

#include <linux/sockios.h>
#include <sys/ioctl.h>

#include "support/Polling.h"

namespace tavtest {

using ::testing::AssertionFailure;
using ::testing::AssertionResult;
using ::testing::AssertionSuccess;

namespace {

std::string Describe(const tavsim::ClientMessage& message) {
  std::string text = std::string(tavsim::ToString(message.kind)) + " message \"" + message.raw + "\"";
  if (!message.problem.empty()) {
    text += " (" + message.problem + ")";
  }
  return text;
}

}  // namespace

AssertionResult ScriptedController::Accept(std::chrono::milliseconds wait) {
  connection_ = listener_.Accept(wait);
  if (!connection_) {
    return AssertionFailure() << "no client connected to 127.0.0.1:" << Port() << " within " << wait.count()
                              << " ms";
  }
  return AssertionSuccess();
}

AssertionResult ScriptedController::Connected() const {
  if (!connection_ || !connection_->IsOpen()) {
    return AssertionFailure() << "the controller has no open client connection";
  }
  return AssertionSuccess();
}

AssertionResult ScriptedController::Receive(tavsim::ClientMessage& message, std::chrono::milliseconds wait) {
  if (AssertionResult connected = Connected(); !connected) {
    return connected;
  }
  const std::optional<std::string> text = connection_->ReadMessage(wait);
  if (!text) {
    return AssertionFailure() << "expected a message from the client, but "
                              << (connection_->PeerClosed() ? "it closed the connection" : "none came") << " within "
                              << wait.count() << " ms";
  }
  message = tavsim::DecodeClientMessage(*text);
  return AssertionSuccess();
}

AssertionResult ScriptedController::ReceiveCommand(const std::string& functionName, tavsim::ClientMessage& message,
                                                   std::chrono::milliseconds wait) {
  if (AssertionResult received = Receive(message, wait); !received) {
    return received << " (waiting for command " << functionName << ")";
  }
  if (message.kind != tavsim::ClientMessageKind::Command || message.functionName != functionName) {
    return AssertionFailure() << "expected command " << functionName << ", got " << Describe(message);
  }
  if (!message.checksumValid) {
    return AssertionFailure() << "command " << functionName << " has a wrong checksum: " << Describe(message);
  }
  return AssertionSuccess();
}

AssertionResult ScriptedController::ReceiveClientInfo(tavsim::ClientMessage& message, std::chrono::milliseconds wait) {
  if (AssertionResult received = Receive(message, wait); !received) {
    return received << " (waiting for the client-info message)";
  }
  if (message.kind != tavsim::ClientMessageKind::ClientInfo || !message.checksumValid) {
    return AssertionFailure() << "expected a client-info message with a valid checksum, got " << Describe(message);
  }
  return AssertionSuccess();
}

AssertionResult ScriptedController::ReceiveHeart(std::chrono::milliseconds wait) {
  tavsim::ClientMessage message;
  if (AssertionResult received = Receive(message, wait); !received) {
    return received << " (waiting for the heart message)";
  }
  if (message.kind != tavsim::ClientMessageKind::Heart) {
    return AssertionFailure() << "expected the heart message, got " << Describe(message);
  }
  return AssertionSuccess();
}

AssertionResult ScriptedController::ExpectSilence(std::chrono::milliseconds window) {
  if (AssertionResult connected = Connected(); !connected) {
    return connected;
  }
  if (const std::optional<std::string> text = connection_->ReadMessage(window)) {
    return AssertionFailure() << "expected nothing from the client, got "
                              << Describe(tavsim::DecodeClientMessage(*text));
  }
  if (connection_->Framer().Buffered() != 0) {
    return AssertionFailure() << "expected nothing from the client, got " << connection_->Framer().Buffered()
                              << " bytes of an unfinished message";
  }
  return AssertionSuccess();
}

AssertionResult ScriptedController::ExpectClientClosed(std::chrono::milliseconds wait) {
  if (AssertionResult connected = Connected(); !connected) {
    return connected;
  }
  if (const std::optional<std::string> text = connection_->ReadMessage(wait)) {
    return AssertionFailure() << "expected the client to close, got " << Describe(tavsim::DecodeClientMessage(*text));
  }
  if (!connection_->PeerClosed()) {
    return AssertionFailure() << "the client did not close the connection within " << wait.count() << " ms";
  }
  return AssertionSuccess();
}

AssertionResult ScriptedController::Send(const std::string& bytes) {
  if (AssertionResult connected = Connected(); !connected) {
    return connected;
  }
  if (!connection_->Write(bytes)) {
    return AssertionFailure() << "could not write \"" << bytes << "\" to the client";
  }
  return AssertionSuccess();
}

AssertionResult ScriptedController::SendConnResult(const std::string& result) {
  return Send(tavsim::ConnResultMessage(result));
}

AssertionResult ScriptedController::SendHeartReply() {
  return Send(tavsim::HeartReplyMessage());
}

AssertionResult ScriptedController::SendError(const std::string& errorCode) {
  return Send(tavsim::ErrorMessage(errorCode));
}

tavsim::CommandReply ScriptedController::ReplyTo(const tavsim::ClientMessage& command, const std::string& state,
                                                 const Results& results) {
  tavsim::CommandReply reply;
  reply.timestamp = command.timestamp;
  reply.functionName = command.functionName;
  reply.state = state;
  reply.results = results;
  return reply;
}

AssertionResult ScriptedController::Reply(const tavsim::ClientMessage& command, const std::string& state,
                                          const Results& results) {
  return Send(tavsim::CommandReplyMessage(ReplyTo(command, state, results)));
}

AssertionResult ScriptedController::ReplyWithChecksum(const tavsim::ClientMessage& command, const std::string& checksum,
                                                      const std::string& state, const Results& results) {
  return Send(tavsim::CommandReplyMessage(ReplyTo(command, state, results), checksum));
}

AssertionResult ScriptedController::WaitDelivered(std::chrono::milliseconds wait) {
  if (AssertionResult connected = Connected(); !connected) {
    return connected;
  }
  int inFlight = 0;
  const bool delivered =
      PollUntil(wait, [&] { return ::ioctl(connection_->NativeHandle(), SIOCOUTQ, &inFlight) == 0 && inFlight == 0; });
  if (!delivered) {
    return AssertionFailure() << inFlight << " bytes still not taken by the client after " << wait.count() << " ms";
  }
  return AssertionSuccess();
}

void ScriptedController::CloseSending() {
  if (connection_) {
    connection_->ShutdownWrite();
  }
}

void ScriptedController::Close() {
  if (connection_) {
    connection_->Close();
  }
}

}  // namespace tavtest
