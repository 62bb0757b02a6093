"""Pick a workpiece up 10 cm below the tool and place it 15 cm to the side: straight tool
moves, the gripper, and a path with a rounded corner.

    pick_and_place.py             against a simulator started in this process
    pick_and_place.py HOST PORT   against the controller at HOST:PORT
"""
import contextlib
import sys

import tavclient
from example_target import connected_robot
from tavclient import Pose, Relative_Mode


def shifted(pose, dy=0.0, dz=0.0):
    return Pose(pose.x, pose.y + dy, pose.z + dz, pose.roll, pose.pitch, pose.yaw)


def move_to(robot, pose):
    """The tool at pose, then waiting until the arm stands still."""
    robot.move_to_pose(pose, 0.2, 0.5, Relative_Mode.Absolute)  # m/s, m/s^2
    robot.wait_for_motors()


def pick_and_place(robot):
    above = robot.get_pose()
    pick = shifted(above, dz=-0.10)
    place = shifted(pick, dy=0.15)
    move_to(robot, pick)
    robot.set_EOAT_action("gripper", "close")
    # Up, across and down in one path; the corner at the second point is rounded by 3 cm.
    path = [above, shifted(place, dz=0.10), place]
    robot.moveL(path, [0.0, 0.03, 0.0], 0.2, 0.5, 0.0, tavclient.Traj_Close_Mode.Open)
    robot.wait_for_motors()
    robot.set_EOAT_action("gripper", "open")
    move_to(robot, above)


def main(argv):
    with contextlib.ExitStack() as stack:
        try:
            robot = connected_robot(stack, argv)  # leaving the block logs out
            pick_and_place(robot)
        except tavclient.RobotError as error:
            print(f"failed with code {error.code}: {error.text}")
            return 1
        print("part placed")
        return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
