#include "WireTap.h"

#include <chrono>
#include <exception>
#include <optional>
#include <stdexcept>
#include <string>
#include <thread>

#include "Pool.h"
#include "Robot.h"
#include "core/LoopbackListener.h"
#include "server/SimulatorServer.h"

namespace bench {

namespace {

constexpr std::chrono::seconds kWait{5};

// Passes each request of the Robot on and its reply back, one at a time: every message of a
// login and a get_angles call has exactly one reply. Keeps the last pair; ends when the Robot
// or the simulator closes its connection.
void Relay(tavsim::LoopbackListener& listener, std::uint16_t simulatorPort, WireExchange& last) {
  std::optional<tavsim::Connection> robotSide = listener.Accept(kWait);
  tavsim::Connection simulatorSide(tavsim::ConnectLoopback(simulatorPort));
  if (!robotSide) {
    return;
  }
  while (std::optional<std::string> request = robotSide->ReadMessage(kWait)) {
    std::optional<std::string> reply;
    if (!simulatorSide.Write(*request) || !(reply = simulatorSide.ReadMessage(kWait))) {
      return;
    }
    robotSide->Write(*reply);
    last = {*request, *reply};
  }
}

WireExchange Capture() {
  const tavsim::ServerOptions options;  // named: GCC 12 warns falsely on the default argument
  tavsim::SimulatorServer simulator(options);
  tavsim::LoopbackListener listener;
  WireExchange last;
  std::thread relay(Relay, std::ref(listener), simulator.Port(), std::ref(last));
  std::string failure;
  try {
    Robot robot;
    double angle = 0;
    Pool::Prepare(robot, listener.Port());
    if (const int code = robot.get_angles(1, angle)) {
      failure = "get_angles failed with " + std::to_string(code);
    }
    robot.RobotLogout();
  } catch (const std::exception& error) {
    failure = error.what();
  }
  relay.join();  // the logout closed the Robot's side, which ends the relay
  if (failure.empty() && last.request.find("get_angles") == std::string::npos) {
    failure = "nothing relayed";
  }
  if (!failure.empty()) {
    throw std::runtime_error("capturing a get_angles exchange: " + failure);
  }
  return last;
}

}  // namespace

const WireExchange& GetAnglesExchange() {
  static const WireExchange exchange = Capture();
  return exchange;
}

}  // namespace bench
