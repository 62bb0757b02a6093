// A tour of the Robot API: log in, set up, move, read, compute, switch and log out, printing
// each step and its result. With no arguments it runs against a controller simulator started
// in this process; with HOST PORT against that controller (which then really moves). With
// TAVSIM_VIEW=PORT the simulator serves its live view: open it in a browser to watch the tour.
#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <string>
#include <vector>

#include <unistd.h>

#include <tavclient/Robot.h>

#include "ExampleTarget.h"

namespace {

constexpr double kPi = 3.14159265358979323846;

std::string Fixed(double value, int digits) {
  char text[64];
  std::snprintf(text, sizeof text, "%.*f", digits, value);
  return text;
}

// A small difference, such as a round trip's error, in metres or radians.
std::string Small(double value) {
  char text[64];
  std::snprintf(text, sizeof text, "%.1e", value);
  return text;
}

// What one step reports: the library's result code and a line about what came back.
struct Outcome {
  int code = 0;
  std::string detail;
};

class Tour {
public:
  // Runs `step` as the next numbered step and prints its outcome; false when it failed.
  template <typename Step>
  bool Run(const std::string& title, Step step) {
    std::string label = title + " ";
    label.resize(std::max<std::size_t>(label.size(), 44), '.');
    std::printf("%2d. %s ", ++number, label.c_str());
    std::fflush(stdout);
    const auto start = Clock::now();
    const Outcome outcome = step();
    const double seconds = _secondsSince(start);
    std::string result = "ok";
    if (outcome.code != 0) {
      result = "FAILED, code " + std::to_string(outcome.code) + " (" +
               Robot::EventText(outcome.code) + ")";
    }
    if (!outcome.detail.empty()) {
      result += ": " + outcome.detail;
    }
    if (seconds >= 0.1) {
      result += " (" + Fixed(seconds, 1) + " s)";
    }
    std::printf("%s\n", result.c_str());
    return outcome.code == 0;
  }

  double Seconds() const { return _secondsSince(begin); }

private:
  using Clock = std::chrono::steady_clock;
  static double _secondsSince(Clock::time_point start) {
    return std::chrono::duration<double>(Clock::now() - start).count();
  }

  int number = 0;
  Clock::time_point begin = Clock::now();
};

std::string Joints(const std::vector<double>& angles) {
  std::string text;
  for (double angle : angles) {
    text += (text.empty() ? "" : " ") + Fixed(angle, 1);
  }
  return text + " deg";
}

std::string Describe(const _Pose& pose) {
  return "x " + Fixed(pose.x, 4) + " y " + Fixed(pose.y, 4) + " z " + Fixed(pose.z, 4) +
         " m, roll " + Fixed(pose.roll, 3) + " pitch " + Fixed(pose.pitch, 3) + " yaw " +
         Fixed(pose.yaw, 3) + " rad";
}

// The largest difference between two poses, angles compared modulo a whole turn.
double Difference(const _Pose& a, const _Pose& b) {
  const auto turn = [](double angle) { return std::abs(std::remainder(angle, 2.0 * kPi)); };
  return std::max({std::abs(a.x - b.x), std::abs(a.y - b.y), std::abs(a.z - b.z),
                   turn(a.roll - b.roll), turn(a.pitch - b.pitch), turn(a.yaw - b.yaw)});
}

// The steps of the tour, sharing one session and what earlier steps read.
class RobotTour {
public:
  explicit RobotTour(const ExampleTarget& where) : target(where) {}

  bool Run() {
    const bool completed =
        tour.Run("log in", [this] { return _logIn(); }) &&
        tour.Run("set up the robot (can0, canopen)", [this] { return _setUp(); }) &&
        tour.Run("read the joints", [this] { return _readJoints(); }) &&
        tour.Run("joint move by 15 deg and wait", [this] { return _moveJoints(); }) &&
        tour.Run("read the tool pose", [this] { return _readPose(); }) &&
        tour.Run("forward kinematics of the joints", [this] { return _forward(); }) &&
        tour.Run("inverse of the pose 5 cm higher", [this] { return _inverseRoundTrip(); }) &&
        tour.Run("linear path up, across, down", [this] { return _linearPath(); }) &&
        tour.Run("set output 1, read input 1", [this] { return _outputAndInput(); }) &&
        tour.Run("gripper: close, then open", [this] { return _gripper(); });
    const bool loggedOut = tour.Run("log out", [this] { return Outcome{robot.RobotLogout(), ""}; });
    std::printf("tour %s in %.1f s\n", completed && loggedOut ? "finished" : "stopped",
                tour.Seconds());
    return completed && loggedOut;
  }

private:
  Outcome _logIn() { return {robot.RobotLogin(target.Host(), target.Port()), ""}; }

