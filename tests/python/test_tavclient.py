import gc
import threading

import pytest
import tavclient
from tavclient import Relative_Mode, RobotError, Setup_Mode, Traj_Close_Mode

from conftest import CHANNEL


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


def test_cartesian_moves_take_lists_of_poses(robot):
    start = robot.get_pose()
    lower = tavclient.Pose(start.x, start.y, start.z - 0.05, start.roll, start.pitch, start.yaw)
    robot.moveL([lower, start], [0.0, 0.0], 0.2, 0.5, 0.0, Traj_Close_Mode.Open)
    robot.wait_for_motors()
    assert robot.get_pose().z == pytest.approx(start.z, abs=1e-4)


def test_a_failing_command_raises_robot_error_with_code_and_text(robot):
    with pytest.raises(RobotError) as failure:
        robot.get_angles(42)
    assert failure.value.code == 2001031
    assert failure.value.text == tavclient.event_text(2001031) == tavclient.Robot.EventText(2001031)
    assert isinstance(failure.value, Exception)
    robot.SetHeartbeat(1.0, 5.0)
    tavclient.Robot.SetLogLevel(1)
    for refused_setting in (lambda: robot.SetHeartbeat(5.0, 1.0), lambda: robot.SetReplyTimeout(0),
                            lambda: tavclient.Robot.SetLogLevel(7)):
        with pytest.raises(RobotError) as refused:
            refused_setting()
        assert refused.value.code == 1006011
    tavclient.Robot.SetLogLevel(0)
    robot.RobotLogout()
    with pytest.raises(RobotError) as refused:
        robot.recover()
    assert refused.value.code == 1001011


def test_setup_param_object_and_tuple_give_the_same_text():
    param = tavclient.Setup_Param(*CHANNEL)
    assert param.baud_rate == 500000
    robot = tavclient.Robot()
    assert robot.to_SetupParamString(param) == robot.to_SetupParamString(CHANNEL)


BAD_CALLS = [
    (TypeError, lambda r: r.get_angles("1")),
    (TypeError, lambda r: r.get_angles(1.5)),
    (TypeError, lambda r: r.move_to_angles(1, 10.0, 30.0, 60.0, 0)),
    (TypeError, lambda r: r.move_to_pose((0, 0, 0), 0.1, 0.1, Relative_Mode.Absolute)),
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
    (TypeError, lambda r: tavclient.Simulator(faults="drop")),
]


@pytest.mark.parametrize("error, call", BAD_CALLS)
def test_bad_arguments_raise_type_or_value_error(robot, error, call):
    with pytest.raises(error):
        call(robot)
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


def test_threads_share_one_robot(robot):
    results = [None] * 4

    def read(index):
        results[index] = [robot.get_angles(1) for _ in range(50)]

    threads = [threading.Thread(target=read, args=(i,)) for i in range(4)]
    for thread in threads:
        thread.start()
    for thread in threads:
        thread.join()
    assert all(values == [0.0] * 50 for values in results)


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
