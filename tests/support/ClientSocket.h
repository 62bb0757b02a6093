#ifndef TAVTEST_SUPPORT_CLIENTSOCKET_H
#define TAVTEST_SUPPORT_CLIENTSOCKET_H

#include <gtest/gtest.h>

#include <chrono>
#include <cstdint>

#include "core/UniqueFd.h"

namespace tavtest {

// A plain TCP socket connected to 127.0.0.1:port, for driving a Sender or Receiver directly.
// Invalid when the connection failed.
tavsim::UniqueFd ConnectLoopback(std::uint16_t port);

// Waits until the socket's receive queue is empty, i.e. whoever reads it has taken every byte
// that arrived. Together with ScriptedController::WaitDelivered this turns one write into
// exactly one read on the other side.
::testing::AssertionResult WaitUntilRead(int socket, std::chrono::milliseconds wait);

}  // namespace tavtest

#endif
