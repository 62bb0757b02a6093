// What an application sees when the controller misbehaves, rehearsed on the simulator's
// fault injection: each fault changes one reply to get_angles, and each attempt is a new
// session, because after a transport failure a session keeps failing until it is replaced.
#include <chrono>
#include <cstdio>
#include <optional>

#include <tavclient/Robot.h>

#include "server/SimulatorServer.h"

namespace {

using namespace std::chrono_literals;

void Attempt(tavsim::SimulatorServer& simulator, const char* what,
             std::optional<tavsim::Fault> fault) {
  if (fault) {
    simulator.Faults().Add(*fault);
  }
  Robot robot;
  const Setup_Param channel{"can0", "can", "canopen", 1, 500000};
  const auto start = std::chrono::steady_clock::now();
  int code = robot.RobotLogin(simulator.Host().c_str(), static_cast<short>(simulator.Port()));
  if (code == 0) {
    code = robot.Setup("arm", channel, Setup_Mode::Virtual);
  }
  double angle = 0.0;
  if (code == 0) {
    code = robot.get_angles(1, angle);
  }
  const auto took = std::chrono::duration_cast<std::chrono::milliseconds>(
      std::chrono::steady_clock::now() - start);
  std::printf("%-44s -> code %d (%s) after %lld ms\n", what, code, Robot::EventText(code),
              static_cast<long long>(took.count()));
  robot.RobotLogout();
}

}  // namespace

int main() {
  using tavsim::Fault;
  tavsim::SimulatorServer simulator;
  Attempt(simulator, "no fault", std::nullopt);
  Attempt(simulator, "the reply 300 ms late", Fault::DelayReply("get_angles", 300ms));
  Attempt(simulator, "the reply in 3 pieces", Fault::SplitReply("get_angles", 3, 20ms));
  Attempt(simulator, "an Error message (code 7) instead", Fault::ErrorInstead("get_angles", "7"));
  Attempt(simulator, "the reply with a wrong checksum", Fault::CorruptChecksum("get_angles"));
  Attempt(simulator, "the connection closed instead", Fault::CloseConnection("get_angles"));
  return 0;
}
