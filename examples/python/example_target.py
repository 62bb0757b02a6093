"""Where a Python example connects, as ExampleTarget.h does for the C++ ones.

The controller named on the command line (HOST PORT), or, with no arguments, a simulator started
in the example's own process. Copying an example into an application, replace this with your
controller's address.
"""

import tavclient

CHANNEL = ("can0", "can", "canopen", 1, 500000)


def connected_robot(stack, argv):
    """A Robot logged in and set up, closed (and so logged out) when `stack` closes.

    Raises tavclient.RobotError when the controller refuses.
    """
    if len(argv) == 2:
        host, port, mode = argv[0], int(argv[1]), tavclient.Setup_Mode.Real
    else:
        simulator = stack.enter_context(tavclient.Simulator())
        host, port, mode = "127.0.0.1", simulator.port, tavclient.Setup_Mode.Virtual
    robot = stack.enter_context(tavclient.Robot())
    robot.RobotLogin(host, port)
    robot.Setup("arm", CHANNEL, mode)
    return robot
