import gc
import os
import re
import signal
import socket
import threading
import time

import pytest
import tavclient
from conftest import CHANNEL
from tavclient import Relative_Mode, RobotError, Setup_Mode, Traj_Close_Mode

CHANNEL_7 = ("can0", "can", "canopen", 7, 250000)


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
    (1006011, lambda r: r.moveL([tavclient.Pose()], [], 0.1, 0.1, 0.0, Traj_Close_Mode.Closed)),
    (1006011, lambda r: r.moveL([], [0.0], 0.1, 0.1, 0.0, Traj_Close_Mode.Closed)),
    (ValueError, lambda r: r.forward([0.0] * 5)),
    (ValueError, lambda r: r.RobotLogin("127.0.0.1", 70000)),
    (TypeError, lambda r: r.SetEventCallback(42)),
    (ValueError, lambda r: tavclient.Simulator(faults=["melt,on=heart"])),
    (ValueError, lambda r: tavclient.Simulator(motors=11)),
    (2001031, lambda r: r.get_angles(42)),
    (1006011, lambda r: r.SetHeartbeat(5.0, 1.0)),
    (1006011, lambda r: tavclient.Robot.SetLogLevel(7)),
]


def commands_seen(simulator):
    return [line for line in simulator.activity if " #" in line]


# What Python cannot pass raises TypeError or ValueError; what the library refuses raises
# RobotError with its code and text, and neither sends anything; the controller's refusals
# (codes from 2000000) come back from one request. Either way the session goes on.
@pytest.mark.parametrize("error, call", BAD_CALLS)
def test_bad_calls_raise_and_leave_the_session_working(robot, simulator, error, call):
    code = error if isinstance(error, int) else None
    before = len(commands_seen(simulator))
    with pytest.raises(RobotError if code else error) as raised:
        call(robot)
    if code:
        assert raised.value.code == code
        assert raised.value.text == tavclient.event_text(code) == tavclient.Robot.EventText(code)
    robot.get_angles(1)  # answered in order, so whatever the call sent is logged by now
    sent = commands_seen(simulator)[before:-1]
    assert len(sent) == (1 if code and code >= 2000000 else 0), sent
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


def test_a_command_on_another_thread_waits_for_setup_to_learn_the_motors(simulator, new_robot):
    simulator.add_fault("delay,on=get_motor_ids,ms=300")
    with new_robot() as robot:
        robot.RobotLogin("127.0.0.1", simulator.port)
        setting_up = threading.Thread(target=robot.Setup, args=("arm", CHANNEL, Setup_Mode.Virtual))
        setting_up.start()
        assert simulator.wait_for_activity("fault: delay 300 ms on get_motor_ids")
        # Setup is still learning the motor ids: a query of every motor waits for them.
        assert len(robot.get_angles()) == 6
        setting_up.join(10)


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


def test_leaving_the_robots_block_logs_out(new_robot):
    with tavclient.Simulator(motors=7) as simulator:
        with new_robot() as robot:
            robot.RobotLogin("127.0.0.1", simulator.port)
            robot.Setup("arm", tavclient.Setup_Param(*CHANNEL), Setup_Mode.Virtual)
            assert robot.get_motor_ids() == list(range(1, 8))
        with pytest.raises(RobotError) as logged_out:
            robot.get_angles(1)
        assert logged_out.value.code == 1001011


def test_leaving_the_simulators_block_stops_it():
    with tavclient.Simulator() as simulator:
        pass
    with pytest.raises(RobotError) as refused:
        tavclient.Robot().RobotLogin("127.0.0.1", simulator.port)
    assert refused.value.code == 1004021


class Recorder:
    """A pass-through to the simulator that keeps every byte its client sends."""

    def __init__(self, target_port):
        self.listener = socket.create_server(("127.0.0.1", 0))
        self.port = self.listener.getsockname()[1]
        self.target_port = target_port
        self.sent = bytearray()
        threading.Thread(target=self._serve, daemon=True).start()

    def _serve(self):
        with self.listener, self.listener.accept()[0] as client, socket.create_connection(
            ("127.0.0.1", self.target_port)
        ) as server:
            back = threading.Thread(target=self._pump, args=(server, client, None))
            back.start()
            self._pump(client, server, self.sent)
            back.join()

    @staticmethod
    def _pump(source, sink, record):
        try:
            while data := source.recv(65536):
                if record is not None:
                    record += data
                sink.sendall(data)
            sink.shutdown(socket.SHUT_WR)
        except OSError:
            pass


# The channel goes out as the controller reads it, host id before baud rate, in either form
# Python takes it; the simulator checks the checksum.
@pytest.mark.parametrize("channel", [CHANNEL_7, tavclient.Setup_Param(*CHANNEL_7)], ids=["tuple", "Setup_Param"])
def test_setup_sends_the_channel_byte_for_byte(simulator, new_robot, channel):
    recorder = Recorder(simulator.port)
    with new_robot() as robot:
        robot.RobotLogin("127.0.0.1", recorder.port)
        robot.Setup("arm", channel, Setup_Mode.Virtual)
    setup = re.search(rb"<function>.*?</function>", bytes(recorder.sent))
    assert setup and setup.group(0) == (
        b'<function><parameter><name>arm</name><parameters>{"channel_name": "can0","channel_type": "can",'
        b'"protocol": "canopen","host_id": 7,"baud_rate": 250000}</parameters><virtual>1</virtual>'
        b"</parameter><name>Robot</name></function>"
    )
