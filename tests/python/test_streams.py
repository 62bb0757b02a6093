import csv
import gc
import math
import threading
import time

import pytest
import tavclient
from tavclient import FollowOutcome, RobotError, Setup_Mode, StateField
from conftest import CHANNEL

START = [0.0, -90.0, 90.0, -90.0, -90.0, 0.0]


def wait_for(monitor, condition, timeout=5.0):
    """The first sample from now on that satisfies condition."""
    deadline = time.monotonic() + timeout
    while time.monotonic() < deadline:
        sample = monitor.wait_next(timeout)
        if sample is not None and condition(sample):
            return sample
    raise AssertionError("no such sample")


def smooth_path(seconds, count, reach=(20.0, 10.0, -15.0, 15.0, 10.0, 30.0)):
    points = []
    for k in range(1, count + 1):
        u = k / count
        ramp = u - math.sin(2 * math.pi * u) / (2 * math.pi)
        points.append(tavclient.TrajectoryPoint(u * seconds, [s + r * ramp for s, r in zip(START, reach)]))
    return tavclient.JointTrajectory([1, 2, 3, 4, 5, 6], points)


def test_samples_reach_latest_subscribers_and_a_recording(robot, tmp_path):
    monitor = tavclient.StateMonitor(robot, rate_hz=100, fields=[StateField.Angles, StateField.Currents])
    assert monitor.latest() is None and not monitor.running
    path = tmp_path / "state.csv"
    monitor.start_recording(str(path))
    with monitor:
        sample = wait_for(monitor, lambda s: s.sequence >= 10)
        assert sample.has(StateField.Angles) and not sample.has(StateField.Velocities)
        assert sample.code == 0 and sample.motor_ids == [1, 2, 3, 4, 5, 6]
        assert sample.angles == pytest.approx(START) and sample.velocities == []
        assert len(sample.currents) == 6
        assert monitor.latest().sequence >= 10
    monitor.stop_recording()
    with open(path) as file:
        rows = list(csv.reader(file))
    assert rows[0][:5] == ["time_s", "wall_time_s", "sequence", "code", "angle_1_deg"]
    assert rows[0][-1] == "current_6_A" and len(rows) - 1 == monitor.stats().recorded_rows
    assert float(rows[1][5]) == -90.0
    with pytest.raises(RobotError) as error:
        tavclient.StateMonitor(robot, rate_hz=1000).start()
    assert error.value.code == 1006011
    with pytest.raises(RobotError) as error:
        monitor.start_recording(str(tmp_path / "missing" / "state.csv"))
    assert error.value.code == 1005011


def test_samples_carry_the_failure_until_the_robot_logs_in_again(robot, simulator):
    with tavclient.StateMonitor(robot, rate_hz=100) as monitor:
        wait_for(monitor, lambda s: s.has(StateField.Angles))
        robot.RobotLogout()
        away = wait_for(monitor, lambda s: s.code == 1001011)
        assert away.angles == [] and not away.has(StateField.Angles)
        robot.RobotLogin("127.0.0.1", simulator.port)
        robot.Setup("arm", CHANNEL, Setup_Mode.Virtual)
        wait_for(monitor, lambda s: s.code == 0 and s.has(StateField.Velocities))


def test_follows_a_trajectory_and_refuses_a_bad_one(robot):
    with tavclient.StateMonitor(robot, rate_hz=200) as monitor:
        wait_for(monitor, lambda s: s.has(StateField.Angles))
        follower = tavclient.TrajectoryFollower(robot, monitor)
        bad = smooth_path(1.0, 10)
        bad.points[3].positions = [0.0]
        assert follower.check(bad) == "point 3: 1 positions for 6 motors"
        refused = follower.follow(bad)
        assert refused.outcome == FollowOutcome.Invalid and refused.code == 1006011
        errors = []
        result = follower.follow(smooth_path(1.0, 10), progress=lambda p: errors.append(max(map(abs, p.error))))
        assert result.outcome == FollowOutcome.Succeeded, result
        assert result.max_error < 0.5 and result.planned_duration == 1.0
        assert max(map(abs, result.final_error)) < 0.05
        assert len(errors) > 50 and max(errors) == pytest.approx(result.max_error, abs=1e-9)
        assert tavclient.TrajectoryFollower.RATE_HZ == 125.0


def test_python_callbacks_run_while_other_threads_wait_in_calls(robot):
    """Subscriber and progress callbacks take the GIL while other Python threads wait in the
    library with it released: nothing deadlocks, and cancel ends the follow at once."""
    with tavclient.StateMonitor(robot, rate_hz=200) as monitor:
        wait_for(monitor, lambda s: s.has(StateField.Angles))
        follower = tavclient.TrajectoryFollower(robot, monitor)
        calls = []
        handle = monitor.subscribe(lambda s: calls.append(monitor.latest().sequence))
        started = threading.Event()
        results = []

        def progress(p):
            if p.time > 0.3:
                started.set()

        worker = threading.Thread(target=lambda: results.append(follower.follow(smooth_path(3.0, 30), progress=progress)))
        worker.start()
        assert started.wait(5.0)
        # This thread waits in calls too, while both callbacks keep running.
        for _ in range(20):
            robot.get_angles()
        follower.cancel()
        worker.join(2.0)
        assert not worker.is_alive()
        assert results[0].outcome == FollowOutcome.Cancelled
        monitor.unsubscribe(handle)
        assert len(calls) > 20


def test_a_failing_or_busy_callback_stalls_nothing(robot, monkeypatch):
    raised = []
    monkeypatch.setattr("sys.unraisablehook", lambda report: raised.append(report.exc_value))

    def failing(sample):
        raise ValueError(f"sample {sample.sequence}")

    with tavclient.StateMonitor(robot, rate_hz=200) as monitor:
        monitor.subscribe(failing)
        wait_for(monitor, lambda s: s.sequence >= 10)
    assert len(raised) >= 3 and isinstance(raised[0], ValueError)
    # A monitor let go while its subscriber is busy in Python waits for it without the GIL.
    busy = threading.Event()
    monitor = tavclient.StateMonitor(robot, rate_hz=200)
    monitor.subscribe(lambda s: (busy.set(), threading.Event().wait(0.05)))
    monitor.start()
    assert busy.wait(5.0)
    del monitor
    gc.collect()