  Outcome _setUp() {
    const Setup_Param channel{"can0", "can", "canopen", 1, 500000};
    const int code =
        robot.Setup("arm", channel, target.Simulated() ? Setup_Mode::Virtual : Setup_Mode::Real);
    int ids[10] = {};
    robot.get_motor_ids(motorCount, ids);
    std::string detail = "motors";
    for (std::size_t i = 0; i < motorCount; ++i) {
      detail += " " + std::to_string(ids[i]);
    }
    return {code, detail};
  }

  Outcome _readJoints() {
    angles.assign(std::max<std::size_t>(motorCount, 1), 0.0);
    const int code = robot.get_angles(angles.data());
    return {code, Joints(angles)};
  }

  Outcome _moveJoints() {
    std::vector<int> ids;
    std::vector<double> targets = angles;
    for (std::size_t i = 0; i < angles.size(); ++i) {
      ids.push_back(static_cast<int>(i) + 1);
      targets[i] += i % 2 == 0 ? 15.0 : -15.0;
    }
    int code = robot.move_to_angles(ids.size(), ids.data(), targets.data(), 30.0f, 60.0f,
                                    Relative_Mode::Absolute);
    if (code == 0) {
      code = robot.wait_for_motors();
    }
    if (code == 0) {
      code = robot.get_angles(angles.data());
    }
    return {code, "now at " + Joints(angles)};
  }

  Outcome _readPose() { return {robot.get_pose(pose), Describe(pose)}; }

  Outcome _forward() {
    _Pose computed;
    const int code = robot.forward(angles.data(), computed);
    return {code, "gives the pose read above, difference " + Small(Difference(computed, pose))};
  }

  Outcome _inverseRoundTrip() {
    _Pose higher = pose;
    higher.z += 0.05;
    std::vector<double> solution(angles.size() + 4, 0.0);
    int code = robot.inverse(higher, solution.data());
    _Pose back;
    if (code == 0) {
      code = robot.forward(solution.data(), back);
    }
    solution.resize(angles.size());
    return {code, Joints(solution) +
                      "; their forward kinematics gives that pose back, difference " +
                      Small(Difference(back, higher))};
  }

  Outcome _linearPath() {
    _Pose points[3] = {pose, pose, pose};
    points[0].z += 0.05;
    points[1].z += 0.05;
    points[1].y += 0.05;
    points[2].y += 0.05;
    const double radius[3] = {0.0, 0.0, 0.0};
    int code = robot.moveL(3, points, radius, 0.1f, 0.4f, 0.0f, Traj_Close_Mode::Open);
    if (code == 0) {
      code = robot.wait_for_motors();
    }
    _Pose reached;
    if (code == 0) {
      code = robot.get_pose(reached);
    }
    return {code, "the tool ended at the last point, difference " +
                      Small(Difference(reached, points[2]))};
  }

  Outcome _outputAndInput() {
    int level = -1;
    int code = robot.set_output(1, 1);
    if (code == 0) {
      code = robot.get_input(1, level);
    }
    return {code, "input 1 reads " + std::to_string(level)};
  }

  Outcome _gripper() {
    int code = robot.set_EOAT_action("gripper", "close");
    if (code == 0) {
      code = robot.set_EOAT_action("gripper", "open");
    }
    return {code, ""};
  }

  const ExampleTarget& target;
  Robot robot;
  Tour tour;
  std::size_t motorCount = 0;
  std::vector<double> angles;
  _Pose pose;
};

// With the live view on and someone at the terminal, waits for Enter, so that they can watch.
void PauseForViewer(const ExampleTarget& target, const char* prompt) {
  if (!target.ViewAddress().empty() && isatty(STDIN_FILENO) == 1) {
    std::printf("%s", prompt);
    std::fflush(stdout);
    std::getchar();
  }
}

}  // namespace

int main(int argc, char** argv) {
  const ExampleTarget target(argc, argv);
  std::printf("tavclient demo: a tour of the Robot API against %s\n", target.Describe().c_str());
  if (!target.ViewAddress().empty()) {
    std::printf("Live view: %s\n", target.ViewAddress().c_str());
  }
  if (!target.Simulated()) {
    std::printf("The arm will move: joints by 15 degrees, the tool by 5 cm.\n");
  }
  std::fflush(stdout);
  PauseForViewer(target, "Open it, then press Enter to start the tour. ");
  const bool finished = RobotTour(target).Run();
  PauseForViewer(target, "Press Enter to stop the simulator. ");
  return finished ? 0 : 1;
}
