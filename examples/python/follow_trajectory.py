"""Follow a smooth 6-joint trajectory in time and report how closely the arm kept to it.

    follow_trajectory.py               against a simulator started in this process
    follow_trajectory.py HOST PORT     against the controller at HOST:PORT

Exits with 1 when the largest tracking error exceeds 0.5 deg or the duration is off the plan
by more than 2 % + 50 ms.
"""
import contextlib
import math
import sys

import tavclient
from example_target import connected_robot

SECONDS = 4.0  # the trajectory's length
POINTS = 40
TOLERANCE = 0.5  # degrees of tracking error this example accepts


def smooth_trajectory(start):
    """From where the joints stand, each turns by its own amount and back part of the way, at
    rest at both ends; velocities are left to the library."""
    turn = [50.0, 15.0, -30.0, 40.0, 30.0, 80.0]  # degrees
    points = []
    for k in range(1, POINTS + 1):
        u = k / POINTS
        shape = math.sin(math.pi * u / 2) ** 2 * (1 - 0.5 * math.sin(math.pi * u))
        points.append(tavclient.TrajectoryPoint(u * SECONDS, [s + t * shape for s, t in zip(start, turn)]))
    return tavclient.JointTrajectory([1, 2, 3, 4, 5, 6], points)


def main(argv):
    with contextlib.ExitStack() as stack:
        try:
            robot = connected_robot(stack, argv)  # leaving the block logs out
            start = robot.get_angles()[:6]
        except tavclient.RobotError as error:
            print(f"failed with code {error.code}: {error.text}")
            return 1
        # The follower measures the tracking with a monitor of angles and velocities (100 Hz).
        monitor = stack.enter_context(tavclient.StateMonitor(robot))
        monitor.wait_next()
        follower = tavclient.TrajectoryFollower(robot, monitor)
        result = follower.follow(smooth_trajectory(start))
        if result.outcome != tavclient.FollowOutcome.Succeeded:
            print(f"following failed: {result.message}")
            return 1
        print(f"max tracking error {result.max_error:.3f} deg, duration {result.duration:.3f} s "
              f"(planned {result.planned_duration:.3f} s)")
        on_time = abs(result.duration - result.planned_duration) <= 0.02 * result.planned_duration + 0.05
        return 0 if result.max_error <= TOLERANCE and on_time else 1


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
