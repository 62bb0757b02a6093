"""Client of the robot-arm controller.

Units: joint positions in degrees, joint speeds in deg/s (accelerations in deg/s^2), tool
positions in metres, orientations in radians, tool speeds in m/s (accelerations in m/s^2),
currents in amperes, pauses in seconds. A command returns None or raises RobotError; every
call releases the GIL while it waits.
"""

import enum
from types import TracebackType
from typing import Callable, Optional, Sequence, Tuple, Type, Union, overload

class RobotError(Exception):
    """A command returned a non-zero event code."""

    code: int
    """The event code, e.g. 2001031."""
    text: str
    """What the code means (event_text(code))."""
    def __init__(self, code: int, text: str) -> None: ...

def event_text(code: int) -> str:
    """What an event code means; "unknown event N" for codes nobody defined."""

class Pose:
    """A tool pose: the tool centre in metres, then roll, pitch, yaw in radians about the
    fixed base axes x, y, z."""

    x: float
    """metres"""
    y: float
    """metres"""
    z: float
    """metres"""
    roll: float
    """radians"""
    pitch: float
    """radians"""
    yaw: float
    """radians"""
    def __init__(
        self,
        x: float = 0.0,
        y: float = 0.0,
        z: float = 0.0,
        roll: float = 0.0,
        pitch: float = 0.0,
        yaw: float = 0.0,
    ) -> None: ...

class Setup_Param:
    """The controller's channel towards the motors, e.g.
    Setup_Param("can0", "can", "canopen", 1, 500000)."""

    channel_name: str
    channel_type: str
    protocol: str
    host_id: int
    baud_rate: int
    """bits per second"""
    def __init__(
        self, channel_name: str, channel_type: str, protocol: str, host_id: int, baud_rate: int
    ) -> None: ...

SetupParamLike = Union[Setup_Param, Tuple[str, str, str, int, int]]

class Setup_Mode(enum.Enum):
    """Real motors, or the controller's own simulation of them."""

    Real = 0
    Virtual = 1

class Relative_Mode(enum.Enum):
    """Absolute targets, or offsets from where the motors or the tool are now."""

    Absolute = 0
    Relative = 1

class Traj_Close_Mode(enum.Enum):
    """An open path ends at its last point; a closed one returns to its first."""

    Open = 0
    Closed = 1

