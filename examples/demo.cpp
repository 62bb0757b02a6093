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
    std::printf("%2d. %s ", ++number_, label.c_str());
    std::fflush(stdout);
    const auto start = Clock::now();
    const Outcome outcome = step();
    const double seconds = SecondsSince(start);
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

  double Seconds() const { return SecondsSince(begin_); }

private:
  using Clock = std::chrono::steady_clock;
  static double SecondsSince(Clock::time_point start) {
    return std::chrono::duration<double>(Clock::now() - start).count();
  }

  int number_ = 0;
  Clock::time_point begin_ = Clock::now();
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
  explicit RobotTour(const ExampleTarget& target) : target_(target) {}

  bool Run() {
    const bool completed =
        tour_.Run("log in", [this] { return LogIn(); }) &&
        tour_.Run("set up the robot (can0, canopen)", [this] { return SetUp(); }) &&
        tour_.Run("read the joints", [this] { return ReadJoints(); }) &&
        tour_.Run("joint move by 15 deg and wait", [this] { return MoveJoints(); }) &&
        tour_.Run("read the tool pose", [this] { return ReadPose(); }) &&
        tour_.Run("forward kinematics of the joints", [this] { return Forward(); }) &&
        tour_.Run("inverse of the pose 5 cm higher", [this] { return InverseRoundTrip(); }) &&
        tour_.Run("linear path up, across, down", [this] { return LinearPath(); }) &&
        tour_.Run("set output 1, read input 1", [this] { return OutputAndInput(); }) &&
        tour_.Run("gripper: close, then open", [this] { return Gripper(); });
    const bool loggedOut = tour_.Run("log out", [this] {
      return Outcome{robot_.RobotLogout(), ""};
    });
    std::printf("tour %s in %.1f s\n", completed && loggedOut ? "finished" : "stopped",
                tour_.Seconds());
    return completed && loggedOut;
  }

private:
  Outcome LogIn() { return {robot_.RobotLogin(target_.Host(), target_.Port()), ""}; }

  Outcome SetUp() {
    const Setup_Param channel{"can0", "can", "canopen", 1, 500000};
    const int code =
        robot_.Setup("arm", channel, target_.Simulated() ? Setup_Mode::Virtual : Setup_Mode::Real);
    int ids[10] = {};
    robot_.get_motor_ids(motorCount_, ids);
    std::string detail = "motors";
    for (std::size_t i = 0; i < motorCount_; ++i) {
      detail += " " + std::to_string(ids[i]);
    }
    return {code, detail};
  }

  Outcome ReadJoints() {
    angles_.assign(std::max<std::size_t>(motorCount_, 1), 0.0);
    const int code = robot_.get_angles(angles_.data());
    return {code, Joints(angles_)};
  }

  Outcome MoveJoints() {
    std::vector<int> ids;
    std::vector<double> targets = angles_;
    for (std::size_t i = 0; i < angles_.size(); ++i) {
      ids.push_back(static_cast<int>(i) + 1);
      targets[i] += i % 2 == 0 ? 15.0 : -15.0;
    }
    int code = robot_.move_to_angles(ids.size(), ids.data(), targets.data(), 30.0f, 60.0f,
                                     Relative_Mode::Absolute);
    if (code == 0) {
      code = robot_.wait_for_motors();
    }
    if (code == 0) {
      code = robot_.get_angles(angles_.data());
    }
    return {code, "now at " + Joints(angles_)};
  }

  Outcome ReadPose() { return {robot_.get_pose(pose_), Describe(pose_)}; }

  Outcome Forward() {
    _Pose computed;
    const int code = robot_.forward(angles_.data(), computed);
    return {code, "gives the pose read above, difference " + Small(Difference(computed, pose_))};
  }

  Outcome InverseRoundTrip() {
    _Pose higher = pose_;
    higher.z += 0.05;
    std::vector<double> solution(angles_.size() + 4, 0.0);
    int code = robot_.inverse(higher, solution.data());
    _Pose back;
    if (code == 0) {
      code = robot_.forward(solution.data(), back);
    }
    solution.resize(angles_.size());
    return {code, Joints(solution) +
                      "; their forward kinematics gives that pose back, difference " +
                      Small(Difference(back, higher))};
  }

  Outcome LinearPath() {
    _Pose points[3] = {pose_, pose_, pose_};
    points[0].z += 0.05;
    points[1].z += 0.05;
    points[1].y += 0.05;
    points[2].y += 0.05;
    const double radius[3] = {0.0, 0.0, 0.0};
    int code = robot_.moveL(3, points, radius, 0.1f, 0.4f, 0.0f, Traj_Close_Mode::Open);
    if (code == 0) {
      code = robot_.wait_for_motors();
    }
    _Pose reached;
    if (code == 0) {
      code = robot_.get_pose(reached);
    }
    return {code, "the tool ended at the last point, difference " +
                      Small(Difference(reached, points[2]))};
  }

  Outcome OutputAndInput() {
    int level = -1;
    int code = robot_.set_output(1, 1);
    if (code == 0) {
      code = robot_.get_input(1, level);
    }
    return {code, "input 1 reads " + std::to_string(level)};
  }

  Outcome Gripper() {
    int code = robot_.set_EOAT_action("gripper", "close");
    if (code == 0) {
      code = robot_.set_EOAT_action("gripper", "open");
    }
    return {code, ""};
  }

  const ExampleTarget& target_;
  Robot robot_;
  Tour tour_;
  std::size_t motorCount_ = 0;
  std::vector<double> angles_;
  _Pose pose_;
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
