"""Move two joints together, wait until they arrive and read where they are.

    joint_move.py               against a simulator started in this process
    joint_move.py HOST PORT     against the controller at HOST:PORT
"""
import contextlib
import sys

import tavclient
from example_target import connected_robot


def main(argv):
    with contextlib.ExitStack() as stack:
        try:
            robot = connected_robot(stack, argv)  # leaving the block logs out
            # 30 deg/s, 60 deg/s^2; returns as soon as the controller has accepted the move.
            robot.move_to_angles([1, 2], [20.0, -70.0], 30.0, 60.0, tavclient.Relative_Mode.Absolute)
            robot.wait_for_motors([1, 2])
            first, second = robot.get_angles([1, 2])
        except tavclient.RobotError as error:
            print(f"failed with code {error.code}: {error.text}")
            return 1
        print(f"joint 1 at {first:.2f} deg, joint 2 at {second:.2f} deg")
        return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