class Robot:
    """One session with one controller, for one arm: RobotLogin, Setup, commands,
    RobotLogout. As a context manager, leaving the block logs out."""

    def __init__(self) -> None:
        """Starts the session's threads; connects to nothing yet."""
    def __enter__(self) -> "Robot": ...
    def __exit__(
        self,
        kind: Optional[Type[BaseException]],
        value: Optional[BaseException],
        traceback: Optional[TracebackType],
    ) -> None:
        """Logs out."""
    @staticmethod
    def EventText(code: int) -> str:
        """What an event code means."""

    # Session.
    def RobotLogin(self, ip: str, port: int) -> None:
        """Connects to the controller at ip (dotted IPv4) and TCP port and waits for its
        verdict. RobotError 1004011 (not an IPv4 address), 1004021 (nobody accepts)."""
    def RobotLogout(self) -> None:
        """Closes the connection; calls waiting on other threads raise RobotError 1002011."""
    def Setup(self, name: str, param: SetupParamLike, mode: Setup_Mode) -> None:
        """Configures the channel towards the motors, powers and holds every motor and caches
        the motor ids. param: a Setup_Param or (channel_name, channel_type, protocol,
        host_id, baud_rate)."""
    def _getMotorIds(self) -> None:
        """Asks the controller for its motor ids and caches them."""
    def get_motor_ids(self) -> list[int]:
        """The cached motor ids; empty before Setup."""
    def SetReplyTimeout(self, seconds: float) -> None:
        """Bounds every later wait for a reply, in seconds (> 0; 3600 by default). A wait that
        runs out raises RobotError 1003031."""
    def SetHeartbeat(self, period_seconds: float, silence_limit_seconds: float) -> None:
        """A heartbeat every period_seconds (9 by default); once nothing has come from the
        controller for silence_limit_seconds (20 by default, above the period) the session
        fails with 1003041 and waiting calls are released. RobotError 1006011 for bad values."""
    @staticmethod
    def SetLogLevel(level: int) -> None:
        """The least level of record the library logs, for every Robot of the process: 0 DEBUG
        (the default), 1 INFO, 2 WARNING, 3 ERROR, 4 FATAL. RobotError 1006011 otherwise."""
    def SetEventCallback(self, callback: Optional[Callable[[int], object]]) -> None:
        """callback(code) is called with the code that fails the session (e.g. 1002011, the
        connection closed), on a thread of its own. None removes it."""

    # Controller state.
    def recover(self) -> None:
        """Leaves the stopped state: moves are accepted again."""
    def stop(self) -> None:
        """Halts every motion and enters the stopped state."""
    def calibrate(self) -> None:
        """Holds every motor and makes the controller ready; only with the arm at rest."""
    def reset(self) -> None:
        """Halts every motion, clears the outputs, frees the tools, holds every motor."""
    def Shutdown(self) -> None:
        """Halts and releases every motor; the controller needs a new Setup."""

    # Joint-space motion.
    @overload
    def move_to_angles(
        self,
        motor_id: int,
        position: float,
        velocity: float,
        acceleration: float,
        mode: Relative_Mode,
    ) -> None:
        """Moves joints to position in degrees (offsets when Relative) with the longest way at
        velocity deg/s and acceleration deg/s^2. Returns once the controller accepted it."""
    @overload
    def move_to_angles(
        self,
        motor_ids: Sequence[int],
        positions: Sequence[float],
        velocity: float,
        acceleration: float,
        mode: Relative_Mode,
    ) -> None:
        """Moves joints together to positions in degrees; velocity deg/s, acceleration
        deg/s^2. Returns once the controller accepted it."""

    # Cartesian motion.
    def moveJ(
        self,
        points: Sequence[Pose],
        velocity: float,
        acceleration: float,
        interval: float,
        closed: Traj_Close_Mode,
    ) -> None:
        """Joint moves through the poses; velocity deg/s, acceleration deg/s^2, interval
        seconds of rest at each point."""
    def moveL(
        self,
        points: Sequence[Pose],
        radius: Sequence[float],
        velocity: float,
        acceleration: float,
        interval: float,
        closed: Traj_Close_Mode,
    ) -> None:
        """Straight tool lines through the poses at velocity m/s, acceleration m/s^2; radius
        in metres rounds each corner (one per point, n - 2 when closed); interval seconds."""
    def moveP(
        self,
        points: Sequence[Pose],
        velocity: float,
        acceleration: float,
        interval: float,
        closed: Traj_Close_Mode,
    ) -> None:
        """As moveL, with every corner rounded by a fifth of its shorter leg."""
    def move_to_pose(
        self, pose: Pose, velocity: float, acceleration: float, mode: Relative_Mode
    ) -> None:
        """One straight tool line to pose; velocity m/s, acceleration m/s^2."""

    # Motors, outputs and tool; without ids, the cached motor ids.
    @overload
    def hold(self, motor_id: int) -> None:
        """Powers motors: they become stiff where they stand."""
    @overload
    def hold(self, motor_ids: Sequence[int]) -> None: ...
    @overload
    def hold(self) -> None: ...
    @overload
    def release(self, motor_id: int) -> None:
        """Releases motors: drive off, no current, no targets."""
    @overload
    def release(self, motor_ids: Sequence[int]) -> None: ...
    @overload
    def release(self) -> None: ...
    @overload
    def wait_for_motors(self, motor_id: int) -> None:
        """Blocks until none of the motors moves; RobotError 2001081 when a motion was halted."""
    @overload
    def wait_for_motors(self, motor_ids: Sequence[int]) -> None: ...
    @overload
    def wait_for_motors(self) -> None: ...
    @overload
    def set_output(self, id: int, signal: int) -> None:
        """Sets digital output id to 0 or 1."""
    @overload
    def set_output(self, ids: Sequence[int], signals: Sequence[int]) -> None: ...
    def set_EOAT_action(self, name: str, action: str) -> None:
        """Starts a tool action without waiting for it: ("gripper", "close"/"open"),
        ("vacuum", "on"/"off") on the simulator."""

    # State queries: one id gives one value; a list of ids, or none (the cached motor ids),
    # gives a list.
    @overload
    def get_current(self, motor_id: int) -> float:
        """Motor currents in amperes."""
    @overload
    def get_current(self, motor_ids: Sequence[int]) -> list[float]: ...
    @overload
    def get_current(self) -> list[float]: ...
    @overload
    def get_velocity(self, motor_id: int) -> float:
        """Joint speeds in degrees per second."""
    @overload
    def get_velocity(self, motor_ids: Sequence[int]) -> list[float]: ...
    @overload
    def get_velocity(self) -> list[float]: ...
    @overload
    def get_angles(self, motor_id: int) -> float:
        """Joint positions in degrees, also while moving."""
    @overload
    def get_angles(self, motor_ids: Sequence[int]) -> list[float]: ...
    @overload
    def get_angles(self) -> list[float]: ...
    @overload
    def get_input(self, motor_id: int) -> int:
        """Digital inputs, 0 or 1, by input id."""
    @overload
    def get_input(self, motor_ids: Sequence[int]) -> list[int]: ...
    @overload
    def get_input(self) -> list[int]: ...
    def get_pose(self) -> Pose:
        """The tool pose now (metres, radians)."""

    # Kinematics, computed by the controller; nothing moves.
    def forward(self, angles: Sequence[float]) -> Pose:
        """The tool pose for joint angles in degrees, one per cached motor id."""
    def inverse(self, pose: Pose) -> list[float]:
        """Joint angles in degrees that reach pose, nearest to where the joints are now."""

    # The controller's text forms of the parameters.
    def to_SetupParamString(self, param: SetupParamLike) -> str: ...
    @overload
    def to_IdString(self, id: int) -> str: ...
    @overload
    def to_IdString(self, ids: Sequence[int]) -> str: ...
    @overload
    def to_IntString(self, v: int) -> str: ...
    @overload
    def to_IntString(self, v: Sequence[int]) -> str: ...
    @overload
    def to_SignalString(self, id: int, value: int) -> str: ...
    @overload
    def to_SignalString(self, ids: Sequence[int], values: Sequence[int]) -> str: ...
    @overload
    def to_DoubleString(self, v: float) -> str: ...
    @overload
    def to_DoubleString(self, v: Sequence[float]) -> str: ...
    def to_PoseString(self, pose: Pose) -> str: ...
    def to_PointString(self, poses: Sequence[Pose]) -> str: ...
    def SplitString(self, s: str, sep: str) -> list[str]:
        """The pieces of s between occurrences of sep."""

