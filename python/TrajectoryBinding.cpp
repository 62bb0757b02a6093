#include "TrajectoryBinding.h"

#include <pybind11/stl.h>
#include <tavclient/TrajectoryFollower.h>

#include <memory>
#include <string>
#include <vector>

#include "MonitorHandle.h"
#include "PythonCallback.h"
#include "RobotSession.h"

namespace py = pybind11;
using namespace pybind11::literals;
using tavclient::FollowOutcome;
using tavclient::FollowProgress;
using tavclient::FollowResult;
using tavclient::FollowTolerances;
using tavclient::JointTrajectory;
using tavclient::TrajectoryFollower;
using tavclient::TrajectoryPoint;
using Reals = std::vector<double>;

namespace tavpy {

namespace {

// What a tavclient.TrajectoryFollower holds. Its destructor waits for a follow() on another
// thread, whose progress callback may need the GIL: it goes with the GIL released.
class FollowerHandle {
public:
  FollowerHandle(RobotSession& robot, const MonitorHandle& monitor, const Reals& maxVelocity,
                 const Reals& maxAcceleration)
      : follower(std::make_unique<TrajectoryFollower>(
            robot.Shared(), monitor.Shared(),
            tavclient::FollowLimits{maxVelocity, maxAcceleration})) {}
  ~FollowerHandle() {
    py::gil_scoped_release release;
    follower.reset();
  }
  FollowerHandle(const FollowerHandle&) = delete;
  FollowerHandle& operator=(const FollowerHandle&) = delete;

