import gc
import os
import signal
import threading
import time

import pytest
import tavclient
from tavclient import Relative_Mode, RobotError, Setup_Mode, Traj_Close_Mode

CHANNEL = ("can0", "can", "canopen", 1, 500000)


@pytest.fixture
def simulator():
    with tavclient.Simulator() as simulator:
        yield simulator


@pytest.fixture
def robot(simulator):
    with tavclient.Robot() as robot:
        robot.RobotLogin("127.0.0.1", simulator.port)
        robot.Setup("arm", CHANNEL, Setup_Mode.Virtual)
        yield robot


def fields(pose):
    return [pose.x, pose.y, pose.z, pose.roll, pose.pitch, pose.yaw]


def test_values_come_back_as_python_numbers_lists_and_poses(robot):
    assert robot.get_motor_ids() == [1, 2, 3, 4, 5, 6]
    robot.move_to_angles([1, 2], [20.0, -70.0], 30.0, 60.0, Relative_Mode.Absolute)
    robot.wait_for_motors([1, 2])
    assert robot.get_angles(1) == pytest.approx(20.0)
    assert robot.get_angles([1, 2]) == pytest.approx([20.0, -70.0])
    assert len(robot.get_angles()) == 6 and type(robot.get_angles(2)) is float
    robot.set_output(3, 1)
    assert robot.get_input(3) == 1 and robot.get_input([3, 4]) == [1, 0]
    assert type(robot.get_input(3)) is int
    pose = robot.get_pose()
    assert isinstance(pose, tavclient.Pose)
    assert fields(robot.forward(robot.get_angles())) == pytest.approx(fields(pose), abs=1e-5)
    assert robot.inverse(pose) == pytest.approx(robot.get_angles(), abs=1e-3)
    lower = tavclient.Pose(pose.x, pose.y, pose.z - 0.05, pose.roll, pose.pitch, pose.yaw)
    robot.moveL([lower, pose], [0.0, 0.0], 0.2, 0.5, 0.0, Traj_Close_Mode.Open)
    robot.wait_for_motors()
    assert robot.get_pose().z == pytest.approx(pose.z, abs=1e-4)


BAD_CALLS = [
    (TypeError, lambda r: r.get_angles("1")),
    (TypeError, lambda r: r.Setup("arm", ["can0", "can", "canopen", 1, 500000], Setup_Mode.Virtual)),
    (TypeError, lambda r: r.Setup("arm", ("can0", "can", "canopen", "1", 500000), Setup_Mode.Virtual)),
    (ValueError, lambda r: r.Setup("arm", CHANNEL[:4], Setup_Mode.Virtual)),
    (ValueError, lambda r: r.Setup("arm", CHANNEL[:4] + (2**40,), Setup_Mode.Virtual)),
    (ValueError, lambda r: r.move_to_angles([1, 2], [10.0], 30.0, 60.0, Relative_Mode.Absolute)),
    (ValueError, lambda r: r.set_output([1, 2], [1])),
    (ValueError, lambda r: r.moveL([tavclient.Pose()] * 3, [0.0], 0.1, 0.1, 0.0, Traj_Close_Mode.Open)),
    (ValueError, lambda r: r.moveL([tavclient.Pose()], [], 0.1, 0.1, 0.0, Traj_Close_Mode.Closed)),
    (ValueError, lambda r: r.forward([0.0] * 5)),
    (ValueError, lambda r: r.RobotLogin("127.0.0.1", 70000)),
    (TypeError, lambda r: r.SetEventCallback(42)),
    (ValueError, lambda r: tavclient.Simulator(faults=["melt,on=heart"])),
    (ValueError, lambda r: tavclient.Simulator(motors=11)),
    (2001031, lambda r: r.get_angles(42)),
    (1006011, lambda r: r.SetHeartbeat(5.0, 1.0)),
    (1006011, lambda r: tavclient.Robot.SetLogLevel(7)),
]


# What Python cannot pass raises TypeError or ValueError; what the library refuses raises
# RobotError with its code and text. Either way the session goes on.
@pytest.mark.parametrize("error, call", BAD_CALLS)
def test_bad_calls_raise_and_leave_the_session_working(robot, error, call):
    code = error if isinstance(error, int) else None
    with pytest.raises(RobotError if code else error) as raised:
        call(robot)
    if code:
        assert raised.value.code == code
        assert raised.value.text == tavclient.event_text(code) == tavclient.Robot.EventText(code)
    assert robot.get_motor_ids() == [1, 2, 3, 4, 5, 6]


def test_logout_from_another_thread_releases_a_waiting_call(robot, simulator):
    simulator.add_fault("drop,on=get_angles")
    outcome = []

    def query():
        try:
            robot.get_angles(1)
        except RobotError as error:
            outcome.append(error.code)

    waiting = threading.Thread(target=query)
    waiting.start()
    # The fault line means the request reached the simulator; this thread runs meanwhile, so
    # the waiting call does not hold the GIL.
    assert simulator.wait_for_activity("fault: drop on get_angles")
    assert waiting.is_alive()
    robot.RobotLogout()
    waiting.join(10)
    assert outcome == [1002011]


def test_ctrl_c_ends_a_waiting_call_and_the_session_goes_on(robot):
    # A move of about 34 s: the wait for it is still under way when SIGINT comes.
    robot.move_to_angles(1, 170.0, 5.0, 60.0, Relative_Mode.Absolute)
    sent = []

    def interrupt():
        sent.append(time.monotonic())
        os.kill(os.getpid(), signal.SIGINT)

    timer = threading.Timer(0.3, interrupt)
    timer.start()
    try:
        with pytest.raises(KeyboardInterrupt):
            robot.wait_for_motors(1)
        raised = time.monotonic()
    finally:
        timer.cancel()
        robot.stop()
    # A hang guard only: the wait looks at signals every 50 ms.
    assert raised - sent[0] < 2.0, f"KeyboardInterrupt {raised - sent[0]:.3f} s after SIGINT"
    # The late reply of the interrupted wait is dropped; every later call gets its own.
    robot.wait_for_motors(1)
    assert robot.get_angles(1) < 170.0
    assert robot.get_motor_ids() == [1, 2, 3, 4, 5, 6]


def test_the_event_callback_gets_the_code_that_fails_the_session(robot, simulator):
    codes = []
    called = threading.Event()
    robot.SetEventCallback(lambda code: (codes.append(code), called.set()))
    simulator.add_fault("close,on=get_angles")
    with pytest.raises(RobotError) as failure:
        robot.get_angles(1)
    assert called.wait(10)
    assert codes == [failure.value.code] == [1002011]


def test_a_robot_whose_callback_refers_to_it_is_collected_and_logs_out(simulator):
    def session():
        robot = tavclient.Robot()
        robot.SetEventCallback(lambda code: print(code, robot))
        robot.RobotLogin("127.0.0.1", simulator.port)

    session()
    gc.collect()
    assert simulator.wait_for_activity("closed by the client")


def test_leaving_the_blocks_logs_out_and_stops_the_simulator():
    with tavclient.Simulator(motors=7) as simulator:
        with tavclient.Robot() as robot:
            robot.RobotLogin("127.0.0.1", simulator.port)
            robot.Setup("arm", tavclient.Setup_Param(*CHANNEL), Setup_Mode.Virtual)
            assert robot.get_motor_ids() == list(range(1, 8))
        with pytest.raises(RobotError) as logged_out:
            robot.get_angles(1)
        assert logged_out.value.code == 1001011
    with pytest.raises(RobotError) as refused:
        tavclient.Robot().RobotLogin("127.0.0.1", simulator.port)
    assert refused.value.code == 1004021