class Simulator:
    """A simulated controller (six-axis arm) served from this process on 127.0.0.1 until
    stop() or the end of its with block."""

    def __init__(
        self, port: int = 0, motors: int = 6, faults: Sequence[str] = (), view: Optional[int] = None
    ) -> None:
        """port 0 lets the system pick; motors 1 to 10; faults are rules as the tavsim
        program's --fault takes them: KIND[,on=NAME][,times=N|all][,after=N][,ms=N]
        [,pieces=N][,text=TEXT], e.g. "delay,on=get_angles,ms=500". view, a port (0: a free
        one), also serves the live view there over HTTP: a page drawing the arm at /, its
        state as JSON at /state (RuntimeError in a build without the view)."""
    @property
    def port(self) -> int:
        """The TCP port it listens on."""
    @property
    def host(self) -> str:
        """The address it listens on."""
    @property
    def view_port(self) -> Optional[int]:
        """The live view's port (http://host:view_port/); None without a view."""
    @property
    def activity(self) -> list[str]:
        """The latest lines of what it did: connections, commands, faults applied."""
    def wait_for_activity(self, text: str, timeout: float = 10.0) -> bool:
        """Waits up to timeout seconds for an activity line containing text; True if one
        came."""
    def add_fault(self, rule: str) -> None:
        """Changes some replies from now on; a rule as --fault takes it."""
    def stop(self) -> None:
        """Closes every connection and the listener."""
    def __enter__(self) -> "Simulator": ...
    def __exit__(
        self,
        kind: Optional[Type[BaseException]],
        value: Optional[BaseException],
        traceback: Optional[TracebackType],
    ) -> None: ...