  TrajectoryFollower& Get() { return *follower; }

private:
  std::unique_ptr<TrajectoryFollower> follower;
};

void BindValues(py::module_& module) {
  py::class_<TrajectoryPoint>(module, "TrajectoryPoint", "One point of a joint trajectory.")
      .def(py::init([](double time, Reals positions, Reals velocities) {
             return TrajectoryPoint{time, std::move(positions), std::move(velocities)};
           }),
           "time_from_start"_a, "positions"_a, "velocities"_a = Reals{})
      .def_readwrite("time_from_start", &TrajectoryPoint::timeFromStart, "seconds")
      .def_readwrite("positions", &TrajectoryPoint::positions, "degrees, one per motor id")
      .def_readwrite("velocities", &TrajectoryPoint::velocities,
                     "degrees per second, one per motor id; empty: chosen by the library");
  py::class_<JointTrajectory>(module, "JointTrajectory",
                              "A time-parameterised path of some of the arm's joints.")
      .def(py::init([](std::vector<int> ids, std::vector<TrajectoryPoint> points) {
             return JointTrajectory{std::move(ids), std::move(points)};
           }),
           "motor_ids"_a, "points"_a = std::vector<TrajectoryPoint>{})
      .def_readwrite("motor_ids", &JointTrajectory::motorIds)
      .def_readwrite("points", &JointTrajectory::points,
                     "times strictly increasing, the first >= 0");
  py::class_<FollowTolerances>(module, "FollowTolerances",
                               "When a following ends; per-joint lists hold one value per "
                               "motor id or one for all.")
      .def(py::init([](Reals path, Reals goal, double goalVelocity, double goalTime) {
             return FollowTolerances{std::move(path), std::move(goal), goalVelocity, goalTime};
           }),
           "path"_a = Reals{}, "goal"_a = Reals{0.05}, "goal_velocity"_a = 0.5, "goal_time"_a = 0.5)
      .def_readwrite("path", &FollowTolerances::path, "degrees from the path; empty: unchecked")
      .def_readwrite("goal", &FollowTolerances::goal, "degrees from the last point")
      .def_readwrite("goal_velocity", &FollowTolerances::goalVelocity, "degrees per second")
      .def_readwrite("goal_time", &FollowTolerances::goalTime, "seconds after the last point");
  py::enum_<FollowOutcome>(module, "FollowOutcome", "How a following ended.")
      .value("Succeeded", FollowOutcome::Succeeded)
      .value("Invalid", FollowOutcome::Invalid)
      .value("PathToleranceExceeded", FollowOutcome::PathToleranceExceeded)
      .value("GoalToleranceExceeded", FollowOutcome::GoalToleranceExceeded)
      .value("CommandRefused", FollowOutcome::CommandRefused)
      .value("SessionFailed", FollowOutcome::SessionFailed)
      .value("Cancelled", FollowOutcome::Cancelled)
      .value("Replaced", FollowOutcome::Replaced);
  py::class_<FollowResult>(module, "FollowResult", "What follow() returns.")
      .def_readonly("outcome", &FollowResult::outcome)
      .def_readonly("code", &FollowResult::code)
      .def_readonly("message", &FollowResult::message)
      .def_readonly("duration", &FollowResult::duration, "seconds from the first set-point")
      .def_readonly("planned_duration", &FollowResult::plannedDuration, "the last point's time")
      .def_readonly("max_error", &FollowResult::maxError, "degrees")
      .def_readonly("final_error", &FollowResult::finalError, "degrees per joint")
      .def("__repr__", [](const FollowResult& r) {
        return py::str("FollowResult({}, code={}, message={!r}, duration={:.3f}, max_error={:.4f})")
            .format(py::cast(r.outcome), r.code, r.message, r.duration, r.maxError);
      });
  py::class_<FollowProgress>(module, "FollowProgress", "One cycle of a following.")
      .def_readonly("time", &FollowProgress::time, "seconds since the start")
      .def_readonly("desired", &FollowProgress::desired, "degrees per joint")
      .def_readonly("actual", &FollowProgress::actual, "degrees per joint")
      .def_readonly("error", &FollowProgress::error, "degrees per joint, actual - desired");
}

}  // namespace

void BindTrajectories(py::module_& module) {
  BindValues(module);
  py::class_<FollowerHandle>(
      module, "TrajectoryFollower",
      "Makes the arm follow joint trajectories in time, measured by a running state monitor "
      "that reads angles and velocities.")
      .def(py::init<RobotSession&, const MonitorHandle&, const Reals&, const Reals&>(), "robot"_a,
           "monitor"_a, "max_velocity"_a = Reals{}, "max_acceleration"_a = Reals{},
           "The limits a trajectory is checked against (deg/s, deg/s^2): empty for the arm's "
           "ceilings, one value for all joints or one per motor id.")
      .def(
          "check",
          [](FollowerHandle& f, const JointTrajectory& trajectory) {
            std::string reason;
            py::gil_scoped_release release;
            f.Get().Check(trajectory, reason);
            return reason;
          },
          "trajectory"_a, "Why follow() would refuse the trajectory; empty when it would not.")
      .def(
          "follow",
          [](FollowerHandle& f, const JointTrajectory& trajectory,
             const FollowTolerances& tolerances, py::object progress) {
            TrajectoryFollower::ProgressCallback report;
            std::shared_ptr<PythonCallback> call;
            if (!progress.is_none()) {
              call = std::make_shared<PythonCallback>(std::move(progress), "tavclient progress");
              report = [call](const FollowProgress& p) { (*call)(p); };
            }
            py::gil_scoped_release release;
            FollowResult result = f.Get().Follow(trajectory, tolerances, report);
            report = nullptr;
            return result;
          },
          "trajectory"_a, "tolerances"_a = FollowTolerances{}, "progress"_a = py::none(),
          "Follows the trajectory and returns how it ended; progress(FollowProgress) is called "
          "once a cycle. A follow() from another thread replaces a running one.")
      .def(
          "cancel",
          [](FollowerHandle& f) {
            py::gil_scoped_release release;
            f.Get().Cancel();
          },
          "Ends the running follow(): the arm brakes and it returns Cancelled.")
      .def_property_readonly("running", [](FollowerHandle& f) { return f.Get().Running(); })
      .def_property_readonly_static(
          "RATE_HZ", [](py::object) { return TrajectoryFollower::kRateHz; },
          "Set-points per second streamed while following.");
}

}  // namespace tavpy
