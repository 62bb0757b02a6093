"""Move two joints together, wait until they arrive and read where they are.

    joint_move.py               against a simulator started in this process
    joint_move.py HOST PORT     against the controller at HOST:PORT
"""
import contextlib
import sys

import tavclient


def main(argv):
    with contextlib.ExitStack() as stack:
        if len(argv) == 2:
            host, port, mode = argv[0], int(argv[1]), tavclient.Setup_Mode.Real
        else:
            simulator = stack.enter_context(tavclient.Simulator())
            host, port, mode = "127.0.0.1", simulator.port, tavclient.Setup_Mode.Virtual
        robot = stack.enter_context(tavclient.Robot())  # leaving the block logs out
        try:
            robot.RobotLogin(host, port)
            robot.Setup("arm", ("can0", "can", "canopen", 1, 500000), mode)
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
