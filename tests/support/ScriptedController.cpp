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

AssertionResult ScriptedController::Receive(ClientMessageKind kind, const std::string& functionName,
                                            tavsim::ClientMessage& message, Wait wait) {
  const std::string expected = std::string(tavsim::ToString(kind)) + " message " + functionName;
  tavsim::Connection& open = connection.value();
  const std::optional<std::string> text = open.ReadMessage(wait);
  if (!text) {
    return AssertionFailure() << "expected a " << expected << ", but "
                              << (open.PeerClosed() ? "the client closed" : "none came")
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
  tavsim::Connection& open = connection.value();
  if (const std::optional<std::string> text = open.ReadMessage(wait)) {
    return AssertionFailure() << "expected nothing from the client, got \"" << *text << "\"";
  }
  if (!closed && open.Framer().Buffered() != 0) {
    return AssertionFailure() << "expected nothing, got " << open.Framer().Buffered() << " bytes";
  }
  if (closed && !open.PeerClosed()) {
    return AssertionFailure() << "the client did not close the connection within " << wait.count()
                              << " ms";
  }
  return AssertionSuccess();
}

AssertionResult ScriptedController::Send(const std::string& bytes) {
  if (!connection.value().Write(bytes)) {
    return AssertionFailure() << "could not write \"" << bytes << "\" to the client";
  }
  return AssertionSuccess();
}

AssertionResult ScriptedController::WaitDelivered(Wait wait) {
  return WaitQueueEmpty(connection.value().NativeHandle(), SIOCOUTQ, wait);
}

}  // namespace tavtest
