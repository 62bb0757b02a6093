import pytest
import tavclient

CHANNEL = ("can0", "can", "canopen", 1, 500000)


@pytest.fixture
def simulator():
    with tavclient.Simulator() as simulator:
        yield simulator


@pytest.fixture
def robot(simulator):
    with tavclient.Robot() as robot:
        robot.RobotLogin("127.0.0.1", simulator.port)
        robot.Setup("arm", CHANNEL, tavclient.Setup_Mode.Virtual)
        yield robot
