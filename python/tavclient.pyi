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
        in metres rounds each corner (one per point, n - 2 when closed); interval seconds.
        RobotError 1006011 for a closed path of fewer than 2 points."""
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
