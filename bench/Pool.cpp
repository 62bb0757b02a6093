#include "Pool.h"

#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

namespace bench::Pool {

namespace {

std::vector<std::unique_ptr<tavsim::SimulatorServer>> simulators;
std::vector<std::unique_ptr<Robot>> robots;

void Check(int code, const char* step) {
  if (code != 0) {
    throw std::runtime_error(std::string(step) + " failed with " + std::to_string(code));
  }
}

}  // namespace

void Prepare(Robot& robot, std::uint16_t port) {
  Check(robot.RobotLogin("127.0.0.1", static_cast<short>(port)), "login");
  Check(robot.Setup("arm", {"can0", "can", "canopen", 1, 500000}, Setup_Mode::Virtual), "set-up");
}

void Open(std::size_t robotCount, std::size_t simulatorCount) {
  Close();
  for (std::size_t i = 0; i < simulatorCount; ++i) {
    const tavsim::ServerOptions options;  // named: GCC 12 warns falsely on the default argument
    simulators.push_back(std::make_unique<tavsim::SimulatorServer>(options));
  }
  for (std::size_t i = 0; i < robotCount; ++i) {
    robots.push_back(std::make_unique<Robot>());
    Prepare(*robots.back(), simulators[i % simulatorCount]->Port());
  }
}

void Close() {
  for (auto& robot : robots) {
    robot->RobotLogout();
  }
  robots.clear();
  simulators.clear();
}

std::size_t RobotCount() { return robots.size(); }

Robot& RobotAt(std::size_t index) { return *robots.at(index); }

tavsim::SimulatorServer& SimulatorAt(std::size_t index) { return *simulators.at(index); }

}  // namespace bench::Pool
