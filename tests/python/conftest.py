import pytest
import tavclient

# Replies come within milliseconds and the moves a test waits for end within seconds, so a fault
# that loses every reply fails each test in seconds instead of after the library's default hour.
REPLY_TIMEOUT_SECONDS = 3.0


@pytest.fixture
def new_robot():
    """Makes Robots with the tests' reply time-out."""

    def make():
        robot = tavclient.Robot()
        robot.SetReplyTimeout(REPLY_TIMEOUT_SECONDS)
        return robot

    return make
