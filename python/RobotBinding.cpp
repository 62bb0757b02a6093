#include "RobotBinding.h"

#include <pybind11/stl.h>

#include <string>
#include <vector>

#include "RobotError.h"
#include "RobotSession.h"
#include "SetupParamValue.h"

namespace py = pybind11;
using namespace pybind11::literals;

namespace tavpy {

namespace {

using Ids = std::vector<int>;
using Reals = std::vector<double>;
using Poses = std::vector<_Pose>;
using Binding = py::class_<RobotSession>;

// Set on the calling thread when a signal handler raised while its call waited.
thread_local bool signalRaised = false;

// Runs the Python signal handlers (Ctrl-C's KeyboardInterrupt among them) for a waiting call:
// one that raises ends the wait, and its exception stays pending for Run to raise.
bool SignalHandlerRaised() {
  py::gil_scoped_acquire acquire;
  if (PyErr_CheckSignals() != 0) {
    signalRaised = true;
  }
  return signalRaised;
}

// Runs a call of the library with the GIL released, so that other Python threads run while it
// waits, and raises RobotError for a non-zero code. A signal handler that raises while the call
// waits ends the call and its exception is raised instead; the reply is dropped when it comes.
template <typename Call>
void Run(Call&& call) {
  int code = 0;
  signalRaised = false;
  {
    const CallInterruption::Scope interruptible(&SignalHandlerRaised);
    py::gil_scoped_release release;
    code = call();
  }
  if (signalRaised) {
    throw py::error_already_set();
  }
  Check(code);
}

// A command runs beside other commands but never during RobotLogin or Setup, which replace the
// session and the motor ids it reads: Python threads may then call anything at any time.
template <typename Command>
void RunCommand(RobotSession& s, Command&& command) {
  Run([&] { return s.Shared()->Use(command); });
}

void SameLength(std::size_t first, std::size_t second, const char* what) {
  if (first != second) {
    throw py::value_error(std::string(what) + ": lists of different lengths (" +
                          std::to_string(first) + " and " + std::to_string(second) + ")");
  }
}

// A command on one motor id, a list of them, or (with `all`) the cached motor ids.
void BindMotorCommand(Binding& robot, const char* name, int (Robot::*one)(int),
                      int (Robot::*some)(unsigned long, const int*), int (Robot::*all)(),
                      const char* doc) {
  robot.def(
      name,
      [one](RobotSession& s, int id) { RunCommand(s, [&](Robot& arm) { return (arm.*one)(id); }); },
      "motor_id"_a, doc);
  robot.def(
      name,
      [some](RobotSession& s, const Ids& ids) {
        RunCommand(s, [&](Robot& arm) { return (arm.*some)(ids.size(), ids.data()); });
      },
      "motor_ids"_a, doc);
  robot.def(
      name, [all](RobotSession& s) { RunCommand(s, [&](Robot& arm) { return (arm.*all)(); }); },
      doc);
}

// A query on one id (one value back), a list of ids, or the cached motor ids (lists back).
template <typename Value>
void BindQuery(Binding& robot, const char* name, int (Robot::*one)(int, Value&),
               int (Robot::*some)(unsigned long, const int*, std::vector<Value>&),
               int (Robot::*all)(std::vector<Value>&), const char* doc) {
  robot.def(
      name,
      [one](RobotSession& s, int id) {
        Value value{};
        RunCommand(s, [&](Robot& arm) { return (arm.*one)(id, value); });
        return value;
      },
      "motor_id"_a, doc);
  robot.def(
      name,
      [some](RobotSession& s, const Ids& ids) {
        std::vector<Value> values;
        RunCommand(s, [&](Robot& arm) { return (arm.*some)(ids.size(), ids.data(), values); });
        return values;
      },
      "motor_ids"_a, doc);
  robot.def(
      name,
      [all](RobotSession& s) {
        std::vector<Value> values;
        RunCommand(s, [&](Robot& arm) { return (arm.*all)(values); });
        return values;
      },
      doc);
}

void BindPose(py::module_& module) {
  py::class_<_Pose>(module, "Pose",
                    "A tool pose: x, y, z in metres, then roll, pitch, yaw in radians about "
                    "the fixed base axes x, y, z.")
      .def(py::init([](double x, double y, double z, double roll, double pitch, double yaw) {
             return _Pose{x, y, z, roll, pitch, yaw};
           }),
           "x"_a = 0.0, "y"_a = 0.0, "z"_a = 0.0, "roll"_a = 0.0, "pitch"_a = 0.0, "yaw"_a = 0.0)
      .def_readwrite("x", &_Pose::x, "metres")
      .def_readwrite("y", &_Pose::y, "metres")
      .def_readwrite("z", &_Pose::z, "metres")
      .def_readwrite("roll", &_Pose::roll, "radians")
      .def_readwrite("pitch", &_Pose::pitch, "radians")
      .def_readwrite("yaw", &_Pose::yaw, "radians")
      .def("__eq__",
           [](const _Pose& a, const _Pose& b) {
             return a.x == b.x && a.y == b.y && a.z == b.z && a.roll == b.roll &&
                    a.pitch == b.pitch && a.yaw == b.yaw;
           })
      .def("__repr__", [](const _Pose& p) {
        return py::str("Pose({}, {}, {}, {}, {}, {})")
            .format(p.x, p.y, p.z, p.roll, p.pitch, p.yaw);
      });
}

void BindEnums(py::module_& module) {
  py::enum_<Setup_Mode>(module, "Setup_Mode", "Real motors, or the controller's simulation.")
      .value("Real", Setup_Mode::Real)
      .value("Virtual", Setup_Mode::Virtual);
  py::enum_<Relative_Mode>(module, "Relative_Mode", "Absolute targets, or offsets from now.")
      .value("Absolute", Relative_Mode::Absolute)
      .value("Relative", Relative_Mode::Relative);
  py::enum_<Traj_Close_Mode>(module, "Traj_Close_Mode",
                             "An open path ends at its last point; a closed one at its first.")
      .value("Open", Traj_Close_Mode::Open)
      .value("Closed", Traj_Close_Mode::Closed);
}

void BindSession(Binding& robot) {
  robot.def(py::init<>(), "Starts the session's threads; connects to nothing yet.")
      .def("__enter__", [](py::object self) { return self; })
      .def(
          "__exit__",
          [](RobotSession& s, const py::args&) { Run([&] { return s.Get().RobotLogout(); }); },
          "Logs out.")
      .def(
          "RobotLogin",
          [](RobotSession& s, const std::string& ip, int port) {
            if (port < 0 || port > 65535) {
              throw py::value_error("port: expected 0 to 65535, got " + std::to_string(port));
            }
            // Alone, as monitors may be reading: their waits on the old session end first.
            Run([&] {
              s.Get().RobotLogout();
              return s.Shared()->Alone(
                  [&](Robot& arm) { return arm.RobotLogin(ip.c_str(), static_cast<short>(port)); });
            });
          },
          "ip"_a, "port"_a, "Connects to the controller at ip (dotted IPv4) and TCP port.")
      .def(
          "RobotLogout", [](RobotSession& s) { Run([&] { return s.Get().RobotLogout(); }); },
          "Closes the connection; calls waiting on other threads raise RobotError 1002011.")
      .def(
          "Setup",
          [](RobotSession& s, const std::string& name, const py::object& param, Setup_Mode mode) {
            const SetupParamValue channel = SetupParamValue::From(param);
            // Alone: it rewrites the motor ids that monitors read with.
            Run([&] {
              return s.Shared()->Alone(
                  [&](Robot& arm) { return arm.Setup(name.c_str(), channel.View(), mode); });
            });
          },
          "name"_a, "param"_a, "mode"_a,
          "Configures the channel towards the motors (a Setup_Param or a 5-tuple), powers and "
          "holds every motor and caches the motor ids.")
      .def(
          "_getMotorIds",
          [](RobotSession& s) {
            // Alone, as Setup: it rewrites the motor ids.
            Run([&] { return s.Shared()->Alone([](Robot& arm) { return arm._getMotorIds(); }); });
          },
          "Asks the controller for its motor ids and caches them.")
      .def(
          "get_motor_ids",
          [](RobotSession& s) {
            Ids ids;
            RunCommand(s, [&](Robot& arm) { return arm.get_motor_ids(ids); });
            return ids;
          },
          "The cached motor ids.")
      .def(
          "SetReplyTimeout",
          [](RobotSession& s, double seconds) {
            Run([&] { return s.Get().SetReplyTimeout(seconds); });
          },
          "seconds"_a, "Bounds every later wait for a reply, in seconds (> 0; 3600 by default).")
      .def(
          "SetHeartbeat",
          [](RobotSession& s, double period, double silenceLimit) {
            Run([&] { return s.Get().SetHeartbeat(period, silenceLimit); });
          },
          "period_seconds"_a, "silence_limit_seconds"_a,
          "A heartbeat every period_seconds (9 by default); silence from the controller beyond "
          "silence_limit_seconds (20 by default) fails the session with 1003041.")
      .def_static(
          "SetLogLevel", [](int level) { Check(Robot::SetLogLevel(level)); }, "level"_a,
          "The least level the library logs, for every Robot: 0 DEBUG, 1 INFO, 2 WARNING, 3 "
          "ERROR, 4 FATAL.")
      .def(
          "SetEventCallback",
          [](RobotSession& s, py::object callback) {
            if (!callback.is_none() && !PyCallable_Check(callback.ptr())) {
              throw py::type_error("SetEventCallback: expected a callable or None");
            }
            s.Events().SetCallback(std::move(callback));
          },
          "callback"_a,
          "callback(code) is called, on a thread of its own, with the code that fails the "
          "session. None removes it.")
      .def_static("EventText", &Robot::EventText, "code"_a, "What an event code means.");
}

void BindStateCommands(Binding& robot) {
  const std::pair<const char*, int (Robot::*)()> commands[] = {{"recover", &Robot::recover},
                                                               {"stop", &Robot::stop},
                                                               {"calibrate", &Robot::calibrate},
                                                               {"reset", &Robot::reset},
                                                               {"Shutdown", &Robot::Shutdown}};
  const char* docs[] = {"Leaves the stopped state.",
                        "Halts every motion; enters the stopped state.",
                        "Holds every motor and makes the controller ready (arm at rest).",
                        "Halts every motion, clears outputs, frees tools, holds every motor.",
                        "Halts and releases every motor; a new Setup is needed."};
  for (std::size_t i = 0; i < std::size(commands); ++i) {
    const auto command = commands[i].second;
    robot.def(
        commands[i].first,
        [command](RobotSession& s) { RunCommand(s, [&](Robot& arm) { return (arm.*command)(); }); },
        docs[i]);
  }
}

void BindMotion(Binding& robot) {
  robot
      .def(
          "move_to_angles",
          [](RobotSession& s, int id, double position, float velocity, float acceleration,
             Relative_Mode mode) {
            RunCommand(s, [&](Robot& arm) {
              return arm.move_to_angles(id, position, velocity, acceleration, mode);
            });
          },
          "motor_id"_a, "position"_a, "velocity"_a, "acceleration"_a, "mode"_a,
          "Moves joints to positions in degrees at velocity deg/s and acceleration deg/s^2.")
      .def(
          "move_to_angles",
          [](RobotSession& s, const Ids& ids, const Reals& positions, float velocity,
             float acceleration, Relative_Mode mode) {
            SameLength(ids.size(), positions.size(), "move_to_angles");
            RunCommand(s, [&](Robot& arm) {
              return arm.move_to_angles(ids.size(), ids.data(), positions.data(), velocity,
                                        acceleration, mode);
            });
          },
          "motor_ids"_a, "positions"_a, "velocity"_a, "acceleration"_a, "mode"_a,
          "Moves joints to positions in degrees at velocity deg/s and acceleration deg/s^2.")
      .def(
          "moveJ",
          [](RobotSession& s, Poses points, float velocity, float acceleration, float interval,
             Traj_Close_Mode closed) {
            RunCommand(s, [&](Robot& arm) {
              return arm.moveJ(points.size(), points.data(), velocity, acceleration, interval,
                               closed);
            });
          },
          "points"_a, "velocity"_a, "acceleration"_a, "interval"_a, "closed"_a,
          "Joint moves through tool poses; velocity deg/s, acceleration deg/s^2, interval s.")
      .def(
          "moveL",
          [](RobotSession& s, Poses points, const Reals& radius, float velocity, float acceleration,
             float interval, Traj_Close_Mode closed) {
            const bool isClosed = closed == Traj_Close_Mode::Closed;
            // A closed path of fewer than 2 points is the library's to refuse (1006011), as
            // in C++; it has no radius count to check.
            if (!isClosed || points.size() >= 2) {
              SameLength(radius.size(), isClosed ? points.size() - 2 : points.size(),
                         "moveL radius (one per point, n - 2 when closed)");
            }
            RunCommand(s, [&](Robot& arm) {
              return arm.moveL(points.size(), points.data(), radius.data(), velocity, acceleration,
                               interval, closed);
            });
          },
          "points"_a, "radius"_a, "velocity"_a, "acceleration"_a, "interval"_a, "closed"_a,
          "Straight tool lines through poses; radius m, velocity m/s, acceleration m/s^2, "
          "interval s.")
      .def(
          "moveP",
          [](RobotSession& s, Poses points, float velocity, float acceleration, float interval,
             Traj_Close_Mode closed) {
            RunCommand(s, [&](Robot& arm) {
              return arm.moveP(points.size(), points.data(), velocity, acceleration, interval,
                               closed);
            });
          },
          "points"_a, "velocity"_a, "acceleration"_a, "interval"_a, "closed"_a,
          "As moveL, every corner rounded by a fifth of its shorter leg.")
      .def(
          "move_to_pose",
          [](RobotSession& s, const _Pose& pose, float velocity, float acceleration,
             Relative_Mode mode) {
            RunCommand(s, [&](Robot& arm) {
              return arm.move_to_pose(pose, velocity, acceleration, mode);
            });
          },
          "pose"_a, "velocity"_a, "acceleration"_a, "mode"_a,
          "One straight tool line to pose; velocity m/s, acceleration m/s^2.");
}

void BindMotorsAndTool(Binding& robot) {
  BindMotorCommand(robot, "hold", &Robot::hold, &Robot::hold, &Robot::hold,
                   "Powers motors: they become stiff where they stand.");
  BindMotorCommand(robot, "release", &Robot::release, &Robot::release, &Robot::release,
                   "Releases motors: drive off, no current.");
  BindMotorCommand(robot, "wait_for_motors", &Robot::wait_for_motors, &Robot::wait_for_motors,
                   &Robot::wait_for_motors, "Blocks until none of the motors moves any more.");
  robot
      .def(
          "set_output",
          [](RobotSession& s, int id, int signal) {
            RunCommand(s, [&](Robot& arm) { return arm.set_output(id, signal); });
          },
          "id"_a, "signal"_a, "Sets digital outputs to 0 or 1.")
      .def(
          "set_output",
          [](RobotSession& s, const Ids& ids, const Ids& signals) {
            SameLength(ids.size(), signals.size(), "set_output");
            RunCommand(s, [&](Robot& arm) {
              return arm.set_output(ids.size(), ids.data(), signals.data());
            });
          },
          "ids"_a, "signals"_a, "Sets digital outputs to 0 or 1.")
      .def(
          "set_EOAT_action",
          [](RobotSession& s, const std::string& name, const std::string& action) {
            RunCommand(
                s, [&](Robot& arm) { return arm.set_EOAT_action(name.c_str(), action.c_str()); });
          },
          "name"_a, "action"_a, "Starts a tool action, e.g. ('gripper', 'close').");
}

void BindQueries(Binding& robot) {
  BindQuery<double>(robot, "get_current", &Robot::get_current, &Robot::get_current,
                    &Robot::get_current, "Motor currents in amperes.");
  BindQuery<double>(robot, "get_velocity", &Robot::get_velocity, &Robot::get_velocity,
                    &Robot::get_velocity, "Joint speeds in degrees per second.");
  BindQuery<double>(robot, "get_angles", &Robot::get_angles, &Robot::get_angles, &Robot::get_angles,
                    "Joint positions in degrees.");
  BindQuery<int>(robot, "get_input", &Robot::get_input, &Robot::get_input, &Robot::get_input,
                 "Digital inputs, 0 or 1, by input id.");
  robot
      .def(
          "get_pose",
          [](RobotSession& s) {
            _Pose pose;
            RunCommand(s, [&](Robot& arm) { return arm.get_pose(pose); });
            return pose;
          },
          "The tool pose now (metres, radians).")
      .def(
          "forward",
          [](RobotSession& s, const Reals& angles) {
            // The library reads one angle per cached motor id; a Setup cannot change their
            // number between the count and the call.
            Ids ids;
            _Pose pose;
            RunCommand(s, [&](Robot& arm) {
              arm.get_motor_ids(ids);
              return angles.size() < ids.size() ? 0 : arm.forward(angles.data(), pose);
            });
            if (angles.size() < ids.size()) {
              throw py::value_error("forward: expected an angle per motor (" +
                                    std::to_string(ids.size()) + "), got " +
                                    std::to_string(angles.size()));
            }
            return pose;
          },
          "angles"_a, "The tool pose for joint angles in degrees.")
      .def(
          "inverse",
          [](RobotSession& s, const _Pose& pose) {
            Reals angles;
            RunCommand(s, [&](Robot& arm) { return arm.inverse(pose, angles); });
            return angles;
          },
          "pose"_a, "Joint angles in degrees that reach pose.");
}

// The text forms the controller receives: quick and waiting for nothing.
template <typename... Args>
struct FormatMember {
  using Type = int (Robot::*)(Args..., std::string&);
};

template <typename... Args>
auto Formatter(typename FormatMember<Args...>::Type format) {
  return [format](RobotSession& s, Args... args) {
    std::string out;
    (s.Get().*format)(args..., out);
    return out;
  };
}

void BindFormatters(Binding& robot) {
  robot
      .def(
          "to_SetupParamString",
          [](RobotSession& s, const py::object& param) {
            const SetupParamValue channel = SetupParamValue::From(param);
            std::string out;
            s.Get().to_SetupParamString(channel.View(), out);
            return out;
          },
          "param"_a)
      .def("to_IdString", Formatter<int>(&Robot::to_IdString), "id"_a)
      .def("to_IdString", Formatter<std::vector<int>>(&Robot::to_IdString), "ids"_a)
      .def("to_IntString", Formatter<int>(&Robot::to_IntString), "v"_a)
      .def(
          "to_IntString",
          [](RobotSession& s, const Ids& values) {
            std::string out;
            s.Get().to_IntString(values.size(), values.data(), out);
            return out;
          },
          "v"_a)
      .def("to_SignalString", Formatter<int, int>(&Robot::to_SignalString), "id"_a, "value"_a)
      .def(
          "to_SignalString",
          [](RobotSession& s, const Ids& ids, const Ids& values) {
            SameLength(ids.size(), values.size(), "to_SignalString");
            std::string out;
            s.Get().to_SignalString(ids.size(), ids.data(), values.data(), out);
            return out;
          },
          "ids"_a, "values"_a)
      .def("to_DoubleString", Formatter<double>(&Robot::to_DoubleString), "v"_a)
      .def(
          "to_DoubleString",
          [](RobotSession& s, const Reals& values) {
            std::string out;
            s.Get().to_DoubleString(values.size(), values.data(), out);
            return out;
          },
          "v"_a)
      .def("to_PoseString", Formatter<_Pose>(&Robot::to_PoseString), "pose"_a)
      .def(
          "to_PointString",
          [](RobotSession& s, Poses poses) {
            std::string out;
            s.Get().to_PointString(poses.size(), poses.data(), out);
            return out;
          },
          "poses"_a)
      .def(
          "SplitString",
          [](RobotSession& s, const std::string& text, const std::string& separator) {
            std::vector<std::string> pieces;
            s.Get().SplitString(text, pieces, separator);
            return pieces;
          },
          "s"_a, "sep"_a, "The pieces of s between occurrences of sep.");
}

// The callable of SetEventCallback may refer to its own Robot; the collector sees that cycle
// and breaks it by dropping the callable.
RobotSession* SessionOf(PyObject* self) {
  try {
    return &py::cast<RobotSession&>(py::handle(self));
  } catch (const py::cast_error&) {
    return nullptr;  // not constructed yet
  }
}

void CollectableCallbacks(PyHeapTypeObject* heapType) {
  PyTypeObject* type = &heapType->ht_type;
  type->tp_flags |= Py_TPFLAGS_HAVE_GC;
  type->tp_traverse = [](PyObject* self, visitproc visit, void* arg) {
    Py_VISIT(Py_TYPE(self));
    if (RobotSession* session = SessionOf(self)) {
      Py_VISIT(session->Events().Callback().ptr());
    }
    return 0;
  };
  // Untracked before anything is destroyed: the destructor releases the GIL, and a collection
  // on another thread meanwhile must not find the object half gone.
  type->tp_dealloc = [](PyObject* self) {
    PyObject_GC_UnTrack(self);
    py::detail::pybind11_object_dealloc(self);
  };
  type->tp_clear = [](PyObject* self) {
    if (RobotSession* session = SessionOf(self)) {
      session->Events().SetCallback(py::none());
    }
    return 0;
  };
}

}  // namespace

void BindRobot(py::module_& module) {
  BindPose(module);
  BindEnums(module);
  BindSetupParam(module);
  Binding robot(module, "Robot",
                "One session with one controller. Commands return None or raise RobotError; "
                "queries return their values. Every call releases the GIL while it waits.",
                py::custom_type_setup(CollectableCallbacks));
  BindSession(robot);
  BindStateCommands(robot);
  BindMotion(robot);
  BindMotorsAndTool(robot);
  BindQueries(robot);
  BindFormatters(robot);
}

}  // namespace tavpy
