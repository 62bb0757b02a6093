// The driver's figures against a simulator, each with its own node and master, printed as one
// Markdown table: joint_states at 125 and 500 Hz (rate reached, p99 jitter of the stamps, the
// node's CPU), a 5 s trajectory through the action (tracking error), and how soon joint states
// come back after a controller restart. Usage: tavclient_ros_bench [SECONDS per rate, 10]
#include <sensor_msgs/JointState.h>
#include <signal.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <memory>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "Robot.h"
#include "harness/ChildProcess.h"
#include "harness/GoalTracker.h"
#include "harness/Recorder.h"
#include "harness/RosMaster.h"
#include "reliability/SimulatorProcess.h"

namespace {

using namespace tavrostest;
using Clock = std::chrono::steady_clock;
using std::chrono::seconds;
constexpr double kPi = 3.14159265358979323846;

// User plus system CPU seconds of process `pid` so far.
double CpuSeconds(pid_t pid) {
  std::ifstream file("/proc/" + std::to_string(pid) + "/stat");
  std::string text;
  std::getline(file, text);
  std::istringstream fields(text.substr(text.rfind(')') + 2));
  std::vector<std::string> values{std::istream_iterator<std::string>(fields), {}};
  const double ticks = static_cast<double>(::sysconf(_SC_CLK_TCK));
  return (std::stod(values.at(11)) + std::stod(values.at(12))) / ticks;
}

double Percentile(std::vector<double> values, double fraction) {
  std::sort(values.begin(), values.end());
  return values.at(static_cast<std::size_t>(fraction * static_cast<double>(values.size() - 1)));
}

// One simulator and one driver node in /arm.
struct Arm {
  explicit Arm(double rate, int listenPort = FreePort())
      : simulator(TAVSIM_PROGRAM, {"--port", std::to_string(listenPort), "--quiet"}),
        node({TAVCLIENT_NODE_PROGRAM, "__ns:=/arm", "__name:=driver",
              "_robot_port:=" + std::to_string(listenPort),
              "_publish_rate:=" + std::to_string(rate)}),
        port(listenPort) {
    if (!states.WaitFor(20, seconds(20))) {
      throw std::runtime_error("the driver published no joint states");
    }
  }
  ~Arm() {
    node.Signal(SIGINT);
    node.WaitExit(seconds(5));
  }

  Recorder<sensor_msgs::JointState> states{"/arm/joint_states"};
  tavtest::SimulatorProcess simulator;
  ChildProcess node;
  int port;
};

void RateRow(double rate, double window) {
  Arm arm(rate);
  arm.states.Clear();
  const double cpuBefore = CpuSeconds(arm.node.Pid());
  std::this_thread::sleep_for(std::chrono::duration<double>(window));
  const double cpu = CpuSeconds(arm.node.Pid()) - cpuBefore;
  const auto messages = arm.states.Messages();
  std::vector<double> jitter;
  for (std::size_t i = 1; i < messages.size(); ++i) {
    const double gap = (messages[i]->header.stamp - messages[i - 1]->header.stamp).toSec();
    jitter.push_back(std::fabs(gap - 1.0 / rate) * 1e3);
  }
  const double span = (messages.back()->header.stamp - messages.front()->header.stamp).toSec();
  std::printf("| joint_states at %.0f Hz | %.1f Hz reached, p99 stamp jitter %.3f ms | %.1f %% "
              "of one core |\n",
              rate, static_cast<double>(messages.size() - 1) / span, Percentile(jitter, 0.99),
              100.0 * cpu / window);
}

void TrackingRow() {
  Arm arm(125);
  ActionClient client("/arm/follow_joint_trajectory");
  client.waitForActionServerToStart(ros::Duration(10));
  Goal goal;
  const auto start = arm.states.Last();
  goal.trajectory.joint_names = start->name;
  for (double fraction : {0.25, 0.5, 0.75, 1.0}) {
    trajectory_msgs::JointTrajectoryPoint point;
    point.time_from_start = ros::Duration(5.0 * fraction);
    for (double position : start->position) {
      point.positions.push_back(position + std::sin(fraction * kPi / 2) * kPi / 3);
    }
    goal.trajectory.points.push_back(point);
  }
  const auto sent = Clock::now();
  GoalTracker tracker(client, goal);
  tracker.WaitDone(seconds(30));
  const double took = std::chrono::duration<double>(Clock::now() - sent).count();
  std::printf("| 5 s trajectory through the action, 60 deg per joint | max tracking error %.3f "
              "deg, %s after %.2f s, %zu feedbacks | |\n",
              tracker.MaxFeedbackError() * 180.0 / kPi,
              tracker.State() == actionlib::TerminalState::SUCCEEDED ? "succeeded" : "failed",
              took, tracker.Feedbacks());
}

void RestartRow() {
  auto arm = std::make_unique<Arm>(125);
  const int port = arm->port;
  arm->simulator.Kill();
  // Wait until the loss has been noticed: joint states stop.
  std::size_t count = arm->states.Count();
  do {
    count = arm->states.Count();
    std::this_thread::sleep_for(std::chrono::milliseconds(200));
  } while (arm->states.Count() != count);
  arm->states.Clear();
  tavtest::SimulatorProcess again(TAVSIM_PROGRAM, {"--port", std::to_string(port), "--quiet"});
  const auto restarted = Clock::now();
  const bool back = arm->states.WaitFor(1, seconds(20));
  std::printf("| controller restarted | joint states again after %.2f s%s | |\n",
              std::chrono::duration<double>(Clock::now() - restarted).count(),
              back ? "" : " (never)");
}

}  // namespace

int main(int argc, char** argv) {
  const double window = argc > 1 ? std::atof(argv[1]) : 10.0;
  Robot::SetLogLevel(2);
  RosMaster master;
  std::printf("| driver | figure | node CPU |\n|---|---|---|\n");
  RateRow(125, window);
  RateRow(500, window);
  TrackingRow();
  RestartRow();
  return 0;
}