class StateField(enum.Enum):
    """A quantity a state monitor reads."""

    Angles = 1
    """joint positions, degrees"""
    Velocities = 2
    """joint speeds, degrees per second"""
    Currents = 4
    """motor currents, amperes"""
    Inputs = 8
    """digital inputs, 0 or 1"""
    Pose = 16
    """tool pose, metres and radians"""

class StateSample:
    """The arm's state at one instant. A field is fresh only when has(field); a field whose
    query failed is empty and code says why."""

    @property
    def sequence(self) -> int:
        """1, 2, ... in the order taken."""
    @property
    def time(self) -> float:
        """The instant the values stand for, seconds on the steady clock (time.monotonic())."""
    @property
    def wall_time(self) -> float:
        """The same instant, seconds since the epoch (time.time())."""
    @property
    def code(self) -> int:
        """0, or the code of the first query of the cycle that failed."""
    def has(self, field: StateField) -> bool:
        """Whether the field was read in this sample's cycle."""
    @property
    def motor_ids(self) -> list[int]: ...
    @property
    def angles(self) -> list[float]:
        """Degrees, one per motor id."""
    @property
    def velocities(self) -> list[float]:
        """Degrees per second, one per motor id."""
    @property
    def currents(self) -> list[float]:
        """Amperes, one per motor id."""
    @property
    def input_ids(self) -> list[int]: ...
    @property
    def inputs(self) -> list[int]:
        """0 or 1, one per input id."""
    @property
    def pose(self) -> Pose:
        """Metres and radians."""

class MonitorStats:
    """A monitor's counters since start()."""

    @property
    def samples(self) -> int: ...
    @property
    def missed_cycles(self) -> int:
        """Cycles skipped because a cycle overran its period."""
    @property
    def failed_samples(self) -> int:
        """Samples with a non-zero code."""
    @property
    def dropped_deliveries(self) -> int:
        """Samples a subscriber was still too busy to take."""
    @property
    def recorded_rows(self) -> int: ...

class StateMonitor:
    """Samples one arm's state on a thread of its own at a steady rate: latest() returns the
    newest sample, subscribers are called with each on threads of their own, and a recording
    gets a CSV row per sample. It never logs in by itself: while the session is away samples
    carry its code, and they are fresh again once the robot has logged in and set up again.
    The with block starts and stops sampling."""

    def __init__(
        self,
        robot: Robot,
        rate_hz: float = 100.0,
        fields: Sequence[StateField] = (StateField.Angles, StateField.Velocities),
        input_ids: Sequence[int] = (),
    ) -> None:
        """rate_hz from 1 to 500; input_ids for StateField.Inputs (default 1 to 10). Does not
        start sampling yet."""
    def __enter__(self) -> "StateMonitor": ...
    def __exit__(
        self,
        kind: Optional[Type[BaseException]],
        value: Optional[BaseException],
        traceback: Optional[TracebackType],
    ) -> None: ...
    def start(self) -> None:
        """Starts sampling; RobotError 1006011 for a rate outside 1 to 500 Hz or no field."""
    def stop(self) -> None:
        """Stops sampling within one period; subscribers stay for the next start()."""
    @property
    def running(self) -> bool: ...
    def latest(self) -> Optional[StateSample]:
        """The newest sample, or None before the first."""
    def wait_next(self, timeout: float = 1.0) -> Optional[StateSample]:
        """Waits up to timeout seconds for the next sample; None when none came in time or
        the monitor is not running."""
    def subscribe(self, callback: Callable[[StateSample], object]) -> int:
        """callback(sample) is called with every sample from now on, on a thread of its own;
        one still busy misses the samples in between. Returns the id for unsubscribe()."""
    def unsubscribe(self, id: int) -> None:
        """Ends a subscription once its callback is no longer running (not from that
        callback)."""
    def start_recording(self, path: str) -> None:
        """Writes every sample from now on as a CSV row to path (replaced): a header naming
        each column with its unit, flushed at least once a second. RobotError 1005011 when the
        file cannot be opened."""
    def stop_recording(self) -> None:
        """Closes the recording with every row written."""
    def stats(self) -> MonitorStats: ...

