#include "support/ScriptedController.h"

#include <linux/sockios.h>
#include <sys/socket.h>

#include "support/Polling.h"

namespace tavtest {

using tavsim::ClientMessageKind;
using ::testing::AssertionFailure;
using ::testing::AssertionResult;
using ::testing::AssertionSuccess;

void ScriptedController::Reset() {
  if (!connection) {
    return;
  }
  const linger abort{1, 0};
  ::setsockopt(connection->NativeHandle(), SOL_SOCKET, SO_LINGER, &abort, sizeof abort);
  connection->Close();
}

AssertionResult ScriptedController::Accept(Wait wait) {
  connection = listener.Accept(wait);
  if (!connection) {
    return AssertionFailure() << "no client connected within " << wait.count() << " ms";
  }
  return AssertionSuccess();
}

AssertionResult ScriptedController::Connected() const {
  if (!connection || !connection->IsOpen()) {
    return AssertionFailure() << "the controller has no open connection";
  }
  return AssertionSuccess();
}

AssertionResult ScriptedController::Receive(ClientMessageKind kind, const std::string& functionName,
                                            tavsim::ClientMessage& message, Wait wait) {
  const std::string expected = std::string(tavsim::ToString(kind)) + " message " + functionName;
  if (AssertionResult connected = Connected(); !connected) {
    return connected;
  }
  const std::optional<std::string> text = connection->ReadMessage(wait);
  if (!text) {
    return AssertionFailure() << "expected a " << expected << ", but "
                              << (connection->PeerClosed() ? "the client closed" : "none came")
                              << " within " << wait.count() << " ms";
  }
  message = tavsim::DecodeClientMessage(*text);
  if (message.kind != kind || message.functionName != functionName ||
      (kind != ClientMessageKind::Heart && !message.checksumValid)) {
    return AssertionFailure() << "expected a " << expected << " with a valid checksum, got "
                              << tavsim::ToString(message.kind) << " \"" << *text << "\"";
  }
  return AssertionSuccess();
}

AssertionResult ScriptedController::ExpectNoMessage(Wait wait, bool closed) {
  if (AssertionResult connected = Connected(); !connected) {
    return connected;
  }
  if (const std::optional<std::string> text = connection->ReadMessage(wait)) {
    return AssertionFailure() << "expected nothing from the client, got \"" << *text << "\"";
  }
  if (!closed && connection->Framer().Buffered() != 0) {
    return AssertionFailure() << "expected nothing, got " << connection->Framer().Buffered()
                              << " bytes";
  }
  if (closed && !connection->PeerClosed()) {
    return AssertionFailure() << "the client did not close the connection within " << wait.count()
                              << " ms";
  }
  return AssertionSuccess();
}

AssertionResult ScriptedController::Send(const std::string& bytes) {
  if (AssertionResult connected = Connected(); !connected) {
    return connected;
  }
  if (!connection->Write(bytes)) {
    return AssertionFailure() << "could not write \"" << bytes << "\" to the client";
  }
  return AssertionSuccess();
}

AssertionResult ScriptedController::WaitDelivered(Wait wait) {
  if (AssertionResult connected = Connected(); !connected) {
    return connected;
  }
  return WaitQueueEmpty(connection->NativeHandle(), SIOCOUTQ, wait);
}

}  // namespace tavtest
