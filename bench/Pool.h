#ifndef TAVBENCH_POOL_H
#define TAVBENCH_POOL_H

#include <cstddef>
#include <cstdint>

#include "Robot.h"
#include "server/SimulatorServer.h"

// The Robots and simulators a benchmark runs against, opened before it and closed after it, so
// that no other session's threads are alive while one is measured. Robots are logged in and
// set up; Robot i talks to simulator i modulo the number of simulators.
namespace bench::Pool {

// Logs `robot` in to the controller at 127.0.0.1:port and sets it up, as every benchmark
// session starts. Throws std::runtime_error when a step fails.
void Prepare(Robot& robot, std::uint16_t port);

// Closes what is open first. Throws std::runtime_error when a login or set-up fails.
void Open(std::size_t robots, std::size_t simulators);
void Close();

std::size_t RobotCount();
Robot& RobotAt(std::size_t index);
tavsim::SimulatorServer& SimulatorAt(std::size_t index);

}  // namespace bench::Pool

#endif
