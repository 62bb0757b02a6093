// Pick a workpiece up 10 cm below the tool and place it 15 cm to the side: straight tool
// moves, the gripper, and a path with a rounded corner.
//   pick_and_place            against a simulator started in this process
//   pick_and_place HOST PORT  against the controller at HOST:PORT
#include <cstdio>

#include <tavclient/Robot.h>

#include "ExampleTarget.h"

namespace {

// The tool at `pose`, then waiting until the arm stands still.
int MoveTo(Robot& robot, const _Pose& pose) {
  const int code = robot.move_to_pose(pose, 0.2f, 0.5f, Relative_Mode::Absolute);  // m/s, m/s^2
  return code == 0 ? robot.wait_for_motors() : code;
}

int PickAndPlace(Robot& robot) {
  _Pose above;
  if (const int code = robot.get_pose(above); code != 0) {
    return code;
  }
  _Pose pick = above;
  pick.z -= 0.10;
  _Pose place = pick;
  place.y += 0.15;

  int code = MoveTo(robot, pick);
  if (code == 0) {
    code = robot.set_EOAT_action("gripper", "close");
  }
  if (code == 0) {
    // Up, across and down in one path; the corner at the second point is rounded by 3 cm.
    _Pose path[3] = {above, place, place};
    path[1].z = above.z;
    const double radius[3] = {0.0, 0.03, 0.0};
    code = robot.moveL(3, path, radius, 0.2f, 0.5f, 0.0f, Traj_Close_Mode::Open);
  }
  if (code == 0) {
    code = robot.wait_for_motors();
  }
  if (code == 0) {
    code = robot.set_EOAT_action("gripper", "open");
  }
  return code == 0 ? MoveTo(robot, above) : code;
}

}  // namespace

int main(int argc, char** argv) {
  const ExampleTarget target(argc, argv);
  Robot robot;
  const Setup_Param channel{"can0", "can", "canopen", 1, 500000};
  int code = robot.RobotLogin(target.Host(), target.Port());
  if (code == 0) {
    code = robot.Setup("arm", channel, target.Simulated() ? Setup_Mode::Virtual : Setup_Mode::Real);
  }
  if (code == 0) {
    code = PickAndPlace(robot);
  }
  if (code == 0) {
    std::printf("part placed\n");
  } else {
    std::printf("failed with code %d\n", code);
  }
  robot.RobotLogout();
  return code == 0 ? 0 : 1;
}
