import pytest
import tavclient

# Replies come within milliseconds and the moves a test waits for end within seconds, so a fault
# that loses every reply fails each test in seconds instead of after the library's default hour.
REPLY_TIMEOUT_SECONDS = 3.0
CHANNEL = ("can0", "can", "canopen", 1, 500000)


@pytest.fixture
def new_robot():
    """Makes Robots with the tests' reply time-out."""

    def make():
        robot = tavclient.Robot()
        robot.SetReplyTimeout(REPLY_TIMEOUT_SECONDS)
        return robot

    return make


@pytest.fixture
def simulator():
    with tavclient.Simulator() as simulator:
        yield simulator


@pytest.fixture
def robot(simulator, new_robot):
    """A Robot logged in to a fresh simulator and set up."""
    with new_robot() as robot:
        robot.RobotLogin("127.0.0.1", simulator.port)
        robot.Setup("arm", CHANNEL, tavclient.Setup_Mode.Virtual)
        yield robot