class TrajectoryPoint:
    """One point of a joint trajectory."""

    time_from_start: float
    """Seconds after the trajectory's start."""
    positions: list[float]
    """Degrees, one per motor id."""
    velocities: list[float]
    """Degrees per second, one per motor id; empty: chosen by the library."""
    def __init__(
        self, time_from_start: float, positions: Sequence[float], velocities: Sequence[float] = ()
    ) -> None: ...

class JointTrajectory:
    """A time-parameterised path of some of the arm's joints."""

    motor_ids: list[int]
    points: list[TrajectoryPoint]
    """Times strictly increasing, the first >= 0."""
    def __init__(self, motor_ids: Sequence[int], points: Sequence[TrajectoryPoint] = ()) -> None: ...

class FollowTolerances:
    """When a following ends; per-joint lists hold one value per motor id or one for all."""

    path: list[float]
    """Degrees from the desired position; empty: not checked."""
    goal: list[float]
    """Degrees from the last point, to have arrived."""
    goal_velocity: float
    """Degrees per second below which a joint is at rest."""
    goal_time: float
    """Seconds after the last point's time to arrive, else it failed."""
    def __init__(
        self,
        path: Sequence[float] = (),
        goal: Sequence[float] = (0.05,),
        goal_velocity: float = 0.5,
        goal_time: float = 0.5,
    ) -> None: ...

class FollowOutcome(enum.Enum):
    """How a following ended."""

    Succeeded = 0
    Invalid = 1
    PathToleranceExceeded = 2
    GoalToleranceExceeded = 3
    CommandRefused = 4
    SessionFailed = 5
    Cancelled = 6
    Replaced = 7

class FollowResult:
    """What follow() returns."""

    @property
    def outcome(self) -> FollowOutcome: ...
    @property
    def code(self) -> int:
        """0, or the event code behind the outcome."""
    @property
    def message(self) -> str:
        """Why, in words."""
    @property
    def duration(self) -> float:
        """Seconds from the first set-point to the end."""
    @property
    def planned_duration(self) -> float:
        """The last point's time."""
    @property
    def max_error(self) -> float:
        """Degrees: the largest tracking error of any joint."""
    @property
    def final_error(self) -> list[float]:
        """Degrees per joint at the end (actual - last point)."""

class FollowProgress:
    """One cycle of a following."""

    @property
    def time(self) -> float:
        """Seconds since the start."""
    @property
    def desired(self) -> list[float]: ...
    @property
    def actual(self) -> list[float]: ...
    @property
    def error(self) -> list[float]:
        """actual - desired, degrees per joint."""

class TrajectoryFollower:
    """Makes the arm follow joint trajectories in time, measured by a running state monitor
    that reads angles and velocities."""

    RATE_HZ: float
    """Set-points per second streamed while following."""
    def __init__(
        self,
        robot: Robot,
        monitor: StateMonitor,
        max_velocity: Sequence[float] = (),
        max_acceleration: Sequence[float] = (),
    ) -> None:
        """The limits a trajectory is checked against (deg/s, deg/s^2): empty for the arm's
        ceilings, one value for all joints or one per motor id."""
    def check(self, trajectory: JointTrajectory) -> str:
        """Why follow() would refuse the trajectory; empty when it would not."""
    def follow(
        self,
        trajectory: JointTrajectory,
        tolerances: FollowTolerances = ...,
        progress: Optional[Callable[[FollowProgress], object]] = None,
    ) -> FollowResult:
        """Follows the trajectory and returns how it ended; progress is called once a cycle.
        A follow() from another thread replaces a running one."""
    def cancel(self) -> None:
        """Ends the running follow(): the arm brakes and it returns Cancelled."""
    @property
    def running(self) -> bool: ...
