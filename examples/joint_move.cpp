// Move two joints together, wait until they arrive and read where they are.
//   joint_move               against a simulator started in this process
//   joint_move HOST PORT     against the controller at HOST:PORT
#include <cstdio>

#include <tavclient/Robot.h>

#include "ExampleTarget.h"

int main(int argc, char** argv) {
  const ExampleTarget target(argc, argv);
  Robot robot;
  const Setup_Param channel{"can0", "can", "canopen", 1, 500000};
  const int ids[] = {1, 2};
  const double targets[] = {20.0, -70.0};  // degrees
  double angles[2] = {};

  // Each call returns 0 or an event code; the first failure ends the sequence.
  int code = robot.RobotLogin(target.Host(), target.Port());
  if (code == 0) {
    code = robot.Setup("arm", channel, target.Simulated() ? Setup_Mode::Virtual : Setup_Mode::Real);
  }
  if (code == 0) {
    // 30 deg/s, 60 deg/s^2; returns as soon as the controller has accepted the move.
    code = robot.move_to_angles(2, ids, targets, 30.0f, 60.0f, Relative_Mode::Absolute);
  }
  if (code == 0) {
    code = robot.wait_for_motors(2, ids);
  }
  if (code == 0) {
    code = robot.get_angles(2, ids, angles);
  }
  if (code == 0) {
    std::printf("joint 1 at %.2f deg, joint 2 at %.2f deg\n", angles[0], angles[1]);
  } else {
    std::printf("failed with code %d\n", code);
  }
  robot.RobotLogout();
  return code == 0 ? 0 : 1;
}
